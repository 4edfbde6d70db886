/**
 * @file
 * Puts the flat-file platform through the checks: flat_tree_checks TREE platform device.
 */
#include <stdio.h>

#include "flat_tree_platform.h"
#include "platform_checks.h"

/* [main] */
int main(int argc, char** argv) {
    if (argc < 2 || flatTreeOpen(argv[1]) != 0) {
        fprintf(stderr, "flat_tree_checks: %s\n", argc < 2 ? "arguments: TREE CHECKS..." : flatTreeProblem());
        return 1;
    }
    return runChecks(argc - 2, argv + 2);
}
/* [end] */
