/**
 * @file
 * A platform for libpendra: the configuration tree in a flat file, and a vendor API that writes firmware to a file.
 *
 * One line is one node, "path=value"; lines that are empty or start with "#" are kept as they are. The file fits into
 * memory as it stands, and memory is searched line by line: a tree of a few hundred nodes needs no more. A change
 * writes the whole file beside the old one and renames it, so that a power cut leaves the old tree or the new one.
 * Scripts may read the file at any time; the host alone writes it.
 *
 * This file is all that a host needs beside the library:
 *
 *     cc -std=c99 -rdynamic host.c flat_tree_platform.c -lpendra
 *
 * The host calls flatTreeOpen() (flat_tree_platform.h, in this folder) before anything of the library.
 */
#define _POSIX_C_SOURCE 200809L

#include "flat_tree_platform.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <regex.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pendra/fwupgrade.h"
#include "pendra/platform.h"

enum { treeSize = 65536, pathSize = 256, treeNameSize = 500, fileNameSize = 512 };

/** Nodes as lines, each closed by its line end. */
struct Lines {
    size_t length;
    char bytes[treeSize];
};

static struct Lines tree;           /* what the library reads and writes */
static struct Lines stored;         /* what the file holds */
static char treeFile[treeNameSize]; /* names of other files are this one with something behind it */
static int transactionIsOpen;
static int writeWasLost;
static int upgradeIsAnnounced;
static char problem[fileNameSize + 128];

/* --- Problems --- */

static int fail(const char* what, const char* file) {
    snprintf(problem, sizeof problem, "%s %s: %s", what, file, strerror(errno));
    return -1;
}

static int failBecause(const char* reason) {
    snprintf(problem, sizeof problem, "%.*s", (int)strcspn(reason, "\n"), reason);
    return -1;
}

const char* flatTreeProblem(void) {
    return problem;
}

/* --- What a node takes --- */

/* [guards] */
/* Texts that the library puts into shell commands as they are: none may leave its quotes or split the command. The
   ranges are those of the C locale, which a host keeps by not calling setlocale(). */
#define PLAIN "A-Za-z0-9_.+,:@%="
#define FILE_NAME "^[" PLAIN "-]*[A-Za-z0-9_+,:@%=-][" PLAIN "-]*$|^[.]{3,}$"
#define ADDRESS "^https?://[]!#%-Z[^_a-~]*$"

static const struct {
    const char* path;
    size_t longest;
    const char* pattern;
} guards[] = {
    {"/bramble/tempdirecory", 109, "^/[/" PLAIN "-]*$"}, /* spelt so: the names are the interface */
    {"/bramble/scriptdirecory", 127, "^/[/" PLAIN "-]*$"},
    {"/fwupgradeinfo/fwupgradefn", 127, FILE_NAME},
    {"/fwupgradeinfo/currfwfilename", 127, FILE_NAME},
    {"/fwupgradeinfo/urlgetcmd", 255, "^([ /" PLAIN "-]|\"([ /" PLAIN "-]|[$]savefn|[$]url)*\")*$"},
    {"/fwupgradeinfo/newfw/fileurl", XNODE_TEXT_MAX - 1, ADDRESS},
    {"/fwupgradeinfo/newfw/notesurl", XNODE_TEXT_MAX - 1, ADDRESS},
    {"/runtime/easyroaming/deauthsta/ifname", 15, "^[A-Za-z0-9][" PLAIN "-]*$"},
    {"/runtime/easyroaming/deauthsta/mac", 17, "^([0-9A-Fa-f]{2}:){5}[0-9A-Fa-f]{2}$"},
};
/* [end] */

static int matches(const char* text, const char* pattern) {
    regex_t expression;
    if (regcomp(&expression, pattern, REG_EXTENDED | REG_NOSUB) != 0) return 0;
    const int result = regexec(&expression, text, 0, NULL, 0);
    regfree(&expression);
    return result == 0;
}

static int isGuarded(const char* path, const char* value) {
    for (size_t i = 0; i < sizeof guards / sizeof guards[0]; i++)
        if (strcmp(guards[i].path, path) == 0)
            return value[0] != '\0' && (strlen(value) > guards[i].longest || !matches(value, guards[i].pattern));
    return 0;
}

static int isPath(const char* path) {
    const size_t length = strlen(path);
    if (length < 2 || length >= pathSize || path[0] != '/') return 0;
    const char last = path[length - 1];
    return last != '/' && last != '#' && strpbrk(path, "=\r\n") == NULL;
}

/** "#" at the end of a path reads a count, which nobody writes. */
static int isNode(const char* path, const char* value) {
    if (!isPath(path)) return 0;
    return strlen(value) < XNODE_TEXT_MAX && strpbrk(value, "\r\n") == NULL && !isGuarded(path, value);
}

/* --- Lines --- */

static size_t nextLine(size_t line) {
    const char* end = memchr(tree.bytes + line, '\n', tree.length - line);
    return (size_t)(end - tree.bytes) + 1;
}

/** @return the first line that begins with a path and then one of the characters; the tree's length without one. */
static size_t findLine(const char* path, size_t length, const char* followers) {
    if (path[0] != '/') return tree.length; /* what begins otherwise is no node, but may be a comment */
    size_t line = 0;
    for (; line < tree.length; line = nextLine(line)) {
        if (tree.length - line <= length || memcmp(tree.bytes + line, path, length) != 0) continue;
        if (strchr(followers, tree.bytes[line + length]) != NULL) break;
    }
    return line;
}

static size_t findNode(const char* path) {
    return findLine(path, strlen(path), "=");
}

/** Puts a text in the place of a line, or behind the last one. @return 0, -1 when the tree is full. */
static int replaceLine(size_t line, const char* text) {
    const size_t end = line < tree.length ? nextLine(line) : line;
    const size_t length = strlen(text);
    if (tree.length - (end - line) + length >= treeSize) return failBecause("the tree is full");
    memmove(tree.bytes + line + length, tree.bytes + end, tree.length - end);
    memcpy(tree.bytes + line, text, length);
    tree.length = tree.length - (end - line) + length;
    return 0;
}

/** @return the length of the path "name:N" in a line of that list, 0 when the line is none. */
static size_t elementLength(size_t line, const char* list, size_t length) {
    if (tree.length - line <= length || memcmp(tree.bytes + line, list, length) != 0) return 0;
    const char* number = tree.bytes + line + length;
    if (*number++ != ':') return 0;
    const size_t digits = strspn(number, "0123456789"); /* ends at the line's end at the latest */
    const int isWhole = digits > 0 && (number[digits] == '/' || number[digits] == '=');
    return isWhole ? length + 1 + digits : 0;
}

/** Counts an element once, whether it has a text of its own or nodes below it. */
static int countElements(const char* list, size_t length) {
    int count = 0;
    for (size_t line = 0; line < tree.length; line = nextLine(line)) {
        const size_t element = elementLength(line, list, length);
        if (element > 0 && findLine(tree.bytes + line, element, "=/") == line) count++;
    }
    return count > 0 ? count : -1;
}

/** @param value XNODE_TEXT_MAX bytes. @return 0, -1 when there is no such node. */
static int readNode(char* value, const char* path) {
    value[0] = '\0';
    const size_t line = findNode(path);
    if (line == tree.length) return -1;
    const size_t start = line + strlen(path) + 1;
    const size_t length = nextLine(line) - 1 - start;
    memcpy(value, tree.bytes + start, length);
    value[length] = '\0';
    return 0;
}

/* --- Files --- */

static int writeAll(int file, const char* bytes, size_t length) {
    while (length > 0) {
        const ssize_t written = write(file, bytes, length);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return -1;
        bytes += written;
        length -= (size_t)written;
    }
    return 0;
}

/** @return the bytes read; at most `size`, and fewer only at the file's end. -1 on an error. */
static ssize_t readAll(int file, char* bytes, size_t size) {
    size_t length = 0;
    while (length < size) {
        const ssize_t got = read(file, bytes + length, size - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        length += (size_t)got;
    }
    return (ssize_t)length;
}

/* [replace] */
/** Whoever looks, also after a power cut, finds the whole old file or the whole new one. */
static int replaceFile(const char* name, int (*fill)(int file, const char* name)) {
    char temporary[fileNameSize];
    snprintf(temporary, sizeof temporary, "%s.new", name);
    const int file = open(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) return fail("cannot create", temporary);
    problem[0] = '\0';
    int result = fill(file, temporary) == 0 && fsync(file) == 0 ? 0 : -1;
    if (close(file) != 0) result = -1;
    if (result == 0 && rename(temporary, name) == 0) return 0;
    if (problem[0] == '\0') fail("cannot write", temporary);
    unlink(temporary);
    return -1;
}
/* [end] */

/** The new name itself survives a power cut only when its directory is on the disk. */
static int syncDirectoryOf(const char* name) {
    char directory[fileNameSize];
    const char* slash = strrchr(name, '/');
    snprintf(directory, sizeof directory, "%.*s", slash == NULL ? 1 : (int)(slash - name + 1),
             slash == NULL ? "." : name);
    const int opened = open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return fail("cannot open", directory);
    const int result = fsync(opened);
    close(opened);
    return result == 0 ? 0 : fail("cannot write", directory);
}

/* --- The tree's file --- */

static int isLine(const char* line, size_t length) {
    char text[pathSize + XNODE_TEXT_MAX];
    if (length == 0 || line[0] == '#') return 1;
    if (length >= sizeof text || memchr(line, '\0', length) != NULL) return 0;
    memcpy(text, line, length);
    text[length] = '\0';
    char* equals = strchr(text, '=');
    if (equals == NULL) return 0;
    *equals = '\0';
    return isNode(text, equals + 1);
}

static int checkLines(const char* file) {
    int number = 1;
    for (size_t line = 0; line < tree.length; line = nextLine(line), number++) {
        if (isLine(tree.bytes + line, nextLine(line) - 1 - line)) continue;
        snprintf(problem, sizeof problem, "%s, line %d: no path=value that the tree takes", file, number);
        return -1;
    }
    return 0;
}

static int readLines(const char* file) {
    const int opened = open(file, O_RDONLY | O_CLOEXEC);
    if (opened < 0) return fail("cannot open", file);
    const ssize_t length = readAll(opened, tree.bytes, treeSize);
    if (length < 0) fail("cannot read", file);
    close(opened);
    if (length < 0) return -1;
    tree.length = (size_t)length;
    if (length > 0 && length < treeSize && tree.bytes[length - 1] != '\n') tree.bytes[tree.length++] = '\n';
    return tree.length < treeSize ? checkLines(file) : failBecause("the tree's file is too long");
}

int flatTreeOpen(const char* file) {
    treeFile[0] = '\0';
    transactionIsOpen = 0;
    tree.length = 0;
    const size_t length = strlen(file);
    if (length >= treeNameSize) return failBecause("the name of the tree's file is too long");
    if (readLines(file) != 0) {
        tree.length = 0;
        return -1;
    }
    stored = tree;
    memcpy(treeFile, file, length + 1);
    return 0;
}

static int fillTree(int file, const char* name) {
    (void)name;
    return writeAll(file, tree.bytes, tree.length);
}

/** Flash wears out: a tree that has not changed is not written. */
static int store(void) {
    if (tree.length == stored.length && memcmp(tree.bytes, stored.bytes, tree.length) == 0) return 0;
    if (replaceFile(treeFile, fillTree) != 0) return -1;
    stored = tree;
    return syncDirectoryOf(treeFile);
}

void flatTreeBegin(void) {
    transactionIsOpen = 1;
    writeWasLost = 0;
}

int flatTreeCommit(void) {
    transactionIsOpen = 0;
    const int result = writeWasLost ? -1 : store();
    writeWasLost = 0;
    if (result != 0) tree = stored;
    return result;
}

/** A write outside of a transaction is one of its own. */
static int endWrite(int result) {
    if (result != 0) writeWasLost = 1;
    if (transactionIsOpen) return result;
    return flatTreeCommit();
}

/* --- pendra/platform.h: the tree --- */

/** A path that is too long is the path of no node. */
static void formatPath(char* path, const char* format, va_list arguments) {
    const int length = vsnprintf(path, pathSize, format, arguments);
    if (length < 0 || length >= pathSize) path[0] = '\0';
}

/* [read] */
int xget_str(char* destination, const char* pathFormat, ...) {
    char path[pathSize];
    va_list arguments;
    va_start(arguments, pathFormat);
    formatPath(path, pathFormat, arguments);
    va_end(arguments);
    return readNode(destination, path);
}
/* [end] */

static int asNumber(const char* text) {
    char* end = NULL;
    const long number = strtol(text, &end, 10);
    if (end == text) return -1;
    if (number > INT_MAX) return INT_MAX;
    return number < INT_MIN ? INT_MIN : (int)number;
}

int xget_int(const char* pathFormat, ...) {
    char path[pathSize];
    va_list arguments;
    va_start(arguments, pathFormat);
    formatPath(path, pathFormat, arguments);
    va_end(arguments);
    const size_t length = strlen(path);
    if (length > 0 && path[length - 1] == '#') return countElements(path, length - 1);
    char value[XNODE_TEXT_MAX];
    return readNode(value, path) == 0 ? asNumber(value) : -1;
}

int xset_str(const char* value, const char* path) {
    if (treeFile[0] == '\0') return failBecause("the tree is not open");
    if (!isNode(path, value)) return failBecause("the tree does not take this text there");
    char line[pathSize + XNODE_TEXT_MAX];
    snprintf(line, sizeof line, "%s=%s\n", path, value);
    return endWrite(replaceLine(findNode(path), line));
}

int xset_int(int value, const char* path) {
    char text[16];
    snprintf(text, sizeof text, "%d", value);
    return xset_str(text, path);
}

int xdel(const char* path) {
    const size_t length = strlen(path);
    size_t line = findLine(path, length, "=/");
    if (!isPath(path) || line == tree.length) return failBecause("there is no such node");
    for (; line < tree.length; line = findLine(path, length, "=/"))
        replaceLine(line, "");
    return endWrite(0);
}

/* --- pendra/platform.h: the vendor's API --- */

static int openImage(void) {
    char directory[XNODE_TEXT_MAX];
    char image[XNODE_TEXT_MAX];
    char path[fileNameSize];
    xget_str(directory, "/bramble/tempdirecory");
    xget_str(image, "/fwupgradeinfo/fwupgradefn");
    const int length = snprintf(path, sizeof path, "%s/%s", directory, image);
    if (length >= fileNameSize) return failBecause("the image's path is too long");
    const int opened = open(path, O_RDONLY | O_CLOEXEC);
    return opened >= 0 ? opened : fail("cannot open", path);
}

static int copyImage(int source, int target) {
    char block[4096];
    ssize_t length = 0;
    while ((length = readAll(source, block, sizeof block)) > 0)
        if (writeAll(target, block, (size_t)length) != 0) return -1;
    return length == 0 ? 0 : -1;
}

/** The copy is checked, not the image: somebody may replace that one between the check and the copy. */
static int fillFirmware(int file, const char* name) {
    const int image = openImage();
    if (image < 0) return -1;
    const int result = copyImage(image, file);
    close(image);
    if (result != 0) return -1;
    char message[256];
    return check(name, 0, getFileSize(name), message) == 1 ? 0 : failBecause(message);
}

int tcapi_set(const char* node, const char* attribute, const char* value) {
    const int isKnown = strcmp(node, "System_Entry") == 0 && strcmp(attribute, "upgrade_fw") == 0;
    if (!isKnown || treeFile[0] == '\0') return -1;
    upgradeIsAnnounced = strcmp(value, "1") == 0;
    return 0;
}

/** A device writes to its flash and restarts here; this one keeps the image beside its tree. */
int tcapi_commit(const char* node) {
    char flash[treeNameSize + sizeof ".flash"];
    if (strcmp(node, "System_Entry") != 0 || !upgradeIsAnnounced) return -1;
    upgradeIsAnnounced = 0;
    snprintf(flash, sizeof flash, "%s.flash", treeFile);
    return replaceFile(flash, fillFirmware) == 0 ? syncDirectoryOf(flash) : -1;
}
