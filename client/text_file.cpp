#include "client/text_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "client/failure.h"

namespace pendra::client {

namespace {

// Well above what any device takes; the device itself says where its limit is.
constexpr size_t kMaxFile = size_t{64} << 20;

std::string readStream(std::FILE* stream, const std::string& name) {
    std::string text;
    char buffer[16384];
    size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, stream)) > 0) {
        text.append(buffer, count);
        if (text.size() > kMaxFile) throw Failure(kUnreadable, name + " is too long for a setup document.");
    }
    if (std::ferror(stream) != 0) throw Failure(kUnreadable, "Cannot read " + name + ": " + std::strerror(errno) + ".");
    if (text.empty()) throw Failure(kUnreadable, name + " is empty.");
    return text;
}

int closeStream(std::FILE* stream) {
    return std::fclose(stream);
}

} // namespace

std::string readTextFile(const std::string& name) {
    if (name == "-") return readStream(stdin, "Standard input");
    const std::unique_ptr<std::FILE, decltype(&closeStream)> file(std::fopen(name.c_str(), "rbe"), closeStream);
    if (file == nullptr) throw Failure(kUnreadable, "Cannot open " + name + ": " + std::strerror(errno) + ".");
    return readStream(file.get(), name);
}

} // namespace pendra::client
