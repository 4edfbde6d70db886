#include "disk.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <map>

namespace pendra::test {
namespace {

// Never destroyed, like the disk itself: files are opened until the very end of the process.
std::map<int, std::string>& openFiles() {
    static auto& files = *new std::map<int, std::string>;
    return files;
}

std::string nameOf(const std::string& path) {
    const size_t end = path.find_last_not_of('/');
    const size_t slash = path.find_last_of('/', end);
    return path.substr(slash + 1, end - slash);
}

// Writes the call down. True when it is the one that fails.
bool fails(const std::string& call, int reason) {
    if (!disk().isWatched) return false;
    disk().calls.push_back(call);
    if (static_cast<int>(disk().calls.size()) != disk().failingCall) return false;
    errno = reason;
    return true;
}

} // namespace

Disk& disk() {
    static Disk& theDisk = *new Disk;
    return theDisk;
}

} // namespace pendra::test

using namespace pendra::test;

// The linker sends the calls of the program's own objects here.
extern "C" {

int __real_open(const char* path, int flags, ...);
int __real_close(int file);
ssize_t __real_read(int file, void* bytes, size_t size);
ssize_t __real_write(int file, const void* bytes, size_t size);
int __real_fsync(int file);
int __real_rename(const char* from, const char* to);

int __wrap_open(const char* path, int flags, ...);
int __wrap_close(int file);
ssize_t __wrap_read(int file, void* bytes, size_t size);
ssize_t __wrap_write(int file, const void* bytes, size_t size);
int __wrap_fsync(int file);
int __wrap_rename(const char* from, const char* to);

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (fails("open " + nameOf(path), EACCES)) return -1;
    const int file = __real_open(path, flags, mode);
    if (file >= 0) openFiles()[file] = nameOf(path);
    return file;
}

// Also one that fails has closed the file.
int __wrap_close(int file) {
    const bool isFailing = fails("close " + openFiles()[file], EIO);
    return __real_close(file) == 0 && !isFailing ? 0 : -1;
}

ssize_t __wrap_read(int file, void* bytes, size_t size) {
    return fails("read " + openFiles()[file], EIO) ? -1 : __real_read(file, bytes, size);
}

// A disk that is full takes half of it, and nothing of the rest.
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
    const bool isFailing = fails("write " + openFiles()[file], ENOSPC);
    if (!isFailing) return __real_write(file, bytes, size);
    if (size < 2) return -1;
    disk().failingCall++;
    return __real_write(file, bytes, size / 2);
}

int __wrap_fsync(int file) {
    return fails("fsync " + openFiles()[file], EIO) ? -1 : __real_fsync(file);
}

int __wrap_rename(const char* from, const char* to) {
    return fails("rename " + nameOf(from) + " " + nameOf(to), EIO) ? -1 : __real_rename(from, to);
}

} // extern "C"
