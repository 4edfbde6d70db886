// What setup runs find right after the library has been loaded.
#include <algorithm>

#include "setup_document.h"
#include "setupdoc/run_state.h"

namespace pendra::test {
namespace {

// Taken before any test, and any fixture, changes them.
const RunState runStateAtLoad = runState;
const auto lostKeyHookAtLoad = XmlErrMsg_LostKey;
const std::vector<unsigned char> recordAtLoad(reinterpret_cast<const unsigned char*>(&zepXmlData),
                                              reinterpret_cast<const unsigned char*>(&zepXmlData + 1));

TEST(Load, Record_IsAllZero) {
    EXPECT_TRUE(std::all_of(recordAtLoad.begin(), recordAtLoad.end(), [](unsigned char byte) { return byte == 0; }));
    EXPECT_EQ(nullptr, lostKeyHookAtLoad);
}

TEST(Load, FirstRunAndFirstElement_AreStillToCome) {
    EXPECT_TRUE(runStateAtLoad.firstRun);
    EXPECT_TRUE(runStateAtLoad.startNewFile);
}

TEST(Load, ChannelsOfBothRadios_AreUnknown) {
    EXPECT_EQ(-1, runStateAtLoad.rememberedChannel[0]);
    EXPECT_EQ(-1, runStateAtLoad.rememberedChannel[1]);
}

} // namespace
} // namespace pendra::test
