// How a form is parted into names and values.
#include <cstdio>

#include "form.h"

using pendra::test::device;
using pendra::test::fill;
using pendra::test::FormTest;
using pendra::test::kAccepted;
using pendra::test::kCountry;
using pendra::test::kIsp;
using pendra::test::post;
using pendra::test::Posted;
using pendra::test::recordBytes;
using pendra::test::resultDocument;
using pendra::test::upLink;

namespace {

class FormPairs : public FormTest {
  protected:
    // A variable's name with a section name as long as needed: sections are known by three characters.
    static std::string nameOfLength(size_t length) {
        const std::string leaf = "_WirelessName";
        return "zep_Wl2" + std::string(length - 7 - leaf.size(), 'x') + leaf;
    }
};

TEST_F(FormPairs, SeveralPairs_AreSetInOrder) {
    EXPECT_EQ(kAccepted, post(kIsp + "=1&" + kCountry + "=2"));
    EXPECT_EQ("1", ispName());
    EXPECT_EQ("2", countryName());
    EXPECT_EQ(kAccepted, post(kIsp + "=1&" + kIsp + "=2&" + kIsp + "=3"));
    EXPECT_EQ("3", ispName());
}

TEST_F(FormPairs, WhiteSpaceAroundThem_IsCut) {
    EXPECT_EQ(kAccepted, post("  " + kIsp + " = 1 & " + kCountry + "=2\n"));
    EXPECT_EQ("1", ispName());
    EXPECT_EQ("2", countryName());
    EXPECT_EQ(kAccepted, post("\r\n\t " + kIsp + "\t\r\n = \t3 \t\r\n\r\n &" + kCountry + "=\t 4\t "));
    EXPECT_EQ("3", ispName());
    EXPECT_EQ("4", countryName());
}

TEST_F(FormPairs, SeparatorsAtTheEnds_AreSkipped) {
    EXPECT_EQ(kAccepted, post("&&" + kIsp + "=1&& & &" + kCountry + "=2& &\r\n"));
    EXPECT_EQ("1", ispName());
    EXPECT_EQ("2", countryName());
}

TEST_F(FormPairs, Value_IsDecoded) {
    const std::pair<const char*, const char*> cases[] = {
        {"x%2Fy+z", "x/y z"}, {"100%", "100%"}, {"a%26b%3dc", "a&b=c"}, {"+a+", " a "},         {"%20a%20", " a "},
        {"a%0Ab", "a\nb"},    {"a%4", "a%4"},   {"a%", "a%"},           {"a%00bc", "a"},        {"%00", ""},
        {"a=b=c", "a=b=c"},   {"=", "="},       {"a b", "a b"},         {"%c3%bc", "\xc3\xbc"}, {"", ""},
    };
    for (const auto& [value, stored] : cases) {
        upLink().dsl.IspName[0] = 'X';
        EXPECT_EQ(kAccepted, post(kIsp + "=" + value)) << value;
        EXPECT_EQ(stored, ispName()) << value;
        EXPECT_EQ(kAccepted, post(kIsp + "=" + value + "&" + kCountry + "=" + value)) << value;
        EXPECT_EQ(stored, ispName()) << value;
        EXPECT_EQ(stored, countryName()) << value;
    }
}

// The characters of an escape must all belong to the value.
TEST_F(FormPairs, EscapeAcrossTheValuesEnd_StaysAsItIs) {
    EXPECT_EQ(kAccepted, post(kIsp + "=a%&" + kCountry + "=b%4&"));
    EXPECT_EQ("a%", ispName());
    EXPECT_EQ("b%4", countryName());
    EXPECT_EQ(kAccepted, post(kIsp + "=a%4\n1"));
    EXPECT_EQ("a%4", ispName());
}

TEST_F(FormPairs, EmptyValue_IsAnEmptyText) {
    for (const char* end : {"=", "=&", "= ", "=\n", "=\t&", "= \r\n&&"}) {
        fill(upLink().dsl.IspName, "before");
        EXPECT_EQ(kAccepted, post(kIsp + end)) << end;
        EXPECT_EQ("", ispName()) << end;
    }
}

// A line end ends a value even where the separator is another one.
TEST_F(FormPairs, LineEnd_EndsAValue) {
    for (const char* lineEnd : {"\n", "\r", "\r\n", "\n\n\r"}) {
        clearProvider();
        EXPECT_EQ(kAccepted, post(kIsp + "=1" + lineEnd + kCountry + "=2" + lineEnd));
        EXPECT_EQ("1", ispName());
        EXPECT_EQ("2", countryName());
    }
    EXPECT_EQ(kAccepted, post(kIsp + "=\n" + kCountry + "=5"));
    EXPECT_EQ("", ispName());
    EXPECT_EQ("5", countryName());
}

TEST_F(FormPairs, AnySeparator_PartsThem) {
    for (const char separator : {'&', ';', ',', '|', '\n', '\r', ' ', '\t', '\x01', '\xff'}) {
        clearProvider();
        EXPECT_EQ(kAccepted, post(kIsp + "=1" + separator + kCountry + "=2" + separator, separator));
        EXPECT_EQ("1", ispName()) << static_cast<int>(separator);
        EXPECT_EQ("2", countryName()) << static_cast<int>(separator);
    }
}

TEST_F(FormPairs, OnePairALine_IsTakenWithEitherLineEnd) {
    for (const char* lineEnd : {"\n", "\r\n", "\n\r\n", " \n"}) {
        clearProvider();
        EXPECT_EQ(kAccepted, post(kIsp + "=a&b" + lineEnd + kCountry + " = c d" + lineEnd, '\n'));
        EXPECT_EQ("a&b", ispName());
        EXPECT_EQ("c d", countryName());
    }
}

// A separator that is one of the two line ends leaves the other as part of a value.
TEST_F(FormPairs, LineEndAsSeparator_AloneEndsAValue) {
    EXPECT_EQ(kAccepted, post(kIsp + "=a\rb\n" + kCountry + "=c", '\n'));
    EXPECT_EQ("a\rb", ispName());
    EXPECT_EQ("c", countryName());
    EXPECT_EQ(kAccepted, post(kIsp + "=a\nb\r" + kCountry + "=d", '\r'));
    EXPECT_EQ("a\nb", ispName());
    EXPECT_EQ("d", countryName());
}

TEST_F(FormPairs, NulAsSeparator_PartsNothing) {
    EXPECT_EQ(kAccepted, post(kIsp + "=a&b=c", '\0'));
    EXPECT_EQ("a&b=c", ispName());
    EXPECT_EQ(kAccepted, post(kIsp + "=a\n" + kCountry + "=b\n", '\0'));
    EXPECT_EQ("a", ispName());
    EXPECT_EQ("b", countryName());
}

TEST_F(FormPairs, EqualsSignAtTheStart_EndsTheList) {
    const std::string before = recordBytes();
    for (const std::string& text : {"=5&" + kIsp + "=2", " & =5&" + kIsp + "=2"}) {
        device().forget();
        EXPECT_EQ(kAccepted, post(text));
        EXPECT_EQ(before, recordBytes());
        EXPECT_EQ(resultDocument(0, "", 0), device().events);
    }
    EXPECT_EQ(kAccepted, post(kIsp + "=1&=5&" + kCountry + "=2"));
    EXPECT_EQ("1", ispName());
    EXPECT_EQ("", countryName());
}

TEST_F(FormPairs, TextWithoutEqualsSign_EndsTheList) {
    const std::string before = recordBytes();
    for (const char* text : {"", " ", "&", "&& \r\n", "zep_DeviceName", "some text & more"}) {
        device().forget();
        EXPECT_EQ(kAccepted, post(text)) << text;
        EXPECT_EQ(before, recordBytes());
        EXPECT_EQ(resultDocument(0, "", 0), device().events) << text;
    }
    EXPECT_EQ(kAccepted, post(kIsp + "=1&" + kCountry));
    EXPECT_EQ("1", ispName());
}

// A name reaches to its equals sign, whatever stands between.
TEST_F(FormPairs, NameWithoutItsOwnEqualsSign_TakesInTheNext) {
    EXPECT_EQ((Posted{2, "junk&zep_DeviceName"}), post("junk&zep_DeviceName=New"));
    EXPECT_EQ((Posted{2, "junk\nzep_DeviceName"}), post("junk\nzep_DeviceName=New"));
    EXPECT_STREQ("Router", zepXmlData.device.DeviceName);
}

TEST_F(FormPairs, DocumentPathAsName_IsTaken) {
    EXPECT_EQ(kAccepted, post("/Device/DeviceName=New"));
    EXPECT_STREQ("New", zepXmlData.device.DeviceName);
}

TEST_F(FormPairs, DocumentPathOver31Characters_IsCutBeforeItIsConverted) {
    EXPECT_EQ((Posted{2, "/Device/Wireless2.4/WirelessNam"}), post("/Device/Wireless2.4/WirelessName=New"));
    EXPECT_STREQ("Home2.4", zepXmlData.device.wireless[0].WirelessName);
    EXPECT_EQ(kAccepted, post("/Device/SafetyWdn/UrlDetectEnbl=1"));
    EXPECT_EQ(1, zepXmlData.device.safetyWdn.UrlDetectEnbl);
}

TEST_F(FormPairs, NameOf31Characters_IsTheLongest) {
    EXPECT_EQ(31U, nameOfLength(31).size());
    EXPECT_EQ(kAccepted, post(nameOfLength(31) + "=Attic"));
    EXPECT_STREQ("Attic", zepXmlData.device.wireless[0].WirelessName);
    EXPECT_EQ(kAccepted, post(nameOfLength(31) + " \t\n =Cellar")); // blanks are cut first
    EXPECT_STREQ("Cellar", zepXmlData.device.wireless[0].WirelessName);
    for (const size_t length : {32U, 40U, 128U, 4096U}) {
        device().forget();
        const std::string cut = nameOfLength(length).substr(0, 31);
        EXPECT_EQ((Posted{2, cut}), post(nameOfLength(length) + "=New")) << length;
        EXPECT_EQ(resultDocument(2, cut, 0), device().events) << length;
    }
    EXPECT_STREQ("Cellar", zepXmlData.device.wireless[0].WirelessName);
}

// A longer name is cut and not refused: what is left of it may be a variable.
TEST_F(FormPairs, NameCutTo31Characters_IsSetUnderTheRest) {
    for (const size_t length : {32U, 40U, 128U, 4096U}) {
        const std::string value = "Net " + std::to_string(length);
        EXPECT_EQ(kAccepted, post(nameOfLength(31) + std::string(length - 31, 'Z') + "=" + value));
        EXPECT_EQ(value, zepXmlData.device.wireless[0].WirelessName);
    }
}

TEST_F(FormPairs, ValueOver127Characters_IsCut) {
    for (const size_t length : {126U, 127U, 128U, 129U, 4096U}) {
        EXPECT_EQ(kAccepted,
                  post(kIsp + "=" + std::string(length, 'v') + "&" + kCountry + "=" + std::to_string(length)));
        EXPECT_EQ(std::string(std::min<size_t>(length, 127), 'v'), ispName()) << length;
        EXPECT_EQ(std::to_string(length), countryName());
    }
}

TEST_F(FormPairs, EscapedValueOver127Characters_IsCutAsDecoded) {
    for (const size_t length : {126U, 127U, 128U, 4096U}) {
        std::string escaped;
        for (size_t i = 0; i < length; i++)
            escaped += "%76";
        EXPECT_EQ(kAccepted, post(kIsp + "=" + escaped));
        EXPECT_EQ(std::string(std::min<size_t>(length, 127), 'v'), ispName()) << length;
    }
}

TEST_F(FormPairs, EveryByteInAValue_IsStored) {
    for (int byte = 1; byte < 256; byte++) {
        const std::string one(1, static_cast<char>(byte));
        const bool endsValue = one == "&" || one == "\r" || one == "\n";
        const std::string stored = endsValue ? "a" : "a" + (one == "+" ? " " : one) + "b";
        EXPECT_EQ(kAccepted, post(kIsp + "=a" + one + "b")) << byte;
        EXPECT_EQ(stored, ispName()) << byte;
    }
}

TEST_F(FormPairs, EveryByteAsAnEscape_IsStored) {
    for (int byte = 0; byte < 256; byte++) {
        char escape[8];
        snprintf(escape, sizeof escape, "%%%02x", static_cast<unsigned>(byte));
        EXPECT_EQ(kAccepted, post(kIsp + "=a" + escape + "b")) << byte;
        EXPECT_EQ(byte == 0 ? "a" : std::string("a") + static_cast<char>(byte) + "b", ispName()) << byte;
    }
}

TEST_F(FormPairs, EveryByteInAName_IsPartOfIt) {
    for (int byte = 1; byte < 256; byte++) {
        const std::string one(1, static_cast<char>(byte));
        const std::string name = one == "=" ? "zep_Foo" : "zep_Foo" + one + "x";
        EXPECT_EQ((Posted{2, name}), post("zep_Foo" + one + "x=1")) << byte;
    }
}

class LargeForm : public FormTest {
  protected:
    static constexpr size_t kMebibyte = 1U << 20;

    static int occurrences(const std::string& text, const std::string& wanted) {
        int count = 0;
        for (size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1))
            count++;
        return count;
    }
};

TEST_F(LargeForm, ThousandPairs_AreAllSet) {
    daemon_log_level = 7;
    daemon_log_file_size_k = 10000;
    std::string text;
    for (int pair = 0; pair < 1000; pair++)
        text += "zep_Wl2_EncryptionMode=WPA" + std::string(pair % 2 == 0 ? "2&" : "\n&");
    EXPECT_EQ(kAccepted, post(text));
    EXPECT_EQ(500, occurrences(logText(), "Zep EncrypMode='WPA2' -> 4\n"));
    EXPECT_EQ(500, occurrences(logText(), "Zep EncrypMode='WPA' -> 2\n"));
    EXPECT_EQ(2, zepXmlData.device.wireless[0].encrypModeIdx);
}

TEST_F(LargeForm, ThousandthPairRefused_LeavesTheOthersSet) {
    std::string text;
    for (int pair = 0; pair < 999; pair++)
        text += (pair % 2 == 0 ? kIsp : kCountry) + "=" + std::to_string(pair) + "&";
    EXPECT_EQ((Posted{2, "zep_Foo"}), post(text + "zep_Foo=1"));
    EXPECT_EQ("998", ispName());
    EXPECT_EQ("997", countryName());
}

TEST_F(LargeForm, ValueOfOneMebibyte_IsCut) {
    for (const char filler : {'v', '%', '=', 'A'}) {
        EXPECT_EQ(kAccepted, post(kIsp + "=" + std::string(kMebibyte, filler) + "&" + kCountry + "=last"));
        if (filler != '%') {
            EXPECT_EQ(std::string(127, filler), ispName());
        }
        EXPECT_EQ("last", countryName());
    }
}

TEST_F(LargeForm, NameOfOneMebibyte_IsCut) {
    EXPECT_EQ((Posted{2, std::string(31, 'n')}), post(std::string(kMebibyte, 'n') + "=1"));
}

TEST_F(LargeForm, MebibyteWithoutPairs_OnlyVerifies) {
    for (const char filler : {'x', '&', ' ', '\n', '='}) {
        device().forget();
        EXPECT_EQ(kAccepted, post(std::string(kMebibyte, filler)));
        EXPECT_EQ(resultDocument(0, "", 0), device().events);
    }
}

TEST_F(LargeForm, PairBehindAMebibyteOfSeparators_IsSet) {
    EXPECT_EQ(kAccepted, post(std::string(kMebibyte, '&') + kIsp + "=1" + std::string(kMebibyte, ' ')));
    EXPECT_EQ("1", ispName());
}

TEST_F(LargeForm, MebibyteOfPairs_IsSetToTheLast) {
    std::string text;
    int pairs = 0;
    while (text.size() < kMebibyte)
        text += kIsp + "=" + std::to_string(pairs++) + "&";
    EXPECT_EQ(kAccepted, post(text));
    EXPECT_EQ(std::to_string(pairs - 1), ispName());
}

// A log message holds 5119 characters.
TEST_F(LargeForm, ReceivedText_IsLoggedAsFarAsItFits) {
    daemon_log_level = 6;
    EXPECT_EQ(kAccepted, post(std::string(kMebibyte, 'x')));
    const std::string start = "1000: ---- Received Zep Var Data Begin ----\n" + std::string(5000, 'x');
    EXPECT_EQ(start, logText().substr(0, start.size()));
    EXPECT_EQ(std::string::npos, logText().find("Data End"));
}

} // namespace
