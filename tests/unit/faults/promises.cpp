#include "promises.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "unit/fwupgrade/list_document.h"

namespace pendra::test {
namespace {

struct Case {
    const Hit& hit;
    const Outcome& undisturbed;
    const Outcome& got;
    Walker& walker;
};

constexpr const char* kNoConsole = "open /proc/tc3162/dbg_msg fail\n";

void expectSameRecord(const std::string& expected, const std::string& got) {
    const auto differs = std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
    EXPECT_EQ(expected.end() - expected.begin(), differs.first - expected.begin()) << "the record differs there";
}

void expectAnswered(const Case& at, const std::string& answer) {
    EXPECT_EQ(answer, at.got.answer);
}

// ---- promises ----

// Nobody notices: the log, its console, and what cannot be helped.
void unseen(const Case& at) {
    expectSame(at.undisturbed, at.got);
    expectSameRecord(at.undisturbed.record, at.got.record);
}

// The console says on standard output that it is not there.
void consoleMissing(const Case& at) {
    Outcome expected = at.undisturbed;
    expected.said += kNoConsole;
    expectSame(expected, at.got);
    expectSameRecord(expected.record, at.got.record);
}

// The event that the call would have been.
std::string lostEvent(const Call& call) {
    if (call.symbol == "system") return "run " + call.detail;
    if (call.symbol == "xdel") return "del " + call.detail;
    if (call.symbol == "xset_str" || call.symbol == "xset_int") return "set " + call.detail + "=";
    return call.symbol + " ";
}

Events withoutEvent(Events events, const Hit& hit) {
    const std::string lost = lostEvent(hit.call);
    long left = hit.number;
    const auto found = std::find_if(events.begin(), events.end(),
                                    [&](const std::string& event) { return event.rfind(lost, 0) == 0 && --left == 0; });
    EXPECT_NE(events.end(), found) << "no event " << lost;
    if (found != events.end()) events.erase(found);
    return events;
}

// Its effect is missing; everything else happens as ever, and the answer is that of a success. That is so for commands,
// whose status nobody looks at, and for the tree: whoever opened a transaction around the call learns of it at its end.
void lost(const Case& at) {
    EXPECT_EQ(at.undisturbed.answer, at.got.answer);
    EXPECT_EQ(withoutEvent(at.undisturbed.events, at.hit), at.got.events);
    expectSameRecord(at.undisturbed.record, at.got.record);
}

// A refusal or a success, and nothing between: the result document tells the record's code, and no script runs behind a
// refusal.
void settled(const Case& at) {
    const std::string word = "result=";
    const size_t start = at.got.answer.find(word);
    if (start == std::string::npos) return;
    const std::string code =
        at.got.answer.substr(start + word.size(), at.got.answer.find(' ', start) - start - word.size());
    std::string written;
    bool ranScript = false;
    for (const std::string& event : at.got.events) {
        if (event.rfind("run echo ' <ZepSetResult>", 0) == 0) written = event;
        ranScript = ranScript || event.find(".sh") != std::string::npos;
    }
    EXPECT_EQ(0U, written.find("run echo ' <ZepSetResult>" + code + "</ZepSetResult>'")) << code << ": " << written;
    EXPECT_FALSE(ranScript && code != "0");
}

// A node that cannot be read is one that is absent. A node that is read more than once is absent one time only: that is
// nobody's device, and it must do for it to end in order.
void absent(const Case& at) {
    long reads = 0;
    const Outcome expected = at.walker.walkWithout(at.hit.call.detail, reads);
    if (reads > 1 || at.hit.number > 1) return settled(at);
    EXPECT_EQ(expected.answer, at.got.answer);
    EXPECT_EQ(expected.events, at.got.events);
    EXPECT_EQ(expected.said, at.got.said);
    expectSameRecord(expected.record, at.got.record);
}

// ---- promises of one road ----

// A client that there is no memory for is not in the list; the caller cannot tell.
void loginWithoutEntry(const Case& at) {
    expectAnswered(at, "check=0 clients= admitted=-1");
}

void clientsWithoutEntry(const Case& at) {
    expectAnswered(at, at.hit.number == 1 ? "1 1 1 10.0.0.3,10.0.0.2 found=1 deleted=1 left=10.0.0.3"
                                          : "1 1 0 10.0.0.2 found=0 deleted=1 left=");
}

// The list holds nobody whose time could be over.
void nobodyExpires(const Case& at) {
    expectAnswered(at, "admitted=-1 left=");
}

// ---- a clock that cannot be read stands at 0 ----

// A key is then one of another slot, and a client's time is over at once: nobody is admitted who would not be.
void lessAdmitted(const Case& at) {
    const std::string answers[] = {at.undisturbed.answer, "check=-1 clients= admitted=-1",
                                   "check=0 clients=10.0.0.2 admitted=-1"};
    EXPECT_NE(std::end(answers), std::find(std::begin(answers), std::end(answers), at.got.answer)) << at.got.answer;
}

void keyOfFirstSlot(const Case& at) {
    const std::string first = MD5Encryption("010.0.0.2adminsecret");
    const std::string now = MD5Encryption("5010.0.0.2adminsecret");
    const bool whole = at.hit.number == 1;
    expectAnswered(at, (whole ? first : now) + " " + (whole ? now : first).substr(0, 8));
}

// At 0 no time is over yet. The kernel's call knows no failure but a bad address.
void notYetExpired(const Case& at) {
    const bool atCheck = at.got.answer == "admitted=0 left=10.0.0.2";
    EXPECT_TRUE(atCheck || at.got.answer == at.undisturbed.answer) << at.got.answer;
}

void noTimer(const Case& at) {
    expectAnswered(at, at.hit.number == 1 ? "0 2" : "4 0");
}

void commandStatus(const Case& at) {
    std::string statuses[] = {"0", "0", "0"};
    const Events& events = at.undisturbed.events;
    const auto ran = std::find(events.begin(), events.end(), "run " + at.hit.call.detail);
    ASSERT_NE(events.end(), ran);
    statuses[ran - events.begin()] = "-1";
    expectAnswered(at, statuses[0] + " " + statuses[1] + " " + statuses[2]);
    EXPECT_EQ(withoutEvent(events, at.hit), at.got.events);
}

// A driver that cannot be asked ends the update; the stations written before stay.
void updateEnds(const Case& at) {
    const bool atFirstRadio = at.hit.call.symbol == "ioctl" ? at.hit.call.detail == "ra0" : at.hit.number == 1;
    Events expected = at.undisturbed.events;
    const auto end = std::find_if(expected.begin(), expected.end(), [&](const std::string& event) {
        return event.find(atFirstRadio ? "/sta:1/" : "/sta:3/") != std::string::npos;
    });
    ASSERT_NE(expected.end(), end);
    expected.erase(end, expected.end());
    EXPECT_EQ(expected, at.got.events);
}

// The radio is left out of that look.
void radioNotLookedAt(const Case& at) {
    const bool is24 = at.hit.call.detail.find("2.4") != std::string::npos;
    expectAnswered(at, !is24 ? "11" : at.hit.number == 1 ? "01" : "10");
}

// The request stays as it is; the station has been disconnected all the same.
void requestStays(const Case& at) {
    expectAnswered(at, "not handled");
    EXPECT_EQ(withoutEvent(at.undisturbed.events, at.hit), at.got.events);
}

// ---- the logger's parts ----

constexpr const char* kLines[] = {"one\n", "two\n", "three\n"};

// What the logger's road answers when one of its lines has another stamp or text in the file, or on the console.
std::string loggedWith(long number, const std::string& inFile, const std::string& onConsole) {
    std::string file;
    std::string console;
    for (long line = 1; line <= 3; line++) {
        file += line == number ? inFile : std::string("1000: ") + kLines[line - 1];
        console += line == number ? onConsole : std::string("DL> ") + kLines[line - 1];
    }
    return file + "|" + console;
}

std::string lineOf(const Case& at) {
    return kLines[at.hit.number - 1];
}

void lineNotInFile(const Case& at) {
    expectAnswered(at, loggedWith(at.hit.number, "", "DL> " + lineOf(at)));
}

void lineNotOnConsole(const Case& at) {
    expectAnswered(at, loggedWith(at.hit.number, "1000: " + lineOf(at), ""));
    EXPECT_EQ(at.hit.call.symbol == "fopen" ? kNoConsole : "", at.got.said);
}

void noStamp(const Case& at) {
    expectAnswered(at, loggedWith(at.hit.number, lineOf(at), "DL> " + lineOf(at)));
}

void stampedWithZero(const Case& at) {
    expectAnswered(at, loggedWith(at.hit.number, "0: " + lineOf(at), "DL> " + lineOf(at)));
}

void rotatedWithZero(const Case& at) {
    expectAnswered(at, "0: over the limit\n");
    EXPECT_EQ(at.undisturbed.events, at.got.events);
}

void noText(const Case& at) {
    const std::string& text = at.hit.call.detail;
    const bool onConsole = text.rfind("DL> ", 0) == 0;
    const std::string line = onConsole ? text.substr(4) : text;
    const long number = std::find(std::begin(kLines), std::end(kLines), line) - std::begin(kLines) + 1;
    expectAnswered(at, loggedWith(number, onConsole ? "1000: " + line : "1000: ", onConsole ? "" : "DL> " + line));
}

// A file whose size is not known is not rotated.
void notRotated(const Case& at) {
    EXPECT_EQ(at.undisturbed.answer, at.got.answer);
    EXPECT_EQ(Events{}, at.got.events);
}

// One of the two, file or console, does without the line.
void rotatedWithoutLine(const Case& at) {
    EXPECT_EQ(at.undisturbed.events, at.got.events);
}

// ---- firmware ----

void listNotFetched(const Case& at) {
    expectAnswered(at, " 0 -5 -5 -5");
}

// An empty document has no root.
void listBroken(const Case& at) {
    expectAnswered(at, " 0 -1 -1 -1");
}

// A poll that cannot read the process list changes nothing; the next one can.
void polledTwice(const Case& at) {
    expectAnswered(at, " 0 2 3 3 4 5");
}

// The list document is read once, the process list behind it.
void readNothing(const Case& at) {
    at.hit.number == 1 ? listBroken(at) : polledTwice(at);
}

bool wasRun(const Outcome& outcome, const std::string& command) {
    const Events& events = outcome.events;
    return std::find(events.begin(), events.end(), "run " + command) != events.end();
}

bool happened(const Outcome& outcome, const std::string& beginning) {
    return std::any_of(outcome.events.begin(), outcome.events.end(),
                       [&](const std::string& event) { return event.rfind(beginning, 0) == 0; });
}

// An image that is missing or refused is removed, and nothing is armed.
void handOverFails(const Case& at) {
    expectAnswered(at, " 0 2 3 4 -2");
    EXPECT_TRUE(wasRun(at.got, "rm " + at.hit.directory + "/upld.bin"));
    for (const char* event : {"tcapi_set", "tcapi_commit", "setitimer", "signal"})
        EXPECT_FALSE(happened(at.got, event)) << event;
}

// The image is looked at by the report of each status from 2 on, and, fourth, by the hand-over.
void imageNotSeen(const Case& at) {
    constexpr long kHandOver = 4;
    if (at.hit.number == kHandOver) {
        EXPECT_EQ("stat: " + std::string(std::strerror(EACCES)) + "\n", at.got.said);
        return handOverFails(at);
    }
    Events expected = at.undisturbed.events;
    long left = at.hit.number < kHandOver ? at.hit.number : at.hit.number - 1;
    for (std::string& event : expected) {
        const size_t size = event.find("5.00 K");
        if (size != std::string::npos && --left == 0) event.replace(size, 6, "0");
    }
    EXPECT_EQ(expected, at.got.events);
    expectAnswered(at, at.undisturbed.answer);
}

// An address that could not be stored is not there when it is to be fetched.
void addressLost(const Case& at) {
    const bool isImage = at.hit.call.detail == kFileNode;
    expectAnswered(at, at.undisturbed.answer);
    EXPECT_FALSE(happened(at.got, "set " + at.hit.call.detail));
    const std::string target = at.hit.directory + (isImage ? "/upld.bin" : "/zepfwnotes.xml");
    EXPECT_TRUE(wasRun(at.got, "get \"" + target + "\" \"\" &"));
}

// The notes are fetched from nowhere, and nothing else is different.
void notesNotRead(const Case& at) {
    expectAnswered(at, at.undisturbed.answer);
    EXPECT_EQ(at.undisturbed.tree, at.got.tree);
    EXPECT_TRUE(wasRun(at.got, "get \"" + at.hit.directory + "/zepfwnotes.xml\" \"\" &"));
}

// The report shows no version, or the image is fetched from nowhere; the check before the flash is the safeguard.
void imageAddressNotRead(const Case& at) {
    expectAnswered(at, at.undisturbed.answer);
    EXPECT_EQ(at.undisturbed.tree, at.got.tree);
    EXPECT_EQ(at.undisturbed.events.size(), at.got.events.size());
}

void refuseImage(const Case& at, const char* step, int error) {
    expectAnswered(at, "0 Can't " + std::string(step) + " " + at.hit.directory + "/upld.bin: " + std::strerror(error) +
                           "\n own handler");
}

// A failed open shows up at the next step.
void cannotOpen(const Case& at) {
    refuseImage(at, "stat", EBADF);
}

void cannotStat(const Case& at) {
    refuseImage(at, "stat", EIO);
}

void cannotMap(const Case& at) {
    refuseImage(at, "mmap", ENOMEM);
}

// Only the one that cannot be put back is lost.
void handlerStays(const Case& at) {
    expectAnswered(at, at.hit.number == 1 ? "1  own handler" : "1  other handler");
}

void noTable(const Case& at) {
    expectAnswered(at, "0 0 -1 0");
    EXPECT_EQ("mtd support not enable?" + at.undisturbed.said, at.got.said);
}

// The table ends where it cannot be read on.
void tableEnds(const Case& at) {
    expectAnswered(at, "0 0 -1 0");
    EXPECT_EQ(at.undisturbed.events, at.got.events);
}

void noVersion(const Case& at) {
    expectAnswered(at, "16646144 0 -1 -1");
    EXPECT_FALSE(happened(at.got, "run nvram_set"));
    EXPECT_EQ(at.undisturbed.said, at.got.said);
}

// The line of the kernel is the last that is read.
void lineNotRead(const Case& at) {
    constexpr long kVersion = 4;
    at.hit.number == kVersion ? noVersion(at) : tableEnds(at);
}

// A line that is too long is read away character by character; an error there ends it.
void rereadAtOnce(const Case& at) {
    expectAnswered(at, at.undisturbed.answer);
    EXPECT_EQ(at.undisturbed.events, at.got.events);
}

void flashCommandLost(const Case& at) {
    const bool bootloader = at.hit.call.detail.rfind("/bin/mtd_write", 0) == 0;
    expectAnswered(at, bootloader ? "16646144 -1 -1 0" : "16646144 0 -1 -1");
    EXPECT_EQ(withoutEvent(at.undisturbed.events, at.hit), at.got.events);
}

void messageLost(const Case& at) {
    EXPECT_EQ(at.undisturbed.answer, at.got.answer);
    EXPECT_EQ(at.undisturbed.events, at.got.events);
    EXPECT_LT(at.got.said.size(), at.undisturbed.said.size());
}

// ---- who promises what: the first row that fits ----

struct Row {
    const char* road;   // null: any
    const char* symbol; // "xset" stands for both
    const char* detail; // a part of it; null: any
    void (*promise)(const Case& at);
};

constexpr Row kPromises[] = {
    {"KeyLogin", "calloc", nullptr, loginWithoutEntry},
    {"ClientList", "calloc", nullptr, clientsWithoutEntry},
    {"Timers", "calloc", nullptr, noTimer},
    {"ExpiredClient", "calloc", nullptr, nobodyExpires},
    {"KeyLogin", "sysinfo", nullptr, lessAdmitted},
    {"KeyMaking", "sysinfo", nullptr, keyOfFirstSlot},
    {"ExpiredClient", "sysinfo", nullptr, notYetExpired},
    {"TracedDisconnect", "calloc", nullptr, unseen},
    {"TemporaryXml", "system", nullptr, commandStatus},
    {"Stations", "socket", nullptr, updateEnds},
    {"Stations", "ioctl", nullptr, updateEnds},
    {"Disconnect", "xdel", nullptr, requestStays},
    {"TracedDisconnect", "xdel", nullptr, requestStays},
    {"ChannelWatch", "xget_int", nullptr, radioNotLookedAt},

    {"Logger", "fopen", "a ", lineNotInFile},
    {"Logger", "fopen", "w ", lineNotOnConsole},
    {"Logger", "fprintf", nullptr, noStamp},
    {"Logger", "fputs", nullptr, noText},
    {"Logger", "sysinfo", nullptr, stampedWithZero},
    {"LogRotation", "sysinfo", nullptr, rotatedWithZero},
    {"LogRotation", "stat", nullptr, notRotated},
    {"LogRotation", "fopen", nullptr, rotatedWithoutLine},
    {"LogRotation", "fprintf", nullptr, rotatedWithoutLine},
    {"LogRotation", "fputs", nullptr, rotatedWithoutLine},

    {"FirmwareUpgrade", "fopen", "/PX.xml", listNotFetched},
    {"FirmwareUpgrade", "fopen", "/zepfwtmp.txt", polledTwice},
    {"FirmwareUpgrade", "fread", nullptr, readNothing},
    {"FirmwareUpgrade", "xset_str", "/newfw/", addressLost},
    {"FirmwareUpgrade", "xget_str", kNotesNode, notesNotRead},
    {"FirmwareUpgrade", "xget_str", kFileNode, imageAddressNotRead},
    {"FirmwareUpgrade", "stat", "/upld.bin", imageNotSeen},
    {"FirmwareUpgrade", "tcapi_set", nullptr, handOverFails},
    {"ImageCheck", "open", nullptr, cannotOpen},
    {"ImageCheck", "fstat", nullptr, cannotStat},
    {"ImageCheck", "mmap", nullptr, cannotMap},
    {"ImageCheck", "sigaction", nullptr, handlerStays},
    {"FlashHelpers", "fopen", "/proc/mtd", noTable},
    {"FlashHelpers", "fopen", "/proc/version", noVersion},
    {"FlashHelpers", "fgets", nullptr, lineNotRead},
    {"FlashHelpers", "fgetc", nullptr, rereadAtOnce},
    {"FlashHelpers", "system", nullptr, flashCommandLost},
    {"FlashHelpers", "fwrite", nullptr, messageLost},
    {"FlashHelpers", "fputs", nullptr, messageLost},

    {nullptr, "fopen", "/proc/tc3162/dbg_msg", consoleMissing},
    {nullptr, "fopen", "_log.txt", unseen},
    {nullptr, "stat", "_log.txt", unseen},
    {nullptr, "fputs", nullptr, unseen},
    {nullptr, "fprintf", nullptr, unseen},
    {nullptr, "fclose", nullptr, unseen},
    {nullptr, "close", nullptr, unseen},
    {nullptr, "munmap", nullptr, unseen},
    {nullptr, "sysinfo", nullptr, unseen}, // it only stamps the log there
    {nullptr, "time", nullptr, unseen},    // the session id is any eight digits
    {nullptr, "system", nullptr, lost},
    {nullptr, "xset_str", nullptr, lost},
    {nullptr, "xset_int", nullptr, lost},
    {nullptr, "xdel", nullptr, lost},
    {nullptr, "signal", nullptr, lost},
    {nullptr, "setitimer", nullptr, lost},
    {nullptr, "tcapi_commit", nullptr, lost},
    {nullptr, "xget_str", nullptr, absent},
    {nullptr, "xget_int", nullptr, absent},
};

bool fits(const Row& row, const Road& road, const Call& call) {
    return (row.road == nullptr || std::strcmp(row.road, road.name) == 0) && call.symbol == row.symbol &&
           (row.detail == nullptr || call.detail.find(row.detail) != std::string::npos);
}

} // namespace

void expectSame(const Outcome& expected, const Outcome& got) {
    EXPECT_EQ(expected.answer, got.answer);
    EXPECT_EQ(expected.events, got.events);
    EXPECT_EQ(expected.tree, got.tree);
    EXPECT_EQ(expected.said, got.said);
}

void expectPromise(const Road& road, const Hit& hit, const Outcome& undisturbed, const Outcome& got, Walker& walker) {
    for (const Row& row : kPromises)
        if (fits(row, road, hit.call)) return row.promise({hit, undisturbed, got, walker});
    ADD_FAILURE() << "nothing is promised for a failing " << hit.call.symbol;
}

} // namespace pendra::test
