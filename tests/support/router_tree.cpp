// The device that tests start from.
#include "support/fake_device.h"

namespace pendra::test {
namespace {

void loadRadio(FakeDevice& device, const std::string& band, const std::string& channels) {
    const std::string base = "/lan/wireless" + band + ":1";
    const std::map<std::string, std::string> leaves = {
        {"/wlenbl", "1"},
        {"/wlschedule", "0"},
        {"/configurable", "1"},
        {"/wirelessbssid", "00:11:22:33:44:0" + band.substr(0, 1)},
        {"/wirelessname", "Home" + band},
        {"/encryptionmode", "WPA2"},
        {"/encryptiontype", "AES"},
        {"/encryptionkey", "0ldSecret" + band},
        {"/channel", "0"},
        {"/channelusing", "6"},
        {"/country", "DE"},
        {"/channellist", channels},
        {"/wirelessname_validate", "0,32,1"},
        {"/encryptionkey_validate", "0,64,0"},
        {"/accesscontrol/wlacenbl", "0"},
        {"/accesscontrol/wlacmode", "0"},
    };
    for (const auto& [leaf, value] : leaves)
        device.tree[base + leaf] = value;
}

void loadUpLink(FakeDevice& device) {
    const std::map<std::string, std::string> nodes = {
        {"/uplink/configurable", "1"},
        {"/uplink/hardwaretype", "Ethernet"},
        {"/uplink/hardwaresupport", "Ethernet,ADSL,VDSL,WWan802.11,WWanAPN"},
        {"/uplink/conntype", "DHCP"},
        {"/uplink/loginusername_validate", "0,64,1"},
        {"/uplink/loginpassword_validate", "0,64,1"},
        {"/uplink/extendersite/survey", "0"},
    };
    device.tree.insert(nodes.begin(), nodes.end());
}

} // namespace

void loadRouter(FakeDevice& device, int minor) {
    const std::map<std::string, std::string> nodes = {
        {"/bramble/specversion/major", "1"},
        {"/bramble/specversion/minor", std::to_string(minor)},
        {"/bramble/configurable", "1"},
        {"/bramble/apcloning", "1"},
        {"/bramble/easyroaming", "1"},
        {"/bramble/easyroaminginfo", "-75 2 10 3"},
        {"/bramble/fwupgrade", "1"},
        {"/bramble/safetywdn", "1"},
        {"/bramble/tempdirecory", "/tmp/pendra"},
        {"/bramble/scriptdirecory", "/userfs/bramble"},
        {"/bramble/zephttpport", "8080"},
        {"/runtime/bramble/lanip", "192.168.1.1"},
        {"/sys/friendlyname", "Router"},
        {"/sys/friendlyname_validate", "0,32,1"},
        {"/sys/user:1/password", "secret"},
        {"/sys/user:1/password_validate", "0,32,1"},
        {"/sys/devicetype", "Router"},
        {"/sys/modelnumber", "PX-100"},
        {"/sys/routerenbl", "1"},
        {"/sys/factorydefault", "1"},
        {"/safetywdn/safetywdnenbl", "0"},
        {"/safetywdn/urldetectenbl", "0"},
        {"/safetywdn/safetynotifyenbl", "0"},
        {"/safetywdn/toolrecommendenbl", "0"},
    };
    device.tree.insert(nodes.begin(), nodes.end());
    loadUpLink(device);
    loadRadio(device, "2.4", "0,1,2,3,4,5,6,7,8,9,10,11");
    loadRadio(device, "5", "0,36,40,44,48");
}

} // namespace pendra::test
