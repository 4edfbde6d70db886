/**
 * @file
 * A host on the flat-file platform that goes the main road once: a client logs in with its key, posts a setup document,
 * posts a form of variables, and what changed takes effect.
 *
 *     porting_host TREE TEMPORARY_DIRECTORY SCRIPT_DIRECTORY DOCUMENT
 *
 * What comes from the network in a real host comes from the command line and from this file.
 */
#define _POSIX_C_SOURCE 200809L

#include <errno.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "flat_tree_platform.h"
#include "pendra/pendra.h"

/* [output] */
/* The library prints a line on standard output for each message when there is no debug console. */
static FILE* keepOutput(void) {
    const int kept = dup(STDOUT_FILENO);
    return freopen("/dev/null", "w", stdout) == NULL ? NULL : fdopen(kept, "w");
}
/* [end] */

static FILE* output;

static int fail(const char* reason) {
    fprintf(stderr, "porting_host: %s\n", reason);
    return -1;
}

/* [signals] */
static sigset_t openMask; /* the signals that are let in while the host waits */

/* The library's SIGALRM handlers log, read the tree and run scripts: they may run only between calls. */
static void blockAlarm(void) {
    sigset_t alarmOnly;
    sigemptyset(&alarmOnly);
    sigaddset(&alarmOnly, SIGALRM);
    sigprocmask(SIG_BLOCK, &alarmOnly, &openMask);
    sigdelset(&openMask, SIGALRM);
}
/* [end] */

/* [wait] */
/* Waits a second at the most; a real host also waits for its sockets. Seconds that a script took are made up for. */
static void waitForWork(void) {
    static uint32_t ticked;
    const struct timespec second = {1, 0};
    pselect(0, NULL, NULL, NULL, &second, &openMask);
    const uint32_t now = sys_uptime_seconds();
    for (ticked = ticked == 0 ? now : ticked; ticked != now; ticked++)
        tick_timers();
}
/* [end] */

/* [system] */
/* Takes the place of libc's for the library: what it starts must not inherit a blocked SIGALRM, for fetch commands use
   it for their timeouts. */
int system(const char* command) {
    extern char** environ;
    char* arguments[] = {(char[]){"sh"}, (char[]){"-c"}, strdup(command), NULL};
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &openMask);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    pid_t child = 0;
    int status = -1;
    if (arguments[2] != NULL && posix_spawn(&child, "/bin/sh", NULL, &attributes, arguments, environ) == 0)
        while (waitpid(child, &status, 0) < 0 && errno == EINTR)
            continue;
    posix_spawnattr_destroy(&attributes);
    free(arguments[2]);
    return status;
}
/* [end] */

/* [start] */
static int start(const char* tree, const char* temporaryDirectory, const char* scriptDirectory) {
    if (flatTreeOpen(tree) != 0) return fail(flatTreeProblem()); /* without its tree a device has no password */
    setenv("FLAT_TREE", tree, 1);                                /* for the scripts */
    umask(077);                                                  /* the log may hold passwords */
    flatTreeBegin();
    const int isRefused = xset_str(temporaryDirectory, "/bramble/tempdirecory") != 0 ||
                          xset_str(scriptDirectory, "/bramble/scriptdirecory") != 0;
    if (flatTreeCommit() != 0 || isRefused) return fail(flatTreeProblem());
    blockAlarm();
    return 0;
}
/* [end] */

/* [login] */
/* A client makes its key from the device's uptime, its own address and the password; then its address is admitted. */
static int logIn(const char* address) {
    char request[64];
    snprintf(request, sizeof request, "GET /login?PendraKey=%s", generate_PendraKey(address));
    if (pendra_auth_check(request, address, request) != 0) return fail("the key is not accepted");
    if (check_PendraAuthIP(address, "") != 0) return fail("the client is not admitted");
    fprintf(output, "login: %s is admitted\n", address);
    return 0;
}
/* [end] */

/* [document] */
/* What was accepted is on the disk before the client hears of it; what cannot be stored has not happened. */
static int storeRun(const ZepXmlData* before) {
    if (flatTreeCommit() == 0) return 0;
    zepXmlData = *before;
    return fail(flatTreeProblem());
}

static int postDocument(char* document) {
    const ZepXmlData before = zepXmlData;
    flatTreeBegin();
    do_ZepXml_Parser(document);
    if (storeRun(&before) != 0) return -1;
    fprintf(output, "document: result %d \"%s\", in effect in %d s\n", (int)zepXmlData.setResult, zepXmlData.setMsg,
            (int)zepXmlData.exeWaitSec);
    do_ZepXml_Commit(); /* runs the scripts: the answer is out by now */
    return zepXmlData.setResult == 0 ? 0 : -1;
}
/* [end] */

/* [form] */
/* "zep_Act_CommitZepVars" leaves time for the answer: two seconds later SIGALRM runs the scripts. */
static int postForm(const char* form) {
    char refused[ZEPVAR_VALUE_SIZE] = "";
    char noValue[ZEPVAR_VALUE_SIZE] = "";
    init_ZepVar();
    const ZepXmlData before = zepXmlData;
    flatTreeBegin();
    const int result = do_ZepVar_Parser(form, '&', refused, 1);
    if (storeRun(&before) != 0) return -1;
    fprintf(output, "form: result %d \"%s\"\n", result, refused);
    if (result != 0) return -1;
    set_ZepVar("zep_Act_CommitZepVars", noValue);
    return 0;
}
/* [end] */

/** @return the file's text, which the library may write in; null when there is none. */
static char* readDocument(const char* file) {
    enum { mostBytes = 1 << 20 };
    char* text = calloc(1, mostBytes + 1);
    FILE* opened = fopen(file, "r");
    const size_t length = text != NULL && opened != NULL ? fread(text, 1, mostBytes + 1, opened) : 0;
    if (opened != NULL) fclose(opened);
    if (length > 0 && length <= mostBytes) return text;
    free(text);
    return NULL;
}

static int goTheRoad(char* document) {
    if (logIn("192.0.2.7") != 0 || postDocument(document) != 0) return -1;
    if (postForm("zep_Wl2_WirelessName=Tea+%26+biscuits&zep_Wl2_Channel=11") != 0) return -1;
    for (int turn = 0; turn < 3; turn++)
        waitForWork();
    init_ZepVar();
    fprintf(output, "variable: the radio is \"%s\"\n", getZepVar("zep_Wl2_WirelessName"));
    return 0;
}

int main(int argc, char** argv) {
    output = keepOutput();
    if (output == NULL || argc != 5) {
        fail("arguments: TREE TEMPORARY_DIRECTORY SCRIPT_DIRECTORY DOCUMENT");
        return EXIT_FAILURE;
    }
    if (start(argv[1], argv[2], argv[3]) != 0) return EXIT_FAILURE;
    char* document = readDocument(argv[4]);
    const int result = document == NULL ? fail("the document cannot be read") : goTheRoad(document);
    free(document);
    fclose(output);
    return result == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
