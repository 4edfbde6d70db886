/**
 * @file
 * The road of a client through the library, in C alone: log in with a key, post a document, read the result, make it
 * take effect, set and read variables, post a form, check a firmware image. Ends with status 0 when all of it happened.
 */
#define _POSIX_C_SOURCE 200809L

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "examples/porting/flat_tree_platform.h"
#include "pendra/pendra.h"

static const char kClient[] = "192.0.2.7";
static char directory[] = "/tmp/road-XXXXXX";
static int failures;

static void expect(int holds, const char* what) {
    printf("%s: %s\n", holds ? "ok" : "FAILED", what);
    failures += !holds;
}

static void expectNumber(long actual, long wanted, const char* what) {
    if (actual != wanted) printf("%ld instead of %ld\n", actual, wanted);
    expect(actual == wanted, what);
}

static void expectText(const char* actual, const char* wanted, const char* what) {
    if (strcmp(actual, wanted) != 0) printf("\"%s\" instead of \"%s\"\n", actual, wanted);
    expect(strcmp(actual, wanted) == 0, what);
}

static const char* pathOf(const char* name) {
    static char path[128];
    snprintf(path, sizeof path, "%s/%s", directory, name);
    return path;
}

static const char* contentOf(const char* name) {
    static char content[2048];
    FILE* file = fopen(pathOf(name), "rb");
    const size_t size = file == NULL ? 0 : fread(content, 1, sizeof content - 1, file);
    if (file != NULL) fclose(file);
    content[size] = '\0';
    return content;
}

static void writeFile(const char* name, const void* content, size_t size) {
    FILE* file = fopen(pathOf(name), "wb");
    if (file == NULL || fwrite(content, 1, size, file) != size || fclose(file) != 0) abort();
}

/** A device of version 1.1 with an Ethernet uplink and a 2.4 GHz radio; wlenbl 2 means that there is no 5 GHz radio. */
static void openTree(void) {
    static const char kNodes[] =
        "/bramble/specversion/major=1\n/bramble/specversion/minor=1\n/bramble/configurable=1\n"
        "/bramble/easyroaming=0\n/bramble/safetywdn=0\n"
        "/sys/friendlyname=Hallway\n/sys/friendlyname_validate=0,32,1\n"
        "/sys/user:1/password=fifteen-apples\n/sys/user:1/password_validate=0,32,5\n/sys/routerenbl=1\n"
        "/uplink/configurable=1\n/uplink/hardwaresupport=Ethernet\n/uplink/hardwaretype=Ethernet\n"
        "/uplink/conntype=DHCP\n"
        "/lan/wireless2.4:1/configurable=1\n/lan/wireless2.4:1/wlenbl=1\n/lan/wireless2.4:1/wlschedule=0\n"
        "/lan/wireless2.4:1/wirelessbssid=02:50:42:00:00:24\n"
        "/lan/wireless2.4:1/wirelessname=Hallway 2.4\n/lan/wireless2.4:1/wirelessname_validate=0,32,1\n"
        "/lan/wireless2.4:1/encryptionmode=WPA2\n/lan/wireless2.4:1/encryptiontype=AES\n"
        "/lan/wireless2.4:1/encryptionkey=apple-pear-plum\n"
        "/lan/wireless2.4:1/channellist=1,2,3,4,5,6,7,8,9,10,11,12,13\n/lan/wireless2.4:1/channel=6\n"
        "/lan/wireless2.4:1/accesscontrol/wlacenbl=0\n/lan/wireless5:1/wlenbl=2\n";
    writeFile("tree", kNodes, sizeof kNodes - 1);
    if (flatTreeOpen(pathOf("tree")) != 0) abort();
    xset_str(directory, "/bramble/tempdirecory");
    xset_str(directory, "/bramble/scriptdirecory");
}

static const char* node(const char* path) {
    static char text[XNODE_TEXT_MAX];
    xget_str(text, "%s", path);
    return text;
}

/** Scripts that write down that they have run. */
static void writeScripts(void) {
    static const char* const kScripts[] = {"uplink.sh", "wan_resync.sh", "wlan_resync.sh", "wlan5g_resync.sh",
                                           "device_resync.sh"};
    for (size_t index = 0; index < sizeof kScripts / sizeof kScripts[0]; ++index) {
        char script[256];
        const int size =
            snprintf(script, sizeof script, "#!/bin/sh\necho %s >> %s/journal\n", kScripts[index], directory);
        writeFile(kScripts[index], script, (size_t)size);
        chmod(pathOf(kScripts[index]), S_IRWXU);
    }
}

static void logIn(void) {
    char request[128];
    expectNumber(check_PendraAuthIP(kClient, NULL), -1, "a client that has not logged in is not admitted");
    snprintf(request, sizeof request, "PendraKey=%s&more=1", generate_PendraKey(kClient));
    expectNumber(pendra_auth_check(request, "192.0.2.8", NULL), -1, "a key is for one address");
    expectNumber(pendra_auth_check(request, kClient, NULL), 0, "the key is valid");
    expectNumber(check_PendraAuthIP(kClient, NULL), 0, "the client is admitted");
    expect(clientauthinfo != NULL && strcmp(clientauthinfo->ip, kClient) == 0, "the list holds the client");
    snprintf(request, sizeof request, "DKey=%s", generate_DKey("192.0.2.8"));
    expectNumber(pendra_auth_check(request, "192.0.2.8", NULL), 0, "the short key is valid");
}

static void postDocument(void) {
    char document[] =
        "<root><specVersion><major>1</major><minor>1</minor></specVersion><Device>"
        "<DeviceName>Attic</DeviceName><DevicePwd>fifteen-apples</DevicePwd><RouterEnbl>1</RouterEnbl>"
        "<UpLinkConnection><HardwareType>Ethernet</HardwareType><ConnType>DHCP</ConnType></UpLinkConnection>"
        "<Wireless2.4><WlEnbl>1</WlEnbl><WlSchedule>0</WlSchedule><WirelessBSSID>02:50:42:00:00:24</WirelessBSSID>"
        "<WirelessName>Orchard &amp; Attic</WirelessName><EncryptionMode>wpa2</EncryptionMode>"
        "<EncryptionKey>apple-pear-plum</EncryptionKey><EncryptionType>AES</EncryptionType><Channel>6</Channel>"
        "<AccessControl><WlAcEnbl>0</WlAcEnbl></AccessControl></Wireless2.4></Device></root>";
    expectNumber(do_ZepXml_Parser(document), 1, "the document is applied");
    expectText(node("/sys/friendlyname"), "Attic", "the device has its name");
    expectText(node("/lan/wireless2.4:1/wirelessname"), "Orchard & Attic", "the radio has its name");
    expectText(node("/sys/factorydefault"), "0", "the factory state is left");
    expectText(contentOf("zepset_result.xml"),
               "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>0</ZepSetResult>\n <ZepSetMsg></ZepSetMsg>\n"
               " <ZepGetWaitSec>25</ZepGetWaitSec>\n</root>\n",
               "the result document says how long to wait");
    expectNumber(zepXmlData.exeflag, 4 | 16 | 32, "radio, device and save are to be done");
}

static void postFaultyDocument(void) {
    char document[] = "<root><specVersion><major>1</major><minor>1</minor></specVersion><Device></Device></root>";
    char before[2048];
    strcpy(before, contentOf("tree"));
    expectNumber(do_ZepXml_Parser(document), 0, "a document without a name is refused");
    expectText(contentOf("tree"), before, "and changes nothing");
    expect(strstr(contentOf("zepset_result.xml"), "<ZepSetMsg>Device/DeviceName</ZepSetMsg>") != NULL,
           "the result document names what is missing");
}

static void commitDocument(void) {
    expectText(contentOf("journal"), "", "no script runs before the commit");
    expect(do_ZepXml_Commit() != 0, "there is something to commit");
    expectText(contentOf("journal"), "wlan_resync.sh\ndevice_resync.sh\n", "the scripts of radio and device have run");
}

static void useVariables(void) {
    char value[ZEPVAR_VALUE_SIZE] = "Cellar";
    init_ZepVar();
    expectNumber(get_ZepVar("zep_DeviceName", value, 0), 0, "a variable is read");
    expectText(value, "Attic", "it holds what the document has set");
    expectNumber(get_ZepVar("/Device/DeviceName", value, 1), 0, "a variable's node is asked for by document path");
    expectText(value, "/sys/friendlyname", "it is the node of the name");
    strcpy(value, "Cellar");
    expectNumber(set_ZepVar("zep_DeviceName", value), 0, "a variable is set");
    expectText(getZepVar("zep_DeviceName"), "Cellar", "and read back");
    expectText(node("/sys/friendlyname"), "Attic", "the tree does not change by that");
    expectText(getZepVar("zep_Nothing"), "**ERROR**", "an unknown variable reads as an error");
}

static void postForm(void) {
    char message[ZEPVAR_VALUE_SIZE];
    expectNumber(do_ZepVar_Parser("zep_DeviceName=Ground+floor&zep_Wl2_Channel=11", '&', message, 1), 0,
                 "the form is applied");
    expectText(message, "", "without a message");
    expectText(node("/sys/friendlyname"), "Ground floor", "the device has the form's name");
    expectText(node("/lan/wireless2.4:1/channel"), "11", "the radio has the form's channel");
    expectNumber(do_ZepVar_Parser("zep_Wl2_Channel=99", '&', message, 1), 2, "a channel that is not listed is refused");
    expectText(message, "zep_Wl2_Channel", "by its name");
}

static void putNumber(unsigned char* bytes, uint32_t number) {
    for (int index = 0; index < 4; ++index)
        bytes[index] = (unsigned char)(number >> (24 - 8 * index));
}

/** The checksum by its definition, bit by bit: not the library's own. */
static uint32_t checksum(const unsigned char* data, size_t size) {
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t index = 0; index < size * 8; ++index) {
        if (index % 8 == 0) crc ^= data[index / 8];
        crc = (crc & 1u) != 0 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
    }
    return ~crc;
}

static void checkImage(void) {
    unsigned char image[64 + 100] = {0};
    char message[256] = "";
    for (int index = 0; index < 100; ++index)
        image[64 + index] = (unsigned char)(index * 7);
    putNumber(image, 0x27051956u);
    putNumber(image + 24, checksum(image + 64, 100));
    putNumber(image + 4, checksum(image, 64));
    writeFile("image", image, sizeof image);
    expectNumber((long)check(pathOf("image"), 0, sizeof image, message), 1, "the image is valid");
    image[100] ^= 1;
    writeFile("image", image, sizeof image);
    expectNumber((long)check(pathOf("image"), 0, sizeof image, message), 0, "a damaged image is not");
    expect(strstr(message, "has corrupted data!") != NULL, "and its data are named");
}

static void removeFiles(void) {
    static const char* const kFiles[] = {
        "uplink.sh",         "wan_resync.sh", "wlan_resync.sh", "wlan5g_resync.sh", "device_resync.sh",
        "zepset_result.xml", "journal",       "image",          "DL_log.txt",       "tree"};
    for (size_t index = 0; index < sizeof kFiles / sizeof kFiles[0]; ++index)
        remove(pathOf(kFiles[index]));
    if (rmdir(directory) != 0) perror(directory);
}

int main(void) {
    if (mkdtemp(directory) == NULL) return 2;
    openTree();
    writeScripts();
    logIn();
    postDocument();
    commitDocument();
    useVariables();
    postForm();
    postFaultyDocument();
    checkImage();
    removeFiles();
    printf("%d failed\n", failures);
    return failures != 0;
}
