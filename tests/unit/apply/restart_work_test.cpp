// From restart flags to sync ids and the wait of the client.
#include "apply/external_calls.h"
#include "record.h"

namespace pendra::test {
namespace {

class RestartWork : public DeviceTest {
  protected:
    void expectWork(int32_t ids, int32_t seconds) {
        zepXmlData.exeflag = 0;
        zepXmlData.exeWaitSec = 77;
        compute_ExeFlag();
        EXPECT_EQ(ids, zepXmlData.exeflag);
        EXPECT_EQ(seconds, zepXmlData.exeWaitSec);
        EXPECT_EQ(Events{}, device().events);
    }
};

TEST_F(RestartWork, NoFlag_IsNoWork) {
    expectWork(0, 0);
}

TEST_F(RestartWork, EachFlag_HasItsIdAndWait) {
    const struct {
        void (*raise)();
        int32_t id;
        int32_t seconds;
    } rows[] = {
        {[] { recordUpLink().restart = 1; }, 1, 20},
        {[] { recordRadio(kBand24).restart = 1; }, 4, 20},
        {[] { recordRadio(kBand5).restart = 1; }, 8, 20},
        {[] { recordDevice().deviceChanged = 1; }, 16, 5},
        {[] { zepXmlData.saveflag = 1; }, 32, 0},
        {[] { recordDevice().wlanSurveyRestart = 1; }, 64, 3},
        {[] { recordDevice().safetyWdn.restart = 1; }, 0, 0},
        {[] { recordDevice().roamingRestart = 1; }, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        zepXmlData = {};
        row.raise();
        expectWork(row.id, row.seconds);
    }
}

TEST_F(RestartWork, UplinkAndBothRadios_Take60Seconds) {
    recordUpLink().restart = recordRadio(kBand24).restart = recordRadio(kBand5).restart = 1;
    expectWork(13, 60);
    zepXmlData.saveflag = 1;
    expectWork(45, 60);
    recordDevice().deviceChanged = 1;
    expectWork(61, 65);
}

TEST_F(RestartWork, ChangeOfTheDeviceName_IsIds16And48) {
    recordDevice().deviceChanged = 1;
    expectWork(16, 5);
    zepXmlData.saveflag = 1;
    expectWork(48, 5);
}

TEST_F(RestartWork, Survey_ExcludesEverythingElse) {
    recordUpLink().restart = recordRadio(kBand24).restart = recordRadio(kBand5).restart = 1;
    recordDevice().deviceChanged = zepXmlData.saveflag = 1;
    recordDevice().wlanSurveyRestart = 1;
    expectWork(64, 3);
}

TEST_F(RestartWork, SurveyFlagWhenCloning_IsNotLookedAt) {
    zepXmlData.apCloningOnly = 1;
    recordDevice().wlanSurveyRestart = 1;
    expectWork(0, 0);
    recordUpLink().restart = 1;
    expectWork(1, 20);
}

TEST_F(RestartWork, PendingSet_BecomesThePreviousOne) {
    zepXmlData.exeflag = 5;
    zepXmlData.pre_exeflag = 16;
    recordDevice().deviceChanged = 1;
    compute_ExeFlag();
    EXPECT_EQ(16, zepXmlData.exeflag);
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
    EXPECT_EQ(5, zepXmlData.exeWaitSec);
}

TEST_F(RestartWork, PendingSetWithoutNewWork_IsMovedAndCleared) {
    zepXmlData.exeflag = 5;
    compute_ExeFlag();
    EXPECT_EQ(0, zepXmlData.exeflag);
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
    EXPECT_EQ(0, zepXmlData.exeWaitSec);
}

TEST_F(RestartWork, EmptySet_KeepsThePreviousOne) {
    zepXmlData.pre_exeflag = 9;
    compute_ExeFlag();
    EXPECT_EQ(9, zepXmlData.pre_exeflag);
}

TEST_F(RestartWork, PendingSetBeforeASurvey_IsMovedToo) {
    zepXmlData.exeflag = 12;
    recordDevice().wlanSurveyRestart = 1;
    compute_ExeFlag();
    EXPECT_EQ(64, zepXmlData.exeflag);
    EXPECT_EQ(12, zepXmlData.pre_exeflag);
}

TEST_F(RestartWork, Result_IsLoggedAtLevel6) {
    daemon_log_level = 6;
    recordUpLink().restart = zepXmlData.saveflag = 1;
    expectWork(33, 20);
    EXPECT_EQ("1000: 1000:exeflag=33, exeWaitSec=20\n", logText());
}

TEST_F(RestartWork, SurveyResult_IsLoggedAtLevel6) {
    daemon_log_level = 6;
    recordDevice().wlanSurveyRestart = 1;
    expectWork(64, 3);
    EXPECT_EQ("1000: 1000:exeflag=64, exeWaitSec=3\n", logText());
}

TEST_F(RestartWork, Level5_LeavesNoTrace) {
    recordUpLink().restart = 1;
    expectWork(1, 20);
    EXPECT_EQ("", logText());
}

// ---- waits ----

class WaitSeconds : public DeviceTest {};

TEST_F(WaitSeconds, EachId_HasItsWait) {
    const struct {
        uint32_t id;
        int32_t seconds;
    } rows[] = {{1, 20}, {4, 20}, {8, 20}, {16, 5}, {32, 6}, {64, 3}, {128, 180}, {256, 1}, {512, 1}};
    for (const auto& row : rows)
        EXPECT_EQ(row.seconds, get_ExternalCall_UseSec(row.id)) << row.id;
    EXPECT_EQ("", logText());
}

TEST_F(WaitSeconds, UnknownId_IsZeroAndLogged) {
    const struct {
        uint32_t id;
        const char* text;
    } rows[] = {{0, "0"},
                {2, "2"},
                {3, "3"},
                {5, "5"},
                {13, "13"},
                {48, "48"},
                {640, "640"},
                {1024, "1024"},
                {0x7FFFFFFFu, "2147483647"},
                {0x80000000u, "-2147483648"},
                {0xFFFFFFFFu, "-1"}};
    std::vector<std::string> lines;
    for (const auto& row : rows) {
        EXPECT_EQ(0, get_ExternalCall_UseSec(row.id)) << row.id;
        lines.push_back(std::string("[get_ExternalCall_UseSec]Unknow sync_id=") + row.text);
    }
    EXPECT_EQ(lines, logLines());
}

TEST_F(WaitSeconds, UnknownId_IsLoggedFromLevel4) {
    daemon_log_level = 3;
    EXPECT_EQ(0, get_ExternalCall_UseSec(5));
    EXPECT_EQ("", logText());
    daemon_log_level = 4;
    EXPECT_EQ(0, get_ExternalCall_UseSec(5));
    EXPECT_EQ("1000: [get_ExternalCall_UseSec]Unknow sync_id=5\n", logText());
}

} // namespace
} // namespace pendra::test
