#include "host/setup_run.h"

#include <gtest/gtest.h>

namespace pendra::host {
namespace {

TEST(ComposeResult, Values_StandInTheFormOfTheLibrary) {
    EXPECT_EQ(composeResult(10, "Device/DeviceName", 0),
              "<?xml version=\"1.0\" ?>\n"
              "<root>\n"
              " <ZepSetResult>10</ZepSetResult>\n"
              " <ZepSetMsg>Device/DeviceName</ZepSetMsg>\n"
              " <ZepGetWaitSec>0</ZepGetWaitSec>\n"
              "</root>\n");
}

TEST(ComposeResult, EmptyMessage_LeavesItsElementEmpty) {
    EXPECT_NE(composeResult(0, "", 65).find(" <ZepSetMsg></ZepSetMsg>\n <ZepGetWaitSec>65</ZepGetWaitSec>\n"),
              std::string::npos);
}

} // namespace
} // namespace pendra::host
