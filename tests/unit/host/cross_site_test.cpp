#include "host/cross_site.h"

#include <gtest/gtest.h>

#include <utility>

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

class IsHomeHost : public testing::TestWithParam<std::pair<const char*, bool>> {};

TEST_P(IsHomeHost, Name_IsTakenWhenNobodyElseCanOwnIt) {
    EXPECT_EQ(isHomeHost(GetParam().first), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, IsHomeHost,
    testing::Values(std::pair{"", true}, std::pair{"192.168.1.1", true}, std::pair{"127.0.0.1:8480", true},
                    std::pair{"[::1]:8480", true}, std::pair{"[fe80::1]", true}, std::pair{"localhost:8480", true},
                    std::pair{"router", true}, std::pair{"Router.Local:80", true}, std::pair{"router.lan", true},
                    std::pair{"a.home.arpa", true}, std::pair{"evil.example", false},
                    std::pair{"evil.example:8480", false}, std::pair{"192.168.1.1.evil.example", false},
                    std::pair{"router.local.evil.example", false}, std::pair{"evil.notlan", false},
                    std::pair{".lan", false}, std::pair{"192.168.1.256", false}, std::pair{"com.", false}));

} // namespace
} // namespace pendra::host
