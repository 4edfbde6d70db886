#include "platform/tree/guards.h"

#include <algorithm>
#include <cstddef>

namespace pendra::tree {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/** Means nothing to a shell, quoted or bare. ASCII only: what a shell makes of other bytes depends on its locale. */
bool isPlain(char c) {
    return isLetter(c) || isDigit(c) || std::string_view("_.-+,:@%=").find(c) != std::string_view::npos;
}

bool isPlainText(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isPlain);
}

/** Bare in "%s/uplink.sh" and in "> %s/zepset_result.xml". */
bool isDirectory(std::string_view text) {
    return text.front() == '/' && std::all_of(text.begin(), text.end(), [](char c) { return c == '/' || isPlain(c); });
}

/** Bare in "rm %s" behind the directory, so it must not lead out of it. */
bool isFileName(std::string_view text) {
    return isPlainText(text) && text != "." && text != "..";
}

/** Stands for "$url" inside double quotes, where only these can do harm: the quote, "`", "$", "\" and a line's end. */
bool isAddress(std::string_view text) {
    const auto isHarmless = [](char c) {
        return c > ' ' && c < 0x7f && std::string_view("\"`$\\").find(c) == std::string_view::npos;
    };
    const bool hasScheme = text.starts_with("http://") || text.starts_with("https://");
    return hasScheme && std::all_of(text.begin(), text.end(), isHarmless);
}

std::size_t placeholderLength(std::string_view text) {
    for (const std::string_view placeholder : {"$savefn", "$url"})
        if (text.starts_with(placeholder)) return placeholder.size();
    return 0;
}

/** A placeholder must stand inside double quotes: addresses hold "&" and "?". */
bool isFetchTemplate(std::string_view text) {
    bool quoted = false;
    while (!text.empty()) {
        std::size_t length = 1;
        if (text.front() == '$')
            length = quoted ? placeholderLength(text) : 0;
        else if (text.front() == '"')
            quoted = !quoted;
        else if (text.front() != ' ' && text.front() != '/' && !isPlain(text.front()))
            length = 0;
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return !quoted;
}

/** Bare in the call of the wireless driver's tool; not an option of it. */
bool isInterfaceName(std::string_view text) {
    return (isLetter(text.front()) || isDigit(text.front())) && isPlainText(text);
}

bool isMac(std::string_view text) {
    constexpr std::size_t length = 17;
    if (text.size() != length) return false;
    for (std::size_t i = 0; i < length; ++i)
        if (i % 3 == 2 ? text[i] != ':' : !isHex(text[i])) return false;
    return true;
}

struct Kind {
    bool (*takes)(std::string_view);
    std::size_t longest;
    const char* rule;
};

// The longest texts are those that the library's buffers hold uncut with its own file names behind them: what a cut
// leaves is another file. A download's path has room for 127 characters, directory and image name together.
constexpr Kind temporaryDirectory{isDirectory, 109,
                                  "takes an absolute directory of at most 109 letters, digits and _.-+,:@%=/"};
constexpr Kind scriptDirectory{isDirectory, 127,
                               "takes an absolute directory of at most 127 letters, digits and _.-+,:@%=/"};
constexpr Kind fileName{isFileName, 127, "takes a file name of at most 127 letters, digits and _.-+,:@%="};
constexpr Kind fetchTemplate{isFetchTemplate, 255,
                             "takes a command of at most 255 letters, digits, blanks and _.-+,:@%=/ with double quotes "
                             "in pairs, and $savefn and $url only between them"};
constexpr Kind address{isAddress, 1023,
                       "takes an http or https address without blanks, control characters and \" ` $ \\"};
constexpr Kind interfaceName{isInterfaceName, 15,
                             "takes an interface name of at most 15 letters, digits and _.-+,:@%="};
constexpr Kind mac{isMac, 17, "takes a MAC address as six pairs of hex digits with colons between"};

struct Guard {
    std::string_view path;
    const Kind& kind;
};

constexpr Guard guards[] = {
    {"/bramble/tempdirecory", temporaryDirectory}, // spelt so: the names are the interface
    {"/bramble/scriptdirecory", scriptDirectory},  {"/fwupgradeinfo/fwupgradefn", fileName},
    {"/fwupgradeinfo/currfwfilename", fileName}, // its first part names the list document and its address
    {"/fwupgradeinfo/urlgetcmd", fetchTemplate},   {"/fwupgradeinfo/newfw/fileurl", address},
    {"/fwupgradeinfo/newfw/notesurl", address},    {"/runtime/easyroaming/deauthsta/ifname", interfaceName},
    {"/runtime/easyroaming/deauthsta/mac", mac},
};

} // namespace

const char* guardAgainst(std::string_view path, std::string_view text) {
    if (text.empty()) return nullptr;
    for (const Guard& guard : guards) {
        if (guard.path != path) continue;
        const bool taken = text.size() <= guard.kind.longest && guard.kind.takes(text);
        return taken ? nullptr : guard.kind.rule;
    }
    return nullptr;
}

} // namespace pendra::tree
