#include "file_faults.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace pendra::test {
namespace {

struct {
    bool active = false;
    Fault fault = Fault::inputOutput;
    long first = 0;
    long last = 0;
    long calls = 0;
} plan;

constexpr const char* kNames[] = {"InputOutput", "NoSpace", "Cut", "Shortened", "Unreported", "Killed"};

template <typename Function>
Function next(Function, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool strikes() {
    if (!plan.active) return false;
    ++plan.calls;
    return plan.calls >= plan.first && plan.calls <= plan.last;
}

int refuse() {
    errno = plan.fault == Fault::noSpace ? ENOSPC : EIO;
    return -1;
}

/** A write that fails. @param part writes as many bytes as it is given. */
template <typename Part>
ssize_t failWrite(size_t size, Part part) {
    if (plan.fault == Fault::inputOutput || plan.fault == Fault::noSpace) return refuse();
    const ssize_t written = part(plan.fault == Fault::unreported ? size : size / 2);
    if (plan.fault == Fault::killed) ::_exit(kKilledStatus);
    return plan.fault == Fault::shortened ? written : refuse();
}

/** A call without bytes: it has been done, or not. */
template <typename Whole>
int failWhole(Whole whole) {
    if (plan.fault == Fault::unreported) static_cast<void>(whole());
    if (plan.fault == Fault::killed) ::_exit(kKilledStatus);
    return refuse();
}

} // namespace

void failCalls(Fault fault, long first, long last) {
    plan = {.active = true, .fault = fault, .first = first, .last = last, .calls = 0};
}

long stopFailing() {
    plan.active = false;
    return plan.calls;
}

void PrintTo(Fault fault, std::ostream* output) {
    *output << kNames[static_cast<int>(fault)];
}

} // namespace pendra::test

using namespace pendra::test;

extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
    static const auto real = next(&::pwrite, "pwrite");
    if (!strikes()) return real(file, bytes, size, offset);
    return failWrite(size, [&](size_t part) { return real(file, bytes, part, offset); });
}

ssize_t write(int file, const void* bytes, size_t size) {
    static const auto real = next(&::write, "write");
    if (!strikes()) return real(file, bytes, size);
    return failWrite(size, [&](size_t part) { return real(file, bytes, part); });
}

ssize_t writev(int file, const iovec* parts, int count) {
    static const auto real = next(&::writev, "writev");
    if (!strikes()) return real(file, parts, count);
    // Half of the parts, and of one part its half.
    iovec first = parts[0];
    return failWrite(static_cast<size_t>(count), [&](size_t some) {
        if (some > 0) return real(file, parts, static_cast<int>(some));
        first.iov_len /= 2;
        return real(file, &first, 1);
    });
}

// Nothing here has to outlive the machine: a sync that does not fail only says so.
int fdatasync(int) {
    return strikes() ? failWhole([] { return 0; }) : 0;
}

int fsync(int) {
    return strikes() ? failWhole([] { return 0; }) : 0;
}

int msync(void*, size_t, int) {
    return strikes() ? failWhole([] { return 0; }) : 0;
}

int ftruncate(int file, off_t size) noexcept {
    static const auto real = next(&::ftruncate, "ftruncate");
    return strikes() ? failWhole([&] { return real(file, size); }) : real(file, size);
}

} // extern "C"
