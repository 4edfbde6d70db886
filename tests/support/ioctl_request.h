#pragma once

#include <sys/ioctl.h>

namespace pendra::test {

// Each libc has its own type for the requests of ioctl.
template <typename Request>
Request requestOf(int (*)(int, Request, ...));
using IoctlRequest = decltype(requestOf(ioctl));

} // namespace pendra::test
