/**
 * @file
 * The calls by which the tree's library writes its files, each of which can be made to fail. They stand in this program
 * and are exported by it, so that they come before libc's.
 */
#ifndef PENDRA_TESTS_UNIT_PLATFORM_FILE_FAULTS_H
#define PENDRA_TESTS_UNIT_PLATFORM_FILE_FAULTS_H

#include <ostream>

namespace pendra::test {

/** What happens to a call that is to fail. */
enum class Fault {
    inputOutput, ///< EIO, nothing is written
    noSpace,     ///< ENOSPC, nothing is written
    cut,         ///< EIO after half of the bytes
    shortened,   ///< half of the bytes, and the call says so
    unreported,  ///< all is done, and the call says EIO
    killed,      ///< half of the bytes, and the process ends
};

/** For a process that a fault has ended. */
constexpr int kKilledStatus = 77;

/** Makes calls number @p first to @p last from now on fail. */
void failCalls(Fault fault, long first, long last);

/** Ends it. @return how many calls there were, those that failed included. */
long stopFailing();

void PrintTo(Fault fault, std::ostream* output);

} // namespace pendra::test

#endif
