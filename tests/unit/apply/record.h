// What the tests of checking and applying start from: a record as it stands after the parse of a document that asks for
// exactly what the device of loadRouter() already has. It is valid, and there is nothing to write. Tests change one
// value.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "apply/application.h"
#include "apply/verification.h"
#include "common/bounded_text.h"
#include "support/fake_device.h"

namespace pendra::test {

constexpr int kBand24 = 0;
constexpr int kBand5 = 1;

// Indexes of the enumeration tables by the names of their rows.
enum HardwareKind { kEthernet, kAdsl, kVdsl, kWwan80211, kWwanApn, kDsl };
enum ConnectionKind { kDhcp, kStatic, kPppoe, kPppoa };
enum ModeKind { kNone, kWep, kWpa, kWpaWpa2, kWpa2 };
enum TypeKind { kAuto, kOpen, kShared, kTkip, kAes, kNoType };

template <size_t Capacity>
void setText(char (&field)[Capacity], const std::string& text) {
    copyText(field, text.c_str());
}

inline ZepDevice& recordDevice() {
    return zepXmlData.device;
}

inline ZepUpLink& recordUpLink() {
    return zepXmlData.device.upLink;
}

inline ZepWireless& recordRadio(int band) {
    return zepXmlData.device.wireless[band];
}

inline void setHardware(HardwareKind kind) {
    static const char* const names[] = {"Ethernet", "ADSL", "VDSL", "WWan802.11", "WWanAPN", "DSL"};
    setText(recordUpLink().HardwareType, names[kind]);
    recordUpLink().hardwareTypeIdx = kind;
}

inline void setConnection(ConnectionKind kind) {
    static const char* const names[] = {"DHCP", "Static", "PPPoE", "PPPoA"};
    setText(recordUpLink().ConnType, names[kind]);
    recordUpLink().connTypeIdx = kind;
}

inline void setMode(ZepWireless& radio, ModeKind mode) {
    static const char* const names[] = {"None", "WEP", "WPA", "WPAWPA2", "WPA2"};
    setText(radio.EncryptionMode, names[mode]);
    radio.encrypModeIdx = mode;
}

inline void setType(ZepWireless& radio, TypeKind type) {
    static const char* const names[] = {"AUTO", "OPEN", "SHARED", "TKIP", "AES", ""};
    setText(radio.EncryptionType, names[type]);
    radio.encrypTypeIdx = type;
}

// Access rules 1 to `count`, all active, with the MACs 02:00:00:00:00:01 and so on.
inline void fillRules(ZepAccessControl& access, int count) {
    access.acRuleCount = count;
    for (int index = 0; index < count && index < ZEP_AC_RULE_MAX; index++) {
        ZepAcRule& rule = access.acRule[index];
        rule.Active = 1;
        snprintf(rule.MAC, sizeof rule.MAC, "02:00:00:00:00:%02x", static_cast<unsigned>(index + 1) & 0xFFu);
        setText(rule.path, std::string(access.path) + "/AcRule");
    }
}

inline void fillRadio(ZepWireless& radio, const std::string& band, const std::string& channels) {
    radio.Configurable = 1;
    radio.WlEnbl = 1;
    setText(radio.WirelessBSSID, "00:11:22:33:44:0" + band.substr(0, 1));
    setText(radio.WirelessName, "Home" + band);
    setMode(radio, kWpa2);
    setType(radio, kAes);
    setText(radio.EncryptionKey, "0ldSecret" + band);
    setText(radio.ChannelList, channels);
    setText(radio.Channel, "0");
    setText(radio.path, "Device/Wireless" + band);
    setText(radio.accessControl.path, "Device/Wireless" + band + "/AccessControl");
    setText(radio.WirelessNameRule, "0,32,1");
    setText(radio.EncryptionKeyRule, "0,64,0");
}

inline void fillUpLink(ZepUpLink& upLink) {
    upLink.Configurable = 1;
    setText(upLink.HardwareSupport, "Ethernet,ADSL,VDSL,WWan802.11,WWanAPN");
    setHardware(kEthernet);
    setConnection(kDhcp);
    setText(upLink.path, "Device/UpLinkConnection");
    setText(upLink.dsl.path, "Device/UpLinkConnection/DSL");
    setText(upLink.apn.path, "Device/UpLinkConnection/APN");
    setText(upLink.extenderSite.path, "Device/UpLinkConnection/ExtenderSite");
    setText(upLink.LoginUserNameRule, "0,64,1");
    setText(upLink.LoginPasswordRule, "0,64,1");
}

inline void fillDevice(ZepDevice& device) {
    device.Configurable = 1;
    setText(device.DeviceName, "Router");
    setText(device.DevicePwd, "secret");
    device.RouterEnbl = 1;
    setText(device.EasyRoaming, "-75 2 10 3");
    setText(device.path, "Device");
    setText(device.safetyWdn.path, "Device/SafetyWdn");
    setText(device.DeviceNameRule, "0,32,1");
    setText(device.DevicePwdRule, "0,32,1");
}

inline void fillRecord() {
    zepXmlData = {};
    zepXmlData.specVersion = {1, 1, "specVersion", 101};
    zepXmlData.easyRoamingFeature = 1;
    zepXmlData.safetyWdnFeature = 1;
    zepXmlData.wlan24Feature = 1;
    zepXmlData.wlan5Feature = 1;
    setText(zepXmlData.tmpPath, "/tmp");
    fillDevice(recordDevice());
    fillUpLink(recordUpLink());
    fillRadio(recordRadio(kBand24), "2.4", "0,1,2,3,4,5,6,7,8,9,10,11");
    fillRadio(recordRadio(kBand5), "5", "0,36,40,44,48");
}

// The commands that write the result document into "/tmp".
inline Events resultDocument(int code, const std::string& message, int waitSeconds) {
    const std::string file = "/tmp/zepset_result.xml";
    return {"run echo '<?xml version=\"1.0\" ?>' > " + file,
            "run echo '<root>' >> " + file,
            "run echo ' <ZepSetResult>" + std::to_string(code) + "</ZepSetResult>' >> " + file,
            "run echo ' <ZepSetMsg>" + message + "</ZepSetMsg>' >> " + file,
            "run echo ' <ZepGetWaitSec>" + std::to_string(waitSeconds) + "</ZepGetWaitSec>' >> " + file,
            "run echo '</root>' >> " + file};
}

// The names of the restart flags that are set, in the order of the record. A set flag is 1.
inline std::string raisedFlags() {
    const ZepDevice& device = recordDevice();
    const struct {
        const char* name;
        int value;
    } flags[] = {{"device", device.deviceChanged},     {"uplink", device.upLink.restart},
                 {"wlan2.4", recordRadio(0).restart},  {"wlan5", recordRadio(1).restart},
                 {"safety", device.safetyWdn.restart}, {"survey", device.wlanSurveyRestart},
                 {"roaming", device.roamingRestart},   {"save", zepXmlData.saveflag}};
    std::string names;
    for (const auto& flag : flags) {
        if (flag.value == 0) continue;
        names += (names.empty() ? "" : " ") + std::string(flag.name);
        if (flag.value != 1) names += "=" + std::to_string(flag.value);
    }
    return names;
}

class RecordTest : public DeviceTest {
  protected:
    RecordTest() {
        loadRouter(device());
        fillRecord();
    }

    // What a first-generation device knows beyond the later ones, all of it valid.
    void useVersion10() {
        zepXmlData.specVersion = {1, 0, "specVersion", 100};
        ZepUpLink& upLink = recordUpLink();
        upLink.MTU = 1492;
        upLink.dsl.VPI = 8;
        upLink.dsl.VCI = 35;
        setText(upLink.dsl.EncapsulationMode, "LLC");
    }

    // A valid site to connect to.
    void useSite() {
        ZepExtenderSite& site = recordUpLink().extenderSite;
        setText(site.ConnRefSiteBSSID, "02:aa:bb:cc:dd:ee");
        setText(site.WirelessType, "5");
        site.wirelessTypeIdx = kBand5;
        setText(site.WirelessName, "Upstairs");
        setText(site.EncryptionKey, "passphrase");
    }
};

// Checking the record: nothing but the result document may leave the library.
class VerificationTest : public RecordTest {
  protected:
    void expectAccepted() {
        device().forget();
        EXPECT_EQ(1, Verify_ZepXml());
        EXPECT_EQ(Events{}, device().events);
    }

    // The first fault is reported, and the record is left as it was.
    void expectFault(int code, const std::string& message) {
        device().forget();
        ZepXmlData expected;
        std::memcpy(&expected, &zepXmlData, sizeof expected);
        expected.setResult = code;
        std::memset(expected.setMsg, 0, sizeof expected.setMsg);
        setText(expected.setMsg, message);
        std::memset(zepXmlData.setMsg, 0, sizeof zepXmlData.setMsg);
        EXPECT_EQ(0, Verify_ZepXml());
        EXPECT_EQ(resultDocument(code, message, 0), device().events);
        EXPECT_EQ(0, std::memcmp(&expected, &zepXmlData, sizeof expected)) << "the record has changed";
    }
};

// What applying a switch does with it: equal or left alone, written, refused, or the end of the radios.
enum SwitchOutcome { kSame, kWritten, kRefused, kStopped };

struct SwitchCase {
    const char* stored; // null: absent
    int32_t value;
    SwitchOutcome outcome;
};

// Applying the record: the expectations hold everything that leaves the library, in order.
class ApplicationTest : public RecordTest {
  protected:
    // All changes, behind which the device is no longer in its factory state.
    void expectWrites(Events changes, const std::string& flags) {
        changes.push_back("set /sys/factorydefault=0");
        device().forget();
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_EQ(changes, device().events);
        EXPECT_EQ(flags + " save", raisedFlags());
    }

    static void store(const std::string& path, const char* text) {
        device().tree.erase(path);
        if (text != nullptr) device().tree[path] = text;
    }

    template <size_t Count>
    void expectSwitch(const SwitchCase (&cases)[Count], int32_t& field, const std::string& node,
                      const std::string& message, const std::string& flag) {
        for (const SwitchCase& row : cases) {
            SCOPED_TRACE(describe(row));
            store(node, row.stored);
            field = row.value;
            if (row.outcome == kSame)
                expectNothing();
            else if (row.outcome == kRefused)
                expectRefusal(message);
            else
                expectWrites({"set " + node + "=" + std::to_string(row.value)}, flag);
        }
    }

    static std::string describe(const SwitchCase& row) {
        return std::to_string(row.value) + " over " + (row.stored == nullptr ? "none" : row.stored);
    }

    void expectNothing() {
        device().forget();
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_EQ(Events{}, device().events);
        EXPECT_EQ("", raisedFlags());
    }

    // A refusal behind the writes that were made before it.
    void expectRefusal(const std::string& message, Events writes = {}) {
        for (const std::string& command : resultDocument(3, message, 0))
            writes.push_back(command);
        device().forget();
        EXPECT_EQ(0, Apply_ZepXmlToDevice());
        EXPECT_EQ(writes, device().events);
        EXPECT_EQ(3, zepXmlData.setResult);
        EXPECT_EQ(message, zepXmlData.setMsg);
        EXPECT_EQ(0, zepXmlData.saveflag);
    }
};

} // namespace pendra::test
