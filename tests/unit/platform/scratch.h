/**
 * @file
 * What the platform's tests share beside files and processes: trees as texts.
 */
#ifndef PENDRA_TESTS_UNIT_PLATFORM_SCRATCH_H
#define PENDRA_TESTS_UNIT_PLATFORM_SCRATCH_H

#include <string>
#include <string_view>

#include "platform/tree/tree.h"
#include "support/scratch.h"

namespace pendra::test {

/** Text of a node; "(absent)" for none. */
[[nodiscard]] std::string textOf(tree::Tree& tree, std::string_view path);

/** A tree in its text form. */
[[nodiscard]] std::string dumpOf(tree::Tree& tree);

} // namespace pendra::test

#endif
