#include "host/fetch_log.h"

#include <gtest/gtest.h>

#include <string>

namespace pendra::host {
namespace {

const std::string kRequest =
    "--2026-11-20 23:12:16--  http://127.0.0.1:8481/a\nConnecting ... connected.\n"
    "HTTP request sent, awaiting response... \n";

std::string answer(const std::string& status, const std::string& headers) {
    return "  HTTP/1.1 " + status + "\n  Content-Type: application/octet-stream\n" + headers;
}

TEST(AnnouncedLength, AnswerWithALength_TellsIt) {
    EXPECT_EQ(announcedLength(kRequest + answer("200 OK", "  Content-Length: 4194368\n")), 4194368);
    EXPECT_EQ(announcedLength(kRequest + answer("200 OK", "  Content-Length: 0\nLength: 0 [x]\n")), 0);
    EXPECT_EQ(announcedLength(kRequest + answer("200 OK", "  Content-Length: 5\r\n")), 5);
}

TEST(AnnouncedLength, Redirection_CountsTheLastAnswer) {
    const std::string first = kRequest + answer("302 Found", "  Content-Length: 7\n");
    EXPECT_EQ(announcedLength(first + kRequest + answer("200 OK", "  Content-Length: 99\n")), 99);
    EXPECT_EQ(announcedLength(first + kRequest + answer("200 OK", "")), std::nullopt);
}

TEST(AnnouncedLength, NoAnswerOrNoNumber_IsNotKnown) {
    EXPECT_EQ(announcedLength(""), std::nullopt);
    EXPECT_EQ(announcedLength(kRequest + "failed: Connection refused.\n"), std::nullopt);
    for (const char* length : {"", "x", "-1", "5 bytes", "99999999999999999999"}) {
        const std::string header = "  Content-Length: " + std::string(length) + "\n";
        EXPECT_EQ(announcedLength(kRequest + answer("200 OK", header)), std::nullopt) << length;
    }
}

TEST(AnnouncedLength, HeaderInAnAddress_IsNone) {
    EXPECT_EQ(announcedLength("--x--  http://h/  Content-Length: 5\n"), std::nullopt);
}

} // namespace
} // namespace pendra::host
