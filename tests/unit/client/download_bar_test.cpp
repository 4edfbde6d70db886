#include "client/download_bar.h"

#include <gtest/gtest.h>

namespace pendra::client {
namespace {

TEST(SizeText, Bytes_AreRounded) {
    EXPECT_EQ(sizeText(0), "0 B");
    EXPECT_EQ(sizeText(999), "999 B");
    EXPECT_EQ(sizeText(1000), "1.0 kB");
    EXPECT_EQ(sizeText(1'550'000), "1.6 MB");
    EXPECT_EQ(sizeText(4194368), "4.2 MB");
}

TEST(DownloadText, KnownTotal_HasABarAndAPercentage) {
    EXPECT_EQ(downloadText(0, 2000, 0, 10), "[----------]   0 %  0 B of 2.0 kB");
    EXPECT_EQ(downloadText(500, 2000, 1, 10), "[##--------]  25 %  500 B of 2.0 kB, 500 B/s");
    EXPECT_EQ(downloadText(2000, 2000, 2, 10), "[##########] 100 %  2.0 kB of 2.0 kB, 1.0 kB/s");
}

TEST(DownloadText, MoreThanTheTotal_StaysWithinTheBar) {
    EXPECT_EQ(downloadText(3000, 2000, 1, 4), "[####] 100 %  3.0 kB of 2.0 kB, 3.0 kB/s");
}

TEST(DownloadText, AlmostAll_IsNotAll) {
    EXPECT_EQ(downloadText(1999, 2000, 1, 4), "[###-]  99 %  2.0 kB of 2.0 kB, 2.0 kB/s");
}

TEST(DownloadText, UnknownTotal_HasNeither) {
    EXPECT_EQ(downloadText(500, std::nullopt, 1, 10), "500 B, 500 B/s");
    EXPECT_EQ(downloadText(500, 0, 1, 10), "500 B, 500 B/s");
}

} // namespace
} // namespace pendra::client
