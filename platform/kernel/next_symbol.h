/**
 * @file
 * Stand-ins for calls of libc. A program that exports its symbols binds the calls of every shared library it loads to
 * its own functions first; these hand on to libc what is not the simulated device's.
 */
#ifndef PENDRA_PLATFORM_KERNEL_NEXT_SYMBOL_H
#define PENDRA_PLATFORM_KERNEL_NEXT_SYMBOL_H

#include <dlfcn.h>

namespace pendra::device {

/** The function of this name that the stand-in hides. */
template <typename Function>
[[nodiscard]] Function* nextSymbol(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace pendra::device

#endif
