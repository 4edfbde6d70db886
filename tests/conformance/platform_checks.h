/**
 * @file
 * Checks that a platform of a firmware's own can be put through, on the device itself: pendra/platform.h as a table.
 *
 * C99, no library but libc. A port compiles platform_checks.c with a main function that opens its tree and hands the
 * arguments on; flat_tree_main.c is an example. Nodes below "/conformance" are written and deleted, and those of the
 * shell's guards are put back as they were.
 */
#ifndef PENDRA_TESTS_CONFORMANCE_PLATFORM_CHECKS_H
#define PENDRA_TESTS_CONFORMANCE_PLATFORM_CHECKS_H

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Runs the checks that the words name and prints a line for each:
 *
 * - platform: every function of pendra/platform.h;
 * - device: nodes, directories, scripts and programs that the library uses;
 * - leave, find: leave a mark in the tree; find it after the device was switched off and on.
 *
 * @return 0 when all passed, 1 when one failed or a word is not known.
 */
int runChecks(int count, char** words);

#ifdef __cplusplus
}
#endif

#endif
