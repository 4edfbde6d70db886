/**
 * @file
 * Settings as named variables and posted forms, over HTTP and with zepctl.
 */
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "running_device.h"

namespace pendra::test {
namespace {

using nlohmann::json;

constexpr const char* kForm = "Content-Type: application/x-www-form-urlencoded";

// Texts that would change a command, a path or a document, were they put into one as they are.
const std::vector<std::string>& hostileTexts() {
    static const std::vector<std::string> texts = {"'; touch CANARY; '",
                                                   "\"; touch CANARY; \"",
                                                   "`touch CANARY`",
                                                   "$(touch CANARY)",
                                                   "x; touch CANARY",
                                                   "x | touch CANARY",
                                                   "x & touch CANARY",
                                                   "x > CANARY",
                                                   "\\'; touch CANARY; \\'",
                                                   "../../CANARY",
                                                   "~/CANARY",
                                                   "x\ttouch\tCANARY",
                                                   "<b>&amp;</b>",
                                                   "%s%n%n",
                                                   "-rf /",
                                                   "*?[a-z]{a,b}",
                                                   "!!",
                                                   "#x",
                                                   "' > CANARY #"};
    return texts;
}

std::string withCanary(std::string text, const std::string& canary) {
    const size_t at = text.find("CANARY");
    return at == std::string::npos ? text : text.replace(at, 6, canary);
}

std::string percentEncoded(const std::string& text) {
    std::string encoded;
    for (const char c : text) {
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned char>(c));
        encoded += escape;
    }
    return encoded;
}

class Variables : public RunningDevice {
  protected:
    explicit Variables(const std::string& listing = "router.tree") : RunningDevice(listing) {}

    void SetUp() override {
        start();
        login();
    }

    [[nodiscard]] HttpReply send(const std::string& path, const std::string& form,
                                 std::vector<std::string> more = {"-H", kForm}) const {
        more.insert(more.end(), {"--data-binary", "@-", url(path)});
        return curl(std::move(more), form);
    }
    [[nodiscard]] HttpReply read(const std::string& name) const { return get("/zep/var?name=" + percentEncoded(name)); }
    [[nodiscard]] std::string value(const std::string& name) const {
        const HttpReply reply = read(name);
        EXPECT_EQ(reply.status, 200) << name;
        return json::parse(reply.body).value("value", "");
    }
    void expectOutcome(const HttpReply& reply, int code, const std::string& name, const std::string& words,
                       int wait) const {
        ASSERT_EQ(reply.status, 200) << reply.body;
        EXPECT_EQ(reply.contentType, "application/json");
        EXPECT_EQ(json::parse(reply.body), (json{{"code", code}, {"name", name}, {"words", words}, {"wait", wait}}));
    }
    /** Expects that a request is turned away before the library sees it: not one byte of the device changes. */
    void expectTurnedAway(const std::string& path, const std::string& form) const {
        const auto before = files.snapshot();
        EXPECT_EQ(send(path, form).status, 400) << form;
        EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{}) << form;
    }
    [[nodiscard]] std::string canary() const { return files.tmp() + "/canary"; }
};

TEST_F(Variables, List_EveryVariable_CanBeReadByItsName) {
    const json list = json::parse(get("/zep/vars").body);
    ASSERT_EQ(list.size(), 99U); // of the device's tree: two access rules, two sites of a survey
    for (const json& entry : list) {
        EXPECT_NE(entry.at("value"), "**ERROR**") << entry;
        EXPECT_EQ(value(entry.at("name")), entry.at("value")) << entry;
    }
}

TEST_F(Variables, List_Entries_TellWhatCanBeSet) {
    const json list = json::parse(get("/zep/vars").body);
    const auto has = [&](const char* name, const char* value, bool settable) {
        return std::find(list.begin(), list.end(), json{{"name", name}, {"value", value}, {"settable", settable}}) !=
               list.end();
    };
    EXPECT_TRUE(has("zep_Wl2_WirelessName", "Bramble", true));
    EXPECT_TRUE(has("zep_Wl2_WirelessName_Validate", "0,32,1", false));
    EXPECT_TRUE(has("zep_Wl2_Acl_AcRuleNo", "2", true));
    EXPECT_TRUE(has("zep_Wl2_Acl_R01_MAC", "02:a1:b2:c3:d4:e6", true));
    EXPECT_TRUE(has("zep_Ext_Fwu_HwVersion", "1", false));
}

TEST_F(Variables, Get_NameOrDocumentPath_GivesValueAndPath) {
    EXPECT_EQ(read("zep_Wl2_WirelessName").body, "{\"name\":\"zep_Wl2_WirelessName\",\"value\":\"Bramble\"}\n");
    EXPECT_EQ(read("/Device/Wireless2.4/WirelessName").body, read("zep_Wl2_WirelessName").body);
    EXPECT_EQ(get("/zep/var?name=zep_DeviceName&path=1").body,
              "{\"name\":\"zep_DeviceName\",\"path\":\"/sys/friendlyname\"}\n");
    EXPECT_EQ(get("/zep/var?path=1&name=zep_Wl2_Acl_R00_MAC").body,
              "{\"name\":\"zep_Wl2_Acl_R00_MAC\",\"path\":\"/acrule:1/MAC\"}\n");
}

TEST_F(Variables, Get_AfterAChangeOfTheTree_GivesTheNewValue) {
    for (const char* name : {"Hazel", "Willow"}) {
        EXPECT_EQ(value("zep_Wl2_WirelessName"), value("zep_Wl2_WirelessName"));
        files.set("/lan/wireless2.4:1/wirelessname", name);
        EXPECT_EQ(value("zep_Wl2_WirelessName"), name);
    }
    files.set("/lan/wireless2.4:1/accesscontrol/acrule:1/mac", "02:00:00:00:00:01");
    EXPECT_EQ(value("zep_Wl2_Acl_R00_MAC"), "02:00:00:00:00:01");
}

TEST_F(Variables, Get_AfterARefusedFormOrDocument_GivesTheStoredValues) {
    const std::string before = value("zep_Wl2_WirelessName");
    EXPECT_EQ(json::parse(send("/zep/var", "zep_Wl2_WirelessName=Hazel&zep_Wl2_Channel=99").body)["code"], 2);
    EXPECT_EQ(value("zep_Wl2_WirelessName"), before);
    EXPECT_EQ(send("/zep/setup", example("faulty-channel.xml")).status, 200);
    EXPECT_EQ(value("zep_Wl2_WirelessName"), before);
}

TEST_F(Variables, Get_UnknownVariable_Gives404) {
    for (const char* name : {"zep_Foo", "zep_", "zep_Wl2_Acl_R02_MAC", "/Device/Foo", "zep_Wl2_Acl_R1_MAC"}) {
        EXPECT_EQ(read(name).status, 404) << name;
    }
}

TEST_F(Variables, Get_TextThatIsNoName_Gives400) {
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(read(text).status, 400) << text;
        EXPECT_EQ(read("zep_" + text).status, 400) << text;
        EXPECT_EQ(read("/Device/" + text).status, 400) << text;
    }
    EXPECT_EQ(get("/zep/var").status, 400);
    EXPECT_EQ(read("foo_DeviceName").status, 400);
    EXPECT_EQ(read("zep_" + std::string(124, 'a')).status, 400);
}

TEST_F(Variables, Get_Action_IsNotPerformed) {
    const auto before = files.snapshot();
    for (const char* name : {"zep_Act_CommitZepVars", "zep_Act_VerifyAllZepVars", "/Device/Act_ApplyAllZepVars"}) {
        EXPECT_EQ(read(name).status, 400) << name;
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(Variables, Post_Form_IsSetAppliedAndCommitted) {
    const std::string before = files.dump();
    expectOutcome(send("/zep/var", "zep_Wl2_WirelessName=Hedge+Row%21&zep_DeviceName=Living%20Room"), 0, "", "", 25);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before), changeLines({{"/lan/wireless2.4:1/wirelessname", "Bramble", "Hedge Row!"},
                                                       {"/sys/factorydefault", "1", "0"},
                                                       {"/sys/friendlyname", "Bramble Router", "Living Room"}}));
    EXPECT_EQ(files.scriptsRun(), (std::vector<std::string>{"wlan_resync.sh", "device_resync.sh"}));
    EXPECT_EQ(get("/zep/result").body, resultDocument(0, "", 25));
}

TEST_F(Variables, Post_ForXml_AnswersWithTheResultDocument) {
    const HttpReply reply = send("/zep/var", "zep_DeviceName=Attic", {"-H", kForm, "-H", "Accept: application/xml"});
    EXPECT_EQ(reply.contentType, "application/xml");
    EXPECT_EQ(reply.body, resultDocument(0, "", 5));
    expectWellFormed(reply.body);
}

TEST_F(Variables, Post_PlainText_TakesOnePairALine) {
    const HttpReply reply = send("/zep/var", "zep_DeviceName = Salt & Pepper\r\n\r\nzep_Wl5_Channel=44\r\n",
                                 {"-H", "Content-Type: text/plain"});
    expectOutcome(reply, 0, "", "", 25);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Salt & Pepper");
    EXPECT_EQ(files.get("/lan/wireless5:1/channel"), "44");
}

TEST_F(Variables, Post_DocumentPath_SetsItsVariable) {
    expectOutcome(send("/zep/var", "/Device/Wireless2.4/WirelessName=Orchard"), 0, "", "", 20);
    EXPECT_EQ(files.get("/lan/wireless2.4:1/wirelessname"), "Orchard");
}

TEST_F(Variables, Post_FormThatChangesNothing_RunsNothing) {
    const std::string before = files.dump();
    expectOutcome(send("/zep/var", "zep_Wl2_WirelessName=Bramble"), 0, "", "", 0);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before), "");
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{});
}

TEST_F(Variables, Post_AccessRules_AreKeptAddedAndRemoved) {
    const std::string rules = "/lan/wireless2.4:1/accesscontrol/";
    const std::string before = files.dump();
    expectOutcome(send("/zep/var", "zep_Wl2_Acl_AcRuleNo=3&zep_Wl2_Acl_R02_MAC=02:00:5e:00:53:01"), 0, "", "", 20);
    EXPECT_EQ(files.get(rules + "acrule:1/mac"), "02:a1:b2:c3:d4:e5");
    EXPECT_EQ(files.get(rules + "acrule:1/active"), "1");
    EXPECT_EQ(files.get(rules + "acrule:3/mac"), "02:00:5e:00:53:01");
    expectOutcome(send("/zep/var", "zep_Wl2_Acl_AcRuleNo=2"), 0, "", "", 20);
    EXPECT_EQ(files.changesSince(before), changeLines({{"/sys/factorydefault", "1", "0"}}));
}

struct RefusedForm {
    const char* form;
    int code;
    const char* name;
    const char* words;
};

class RefusedForms : public Variables, public testing::WithParamInterface<RefusedForm> {};

TEST_P(RefusedForms, Value_IsToldInWordsAndChangesNothing) {
    const RefusedForm& row = GetParam();
    const std::string before = files.dump();
    expectOutcome(send("/zep/var", row.form), row.code, row.name, row.words, 0);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before), "");
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(
    Variables, RefusedForms,
    testing::Values(
        RefusedForm{"zep_DeviceName=Attic&zep_Wl2_Channel=99", 2, "zep_Wl2_Channel",
                    "This must be a channel of the list; 0 is automatic."},
        RefusedForm{"zep_Upl_IP=192.168.1.300", 2, "zep_Upl_IP", "This must be an address like 192.168.1.20."},
        RefusedForm{"zep_Upl_ConnType=PPP", 10, "zep_Upl_ConnType", "This must be one of DHCP, Static, PPPoE, PPPoA."},
        RefusedForm{"zep_Wl2_WirelessName=", 10, "zep_Wl2_WirelessName",
                    "This must be 1 to 32 characters, no accents."},
        RefusedForm{"zep_Wl2_WirelessName=%C3%A4", 11, "zep_Wl2_WirelessName",
                    "A character is not allowed here: 1 to 32 characters, no accents."},
        RefusedForm{"zep_FactoryDefault=0", 2, "zep_FactoryDefault", "This can be read but not set."},
        RefusedForm{"zep_Foo=1", 2, "zep_Foo", "There is no such setting."},
        // Well by itself, but not with the encryption that is set.
        RefusedForm{"zep_Wl5_EncryptionKey=short", 3, "zep_Wl5_EncryptionKey",
                    "This key does not fit the encryption: WPA takes 8 to 63 characters, WEP 5 or 13."},
        RefusedForm{"zep_Upl_ConnType=PPPoE", 10, "zep_Upl_LoginUserName",
                    "This must be 1 to 63 characters, no accents."}));

TEST_F(Variables, Post_NameLengths_AreBoundedAt31) {
    const std::string before = files.dump();
    const std::string longest = "zep_" + std::string(27, 'a');
    expectOutcome(send("/zep/var", longest + "=1"), 2, longest, "There is no such setting.", 0);
    expectTurnedAway("/zep/var", "zep_" + std::string(28, 'a') + "=1");
    expectTurnedAway("/zep/var", "zep_" + std::string(124, 'a') + "=1");
    EXPECT_EQ(files.changesSince(before), "");
}

// The intake cuts a value at 127 bytes; the rule then sees what is left.
TEST_F(Variables, Post_ValueLengths_AreCutAt127) {
    files.set("/sys/friendlyname_validate", "0,127,1");
    for (const size_t length : {size_t{127}, size_t{128}, size_t{4096}}) {
        expectOutcome(send("/zep/var", "zep_DeviceName=" + std::string(length, 'x')), 0, "", "", length == 127 ? 5 : 0);
        EXPECT_EQ(files.get("/sys/friendlyname"), std::string(127, 'x')) << length;
    }
}

TEST_F(Variables, Post_ThousandPairs_TheLastOfANameCounts) {
    std::string form;
    for (int i = 0; i < 1000; ++i) {
        form += "zep_DeviceName=Name+" + std::to_string(i) + "&";
    }
    expectOutcome(send("/zep/var", form), 0, "", "", 5);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Name 999");
}

TEST_F(Variables, Post_LargestForm_IsTakenAndALargerOneIsNot) {
    const std::string start = "zep_DeviceName=";
    const std::string largest = "zep_Wl5_Channel=44&" + start;
    files.set("/sys/friendlyname_validate", "0,127,1");
    expectOutcome(send("/zep/var", largest + std::string((1U << 20) - largest.size(), 'x')), 0, "", "", 25);
    EXPECT_EQ(send("/zep/var", largest + std::string((1U << 20) - largest.size() + 1, 'x')).status, 413);
}

TEST_F(Variables, Post_EveryByteInAName_OnlyNameCharactersPass) {
    const auto before = files.snapshot();
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool inName = std::isalnum(byte) != 0 || c == '_';
        // "=", "&", a line's end and outer blanks belong to the form itself.
        if (inName || std::string("=&\r\n").find(c) != std::string::npos) continue;
        EXPECT_EQ(send("/zep/var", std::string("zep_A") + c + "B=1").status, 400) << byte;
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(Variables, Post_EveryByteInAValue_IsStoredOrRefusedAndNothingElse) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text = std::string("a") + static_cast<char>(byte) + "b";
        const bool plain = byte >= 32 && byte < 127;
        const HttpReply reply = send("/zep/var", "zep_Wl2_WirelessName=" + percentEncoded(text));
        EXPECT_EQ(json::parse(reply.body).at("code"), plain ? 0 : 11) << byte;
        if (!plain) continue;
        EXPECT_EQ(files.get("/lan/wireless2.4:1/wirelessname"), text) << byte;
    }
}

TEST_F(Variables, Post_HostileNames_ReachNoShell) {
    for (const std::string& hostile : hostileTexts()) {
        const std::string text = withCanary(hostile, canary());
        for (const char* start : {"", "zep_", "/Device/"}) {
            if (text.find('&') == std::string::npos) expectTurnedAway("/zep/var", start + text + "=1");
            expectTurnedAway("/zep/validate", start + percentEncoded(text) + "=1");
            expectTurnedAway("/zep/var", "zep_DeviceName=x&" + (start + percentEncoded(text)) + "=1");
            // The value of this action is a form of its own.
            expectTurnedAway("/zep/var", "zep_Act_SetZepVars=" + percentEncoded(start + text + "=1"));
        }
    }
    EXPECT_FALSE(std::filesystem::exists(canary()));
}

TEST_F(Variables, Post_HostileValues_ArriveToTheLetterAndReachNoShell) {
    files.set("/sys/user:1/password_validate", "0,127,1,1");
    files.set("/uplink/loginusername_validate", "0,127,1,1");
    for (const std::string& hostile : hostileTexts()) {
        const std::string text = withCanary(hostile, canary());
        const std::string encoded = percentEncoded(text);
        const HttpReply reply =
            send("/zep/var", "zep_Upl_ConnType=PPPoE&zep_Upl_LoginPassword=key&zep_DevicePwd=" + encoded +
                                 "&zep_Upl_LoginUserName=" + encoded);
        EXPECT_EQ(json::parse(reply.body).at("code"), 0) << text;
        awaitScripts();
        EXPECT_EQ(files.get("/sys/user:1/password"), text);
        EXPECT_EQ(files.get("/uplink/loginusername"), text);
        EXPECT_EQ(readFile(files.resultFile()), resultDocument(0, "", json::parse(reply.body).at("wait")));
        // Refused: the value has no place in the result document either.
        expectOutcome(send("/zep/var", "zep_Upl_IP=" + encoded), 2, "zep_Upl_IP",
                      "This must be an address like 192.168.1.20.", 0);
        EXPECT_EQ(readFile(files.resultFile()), resultDocument(2, "zep_Upl_IP", 0));
    }
    EXPECT_FALSE(std::filesystem::exists(canary()));
}

TEST_F(Variables, Post_ThatIsNoForm_Gives400) {
    for (const char* form : {"zep_DeviceName", "=5&zep_DeviceName=x", "&&&", "zep_DeviceName=x&zep_Foo"}) {
        expectTurnedAway("/zep/var", form);
    }
}

TEST_F(Variables, Post_ListThatHoldsItself_Gives400HoweverDeep) {
    for (const char* name : {"zep_Act_SetZepVars=", "/Device/Act_SetZepVars="}) {
        for (const int depth : {1, 40000}) {
            std::string form = "zep_Act_SetZepVars=";
            for (int level = 0; level < depth; ++level) {
                form += name;
            }
            expectTurnedAway("/zep/var", form + "x");
        }
    }
    EXPECT_EQ(get("/zep/hello").status, 200);
}

TEST_F(Variables, Post_AfterACloningDocument_StillSetsTheDevice) {
    ASSERT_EQ(setUp(example("apcloning.xml"), "?apcloning=1").status, 200);
    awaitScripts();
    expectOutcome(send("/zep/var", "zep_DeviceName=Attic"), 0, "", "", 5);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
}

TEST_F(Variables, CommitAction_RunsTheScriptsOnceAndBetweenRequests) {
    using Clock = std::chrono::steady_clock;
    expectOutcome(send("/zep/var", "zep_DeviceName=Attic&zep_Act_CommitZepVars=1"), 0, "", "", 5);
    const auto start = Clock::now();
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic"); // stored at once, in effect later
    // Requests with a transaction of their own go on all the while.
    while (files.scriptsRun().empty() && Clock::now() - start < std::chrono::seconds(10)) {
        ASSERT_EQ(get("/zep/stations").status, 200);
    }
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(1500));
    EXPECT_EQ(get("/zep/hello").status, 200);
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
}

TEST_F(Variables, CommitActionAlone_RunsTheScriptsAfterTwoSeconds) {
    expectOutcome(send("/zep/var", "zep_DeviceName=Attic&zep_Act_CommitZepVars=1"), 0, "", "", 5);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{});
    std::this_thread::sleep_for(std::chrono::seconds(2));
    EXPECT_EQ(get("/zep/hello").status, 200);
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
    EXPECT_NE(files.journal().find("friendlyname=\"Attic\""), std::string::npos);
}

TEST_F(Variables, CommitActionInAList_RunsTheScriptsAfterTwoSecondsOnly) {
    expectOutcome(send("/zep/var", "zep_DeviceName=Attic&zep_Act_SetZepVars=zep_Act_CommitZepVars%3D1"), 0, "", "", 5);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{});
    std::this_thread::sleep_for(std::chrono::seconds(2));
    EXPECT_EQ(get("/zep/hello").status, 200);
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
}

TEST_F(Variables, Validate_Pairs_AreJudgedOneByOneAndNothingIsStored) {
    const auto before = files.dump();
    const HttpReply reply = send(
        "/zep/validate", "zep_Wl2_EncryptionMode=WPA2&zep_Wl2_EncryptionMode=WPA3&zep_DeviceName=Attic&zep_Upl_IP=1");
    const json expected = {
        {{"name", "zep_Wl2_EncryptionMode"}, {"code", 0}, {"words", ""}},
        {{"name", "zep_Wl2_EncryptionMode"},
         {"code", 10},
         {"words", "This must be one of None, WEP, WPA, WPAWPA2, WPA2."}},
        {{"name", "zep_DeviceName"}, {"code", 0}, {"words", ""}},
        {{"name", "zep_Upl_IP"}, {"code", 2}, {"words", "This must be an address like 192.168.1.20."}}};
    EXPECT_EQ(json::parse(reply.body), expected);
    EXPECT_EQ(value("zep_DeviceName"), "Bramble Router");
    EXPECT_EQ(files.dump(), before);
}

TEST_F(Variables, Validate_Action_IsNotPerformed) {
    expectTurnedAway("/zep/validate", "zep_Act_VerifyAllZepVars=1");
    expectTurnedAway("/zep/validate", "/Device/Act_CommitZepVars=1");
}

TEST_F(Variables, Zepctl_GetSetValidatePath_DoWhatTheySay) {
    EXPECT_EQ(zepctl({"get", "zep_DeviceName"}).output, "Bramble Router\n");
    EXPECT_EQ(zepctl({"get", "zep_Wl2_Channel", "zep_Wl5_Channel"}).output, "zep_Wl2_Channel=6\nzep_Wl5_Channel=36\n");
    EXPECT_EQ(zepctl({"path", "zep_DeviceName"}).output, "/sys/friendlyname\n");
    const Ended set = zepctl({"set", "--no-wait", "zep_Wl2_WirelessName=Salt & Pepper+%41='x'"});
    EXPECT_EQ(set.status, 0) << set.errors;
    EXPECT_EQ(set.output, "The device has applied the settings.\n");
    EXPECT_EQ(files.get("/lan/wireless2.4:1/wirelessname"), "Salt & Pepper+%41='x'");
    const Ended checked = zepctl({"validate", "zep_Wl2_Channel=99", "zep_Wl2_EncryptionMode=WPA2"});
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.output,
              "zep_Wl2_Channel: This must be a channel of the list; 0 is automatic.\nzep_Wl2_EncryptionMode: valid\n");
}

TEST_F(Variables, Zepctl_Refusals_AreToldInWords) {
    const Ended refused = zepctl({"set", "zep_Wl2_Channel=99"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors,
              "zepctl: The device refused zep_Wl2_Channel: "
              "This must be a channel of the list; 0 is automatic.\n");
    EXPECT_EQ(zepctl({"get", "zep_Foo"}).status, 1);
    EXPECT_EQ(zepctl({"set", "zep_DeviceName"}).status, 2);
    EXPECT_EQ(zepctl({"get"}).status, 2);
}

TEST_F(Variables, Zepctl_Set_WaitsAsLongAsTheDeviceSays) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(zepctl({"set", "zep_DeviceName=Attic"}).status, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(Variables, Zepctl_List_ShowsEveryVariable) {
    const std::string table = zepctl({"list"}).output;
    EXPECT_NE(table.find("zep_Wl2_WirelessName                         Bramble\n"), std::string::npos) << table;
    EXPECT_NE(table.find("zep_FactoryDefault                read only  1\n"), std::string::npos) << table;
    EXPECT_EQ(json::parse(zepctl({"list", "--json"}).output), json::parse(get("/zep/vars").body));
}

TEST_F(Variables, Stranger_MayNeitherReadNorSet) {
    restart();
    for (const char* path : {"/zep/vars", "/zep/var?name=zep_DevicePwd"}) {
        EXPECT_EQ(get(path).status, 401) << path;
    }
    const auto before = files.snapshot();
    for (const char* path : {"/zep/var", "/zep/validate"}) {
        EXPECT_EQ(send(path, "zep_DeviceName=x").status, 401) << path;
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

} // namespace
} // namespace pendra::test
