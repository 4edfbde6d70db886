/**
 * @file
 * pendrad: the web service that runs libpendra on a device.
 */
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/options.h"
#include "host/report.h"
#include "host/server.h"
#include "host/signals.h"
#include "host/startup.h"
#include "platform/device.h"

namespace {

using namespace pendra::host;

int fail(const std::string& reason) {
    std::fprintf(stderr, "pendrad: %s\n", reason.c_str());
    return EXIT_FAILURE;
}

int serve(const Options& options) {
    std::string error;
    Server server(options.connections);
    if (!server.start(options.bindAddress, options.port, error)) return fail(error);
    logLine(5, "listening on " + server.url() + ", tree " + options.treeFile);
    std::printf("pendrad: listening on %s\n", server.url().c_str());
    std::fflush(stdout);
    server.run();
    logLine(5, "stopped");
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (const auto status = parseOptions(argc, argv, options)) return *status;
    installSignals();
    std::string error;
    const int status = startDevice(options, error) ? serve(options) : fail(error);
    pendra::device::closeDevice();
    return status;
}
