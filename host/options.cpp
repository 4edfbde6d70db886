#include "host/options.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "pendra/auth.h"

namespace pendra::host {

namespace {

constexpr int kUsageError = 2;

// The library keeps the log's directory in 64 bytes; a longer one would be cut to another directory.
constexpr size_t kMaxTmpDirectory = 63;

void addOptions(CLI::App& app, Options& options) {
    app.add_option("--tree", options.treeFile, "Configuration tree of the device (required)")->required();
    app.add_option("--port", options.port, "Port to listen on; 0 takes any free one")->capture_default_str();
    app.add_option("--bind", options.bindAddress, "Address to listen on")->capture_default_str();
    app.add_option("--tmp", options.tmpDirectory,
                   "Directory of result documents and the log (default: as in the tree)");
    app.add_option("--scripts", options.scriptDirectory, "Directory of the device's scripts (default: as in the tree)");
    app.add_option("--device", options.deviceDirectory,
                   "What the simulated hardware remembers (default: directory \"device\" next to the tree)");
    app.add_option("--log-level", options.logLevel, "0 (nearly nothing) to 7 (every step)")
        ->check(CLI::Range(0, 7))
        ->capture_default_str();
    app.add_option("--connections", options.connections, "How many stay open at a time before the idle ones yield")
        ->check(CLI::Range(8, 4096))
        ->capture_default_str();
    app.set_version_flag("--version", std::string("pendrad, libpendra ") + pendraLibVersion());
    app.footer("Exit status: 0 stopped by SIGTERM or SIGINT, 1 could not start, 2 wrong usage.");
}

void makeAbsolute(std::string& path) {
    if (path.empty()) return;
    path = std::filesystem::absolute(path).lexically_normal().string();
    if (path.size() > 1 && path.back() == '/') path.pop_back();
}

void resolvePaths(Options& options) {
    makeAbsolute(options.treeFile);
    makeAbsolute(options.tmpDirectory);
    makeAbsolute(options.scriptDirectory);
    if (options.deviceDirectory.empty()) {
        options.deviceDirectory = std::filesystem::path(options.treeFile).parent_path() / "device";
    }
    makeAbsolute(options.deviceDirectory);
    if (options.tmpDirectory.size() > kMaxTmpDirectory) {
        throw CLI::ValidationError("--tmp", "the directory's path may have at most 63 characters");
    }
}

} // namespace

std::optional<int> parseOptions(int argc, const char* const* argv, Options& options) {
    CLI::App app("pendrad: the web service of a Pendra device.", "pendrad");
    addOptions(app, options);
    try {
        app.parse(argc, argv);
        resolvePaths(options);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsageError;
    }
    return std::nullopt;
}

} // namespace pendra::host
