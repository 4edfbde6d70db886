// How long a client stays admitted after its last successful check.
#pragma once

#include <cstdint>

namespace pendra {

constexpr uint32_t kClientLifetimeSeconds = 300;

} // namespace pendra
