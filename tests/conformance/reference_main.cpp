/**
 * @file
 * Puts the reference platform through the checks: reference_checks TREE DEVICE_DIRECTORY CHECKS...
 */
#include <cstdio>
#include <string>

#include "platform/device.h"
#include "platform_checks.h"

int main(int argc, char** argv) {
    std::string error = "arguments: TREE DEVICE_DIRECTORY CHECKS...";
    if (argc < 3 || !pendra::device::openDevice({argv[1], argv[2]}, error)) {
        std::fprintf(stderr, "reference_checks: %s\n", error.c_str());
        return 1;
    }
    const int result = runChecks(argc - 3, argv + 3);
    pendra::device::closeDevice();
    return result;
}
