#include "changes.h"

#include "running_device.h"

namespace pendra::load {

namespace {

constexpr const char* kText = "Content-Type: text/plain\r\n";

std::string number(Random& random, unsigned below) {
    return std::to_string(random() % below);
}

std::string name(Random& random) {
    return "Name " + number(random, 1'000'000);
}

std::string encoded(std::string text) {
    for (char& byte : text) {
        if (byte == ' ') byte = '+';
    }
    return text;
}

} // namespace

Change changeSafety(Random& random) {
    const std::string notify = number(random, 2);
    const std::string recommend = number(random, 2);
    return {.path = "/zep/var",
            .headers = "",
            .body = "zep_Wdn_SafetyNotifyEnbl=" + notify + "&zep_Wdn_ToolRecommendEnbl=" + recommend,
            .accepted = "\"code\":0,",
            .nodes = {{"/safetywdn/safetynotifyenbl", notify}, {"/safetywdn/toolrecommendenbl", recommend}}};
}

Change changeNameByDocument(Random& random) {
    const std::string text = name(random);
    return {.path = "/zep/setup",
            .headers = "",
            .body = test::nameDocument(text),
            .accepted = "<ZepSetResult>0</ZepSetResult>",
            .nodes = {{"/sys/friendlyname", text},
                      {"/bramble/easyroaminginfo", "-70 3 10 5"},
                      {"/safetywdn/safetywdnenbl", "1"},
                      {"/safetywdn/urldetectenbl", "1"},
                      {"/safetywdn/safetynotifyenbl", "0"},
                      {"/safetywdn/toolrecommendenbl", "0"}}};
}

Change changeRadioByForm(Random& random) {
    const std::string text = name(random);
    const std::string channel = number(random, 14);
    return {.path = "/zep/var",
            .headers = "",
            .body = "zep_Wl2_WirelessName=" + encoded(text) + "&zep_Wl2_Channel=" + channel,
            .accepted = "\"code\":0,",
            .nodes = {{"/lan/wireless2.4:1/wirelessname", text}, {"/lan/wireless2.4:1/channel", channel}}};
}

Change changeRadioByPage(Random& random) {
    const std::string text = name(random);
    return {.path = "/wireless",
            .headers = "",
            .body = "zep_Wl5_WirelessName=" + encoded(text) + "&zep_Wl5_EncryptionKey=",
            .accepted = "\r\nLocation: /wireless?saved=20\r\n",
            .nodes = {{"/lan/wireless5:1/wirelessname", text}}};
}

Change changeUplinkByText(Random& random) {
    const std::string user = "user" + number(random, 1'000'000) + "@line.example";
    return {
        .path = "/zep/var",
        .headers = kText,
        .body = "zep_Upl_ConnType=PPPoE\nzep_Upl_LoginUserName=" + user + "\nzep_Upl_LoginPassword=Tea %26 biscuits\n",
        .accepted = "\"code\":0,",
        .nodes = {{"/uplink/conntype", "PPPoE"},
                  {"/uplink/loginusername", user},
                  {"/uplink/loginpassword", "Tea & biscuits"}}};
}

// The example document with a name of its own; so every section has something to take back.
Change changeAllByDocument(Random& random) {
    const std::string text = name(random);
    return {.path = "/zep/setup",
            .headers = "",
            .body = test::withElement(test::example("setup.xml"), "DeviceName", text),
            .accepted = "<ZepSetResult>0</ZepSetResult>",
            .nodes = {{"/sys/friendlyname", text},
                      {"/bramble/easyroaminginfo", "-65 3 10 5"},
                      {"/lan/wireless2.4:1/accesscontrol/acrule:2/active", "1"},
                      {"/lan/wireless2.4:1/accesscontrol/acrule:3/mac", "02:a1:b2:c3:d4:f0"},
                      {"/lan/wireless2.4:1/channel", "11"},
                      {"/lan/wireless2.4:1/encryptionkey", "apple-pear-plum"},
                      {"/lan/wireless2.4:1/wirelessname", "Orchard"},
                      {"/lan/wireless5:1/channel", "44"},
                      {"/lan/wireless5:1/encryptionkey", "cherry-and-quince"},
                      {"/lan/wireless5:1/encryptionmode", "WPAWPA2"},
                      {"/lan/wireless5:1/encryptiontype", "AUTO"},
                      {"/lan/wireless5:1/wirelessname", "Orchard 5G"},
                      {"/lan/wireless5:1/wlschedule", "1"},
                      {"/safetywdn/safetywdnenbl", "1"},
                      {"/safetywdn/urldetectenbl", "1"},
                      {"/safetywdn/safetynotifyenbl", "1"},
                      {"/safetywdn/toolrecommendenbl", "0"},
                      {"/uplink/conntype", "PPPoE"},
                      {"/uplink/dsl/countryname", "Austria"},
                      {"/uplink/dsl/ispname", "Alpine Example"},
                      {"/uplink/hardwaretype", "ADSL"},
                      {"/uplink/loginpassword", "Tea & biscuits"},
                      {"/uplink/loginusername", "user0815@line.example"}}};
}

} // namespace pendra::load
