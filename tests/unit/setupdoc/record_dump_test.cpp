#include "setupdoc/record_dump.h"
#include "setup_document.h"

using namespace pendra;
using namespace pendra::test;

namespace {

using Lines = std::vector<std::string>;

Lines& operator+=(Lines& lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

template <size_t Capacity>
void put(char (&field)[Capacity], const char* text) {
    snprintf(field, Capacity, "%s", text);
}

// ---- A record with a value of its own in every field that is dumped ----

void fillIsp(ZepIsp& isp, const char* path) {
    put(isp.path, path);
    put(isp.CountryName, "Germany");
    put(isp.IspName, "Provider");
    isp.VPI = 8;
    isp.VCI = 35;
    put(isp.EncapsulationMode, "LLC");
    isp.encapModeIdx = 0;
}

void fillUpLink(ZepUpLink& upLink) {
    put(upLink.path, "Device/UpLinkConnection");
    upLink.Configurable = 1;
    put(upLink.HardwareType, "Ethernet");
    put(upLink.LoginUserName, "user");
    put(upLink.LoginPassword, "pass");
    put(upLink.IP, "10.0.0.2");
    put(upLink.NetMask, "255.0.0.0");
    put(upLink.Gateway, "10.0.0.1");
    put(upLink.DNS, "9.9.9.9");
    upLink.restart = 3;
    fillIsp(upLink.dsl, "Device/UpLinkConnection/DSL");
    fillIsp(upLink.apn, "Device/UpLinkConnection/APN");
    ZepExtenderSite& site = upLink.extenderSite;
    put(site.path, "Device/UpLinkConnection/ExtenderSite");
    site.Survey = 1;
    put(site.ConnRefSiteBSSID, "00:aa:bb:cc:dd:ee");
    put(site.WirelessType, "5");
    site.wirelessTypeIdx = 1;
    put(site.WirelessName, "Upstairs");
    put(site.EncryptionKey, "sitekey");
}

void fillRadio(ZepWireless& radio, const char* path) {
    put(radio.path, path);
    radio.Configurable = 1;
    radio.WlEnbl = 3;
    radio.WlSchedule = 2;
    put(radio.WirelessBSSID, "00:11:22:33:44:55");
    put(radio.WirelessName, "Home");
    put(radio.EncryptionMode, "WPA2");
    put(radio.EncryptionType, "AES");
    put(radio.EncryptionKey, "radiokey");
    put(radio.Channel, "11");
    radio.restart = 1;
    put(radio.accessControl.path, (std::string(path) + "/AccessControl").c_str());
}

void fillRecord() {
    ZepXmlData& data = zepXmlData;
    data.specVersion = {1, 1, "specVersion", 101};
    ZepDevice& filled = data.device;
    put(filled.path, "Device");
    filled.Configurable = 1;
    put(filled.DeviceName, "Router");
    put(filled.DevicePwd, "secret");
    put(filled.DeviceType, "AP");
    filled.RouterEnbl = 2;
    filled.ExtenderEnbl = 4;
    put(filled.EasyRoaming, "-75 2");
    filled.wlanSurveyRestart = 1;
    fillUpLink(filled.upLink);
    fillRadio(filled.wireless[0], "Device/Wireless2.4");
    fillRadio(filled.wireless[1], "Device/Wireless5");
    filled.safetyWdn = {1, 2, 3, 4, "Device/SafetyWdn", 5};
    data.apCloningFeature = 2;
    data.fwUpgradeFeature = 1;
    put(data.tmpPath, "/tmp/pendra");
    put(data.scriptPath, "/userfs");
    data.saveflag = 1;
}

// ---- What is expected of it ----

const Lines kHead = {"----ZEPXML_BGN----", "specVersion", " +- Ver=1.1", "Device", " +- Configurable=1"};
const Lines kDevice = {" +- DeviceName='Router'", " +- DevicePwd='secret'", " +- DeviceType='AP'", " +- RouterEnbl=2"};

Lines upLinkLines(const std::string& hardware) {
    return {" +- Device/UpLinkConnection",  "     +- Configurable=1",       "     +- HardwareType=" + hardware,
            "     +- LoginUserName='user'", "     +- LoginPassword='pass'", "     +- IP,NetMask='10.0.0.2,255.0.0.0'",
            "     +- Gateway='10.0.0.1'",   "     +- DNS='9.9.9.9'",        "     +- restart='3'"};
}

Lines ispLines(const std::string& element) {
    return {"     +- Device/UpLinkConnection/" + element, "         +- CountryName=Germany",
            "         +- IspName=Provider"};
}

const Lines kDslLine = {"     +- Device/UpLinkConnection/DSL", "         +- VPI/VCI=8/35",
                        "         +- EncapMode='LLC',0"};
const Lines kSite = {"     +- Device/UpLinkConnection/ExtenderSite",
                     "         +- Survey=1",
                     "         +- ConnRefSiteBSSID=00:aa:bb:cc:dd:ee",
                     "         +- WirelessType='5',1",
                     "         +- WirelessName=Upstairs",
                     "         +- EncryptionKey=sitekey"};

Lines radioLines(const std::string& band) {
    return {" +- Device/Wireless" + band,      "     +- Configurable=1",
            "     +- WlEnbl,WlSchedule=3,2",   "     +- WirelessBSSID='00:11:22:33:44:55'",
            "     +- WirelessName='Home'",     "     +- EncryptionMode,Type='WPA2,AES'",
            "     +- EncryptionKey='radiokey'"};
}

Lines laterRadioLines(const std::string& band, int accessEnable) {
    return {"     +- Channel='11'", "     +- restart=1", "     +- Device/Wireless" + band + "/AccessControl",
            "         +- WlAcEnbl=" + std::to_string(accessEnable)};
}

const Lines kSafety = {" +- Device/SafetyWdn",       "     +- SafetyWdnEnbl=1",     "     +- UrlDetectEnbl=2",
                       "     +- SafetyNotifyEnbl=3", "     +- ToolRecommendEnbl=4", "     +- restart=5"};

Lines switchLines() {
    const ZepXmlData& data = zepXmlData;
    const auto number = [](int value) { return std::to_string(value); };
    return {"+- apCloningOnly=" + number(data.apCloningOnly),
            "+- apCloningFeature=2",
            "+- fwUpgradeFeature=1",
            "+- easyRoamingFeature=" + number(data.easyRoamingFeature),
            "+- safetyWdnFeature=" + number(data.safetyWdnFeature),
            "+- wlan24Feature=" + number(data.wlan24Feature),
            "+- wlan5Feature=" + number(data.wlan5Feature),
            "+- tmpPath=/tmp/pendra",
            "+- scriptPath=/userfs",
            "+- saveflag=1",
            "----ZEPXML_END----"};
}

class RecordDump : public DeviceTest {
  protected:
    RecordDump() {
        fillRecord();
        daemon_log_level = 6;
    }
    void expectDump(const Lines& expected) const {
        dumpRecord();
        EXPECT_EQ(expected, logLines());
    }
    static void setHardware(int32_t index) { zepXmlData.device.upLink.hardwareTypeIdx = index; }
    static void setFirstGeneration() { zepXmlData.specVersion = {1, 0, "specVersion", 100}; }

    // The device's lines up to its hardware, for a device without features.
    static Lines upToHardware(int32_t index) {
        Lines lines = kHead;
        lines += kDevice;
        lines += {" +- wlanSurveyRestart=1"};
        return lines += upLinkLines("'Ethernet'," + std::to_string(index));
    }
    static Lines firstGenerationUpToHardware(int32_t index, int extender) {
        Lines lines = {kHead[0], kHead[1], " +- Ver=1.0", kHead[3], kHead[4]};
        lines += kDevice;
        lines += {" +- ExtenderEnbl=" + std::to_string(extender), " +- wlanSurveyRestart=1"};
        return lines += upLinkLines("'Ethernet'," + std::to_string(index));
    }
};

TEST_F(RecordDump, BelowLevel6_LogsNothing) {
    daemon_log_level = 5;
    expectDump({});
    EXPECT_EQ("", device().console);
}

TEST_F(RecordDump, Lines_CarryTheUptimeOnly) {
    dumpRecord();
    EXPECT_EQ(0u, logText().find("1000: ----ZEPXML_BGN----\n1000: specVersion\n1000:  +- Ver=1.1\n"));
    EXPECT_NE(std::string::npos, logText().find("\n1000: +- saveflag=1\n1000: ----ZEPXML_END----\n"));
}

TEST_F(RecordDump, EverythingThere_IsDumpedInOrder) {
    ZepXmlData& data = zepXmlData;
    data.easyRoamingFeature = data.safetyWdnFeature = data.wlan24Feature = data.wlan5Feature = 1;
    setHardware(0);
    Lines lines = kHead;
    lines += kDevice;
    lines += {" +- EasyRoaming=-75 2", " +- wlanSurveyRestart=1"};
    lines += upLinkLines("'Ethernet',0");
    for (const char* band : {"2.4", "5"}) {
        lines += radioLines(band);
        lines += laterRadioLines(band, 0);
    }
    lines += kSafety;
    lines += switchLines();
    expectDump(lines);
}

TEST_F(RecordDump, FeaturesThatAreOff_AreNotDumped) {
    setHardware(0);
    Lines lines = upToHardware(0);
    expectDump(lines += switchLines());
}

// ---- Hardware ----

TEST_F(RecordDump, LaterGenerations_ShowTheSectionOfTheirHardware) {
    const std::vector<std::pair<int32_t, Lines>> rows = {{-1, {}},
                                                         {0, {}},
                                                         {1, ispLines("DSL")},
                                                         {2, ispLines("DSL")},
                                                         {3, kSite},
                                                         {4, ispLines("APN")},
                                                         {5, ispLines("DSL")},
                                                         {6, {}}};
    for (const int32_t extender : {0, 2}) // it counts in the first generation only
        for (const auto& [hardware, section] : rows) {
            SCOPED_TRACE(hardware);
            zepXmlData.device.ExtenderEnbl = extender;
            setHardware(hardware);
            std::remove(logFile().c_str());
            Lines lines = upToHardware(hardware);
            lines += section;
            expectDump(lines += switchLines());
        }
}

TEST_F(RecordDump, FirstGeneration_ShowsTheLineOrTheSiteUnlessTheExtenderIs2) {
    struct Row {
        int32_t hardware;
        int extender;
        Lines section;
    };
    const std::vector<Row> rows = {
        {1, 0, kDslLine}, {2, 1, kDslLine},       {5, 2, kDslLine}, {0, 0, kSite}, {0, 1, kSite},
        {0, 2, {}},       {-1, 3, kSite},         {-1, 2, {}},      {3, 2, kSite}, {3, 0, kSite},
        {4, 0, kSite}, // one chain: the site hides the provider
        {4, 1, kSite},    {4, 2, ispLines("APN")}};
    setFirstGeneration();
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.hardware) + " " + std::to_string(row.extender));
        zepXmlData.device.ExtenderEnbl = row.extender;
        setHardware(row.hardware);
        std::remove(logFile().c_str());
        Lines lines = firstGenerationUpToHardware(row.hardware, row.extender);
        lines += row.section;
        expectDump(lines += switchLines());
    }
}

TEST_F(RecordDump, FirstGeneration_ShowsNoRoaming) {
    setFirstGeneration();
    setHardware(5);
    zepXmlData.easyRoamingFeature = 1;
    Lines lines = firstGenerationUpToHardware(5, 4);
    lines += kDslLine;
    expectDump(lines += switchLines());
}

// ---- Radios ----

TEST_F(RecordDump, FirstGenerationRadio_EndsWithItsKey) {
    setFirstGeneration();
    setHardware(1);
    zepXmlData.wlan24Feature = 1;
    Lines lines = firstGenerationUpToHardware(1, 4);
    lines += kDslLine;
    lines += radioLines("2.4");
    expectDump(lines += switchLines());
}

TEST_F(RecordDump, OnlyRadiosThatExist_AreDumped) {
    zepXmlData.wlan5Feature = 1;
    Lines lines = upToHardware(0);
    lines += radioLines("5");
    lines += laterRadioLines("5", 0);
    expectDump(lines += switchLines());
}

TEST_F(RecordDump, AccessRules_AreNumberedFromOne) {
    ZepAccessControl& access = zepXmlData.device.wireless[1].accessControl;
    zepXmlData.wlan5Feature = 1;
    access.WlAcEnbl = 1;
    access.WlAcMode = 1;
    access.acRuleCount = 2;
    access.acRule[0] = {1, "00:00:00:00:00:01", "Device/Wireless5/AccessControl/AcRule"};
    access.acRule[1] = {0, "00:00:00:00:00:02", "Device/Wireless5/AccessControl/AcRule"};
    Lines lines = upToHardware(0);
    lines += radioLines("5");
    lines += laterRadioLines("5", 1);
    lines += {"         +- WlAcMode=1", "         +- Device/Wireless5/AccessControl/AcRule:1",
              "             +- Active,MAC=1,00:00:00:00:00:01", "         +- Device/Wireless5/AccessControl/AcRule:2",
              "             +- Active,MAC=0,00:00:00:00:00:02"};
    expectDump(lines += switchLines());
}

TEST_F(RecordDump, AccessControlThatIsNotOne_ShowsNeitherModeNorRules) {
    ZepAccessControl& access = zepXmlData.device.wireless[1].accessControl;
    zepXmlData.wlan5Feature = 1;
    access.acRuleCount = 2;
    for (const int32_t enable : {0, 2, -1}) {
        access.WlAcEnbl = enable;
        std::remove(logFile().c_str());
        Lines lines = upToHardware(0);
        lines += radioLines("5");
        lines += laterRadioLines("5", enable);
        expectDump(lines += switchLines());
    }
}

TEST_F(RecordDump, RuleCountOutside0To40_EndsAtTheRecords) {
    ZepAccessControl& access = zepXmlData.device.wireless[0].accessControl;
    zepXmlData.wlan24Feature = 1;
    access.WlAcEnbl = 1;
    for (const auto& [count, dumped] :
         std::vector<std::pair<int32_t, int>>{{-1, 0}, {0, 0}, {40, 40}, {41, 40}, {2147483647, 40}}) {
        SCOPED_TRACE(count);
        access.acRuleCount = count;
        std::remove(logFile().c_str());
        dumpRecord();
        const Lines lines = logLines();
        EXPECT_EQ(dumped, std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
                      return line.find("Active,MAC=") != std::string::npos;
                  }));
    }
}

// ---- Access-point cloning ----

TEST_F(RecordDump, Cloning_ShowsRoamingInPlaceOfTheDevice) {
    ZepXmlData& data = zepXmlData;
    data.apCloningOnly = data.easyRoamingFeature = data.wlan24Feature = data.safetyWdnFeature = 1;
    Lines lines = kHead;
    lines += {" +- EasyRoaming=-75 2"};
    lines += radioLines("2.4");
    lines += laterRadioLines("2.4", 0);
    lines += kSafety;
    expectDump(lines += switchLines());
}

TEST_F(RecordDump, CloningWithoutRoaming_ShowsNoDeviceAtAll) {
    zepXmlData.apCloningOnly = 1;
    Lines lines = kHead;
    expectDump(lines += switchLines());
}

TEST_F(RecordDump, CloningOfTheFirstGeneration_ShowsNoRoaming) {
    setFirstGeneration();
    zepXmlData.apCloningOnly = zepXmlData.easyRoamingFeature = 1;
    Lines lines = {kHead[0], kHead[1], " +- Ver=1.0", kHead[3], kHead[4]};
    expectDump(lines += switchLines());
}

} // namespace
