// Runs a target over stored inputs where there is no fuzzer: every argument is a file or a folder of files.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/support.h"

namespace {

void replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(stream), {}};
    pendra::fuzz::currentInput = file.string();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

int replayAll(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        replay(path);
        return 1;
    }
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        count += replayAll(entry.path());
    return count;
}

} // namespace

int main(int argc, char** argv) {
    int count = 0;
    for (int index = 1; index < argc; index++)
        count += replayAll(argv[index]);
    std::printf("%d inputs\n", count);
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE; // a corpus that is not there tests nothing
}
