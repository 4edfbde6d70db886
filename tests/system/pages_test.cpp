/**
 * @file
 * The device's pages as they go over the network: who may see them, what they carry, and whose forms are taken.
 */
#include "running_device.h"

namespace pendra::test {
namespace {

class Pages : public RunningDevice {
  protected:
    void SetUp() override { start(); }
    /** The answer with its headers. */
    [[nodiscard]] HttpReply withHeaders(const std::string& path) const { return curl({"-i", url(path)}); }
    [[nodiscard]] HttpReply postFrom(const std::string& path, const std::string& header,
                                     const std::string& form) const {
        return curl({"-H", header, "-d", form, url(path)});
    }
};

constexpr const char* kPages[] = {"/", "/uplink", "/wireless", "/safety", "/system"};

TEST_F(Pages, Stranger_IsSentToTheLoginPage) {
    for (const char* path : kPages) {
        const HttpReply reply = withHeaders(path);
        EXPECT_EQ(reply.status, 303) << path;
        EXPECT_NE(reply.body.find("Location: /login\r\n"), std::string::npos) << path;
    }
    EXPECT_EQ(get("/login").status, 200);
    EXPECT_EQ(curl({"-d", "zep_DeviceName=x", url("/system")}).status, 303);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Bramble Router");
}

TEST_F(Pages, EveryAnswer_CarriesTheHeadersABrowserHonours) {
    for (const char* path :
         {"/login", "/", "/style.css", "/pages.js", "/login.js", "/icon.svg", "/zep/hello", "/none"}) {
        const std::string answer = withHeaders(path).body;
        for (const char* header : {"Content-Security-Policy: default-src 'self';", "frame-ancestors 'none'",
                                   "X-Content-Type-Options: nosniff\r\n", "X-Frame-Options: DENY\r\n",
                                   "Referrer-Policy: same-origin\r\n", "Cache-Control: no-store\r\n"}) {
            EXPECT_NE(answer.find(header), std::string::npos) << path << " lacks " << header;
        }
    }
}

TEST_F(Pages, EveryPage_HoldsNoSecretAndNoErrorAndNoAddressOfElsewhere) {
    login();
    for (const char* path : kPages) {
        const HttpReply reply = get(path);
        EXPECT_EQ(reply.status, 200) << path;
        EXPECT_EQ(reply.contentType, "text/html; charset=utf-8") << path;
        for (const char* text :
             {"bramble-1234", "hedgerow", "**ERROR**", "http://", "https://", "{{", "<script>", " style="}) {
            EXPECT_EQ(reply.body.find(text), std::string::npos) << path << " holds " << text;
        }
    }
}

TEST_F(Pages, Values_AreEscaped) {
    files.set("/sys/friendlyname", "<script>alert('x')</script>\"&");
    login();
    for (const char* path : {"/", "/system", "/login"}) {
        const std::string body = get(path).body;
        EXPECT_NE(body.find("&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;&quot;&amp;"), std::string::npos) << path;
        EXPECT_EQ(body.find("<script>"), std::string::npos) << path;
    }
}

TEST_F(Pages, Form_IsSavedAndTheBrowserSentOn) {
    login();
    const HttpReply reply = curl({"-i", "-d", "zep_DeviceName=Attic&zep_DevicePwd=", url("/system")});
    EXPECT_EQ(reply.status, 303);
    EXPECT_NE(reply.body.find("Location: /system?saved=5\r\n"), std::string::npos) << reply.body;
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
    EXPECT_EQ(files.get("/sys/user:1/password"), "bramble-1234"); // an empty secret stays what it is
    EXPECT_EQ(get("/zep/hello").status, 200);
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
}

TEST_F(Pages, RefusedForm_ComesBackWithWordsAndChangesNothing) {
    login();
    const std::string before = files.dump();
    const HttpReply reply = curl({"-d", "zep_DeviceName=%3Cb%3E&zep_EasyRoaming=70", url("/system")});
    EXPECT_EQ(reply.status, 422);
    for (const char* text :
         {"value=\"&lt;b&gt;\"", "value=\"70\"", "A character is not allowed here", "This must be four numbers"}) {
        EXPECT_NE(reply.body.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(files.dump(), before);
}

TEST_F(Pages, FormWithWhatIsNoSetting_Gives400) {
    login();
    const auto before = files.snapshot();
    for (const char* form :
         {"zep_Foo=1", "zep_FactoryDefault=0", "zep_Act_CommitZepVars=1", "x';y=1", "zep_DeviceName"}) {
        EXPECT_EQ(curl({"-d", form, url("/system")}).status, 400) << form;
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(Pages, RuleThatIsNoMoreThere_IsNotRemoved) {
    login();
    const std::string before = files.dump();
    for (const char* form : {"radio=Wl2&do=remove&rule=0&mac-Wl2=02:a1:b2:c3:d4:e6", "radio=Wl2&do=remove&rule=7",
                             "radio=Wl2&do=remove&rule=-1", "radio=Wl2&do=explode&rule=0"}) {
        EXPECT_EQ(curl({"-d", form, url("/wireless")}).status, 422) << form;
    }
    EXPECT_EQ(files.dump(), before);
}

TEST_F(Pages, RuleOfARadioThatIsNotThere_IsRefused) {
    login();
    const auto before = files.dump();
    const HttpReply reply = curl({"-d", "radio=Wl6&do=add&mac-Wl6=02:00:00:00:00:09", url("/wireless")});
    EXPECT_EQ(reply.status, 422);
    EXPECT_EQ(files.changesSince(before), "");
}

TEST_F(Pages, PostFromAnotherSite_IsRefused) {
    login();
    const std::string before = files.dump();
    for (const char* header : {"Origin: http://evil.example", "Origin: null", "Referer: http://evil.example/127.0.0.1",
                               "Origin: http://127.0.0.1", "Origin: http://127.0.0.1:1"}) {
        for (const char* path :
             {"/system", "/zep/var", "/zep/validate", "/zep/setup", "/zep/stations", "/zep/login", "/logout"}) {
            EXPECT_EQ(postFrom(path, header, "zep_DeviceName=x").status, 403) << header << " " << path;
        }
    }
    EXPECT_EQ(files.dump(), before);
    EXPECT_EQ(get("/zep/vars").status, 200); // still admitted
}

TEST_F(Pages, PostFromTheDevicesOwnPage_IsTaken) {
    login();
    EXPECT_EQ(postFrom("/system", "Origin: " + host->url(), "zep_DeviceName=One").status, 303);
    EXPECT_EQ(postFrom("/system", "Referer: " + host->url() + "/system", "zep_DeviceName=Two").status, 303);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Two");
}

TEST_F(Pages, Logout_EndsTheAdmission) {
    login();
    EXPECT_EQ(curl({"-X", "POST", url("/logout")}).status, 303);
    EXPECT_EQ(get("/zep/vars").status, 401);
}

} // namespace
} // namespace pendra::test
