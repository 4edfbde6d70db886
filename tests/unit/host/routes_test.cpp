#include "host/routes.h"

#include <gtest/gtest.h>

#include "pendra/auth.h"

namespace pendra::host {
namespace {

constexpr const char* kClient = "192.0.2.7";

class Routes : public testing::Test {
  protected:
    Routes() {
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        request.client = kClient;
    }
    ~Routes() override { clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1); }

    static void admitClient() { clientAuthListAdd(&clientauthinfo, kClient, "admin", "", nullptr, 1); }
    unsigned refusalOf(std::string_view method, std::string_view path, size_t length = 0) {
        const std::optional<Answer> refusal = admitRequest(request, method, path, length);
        return refusal ? refusal->status : 0;
    }

    Request request;
};

TEST_F(Routes, OpenRoute_NeedsNoAdmission) {
    EXPECT_EQ(refusalOf("GET", "/zep/hello"), 0u);
    EXPECT_EQ(refusalOf("HEAD", "/zep/hello"), 0u);
    EXPECT_EQ(refusalOf("POST", "/zep/login"), 0u);
}

TEST_F(Routes, AdmittedRoute_Is401UntilTheClientIsAdmitted) {
    EXPECT_EQ(refusalOf("GET", "/zep/result"), 401u);
    admitClient();
    EXPECT_EQ(refusalOf("GET", "/zep/result"), 0u);
    request.client = "192.0.2.8";
    EXPECT_EQ(refusalOf("GET", "/zep/result"), 401u);
}

TEST_F(Routes, Refusals_LookAtThePathThenTheMethodThenTheAdmission) {
    EXPECT_EQ(refusalOf("POST", "/zep/nothing"), 404u);
    EXPECT_EQ(refusalOf("PUT", "/zep/setup"), 405u);
    EXPECT_EQ(admitRequest(request, "PUT", "/zep/stations", 0)->allow, "GET, HEAD, POST");
}

TEST_F(Routes, NameThatSomebodyElseMayOwn_Is421ForEveryMethod) {
    admitClient();
    request.host = "evil.example";
    request.origin = "http://evil.example";
    EXPECT_EQ(refusalOf("GET", "/zep/var"), 421u);
    EXPECT_EQ(refusalOf("POST", "/zep/var"), 421u);
    EXPECT_EQ(refusalOf("GET", "/zep/hello"), 421u);
    request.host = "192.168.1.1";
    request.origin = "http://192.168.1.1";
    EXPECT_EQ(refusalOf("POST", "/zep/var"), 0u);
}

TEST_F(Routes, DeclaredLength_IsBounded) {
    EXPECT_EQ(refusalOf("POST", "/zep/setup", kMaxBody + 1), 401u); // who is not admitted learns nothing else
    admitClient();
    EXPECT_EQ(refusalOf("POST", "/zep/setup", kMaxBody), 0u);
    EXPECT_EQ(refusalOf("POST", "/zep/setup", kMaxBody + 1), 413u);
}

TEST_F(Routes, ReceivedLength_IsBounded) {
    const std::string half(kMaxBody / 2, 'x');
    receiveBody(request, half);
    receiveBody(request, half);
    EXPECT_FALSE(request.refusal.has_value());
    EXPECT_EQ(request.body.size(), kMaxBody);
    receiveBody(request, "x");
    ASSERT_TRUE(request.refusal.has_value());
    EXPECT_EQ(request.refusal->status, 413u);
    EXPECT_EQ(request.body, "");
    EXPECT_LT(request.body.capacity(), 100u); // and no memory is kept for it
    receiveBody(request, half);               // goes on coming, and is not kept
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(answerRequest(request).status, 413u);
}

TEST_F(Routes, BodyGivenUp_Is503AndTheRestIsNotKept) {
    receiveBody(request, std::string(kMaxBody, 'x'));
    refuseBusy(request);
    EXPECT_LT(request.body.capacity(), 100u);
    receiveBody(request, "more");
    EXPECT_EQ(request.body, "");
    const Answer answer = answerRequest(request);
    EXPECT_EQ(answer.status, 503u);
    EXPECT_EQ(answer.body, "The device is busy; try again in a moment.\n");
}

TEST_F(Routes, BodyThatIsEmptyOrHoldsANul_Is400) {
    admitClient();
    EXPECT_EQ(refusalOf("POST", "/zep/setup"), 0u);
    EXPECT_EQ(answerRequest(request).status, 400u);
    receiveBody(request, std::string_view("<root>\0</root>", 14));
    EXPECT_EQ(answerRequest(request).status, 400u);
}

} // namespace
} // namespace pendra::host
