#include "platform/tree/text_form.h"

#include <algorithm>

#include "platform/tree/node_path.h"

namespace pendra::tree {
namespace {

constexpr std::string_view blanks = " \t";

struct Escape {
    char letter;
    char byte;
};
constexpr Escape escapes[] = {{'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'"', '"'}, {'\\', '\\'}};

std::string hexEscape(char byte) {
    constexpr char digits[] = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    return {'\\', 'x', digits[value / 16], digits[value % 16]};
}

std::string textByte(char byte) {
    for (const Escape& escape : escapes)
        if (escape.byte == byte) return {'\\', escape.letter};
    return byte >= ' ' && byte <= '~' ? std::string(1, byte) : hexEscape(byte);
}

std::string pathByte(char byte) {
    const bool plain = byte > ' ' && byte <= '~' && std::string_view("=\"\\").find(byte) == std::string_view::npos;
    return plain ? std::string(1, byte) : hexEscape(byte);
}

int hexValue(char digit) {
    const std::size_t value = std::string_view("0123456789abcdef0123456789ABCDEF").find(digit);
    return value == std::string_view::npos ? -1 : static_cast<int>(value % 16);
}

/** Reads one line from left to right. */
class LineReader {
  public:
    LineReader(std::string_view line, std::string& error) : rest_(line), error_(error) {}

    bool read(std::string& path, std::string& text) {
        return readUntil(" \t=\"", path) && expect('=') && expect('"') && readUntil("\"", text) && closeText() &&
               expectEnd();
    }

  private:
    void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size())); }

    bool wrong(const std::string& what) {
        error_ = what;
        return false;
    }

    bool expect(char wanted) {
        skipBlanks();
        if (rest_.empty() || rest_.front() != wanted) return wrong("expected /path = \"text\"");
        rest_.remove_prefix(1);
        return true;
    }

    bool closeText() {
        if (rest_.empty()) return wrong("the text is not closed with \"");
        rest_.remove_prefix(1);
        return true;
    }

    bool expectEnd() {
        skipBlanks();
        return rest_.empty() || rest_.front() == '#' || wrong("only a # comment may follow the text");
    }

    bool readUntil(std::string_view ends, std::string& out) {
        out.clear();
        while (!rest_.empty() && ends.find(rest_.front()) == std::string_view::npos) {
            const char byte = rest_.front();
            rest_.remove_prefix(1);
            if (byte != '\\')
                out += byte;
            else if (!readEscape(out))
                return false;
        }
        return true;
    }

    bool readEscape(std::string& out) {
        const char letter = rest_.empty() ? '\0' : rest_.front();
        for (const Escape& escape : escapes) {
            if (escape.letter != letter) continue;
            out += escape.byte;
            rest_.remove_prefix(1);
            return true;
        }
        const int high = letter == 'x' && rest_.size() > 2 ? hexValue(rest_[1]) : -1;
        const int low = high >= 0 ? hexValue(rest_[2]) : -1;
        if (low < 0) return wrong("a \\ is followed by one of n t r \" \\ or by x and two hex digits");
        out += static_cast<char>(high * 16 + low);
        rest_.remove_prefix(3);
        return true;
    }

    std::string_view rest_;
    std::string& error_;
};

/** Takes the next line off the source, without its end. */
std::string_view takeLine(std::string_view& source) {
    const std::size_t end = source.find('\n');
    std::string_view line = source.substr(0, end);
    source.remove_prefix(end == std::string_view::npos ? source.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    return line;
}

bool addLine(std::string_view line, int number, Listing& listing, std::string& error) {
    std::string path;
    std::string text;
    if (!LineReader(line, error).read(path, text)) return false;
    if (!isPath(path) || isCountPath(path)) {
        error = escapedPath(path) + " is not a node's path";
        return false;
    }
    const auto [node, added] = listing.try_emplace(path, Line{text, number});
    if (!added)
        error = escapedPath(path) + " is given a second time, first on line " + std::to_string(node->second.number);
    return added;
}

} // namespace

std::string escapedPath(std::string_view path) {
    std::string out;
    for (const char byte : path)
        out += pathByte(byte);
    return out;
}

std::string escapedText(std::string_view text) {
    std::string out;
    for (const char byte : text)
        out += textByte(byte);
    return out;
}

std::string formatNode(std::string_view path, std::string_view text) {
    return escapedPath(path) + " = \"" + escapedText(text) + "\"\n";
}

bool parseListing(std::string_view source, Listing& listing, std::string& error) {
    for (int number = 1; !source.empty(); ++number) {
        const std::string_view line = takeLine(source);
        if (line.empty() || line.front() == '#') continue;
        if (addLine(line, number, listing, error)) continue;
        error.insert(0, "line " + std::to_string(number) + ": ");
        return false;
    }
    return true;
}

std::string difference(const Listing& before, const Listing& after) {
    std::string out;
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        const bool onlyOld = now == after.end() || (old != before.end() && old->first < now->first);
        const bool onlyNow = !onlyOld && (old == before.end() || now->first < old->first);
        const bool differs = onlyOld || onlyNow || old->second.text != now->second.text;
        if (differs && !onlyNow) out += "- " + formatNode(old->first, old->second.text);
        if (differs && !onlyOld) out += "+ " + formatNode(now->first, now->second.text);
        if (!onlyNow) ++old;
        if (!onlyOld) ++now;
    }
    return out;
}

} // namespace pendra::tree
