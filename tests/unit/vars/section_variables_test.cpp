// What is particular to the variables of the uplink and of the radios.
#include "variables.h"

using pendra::test::Answer;
using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::fill;
using pendra::test::getVariable;
using pendra::test::pathOf;
using pendra::test::Radio;
using pendra::test::radios;
using pendra::test::recordBytes;
using pendra::test::setVariable;
using pendra::test::upLink;
using pendra::test::validate;

namespace {

class UplinkVariables : public DeviceTest {
  protected:
    UplinkVariables() { upLink().Configurable = 1; }
};

struct Address {
    const char* name;
    char (&field)[16];
};

TEST_F(UplinkVariables, HostAddresses_AreChecked) {
    const Address addresses[] = {
        {"zep_Upl_IP", upLink().IP}, {"zep_Upl_Gateway", upLink().Gateway}, {"zep_Upl_DNS", upLink().DNS}};
    for (const Address& address : addresses) {
        for (const char* value :
             {"192.168.1.1", "10.0.0.255", "223.255.255.254", "1.0.0.1", "192.168.1.1xyz", " 10.0.0.1"}) {
            EXPECT_EQ(0, validate(address.name, value)) << value;
            EXPECT_EQ(0, setVariable(address.name, value)) << value;
            EXPECT_STREQ(value, address.field);
        }
        for (const char* value : {"", "192.168.1.300", "127.0.0.1", "0.1.2.3", "224.0.0.1", "10.0.0.0", "1.2.3", "text",
                                  "4294967297.0.0.1", "-1.0.0.1", "192.168.1.1xyzxyz"}) {
            EXPECT_EQ(2, setVariable(address.name, value)) << value;
            EXPECT_EQ(2, validate(address.name, value)) << value;
            EXPECT_STREQ(" 10.0.0.1", address.field);
        }
    }
}

TEST_F(UplinkVariables, NetMask_IsChecked) {
    for (const char* value : {"255.255.255.0", "0.0.0.0", "255.255.255.255", "255.255.255.254", "128.0.0.0"}) {
        EXPECT_EQ(0, validate("zep_Upl_NetMask", value)) << value;
        EXPECT_EQ(0, setVariable("zep_Upl_NetMask", value)) << value;
        EXPECT_STREQ(value, upLink().NetMask);
    }
    for (const char* value : {"", "255.0.255.0", "255.255.0.255", "256.0.0.0", "255.255.255", "text"}) {
        EXPECT_EQ(2, setVariable("zep_Upl_NetMask", value)) << value;
        EXPECT_EQ(2, validate("zep_Upl_NetMask", value)) << value;
    }
    EXPECT_STREQ("128.0.0.0", upLink().NetMask);
}

TEST_F(UplinkVariables, ConnectionStatus_IsReadFromTheMisspeltNode) {
    device().tree = {{"/uplink/sxtendersite/connstatus", "up"},
                     {"/uplink/extendersite/connstatus", "no"},
                     {"/uplink/extendersite/ConnStatus", "no"}};
    EXPECT_EQ((Answer{0, "up"}), getVariable("zep_Upl_Ets_ConnStatus"));
    EXPECT_EQ((Answer{0, "/uplink/extendersite/ConnStatus"}), pathOf("zep_Upl_Ets_ConnStatus"));
    EXPECT_EQ(std::vector<std::string>{"/uplink/sxtendersite/connstatus"}, device().reads);
}

TEST_F(UplinkVariables, ConfigurableField_GivesAnyStoredNumberAndAllowsASet) {
    for (const int32_t stored : {1, 2, -1}) {
        upLink().Configurable = stored;
        EXPECT_EQ((Answer{0, std::to_string(stored)}), getVariable("zep_Upl_Configurable"));
        EXPECT_EQ(0, setVariable("zep_Upl_Dsl_IspName", "x"));
    }
}

TEST_F(UplinkVariables, DslAndMobileProvider_AreKeptApart) {
    EXPECT_EQ(0, setVariable("zep_Upl_Dsl_IspName", "Line"));
    EXPECT_EQ(0, setVariable("zep_Upl_Apn_IspName", "Mobile"));
    EXPECT_EQ((Answer{0, "Line"}), getVariable("zep_Upl_Dsl_IspName"));
    EXPECT_EQ((Answer{0, "Mobile"}), getVariable("zep_Upl_Apn_IspName"));
    EXPECT_STREQ("Line", upLink().dsl.IspName);
    EXPECT_STREQ("Mobile", upLink().apn.IspName);
}

// Texts without a check take every byte but the NUL.
TEST_F(UplinkVariables, UncheckedText_TakesEveryByte) {
    for (int byte = 1; byte < 256; byte++) {
        const std::string value(3, static_cast<char>(byte));
        EXPECT_EQ(0, setVariable("zep_Upl_Dsl_IspName", value)) << byte;
        EXPECT_EQ((Answer{0, value}), getVariable("zep_Upl_Dsl_IspName")) << byte;
    }
}

TEST_F(UplinkVariables, NamesOfOtherSubSections_AreUnknown) {
    for (const char* name : {"zep_Upl_Dsl_Survey", "zep_Upl_Ets_IspName", "zep_Upl_Apn_VPI", "zep_Upl_IspName",
                             "zep_Upl_Survey", "zep_Upl_Ets_Survey_X", "zep_Upl_Dsl_IspName_X", "zep_Upl_Foo_IspName",
                             "zep_Upl_MTU", "zep_Upl_HardwareType_Validate", "zep_Upl_Acl_AcRuleNo"})
        EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
}

class ChannelVariable : public DeviceTest {
  protected:
    ChannelVariable() {
        for (const Radio& radio : radios()) {
            radio.record.Configurable = 1;
            fill(radio.record.ChannelList, "1,2,3,4,5,6,7,8,9,10,11");
        }
    }

    static void expectTaken(const std::string& channel) {
        for (const Radio& radio : radios()) {
            SCOPED_TRACE(radio.name + "Channel=" + channel);
            EXPECT_EQ(0, validate(radio.name + "Channel", channel));
            EXPECT_EQ(0, setVariable(radio.name + "Channel", channel));
            EXPECT_EQ(channel, radio.record.Channel);
        }
    }

    static void expectRefused(const std::string& channel) {
        const std::string before = recordBytes();
        for (const Radio& radio : radios()) {
            SCOPED_TRACE(radio.name + "Channel=" + channel);
            EXPECT_EQ(2, setVariable(radio.name + "Channel", channel));
            EXPECT_EQ(2, validate(radio.name + "Channel", channel));
        }
        EXPECT_EQ(before, recordBytes());
    }

    static void setList(const std::string& list) {
        for (const Radio& radio : radios())
            fill(radio.record.ChannelList, list);
    }
};

TEST_F(ChannelVariable, ChannelOfTheList_IsTaken) {
    for (const char* channel : {"6", "1", "11", "10"})
        expectTaken(channel);
}

TEST_F(ChannelVariable, ChannelOutsideTheList_IsRefused) {
    for (const char* channel : {"", "-1", "12", "0", "36", "1,", ",", " 6", "6 ", "06", "text", ",6,"})
        expectRefused(channel);
}

TEST_F(ChannelVariable, Automatic_NeedsARowInTheList) {
    setList("0,1,6");
    expectTaken("0");
    setList("1,6,-1");
    expectRefused("-1"); // below 0 whatever the list holds
}

TEST_F(ChannelVariable, FirstThreeCharacters_Decide) {
    setList("100,104,36");
    expectTaken("100");
    expectTaken("100 and more");
    expectTaken("1049");
    expectRefused("36 and more");
    expectRefused("10");
    setList("1,6");
    expectTaken("1,6"); // three characters that stand between two commas
}

TEST_F(ChannelVariable, Comparison_LooksAtNoCase) {
    setList("1a,2B");
    expectTaken("1A");
    expectTaken("2b");
}

TEST_F(ChannelVariable, BlanksAroundTheList_AreCutInACopy) {
    const std::string list = " \t36,40 \t";
    setList(list);
    expectTaken("36");
    expectTaken("40");
    for (const Radio& radio : radios())
        EXPECT_EQ(list, radio.record.ChannelList);
}

TEST_F(ChannelVariable, EmptyList_HoldsNoChannel) {
    setList("");
    for (const char* channel : {"0", "6", ""})
        expectRefused(channel);
}

// The list with its two commas is cut at 128 characters, so that the last row of a list of 127 has no end.
TEST_F(ChannelVariable, LongestList_LosesItsLastRow) {
    std::string list = "36";
    while (list.size() < 126 - 4)
        list += ",100";
    list += std::string(126 - 4 - list.size(), '9');
    ASSERT_EQ(126U, (list + ",149").size());
    setList(list + ",149");
    expectTaken("149");
    setList("1" + list + ",149");
    expectRefused("149");
    expectRefused("14");
    expectTaken("100");
}

TEST_F(ChannelVariable, EachRadio_HasItsOwnList) {
    fill(zepXmlData.device.wireless[0].ChannelList, "1,6");
    fill(zepXmlData.device.wireless[1].ChannelList, "36,40");
    EXPECT_EQ(0, setVariable("zep_Wl2_Channel", "6"));
    EXPECT_EQ(2, setVariable("zep_Wl5_Channel", "6"));
    EXPECT_EQ(0, setVariable("zep_Wl5_Channel", "40"));
    EXPECT_EQ(2, setVariable("zep_Wl2_Channel", "40"));
}

class RadioVariables : public DeviceTest {};

TEST_F(RadioVariables, ChannelInUse_IsReadUnderTheNamesCapitals) {
    device().tree = {{"/lan/wireless2.4:1/ChannelUsing", "6"},
                     {"/lan/wireless5:1/ChannelUsing", "36"},
                     {"/lan/wireless5:1/channelusing", "no"}};
    EXPECT_EQ((Answer{0, "6"}), getVariable("zep_Wl2_ChannelUsing"));
    EXPECT_EQ((Answer{0, "36"}), getVariable("zep_Wl5_ChannelUsing"));
}

TEST_F(RadioVariables, BothRadios_AreKeptApart) {
    for (const Radio& radio : radios()) {
        radio.record.Configurable = 1;
        EXPECT_EQ(0, setVariable(radio.name + "WirelessName", "Net of " + radio.base));
    }
    for (const Radio& radio : radios())
        EXPECT_EQ((Answer{0, "Net of " + radio.base}), getVariable(radio.name + "WirelessName"));
}

TEST_F(RadioVariables, AbsentRadio_IsReadAndCheckedButNotSet) {
    for (const Radio& radio : radios()) {
        radio.record.Configurable = 0;
        fill(radio.record.WirelessName, "Net");
        EXPECT_EQ((Answer{0, "Net"}), getVariable(radio.name + "WirelessName"));
        EXPECT_EQ(0, validate(radio.name + "WirelessName", "Other"));
        EXPECT_EQ(1, setVariable(radio.name + "WirelessName", "Other"));
        EXPECT_EQ(1, setVariable(radio.name + "WirelessBSSID", "Other"));
        EXPECT_STREQ("Net", radio.record.WirelessName);
    }
}

} // namespace
