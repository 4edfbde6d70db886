/**
 * @file
 * Who is admitted, for how long, and that nobody else touches anything.
 */
#include "running_device.h"

namespace pendra::test {
namespace {

constexpr long kNow = 10000; // the first second of slot 500
constexpr long kSlot = 500;

class Admission : public RunningDevice {
  protected:
    Admission() {
        files.setUptime(std::to_string(kNow));
        start();
    }
    [[nodiscard]] int loginWith(const std::string& form) const { return curl({"-d", form, url("/zep/login")}).status; }
    [[nodiscard]] int loginWithSlot(long slot) const {
        return loginWith("PendraKey=" + accessKey(slot, "127.0.0.1", password()));
    }
    void expectAllRoutesClosed() const;
};

void Admission::expectAllRoutesClosed() const {
    const DeviceFiles::Snapshot before = files.snapshot();
    const std::string setup = url("/zep/setup");
    const std::string result = url("/zep/result");
    const std::string stations = url("/zep/stations");
    const std::vector<std::vector<std::string>> requests = {
        {"--data-binary", "@" + std::string(PENDRA_SOURCE) + "/examples/setup.xml", setup},
        {"--data-binary", "@" + std::string(PENDRA_SOURCE) + "/examples/apcloning.xml", setup + "?apcloning=1"},
        {result},
        {"-I", result},
        {stations},
        {"-I", stations},
        {"-d", "mac=02:a1:b2:c3:d4:e6&ifname=ra0", stations},
    };
    for (const std::vector<std::string>& request : requests) {
        const HttpReply reply = curl(request);
        EXPECT_EQ(reply.status, 401) << request.back();
        EXPECT_EQ(reply.challenge, "PendraKey realm=\"/zep/login\"");
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(Admission, NoLogin_ClosesEveryRouteAndTouchesNothing) {
    expectAllRoutesClosed();
}

TEST_F(Admission, WrongKey_ClosesEveryRouteAndTouchesNothing) {
    EXPECT_EQ(loginWith("PendraKey=" + accessKey(kSlot, "127.0.0.1", "bramble-1235")), 401);
    EXPECT_EQ(loginWith("DKey=" + accessKey(kSlot, "127.0.0.1", "bramble-1235").substr(0, 8)), 401);
    expectAllRoutesClosed();
}

TEST_F(Admission, KeyInUpperCase_IsRefused) {
    std::string upper = accessKey(kSlot, "127.0.0.1", password());
    for (char& c : upper) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    EXPECT_EQ(loginWith("PendraKey=" + upper), 401);
}

TEST_F(Admission, NoOrShortKey_IsRefused) {
    const std::string key = accessKey(kSlot, "127.0.0.1", password());
    EXPECT_EQ(loginWith("user=admin"), 401);
    EXPECT_EQ(loginWith("PendraKey="), 401);
    EXPECT_EQ(loginWith("PendraKey=" + key.substr(0, 31)), 401);
    EXPECT_EQ(loginWith("DKey=" + key.substr(0, 7)), 401);
    EXPECT_EQ(get("/zep/login").status, 401);
    expectAllRoutesClosed();
}

TEST_F(Admission, KeyOfAnotherAddress_IsRefused) {
    EXPECT_EQ(loginWith("PendraKey=" + accessKey(kSlot, "192.168.1.77", password())), 401);
    const std::string own = "PendraKey=" + accessKey(kSlot, "127.0.0.1", password());
    EXPECT_EQ(curl({"--interface", "127.0.0.2", "-d", own, url("/zep/login")}).status, 401);
    expectAllRoutesClosed();
}

TEST_F(Admission, AnotherAddress_IsNotAdmittedWithTheFirstOne) {
    EXPECT_EQ(loginWithSlot(kSlot), 200);
    EXPECT_EQ(get("/zep/stations").status, 200);
    EXPECT_EQ(curl({"--interface", "127.0.0.2", url("/zep/stations")}).status, 401);
    const std::string own = "PendraKey=" + accessKey(kSlot, "127.0.0.2", password());
    EXPECT_EQ(curl({"--interface", "127.0.0.2", "-d", own, url("/zep/login")}).status, 200);
    EXPECT_EQ(curl({"--interface", "127.0.0.2", url("/zep/stations")}).status, 200);
}

TEST_F(Admission, KeysOfFiveSlots_AreAcceptedAndNoOthers) {
    for (const long slot : {kSlot - 1, kSlot, kSlot + 1, kSlot + 2, kSlot + 3}) {
        EXPECT_EQ(loginWithSlot(slot), 200) << slot;
    }
    EXPECT_EQ(loginWithSlot(kSlot - 2), 401);
    EXPECT_EQ(loginWithSlot(kSlot + 4), 401);
}

TEST_F(Admission, FirstSlotAfterTheStart_AcceptsTheSlotBeforeIt) {
    files.setUptime("19");
    EXPECT_EQ(loginWithSlot(-1), 200);
    EXPECT_EQ(loginWithSlot(-2), 401);
}

TEST_F(Admission, PendraKeyAndDKey_PendraKeyWins) {
    const std::string right = accessKey(kSlot, "127.0.0.1", password());
    const std::string wrong = md5("wrong");
    EXPECT_EQ(loginWith("DKey=" + right.substr(0, 8) + "&PendraKey=" + wrong), 401);
    EXPECT_EQ(loginWith("DKey=" + wrong.substr(0, 8) + "&PendraKey=" + right), 200);
}

TEST_F(Admission, ExpiredClient_ClosesEveryRouteAndTouchesNothing) {
    EXPECT_EQ(loginWithSlot(kSlot), 200);
    files.setUptime(std::to_string(kNow + 300));
    expectAllRoutesClosed();
    // The entry is gone for good, also when the clock seems to go back.
    files.setUptime(std::to_string(kNow));
    expectAllRoutesClosed();
}

TEST_F(Admission, UseWithin300Seconds_ExtendsTheAdmission) {
    EXPECT_EQ(loginWithSlot(kSlot), 200);
    files.setUptime(std::to_string(kNow + 299));
    EXPECT_EQ(get("/zep/stations").status, 200);
    files.setUptime(std::to_string(kNow + 299 + 299));
    EXPECT_EQ(get("/zep/stations").status, 200);
    files.setUptime(std::to_string(kNow + 299 + 299 + 300));
    EXPECT_EQ(get("/zep/stations").status, 401);
}

TEST_F(Admission, SecondLogin_KeepsTheSession) {
    const std::string form = "PendraKey=" + accessKey(kSlot, "127.0.0.1", password());
    const std::string first = curl({"-d", form, url("/zep/login")}).body;
    EXPECT_EQ(first.find("{\"session\":\""), 0u) << first;
    EXPECT_NE(first.find("\"expires\":10300,\"seconds\":300}"), std::string::npos) << first;
    files.setUptime(std::to_string(kNow + 1));
    const std::string second = curl({"-d", form, url("/zep/login")}).body;
    EXPECT_EQ(second.substr(0, second.find(',')), first.substr(0, first.find(',')));
    EXPECT_NE(second.find("\"expires\":10301,\"seconds\":300}"), std::string::npos) << second;
}

TEST_F(Admission, NewPassword_TakesEffectAtTheNextLogin) {
    files.set("/sys/user:1/password", "other-1234");
    EXPECT_EQ(loginWith("PendraKey=" + accessKey(kSlot, "127.0.0.1", "bramble-1234")), 401);
    EXPECT_EQ(loginWith("PendraKey=" + accessKey(kSlot, "127.0.0.1", "other-1234")), 200);
}

} // namespace
} // namespace pendra::test
