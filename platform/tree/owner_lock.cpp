#include "platform/tree/owner_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace pendra::device {
namespace {

std::string owner(const std::string& lockFile) {
    const std::string number = readFile(lockFile);
    return number.empty() ? "another process" : "process " + number.substr(0, number.find('\n'));
}

} // namespace

bool OwnerLock::take(const std::string& treeFile, std::string& error) {
    const std::string lockFile = treeFile + ".owner";
    // Closed in children: a download that outlives the host must not keep the lock.
    Descriptor file(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.isOpen()) {
        error = systemError("cannot lock the tree with " + lockFile);
        return false;
    }
    if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        const bool isTaken = errno == EWOULDBLOCK;
        error = isTaken ? "the tree " + treeFile + " is in use by " + owner(lockFile)
                        : systemError("cannot lock " + lockFile);
        return false;
    }
    const std::string number = std::to_string(::getpid()) + "\n";
    if (::ftruncate(file.number(), 0) != 0 || !writeAll(file.number(), number)) {
        error = systemError("cannot write " + lockFile);
        return false;
    }
    file_ = std::move(file);
    return true;
}

} // namespace pendra::device
