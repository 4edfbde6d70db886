#include "client/progress_bar.h"

#include <gtest/gtest.h>

#include <chrono>

namespace pendra::client {
namespace {

TEST(BarText, Elapsed_FillsItsShare) {
    EXPECT_EQ(barText(0, 10, 10), "[----------]  0 of 10 s");
    EXPECT_EQ(barText(5, 10, 10), "[#####-----]  5 of 10 s");
    EXPECT_EQ(barText(10, 10, 10), "[##########] 10 of 10 s");
    EXPECT_EQ(barText(1, 65, 20), "[--------------------]  1 of 65 s");
}

TEST(BarText, OutsideTheRange_StaysWithinTheBar) {
    EXPECT_EQ(barText(-1, 5, 5), "[-----] 0 of 5 s");
    EXPECT_EQ(barText(9, 5, 5), "[#####] 5 of 5 s");
    EXPECT_EQ(barText(0, 0, 5), "[#####] 0 of 0 s");
}

TEST(WaitWithBar, Seconds_AreWaitedExactly) {
    const auto start = std::chrono::steady_clock::now();
    waitWithBar(0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    waitWithBar(1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

} // namespace
} // namespace pendra::client
