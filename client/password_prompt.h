/**
 * @file
 * Asking for the password on the terminal.
 */
#ifndef PENDRA_CLIENT_PASSWORD_PROMPT_H
#define PENDRA_CLIENT_PASSWORD_PROMPT_H

#include <string>

namespace pendra::client {

/**
 * Asks on the controlling terminal, without echo. A signal that ends or stops the program finds the terminal as it was.
 * Throws Failure without a terminal, and at the end of input.
 */
std::string askPassword();

} // namespace pendra::client

#endif
