#include "host/cross_site.h"

#include <gtest/gtest.h>

namespace pendra::host {
namespace {

struct Sender {
    const char* origin;
    const char* referer;
    bool own;
};

class IsFromOwnPage : public testing::TestWithParam<Sender> {};

TEST_P(IsFromOwnPage, Sender_IsComparedWithTheHost) {
    EXPECT_EQ(isFromOwnPage("router:8480", GetParam().origin, GetParam().referer), GetParam().own);
}

INSTANTIATE_TEST_SUITE_P(Senders, IsFromOwnPage,
                         testing::Values(Sender{"", "", true}, Sender{"http://router:8480", "", true},
                                         Sender{"http://Router:8480", "", true},
                                         Sender{"", "http://router:8480/x?y", true}, Sender{"http://router", "", false},
                                         Sender{"http://router:84800", "", false}, Sender{"null", "", false},
                                         Sender{"", "about:blank", false},
                                         Sender{"http://evil.example", "http://router:8480/", false},
                                         Sender{"", "http://evil.example/router:8480", false},
                                         Sender{"http://evil.example?router:8480", "", false},
                                         Sender{"http://", "", false}));

} // namespace
} // namespace pendra::host
