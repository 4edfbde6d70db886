#include "device_files.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace pendra::test {

namespace fs = std::filesystem;

namespace {

std::string makeRoot() {
    std::string path = "/tmp/pz-XXXXXX"; // not TMPDIR, which may be long
    if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot create " + path);
    return path;
}

void expectDone(const Ended& ended) {
    if (ended.status != 0) throw std::runtime_error(ended.errors);
}

bool isLeftOut(const fs::path& path) {
    constexpr std::array kNames = {"tree-lock", "tree.owner", "pendrad_log.txt", "dbg_msg"};
    return std::find(kNames.begin(), kNames.end(), path.filename()) != kNames.end();
}

} // namespace

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << content).flush()) throw std::runtime_error("cannot write " + path);
}

std::string example(const std::string& name) {
    std::string text = readFile(std::string(PENDRA_SOURCE) + "/examples/" + name);
    if (text.empty()) throw std::runtime_error("no example " + name);
    return text;
}

DeviceFiles::DeviceFiles(const std::string& listing) : root_(makeRoot()) {
    const std::string sources = std::string(PENDRA_SOURCE) + "/platform/device";
    fs::create_directory(tmp());
    fs::create_directories(hardware() + "/bin");
    fs::copy(sources, scripts());
    fs::copy(sources + "/stations.txt", hardware());
    fs::copy(sources + "/iwpriv", hardware() + "/bin");
    expectDone(xtree({"load", sources + "/" + listing}));
}

DeviceFiles::~DeviceFiles() {
    std::error_code ignored;
    for (const std::string& directory : {root_, tmp(), hardware()}) { // a test may have closed them
        fs::permissions(directory, fs::perms::owner_all, ignored);
    }
    fs::remove_all(root_, ignored);
}

Ended DeviceFiles::xtree(std::vector<std::string> arguments, const std::string& input) const {
    arguments.insert(arguments.begin(), {PENDRA_XTREE, "-f", tree()});
    return run({.command = std::move(arguments), .input = input});
}

std::string DeviceFiles::get(const std::string& path) const {
    const std::string text = xtree({"get", path}).output;
    return text.substr(0, text.size() - (text.empty() ? 0 : 1));
}

void DeviceFiles::set(const std::string& path, const std::string& text) const {
    expectDone(xtree({"set", path, text}));
}

std::string DeviceFiles::dump() const {
    const Ended ended = xtree({"dump"});
    expectDone(ended);
    return ended.output;
}

std::string DeviceFiles::changesSince(const std::string& dump) const {
    const Ended ended = xtree({"diff", "-"}, dump);
    return ended.status <= 1 ? ended.output : ended.errors;
}

std::vector<std::string> DeviceFiles::scriptsRun() const {
    std::vector<std::string> scripts;
    std::istringstream lines(journal());
    for (std::string line; std::getline(lines, line);) {
        const std::string script = line.substr(0, line.find(':'));
        if (scripts.empty() || scripts.back() != script) scripts.push_back(script);
    }
    return scripts;
}

DeviceFiles::Snapshot DeviceFiles::snapshot() const {
    Snapshot files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root_)) {
        if (entry.is_regular_file() && !isLeftOut(entry.path())) files[entry.path()] = readFile(entry.path());
    }
    return files;
}

std::vector<std::string> DeviceFiles::changedFiles(const Snapshot& before) const {
    const Snapshot now = snapshot();
    std::vector<std::string> changed;
    for (const auto& [path, content] : before) {
        const auto found = now.find(path);
        if (found == now.end() || found->second != content) changed.push_back(path.substr(root_.size() + 1));
    }
    for (const auto& [path, content] : now) {
        if (!before.contains(path)) changed.push_back(path.substr(root_.size() + 1));
    }
    return changed;
}

std::string changeLines(const std::vector<Change>& changes) {
    std::string lines;
    const auto add = [&](const char* sign, const char* path, const char* text) {
        if (text != nullptr) lines += std::string(sign) + " " + path + " = \"" + text + "\"\n";
    };
    for (const Change& change : changes) {
        add("-", change.path, change.before);
        add("+", change.path, change.after);
    }
    return lines;
}

} // namespace pendra::test
