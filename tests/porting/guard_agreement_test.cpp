// The guards of the two platforms are written in two ways, and take the same texts.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "flat_tree_platform.h"
#include "pendra/platform.h"
#include "platform/tree/guards.h"
#include "support/scratch.h"

namespace pendra::test {
namespace {

struct Guarded {
    const char* path;
    const char* seed; // a text that is taken, which the test changes
};

const Guarded guards[] = {
    {"/bramble/tempdirecory", "/tmp/zep-1_2.d"},
    {"/bramble/scriptdirecory", "/usr/share/zep,1:2@3%4=5+6"},
    {"/fwupgradeinfo/fwupgradefn", "upld.bin"},
    {"/fwupgradeinfo/currfwfilename", "..."},
    {"/fwupgradeinfo/urlgetcmd", "wget -T 5 -O \"$savefn\" \"$url\" -q"},
    {"/fwupgradeinfo/newfw/fileurl", "https://fw.example/a?b=1&c=(2)[3]^~!#%d"},
    {"/fwupgradeinfo/newfw/notesurl", "http://x"},
    {"/runtime/easyroaming/deauthsta/ifname", "rai0"},
    {"/runtime/easyroaming/deauthsta/mac", "02:a1:B2:33:44:fF"},
};

class GuardAgreement : public testing::TestWithParam<Guarded> {
  protected:
    GuardAgreement() {
        store(directory_.file("tree"), "");
        EXPECT_EQ(flatTreeOpen(directory_.file("tree").c_str()), 0);
        flatTreeBegin(); // what is taken stays in memory
    }
    // A few bytes of any kind but NUL and line ends put in, taken out and replaced.
    std::string changed(std::string text) {
        for (unsigned changes = random_() % 4; changes > 0; changes--) {
            const size_t at = random_() % (text.size() + 1);
            const std::string byte(1, someByte());
            text.replace(at, random_() % 2, random_() % 3 == 0 ? "" : byte);
        }
        return text;
    }
    void expectAgreement(const std::string& text) {
        const char* path = GetParam().path;
        const bool isTaken = tree::guardAgainst(path, text) == nullptr;
        EXPECT_EQ(xset_str(text.c_str(), path) == 0, isTaken) << path << "=" << testing::PrintToString(text);
        (isTaken ? taken_ : refused_)++;
    }
    int taken_ = 0;
    int refused_ = 0;

  private:
    char someByte() {
        const auto byte = static_cast<char>(random_() % (random_() % 8 == 0 ? 256 : 127));
        return byte == '\0' || byte == '\n' || byte == '\r' ? '.' : byte;
    }
    Scratch directory_;
    std::mt19937 random_{1};
};

TEST_P(GuardAgreement, ChangedText_IsTakenByBothOrByNone) {
    for (int i = 0; i < 5000; i++)
        expectAgreement(changed(GetParam().seed));
    EXPECT_GT(taken_, 100);
    EXPECT_GT(refused_, 100);
}

TEST_P(GuardAgreement, TextOfAnyLength_IsTakenByBothOrByNone) {
    std::string text = GetParam().seed;
    for (; text.size() < XNODE_TEXT_MAX; text += "0")
        expectAgreement(text);
    EXPECT_GT(taken_, 0);
}

TEST_P(GuardAgreement, DotsAndNothing_AreTakenByBothOrByNone) {
    for (const char* text : {"", ".", "..", "...", "/", "//", "/..", "\"\"", "\"", "$url", "\"$url", "\"$url\"$savefn"})
        expectAgreement(text);
}

INSTANTIATE_TEST_SUITE_P(Guards, GuardAgreement, testing::ValuesIn(guards),
                         [](const auto& row) { return "Node" + std::to_string(row.index); });

} // namespace
} // namespace pendra::test
