// What the variable interface finds right after the library has been loaded.
#include "support/fake_device.h"
#include "vars/form_intake.h"

namespace pendra {
namespace {

// Taken before any test, and any fixture, changes it.
const VariableState stateAtLoad = variableState;

TEST(Load, FirstInit_IsStillToCome) {
    EXPECT_TRUE(stateAtLoad.firstInit);
    EXPECT_STREQ("", stateAtLoad.answer);
}

} // namespace
} // namespace pendra
