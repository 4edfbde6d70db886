// The logger with its file, its console and its rotation.
#include "roads.h"

namespace pendra::test {
namespace {

void prepareLog(const std::string&) {}

// Three lines, and what became of them. The console's openings are told apart, the file is read as a whole.
std::string walkLogger(const std::string& directory) {
    const std::string file = directory + "/DL_log.txt";
    std::remove(file.c_str());
    device().forget();
    for (const char* line : {"one\n", "two\n", "three\n"})
        logPrintf(5, "%s", line);
    std::string answer = readFile(file) + "|";
    for (const std::string& text : device().consoleCalls)
        answer += text;
    return answer;
}

// The file has reached its limit. Nothing is run for real, so that it goes on growing.
std::string walkRotation(const std::string& directory) {
    const std::string file = directory + "/DL_log.txt";
    daemon_log_file_size_k = 1;
    storeAnew(file, std::string(1020, 'x'));
    logPrintf(5, "over the limit\n");
    return readFile(file).substr(1020);
}

} // namespace

std::vector<Road> loggerRoads() {
    return {{"Logger", prepareLog, walkLogger, "1000: one\n1000: two\n1000: three\n|DL> one\nDL> two\nDL> three\n"},
            {"LogRotation", prepareLog, walkRotation, "1000: over the limit\n"}};
}

} // namespace pendra::test
