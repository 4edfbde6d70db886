#include "host/variable_info.h"

#include <gtest/gtest.h>

#include <cctype>

namespace pendra::host {
namespace {

TEST(IsVariableName, NamesAndDocumentPaths_AreTaken) {
    for (const char* name : {"zep_DeviceName", "zep_Wl2_Acl_R03_MAC", "zep_", "/Device/Wireless2.4/WirelessName",
                             "/Device/Wireless5/AccessControl/WlAcLists/AcRule:07/MAC", "/WirelessSiteSurvey/Site#"}) {
        EXPECT_TRUE(isVariableName(name, kMaxName)) << name;
    }
}

TEST(IsVariableName, EveryOtherByte_IsRefused) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool plain = byte < 128 && (std::isalnum(byte) != 0 || c == '_');
        const bool inPath = plain || (byte != 0 && std::string("/.:#").find(c) != std::string::npos);
        EXPECT_EQ(isVariableName(std::string("zep_A") + c, kMaxName), plain) << byte;
        EXPECT_EQ(isVariableName(std::string("/Device/A") + c, kMaxName), inPath) << byte;
    }
}

TEST(IsVariableName, OtherStarts_AreRefused) {
    for (const char* text : {"", "foo", "Zep_DeviceName", " zep_DeviceName", "zep", "Device/DeviceName"}) {
        EXPECT_FALSE(isVariableName(text, kMaxName)) << text;
    }
}

TEST(IsVariableName, Length_IsBounded) {
    EXPECT_TRUE(isVariableName("zep_" + std::string(27, 'a'), kMaxFormName));
    EXPECT_FALSE(isVariableName("zep_" + std::string(28, 'a'), kMaxFormName));
}

TEST(LibraryName, DocumentPath_IsConverted) {
    EXPECT_EQ(libraryName("/Device/Wireless2.4/WirelessName"), "zep_Wl2_WirelessName");
    EXPECT_EQ(libraryName("zep_DeviceName"), "zep_DeviceName");
    EXPECT_EQ(libraryName("/Device/Act_CommitZepVars"), "zep_Act_CommitZepVars");
}

TEST(LibraryName, PathThatIsNone_GivesNothing) {
    for (const char* path :
         {"/Other/x", "/Device/a.b", "/Device/UpLinkConnection/DSL/Extra/CountryName", "/Device/x'y"}) {
        EXPECT_EQ(libraryName(path), std::nullopt) << path;
    }
}

TEST(FindVariable, IndexOfAList_StandsForAnyTwoDigits) {
    ASSERT_NE(findVariable("zep_Wl5_Acl_R39_MAC"), nullptr);
    EXPECT_EQ(findVariable("zep_Wl5_Acl_R39_MAC")->name, "zep_Wl5_Acl_R??_MAC");
    EXPECT_EQ(findVariable("zep_Wl5_Acl_R3_MAC"), nullptr);
    EXPECT_EQ(findVariable("zep_Wl5_Acl_Rab_MAC"), nullptr);
    EXPECT_EQ(findVariable("zep_Foo"), nullptr);
}

TEST(NamesOf, Elements_AreCountedFrom00) {
    const VariableInfo* mac = findVariable("zep_Wl2_Acl_R00_MAC");
    EXPECT_EQ(namesOf(*mac, 2), (std::vector<std::string>{"zep_Wl2_Acl_R00_MAC", "zep_Wl2_Acl_R01_MAC"}));
    EXPECT_EQ(namesOf(*mac, -1), std::vector<std::string>{});
    EXPECT_EQ(namesOf(*mac, 200).size(), 100U);
    EXPECT_EQ(namesOf(*findVariable("zep_DeviceName"), 0), std::vector<std::string>{"zep_DeviceName"});
}

TEST(VariableInfo, ReadOnlyRows_CannotBeSet) {
    EXPECT_TRUE(findVariable("zep_DeviceName")->canBeSet());
    EXPECT_FALSE(findVariable("zep_DeviceName_Validate")->canBeSet());
    EXPECT_TRUE(findVariable("zep_Upl_ConnType")->isChoice());
}

} // namespace
} // namespace pendra::host
