#define _POSIX_C_SOURCE 200809L

#include "platform_checks.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include "pendra/platform.h"

#define COUNT_OF(array) (sizeof(array) / sizeof(array)[0])

/** What a check finds wrong is printed above its name. */
#define EXPECT(condition) expect(condition, #condition, __LINE__)

/** Room for what a faulty platform writes behind the buffer's end. */
enum { roomyText = 2 * XNODE_TEXT_MAX };

static int faults;

static void expect(int isTrue, const char* what, int line) {
    if (isTrue) return;
    faults++;
    printf("       line %d: %s\n", line, what);
}

struct Check {
    const char* name;
    void (*run)(void);
};

/* --- Helpers --- */

static int readsAs(const char* path, const char* text) {
    char found[roomyText] = "?";
    return xget_str(found, "%s", path) == 0 && strcmp(found, text) == 0;
}

static int isAbsent(const char* path) {
    char found[roomyText] = "?";
    return xget_str(found, "%s", path) < 0 && found[0] == '\0' && xget_int("%s", path) < 0;
}

static int storesAndReads(const char* text) {
    return xset_str(text, "/conformance/text") == 0 && readsAs("/conformance/text", text);
}

/* --- The tree --- */

static void checkTexts(void) {
    EXPECT(storesAndReads("Kitchen"));
    EXPECT(storesAndReads("Living Room"));
    EXPECT(storesAndReads("Hall"));
    EXPECT(storesAndReads("")); /* the node stays, with an empty text */
}

static void checkBytes(void) {
    EXPECT(storesAndReads(" blanks at both ends "));
    EXPECT(storesAndReads("a=b#c;d&e'f\"g`h$i\\j%s%d/k:l,m"));
    EXPECT(
        storesAndReads("K\xc3\xbc"
                       "che \xe4\xb8\xad"));
    EXPECT(storesAndReads("\ttab"));
}

/** A tree may refuse a line end; it must not change it, nor what stands beside it. */
static void checkLineEnds(void) {
    xset_str("old", "/conformance/text");
    xset_str("beside", "/conformance/zzz");
    const int isStored = xset_str("a\nb\r/conformance/zzz=c", "/conformance/text") == 0;
    EXPECT(readsAs("/conformance/text", isStored ? "a\nb\r/conformance/zzz=c" : "old"));
    EXPECT(readsAs("/conformance/zzz", "beside"));
}

static void checkAbsent(void) {
    EXPECT(isAbsent("/conformance/nothing"));
    xset_str("x", "/conformance/text/below");
    EXPECT(isAbsent("/conformance/text")); /* a node below makes none above */
    EXPECT(isAbsent("/conformance/text/below/more"));
}

static void checkPathFormats(void) {
    xset_str("m", "/conformance/radio2.4:1/rule:12/mac");
    xset_int(7, "/conformance/radio2.4:1/rule:12/active");
    char text[roomyText] = "?";
    EXPECT(xget_str(text, "/conformance/radio%s:1/rule:%d/mac", "2.4", 12) == 0);
    EXPECT(strcmp(text, "m") == 0);
    EXPECT(xget_int("/conformance/radio%s:%d/rule:%d/active", "2.4", 1, 12) == 7);
    EXPECT(xget_int("/conformance/radio%s:1/rule#", "2.4") == 1);
}

static void checkPlainPaths(void) {
    EXPECT(xset_str("x", "/conformance/100%d") == 0);
    EXPECT(readsAs("/conformance/100%d", "x"));
    EXPECT(xset_int(5, "/conformance/100%s") == 0);
    EXPECT(xget_int("%s", "/conformance/100%s") == 5);
    EXPECT(xdel("/conformance/100%d") == 0);
    EXPECT(isAbsent("/conformance/100%d"));
}

static void checkLetterCase(void) {
    xset_str("small", "/conformance/routerenbl");
    xset_str("mixed", "/conformance/RouterEnbl");
    EXPECT(readsAs("/conformance/routerenbl", "small"));
    EXPECT(readsAs("/conformance/RouterEnbl", "mixed"));
    EXPECT(isAbsent("/conformance/ROUTERENBL"));
}

static void checkNumbers(void) {
    static const int numbers[] = {0, 1, -70, 65535, INT_MAX, INT_MIN};
    for (size_t i = 0; i < COUNT_OF(numbers); i++) {
        char text[16];
        snprintf(text, sizeof text, "%d", numbers[i]);
        EXPECT(xset_int(numbers[i], "/conformance/number") == 0);
        EXPECT(readsAs("/conformance/number", text));
        EXPECT(xget_int("/conformance/number") == numbers[i]);
    }
    xset_str("11", "/conformance/number");
    EXPECT(xget_int("/conformance/number") == 11);
}

static void checkLongestText(void) {
    char longest[XNODE_TEXT_MAX + 2];
    memset(longest, 't', sizeof longest);
    longest[XNODE_TEXT_MAX - 1] = '\0';
    EXPECT(storesAndReads(longest));

    /* One byte more may be refused or cut, but must not be written behind the buffer. */
    longest[XNODE_TEXT_MAX - 1] = 't';
    longest[XNODE_TEXT_MAX] = '\0';
    xset_str(longest, "/conformance/text");
    char text[roomyText];
    text[XNODE_TEXT_MAX] = '!';
    xget_str(text, "/conformance/text");
    EXPECT(memchr(text, '\0', XNODE_TEXT_MAX) != NULL);
    EXPECT(text[XNODE_TEXT_MAX] == '!');
}

static void checkLongestPath(void) {
    char path[128]; /* the library's own longest */
    memset(path, 'p', sizeof path);
    memcpy(path, "/conformance/", 13);
    path[sizeof path - 1] = '\0';
    EXPECT(xset_str("x", path) == 0);
    EXPECT(readsAs(path, "x"));
    path[sizeof path - 2] = '\0';
    EXPECT(isAbsent(path));
}

static void checkCounts(void) {
    EXPECT(xget_int("/conformance/sta#") <= 0);
    xset_str("a", "/conformance/sta:1/mac");
    xset_str("a", "/conformance/sta:1/ifname");
    xset_str("b", "/conformance/sta:2/mac");
    EXPECT(xget_int("/conformance/sta#") == 2);
    xset_str("c", "/conformance/sta:10/mac");
    xset_str("d", "/conformance/sta:11"); /* an element may have a text of its own */
    EXPECT(xget_int("/conformance/sta#") == 4);
    xset_str("x", "/conformance/station:1/mac");
    xset_str("x", "/conformance/sta");
    EXPECT(xget_int("/conformance/sta#") == 4);
    EXPECT(xdel("/conformance/sta:11") == 0);
    EXPECT(xdel("/conformance/sta:10") == 0);
    EXPECT(xget_int("/conformance/sta#") == 2);
}

static void checkDeletion(void) {
    xset_str("x", "/conformance/l/sta:1/mac");
    xset_str("x", "/conformance/l/sta:1/deep/er");
    xset_str("1", "/conformance/l/sta:1");
    xset_str("x", "/conformance/l/sta:10/mac");
    xset_str("x", "/conformance/l/sta");
    EXPECT(xdel("/conformance/l/sta:1") == 0);
    EXPECT(isAbsent("/conformance/l/sta:1"));
    EXPECT(isAbsent("/conformance/l/sta:1/mac"));
    EXPECT(isAbsent("/conformance/l/sta:1/deep/er"));
    EXPECT(readsAs("/conformance/l/sta:10/mac", "x"));
    EXPECT(readsAs("/conformance/l/sta", "x"));
    EXPECT(xdel("/conformance/l/sta:1") < 0);
    EXPECT(xdel("/conformance/l") == 0);
    EXPECT(isAbsent("/conformance/l/sta:10/mac"));
}

struct Site {
    char path[64];
    char name[64];
};

static struct Site site(int number) {
    struct Site site;
    snprintf(site.path, sizeof site.path, "/conformance/site:%d/wirelessname", number);
    snprintf(site.name, sizeof site.name, "Network number %d of a full house", number);
    return site;
}

/** Forty access rules of each of two radios, and the survey or the stations beside them. */
static void checkRoom(void) {
    enum { nodes = 240 };
    int stored = 0;
    int found = 0;
    for (int i = 1; i <= nodes; i++)
        stored += xset_str(site(i).name, site(i).path) == 0;
    for (int i = 1; i <= nodes; i++)
        found += readsAs(site(i).path, site(i).name);
    EXPECT(stored == nodes);
    EXPECT(found == nodes);
    EXPECT(xget_int("/conformance/site#") == nodes);
}

/* --- Guards --- */

struct Guarded {
    const char* path;
    const char* taken;
    const char* refused[5];
};

/* Texts that the library puts into shell commands as they are, see docs/security.md. */
static const struct Guarded guards[] = {
    {"/bramble/tempdirecory", "/tmp/zep-1", {"/tmp; reboot", "/tmp/$(reboot)", "/a b", "tmp", "/tmp/`x`"}},
    {"/bramble/scriptdirecory", "/usr/share/zep.d", {"/tmp; reboot", "/tmp|x", "/a b", "bin", "/tmp\nx"}},
    {"/fwupgradeinfo/fwupgradefn", "upld.bin", {"../x", "..", "a b", "a;b", "$(x)"}},
    {"/fwupgradeinfo/currfwfilename", "PB100_FW1.3.1.bin", {"a/b", ".", "a`b`", "a\"b", "a&b"}},
    {"/fwupgradeinfo/urlgetcmd",
     "wget -T 5 -O \"$savefn\" \"$url\"",
     {"wget $url", "wget \"$url", "wget \"$url\"; reboot", "wget \"$(x)\"", "wget \"$url\" > /x"}},
    {"/fwupgradeinfo/newfw/fileurl",
     "https://fw.example/a?b=1&c=(2)",
     {"ftp://fw.example/a", "http://a/\"; reboot", "http://a/$(x)", "http://a/`x`", "http://a/a b"}},
    {"/fwupgradeinfo/newfw/notesurl",
     "http://fw.example/notes.txt",
     {"file:///etc/passwd", "http://a/\"", "http://a/$x", "http://a/\\", "http://a/\nb"}},
    {"/runtime/easyroaming/deauthsta/ifname", "ra0", {"-ra0", "ra0;x", "ra0 x", "$ra0", "abcdefghijklmnop"}},
    {"/runtime/easyroaming/deauthsta/mac",
     "02:a1:B2:33:44:55",
     {"02:a1:b2:33:44:5", "02:a1:b2:33:44:5g", "02-a1-b2-33-44-55", "02:a1:b2:33:44:55 ", "; reboot"}},
};

static void checkGuard(const struct Guarded* guard) {
    const int isTaken = xset_str(guard->taken, guard->path) == 0 && readsAs(guard->path, guard->taken);
    expect(isTaken, guard->path, __LINE__);
    for (size_t i = 0; i < COUNT_OF(guard->refused); i++)
        expect(xset_str(guard->refused[i], guard->path) < 0, guard->refused[i], __LINE__);
    expect(readsAs(guard->path, guard->taken), guard->path, __LINE__);
    expect(xset_str("", guard->path) == 0, guard->path, __LINE__);
}

static void checkGuards(void) {
    for (size_t i = 0; i < COUNT_OF(guards); i++) {
        char before[roomyText];
        const int wasThere = xget_str(before, "%s", guards[i].path) == 0;
        checkGuard(&guards[i]);
        EXPECT((wasThere ? xset_str(before, guards[i].path) : xdel(guards[i].path)) == 0);
    }
}

/* --- The vendor's API --- */

static void formatImagePath(char* path, size_t size) {
    char directory[roomyText];
    char name[roomyText];
    xget_str(directory, "/bramble/tempdirecory");
    xget_str(name, "/fwupgradeinfo/fwupgradefn");
    snprintf(path, size, "%s/%s", directory, name);
}

/** Nothing is flashed: the check wants no image where the library would put one. */
static void checkVendor(void) {
    char image[2 * roomyText];
    struct stat status;
    formatImagePath(image, sizeof image);
    const int isClear = stat(image, &status) != 0 || S_ISDIR(status.st_mode);
    EXPECT(isClear);
    if (!isClear) return;
    EXPECT(tcapi_set("System_Entry", "upgrade_fw", "1") == 0);
    EXPECT(tcapi_commit("System_Entry") != 0);
}

static const struct Check platformChecks[] = {
    {"texts are stored and read back", checkTexts},
    {"every byte of a text is kept", checkBytes},
    {"a line end stays in its text", checkLineEnds},
    {"an absent node reads empty and negative", checkAbsent},
    {"read paths are formats", checkPathFormats},
    {"written paths are plain", checkPlainPaths},
    {"paths compare byte for byte", checkLetterCase},
    {"numbers are decimal texts", checkNumbers},
    {"the longest text fills the buffer", checkLongestText},
    {"the longest path is a node", checkLongestPath},
    {"elements of a list are counted", checkCounts},
    {"a node is deleted with all below it", checkDeletion},
    {"a full house has room", checkRoom},
    {"guarded nodes refuse what a shell would run", checkGuards},
    {"the vendor's API refuses an absent image", checkVendor},
};

/* --- The device --- */

static void checkNodes(void) {
    char text[roomyText];
    xget_str(text, "/sys/user:1/password");
    EXPECT(text[0] != '\0' && strlen(text) <= 63);
    EXPECT(xget_str(text, "/uplink/hardwaresupport") == 0);
}

static void checkRadios(void) {
    static const char* const bands[] = {"2.4", "5"};
    for (size_t i = 0; i < COUNT_OF(bands); i++) {
        const int enabled = xget_int("/lan/wireless%s:1/wlenbl", bands[i]);
        const int isThere = enabled == 0 || enabled == 1 || enabled == 3;
        char channels[roomyText];
        xget_str(channels, "/lan/wireless%s:1/channellist", bands[i]);
        EXPECT(!isThere || channels[0] != '\0');
    }
}

static void checkTemporaryDirectory(void) {
    char directory[roomyText];
    char path[roomyText + sizeof "/conformance"];
    xget_str(directory, "/bramble/tempdirecory");
    EXPECT(directory[0] == '/');
    EXPECT(strlen(directory) <= 21); /* the commands of the result document are bounded */
    snprintf(path, sizeof path, "%s/conformance", directory);
    FILE* file = fopen(path, "w");
    EXPECT(file != NULL);
    if (file == NULL) return;
    fclose(file);
    EXPECT(remove(path) == 0);
}

static void checkScripts(void) {
    static const char* const scripts[] = {"uplink.sh", "wan_resync.sh", "wlan_resync.sh", "wlan5g_resync.sh",
                                          "device_resync.sh"};
    char directory[roomyText];
    xget_str(directory, "/bramble/scriptdirecory");
    for (size_t i = 0; i < COUNT_OF(scripts); i++) {
        char path[roomyText + 32];
        snprintf(path, sizeof path, "%s/%s", directory, scripts[i]);
        expect(access(path, X_OK) == 0, path, __LINE__);
    }
}

static int isProgram(const char* name) {
    char command[64];
    snprintf(command, sizeof command, "command -v %s >/dev/null", name);
    return system(command) == 0;
}

/** A device that offers no firmware upgrade needs three programs less. */
static void checkPrograms(void) {
    static const char* const programs[] = {"echo", "cp", "rm", "ps", "grep", "wget"};
    char feature[roomyText];
    xget_str(feature, "/bramble/fwupgrade");
    const size_t count = strcmp(feature, "0") == 0 ? 3 : COUNT_OF(programs);
    for (size_t i = 0; i < count; i++)
        expect(isProgram(programs[i]), programs[i], __LINE__);
}

static void checkClock(void) {
    struct sysinfo information;
    EXPECT(sysinfo(&information) == 0 && information.uptime > 0);
}

static const struct Check deviceChecks[] = {
    {"the nodes that every device needs are there", checkNodes},
    {"each radio has its channels", checkRadios},
    {"the temporary directory is short and writable", checkTemporaryDirectory},
    {"the scripts can be run", checkScripts},
    {"the shell has the programs", checkPrograms},
    {"the uptime can be read", checkClock},
};

/* --- Over a restart --- */

static void leaveMark(void) {
    EXPECT(xset_str("left before the restart", "/conformance/mark") == 0);
}

static void findMark(void) {
    EXPECT(readsAs("/conformance/mark", "left before the restart"));
    xdel("/conformance");
}

static const struct Check leaveChecks[] = {{"a mark is left", leaveMark}};
static const struct Check findChecks[] = {{"the mark has outlived the restart", findMark}};

/* --- Running them --- */

static const struct {
    const char* word;
    const struct Check* checks;
    size_t count;
    int cleansUp; /* before and after each check */
} groups[] = {
    {"platform", platformChecks, COUNT_OF(platformChecks), 1},
    {"device", deviceChecks, COUNT_OF(deviceChecks), 0},
    {"leave", leaveChecks, COUNT_OF(leaveChecks), 0},
    {"find", findChecks, COUNT_OF(findChecks), 0},
};

static int runGroup(const struct Check* checks, size_t count, int cleansUp) {
    int failed = 0;
    for (size_t i = 0; i < count; i++) {
        faults = 0;
        if (cleansUp) xdel("/conformance");
        checks[i].run();
        if (cleansUp) xdel("/conformance");
        printf("%s %s\n", faults == 0 ? "ok    " : "FAILED", checks[i].name);
        failed += faults != 0;
    }
    return failed;
}

int runChecks(int count, char** words) {
    int failed = 0;
    for (int i = 0; i < count; i++) {
        size_t group = 0;
        while (group < COUNT_OF(groups) && strcmp(groups[group].word, words[i]) != 0)
            group++;
        if (group == COUNT_OF(groups)) return printf("no such checks: %s\n", words[i]) > 0;
        failed += runGroup(groups[group].checks, groups[group].count, groups[group].cleansUp);
    }
    printf("%d failed\n", failed);
    return failed > 0;
}
