/**
 * @file
 * Reading the documents that are to be posted.
 */
#ifndef PENDRA_CLIENT_TEXT_FILE_H
#define PENDRA_CLIENT_TEXT_FILE_H

#include <string>

namespace pendra::client {

/** Reads a file, or standard input for "-". Throws Failure when it cannot be read, is empty or is far too long. */
std::string readTextFile(const std::string& name);

} // namespace pendra::client

#endif
