/**
 * @file
 * One host for one tree: a lock file beside it, held until the process ends.
 */
#ifndef PENDRA_PLATFORM_TREE_OWNER_LOCK_H
#define PENDRA_PLATFORM_TREE_OWNER_LOCK_H

#include <string>

#include "platform/file_access.h"

namespace pendra::device {

class OwnerLock {
  public:
    /** @param error says which process holds the lock, when another one does. */
    [[nodiscard]] bool take(const std::string& treeFile, std::string& error);
    void release() { file_ = Descriptor(); }

  private:
    Descriptor file_;
};

} // namespace pendra::device

#endif
