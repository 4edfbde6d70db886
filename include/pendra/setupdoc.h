/**
 * @file
 * Setup documents: the XML key scanner, the setup record, the entry points, the commit and the result document.
 *
 * Thread rule of everything in this file: one record and one hook for the whole library; one thread, one call at a
 * time.
 */
#ifndef PENDRA_SETUPDOC_H
#define PENDRA_SETUPDOC_H

#include "pendra/common.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup record The setup record
 *
 * Values of the current settings and of the document laid over them. Texts are NUL-terminated; an integer whose name
 * ends in Idx is the row of the text beside it in its enumeration table, -1 when it has none. A path is the block path
 * of a section ("Device/Wireless5"), used in messages. "Node" names where the snapshot reads a value; every node may be
 * absent. A field ending in Rule is a rule of validate_ZepData().
 *
 * A document run refreshes the gates (versions, features, Configurable, rules, lists, directories) from the tree and
 * leaves other values as they were; init_ZepVar() refreshes everything.
 *
 * Thread rule: read and written by every run and every variable call; a host reads it between calls.
 * @{
 */

/** Access rules of one radio. */
#define ZEP_AC_RULE_MAX 40

/** A spec version. */
typedef struct ZepSpecVersion {
    int32_t major;   /**< the 1 of 1.0 */
    int32_t minor;   /**< the 0 of 1.0 */
    char path[32];   /**< "specVersion" */
    int32_t version; /**< major * 100 + minor; 100 is the first generation of clients */
} ZepSpecVersion;

/** An internet provider (elements DSL and APN). */
typedef struct ZepIsp {
    char CountryName[128];       /**< country of the provider, from its list */
    char IspName[128];           /**< provider, from its list */
    int32_t VPI;                 /**< version 100, hardware "DSL" only: 0 to 8 */
    int32_t VCI;                 /**< likewise: 32 to 32767 */
    char EncapsulationMode[128]; /**< likewise: a row of ::ADslEncapModeArray */
    char path[128];              /**< block path */
    int32_t encapModeIdx;        /**< row of ::ADslEncapModeArray */
} ZepIsp;

/** The site an extender connects to (element ExtenderSite). */
typedef struct ZepExtenderSite {
    int32_t Survey;            /**< 1: the document only asks for a site survey */
    char ConnRefSiteBSSID[18]; /**< MAC address of the site */
    char WirelessType[32];     /**< radio: a row of ::WirelessTypeArray */
    char WirelessName[128];    /**< name of the site; a document's is cut at 17 bytes */
    char EncryptionKey[128];   /**< key of the site; a document's is cut at 17 bytes */
    char path[128];            /**< block path */
    int32_t wirelessTypeIdx;   /**< row of ::WirelessTypeArray */
} ZepExtenderSite;

/** The uplink (element UpLinkConnection). */
typedef struct ZepUpLink {
    int32_t Configurable;         /**< 0: documents and variables leave the uplink alone */
    char HardwareSupport[128];    /**< uplink kinds that the device has */
    char HardwareType[32];        /**< a row of ::HardwareTypeArray */
    char ConnType[32];            /**< a row of ::ConnTypeArray */
    char reserved[96];            /**< not used by the setup document */
    int32_t MTU;                  /**< version 100 only */
    char LoginUserName[128];      /**< PPPoE and PPPoA */
    char LoginPassword[128];      /**< PPPoE and PPPoA */
    char IP[16];                  /**< static uplinks: dotted address */
    char NetMask[16];             /**< static uplinks */
    char Gateway[16];             /**< static uplinks */
    char DNS[16];                 /**< static uplinks; "8.8.8.8" when verified empty */
    ZepIsp dsl;                   /**< hardware "ADSL", "VDSL", "DSL" */
    ZepIsp apn;                   /**< hardware "WWanAPN" */
    ZepExtenderSite extenderSite; /**< hardware "WWan802.11" */
    char path[128];               /**< block path */
    int32_t restart;              /**< non-zero: to be restarted by the commit */
    int32_t connTypeIdx;          /**< row of ::ConnTypeArray */
    int32_t hardwareTypeIdx;      /**< row of ::HardwareTypeArray */
    char LoginUserNameRule[128];  /**< node "/uplink/loginusername_validate" */
    char LoginPasswordRule[128];  /**< node "/uplink/loginpassword_validate" */
} ZepUpLink;

/** One access rule (element AcRule). */
typedef struct ZepAcRule {
    int32_t Active; /**< 0 or 1 */
    char MAC[18];   /**< MAC address of a station */
    char path[128]; /**< block path */
} ZepAcRule;

/** Access control of a radio (element AccessControl). */
typedef struct ZepAccessControl {
    int32_t WlAcEnbl;                  /**< 0 or 1; 2: fixed by the device */
    int32_t WlAcMode;                  /**< 0 or 1 */
    ZepAcRule acRule[ZEP_AC_RULE_MAX]; /**< the first acRuleCount are in use */
    char path[128];                    /**< block path */
    int32_t acRuleCount;               /**< rules in use; negative when the stored count could not be read */
} ZepAccessControl;

/** A radio (elements Wireless2.4 and Wireless5). */
typedef struct ZepWireless {
    int32_t Configurable;           /**< 0: documents and variables leave the radio alone */
    int32_t WlEnbl;                 /**< 0 or 1; 2 and 3: fixed by the device */
    int32_t WlSchedule;             /**< 0 or 1; 2: fixed by the device */
    char WirelessBSSID[18];         /**< MAC address of the radio */
    char WirelessName[128];         /**< name of the network */
    char EncryptionMode[32];        /**< a row of ::WlanEncrypModeArray */
    char EncryptionType[32];        /**< a row of ::WlanEncrypTypeArray */
    char EncryptionKey[128];        /**< key of the network; a document's is cut at 31 bytes */
    char Country[32];               /**< node "country" of the radio */
    char ChannelList[128];          /**< channels that may be set, with commas between them */
    char Channel[32];               /**< number; "0" is automatic */
    ZepAccessControl accessControl; /**< who may connect */
    char path[128];                 /**< block path */
    int32_t restart;                /**< non-zero: to be restarted by the commit */
    int32_t encrypModeIdx;          /**< row of ::WlanEncrypModeArray */
    int32_t encrypTypeIdx;          /**< row of ::WlanEncrypTypeArray */
    char WirelessNameRule[128];     /**< node "wirelessname_validate" of the radio */
    char EncryptionKeyRule[128];    /**< node "encryptionkey_validate" of the radio */
} ZepWireless;

/** Web safety (element SafetyWdn). */
typedef struct ZepSafetyWdn {
    int32_t SafetyWdnEnbl;     /**< 0 or 1 */
    int32_t UrlDetectEnbl;     /**< 0 or 1 */
    int32_t SafetyNotifyEnbl;  /**< 0 or 1 */
    int32_t ToolRecommendEnbl; /**< 0 or 1 */
    char path[128];            /**< block path */
    int32_t restart;           /**< non-zero: a value has changed */
} ZepSafetyWdn;

/** The device (element Device). */
typedef struct ZepDevice {
    int32_t Configurable;      /**< 0: documents change nothing */
    char DeviceName[128];      /**< node "/sys/friendlyname" */
    char DevicePwd[128];       /**< node "/sys/user:1/password", in clear */
    char DeviceType[128];      /**< node "/sys/devicetype" */
    int32_t RouterEnbl;        /**< 0 or 1; 2 and 3: fixed by the device */
    int32_t ExtenderEnbl;      /**< version 100 only */
    char EasyRoaming[128];     /**< four numbers: the first negative */
    ZepUpLink upLink;          /**< the uplink */
    ZepWireless wireless[2];   /**< indexed by the rows of ::WirelessTypeArray */
    ZepSafetyWdn safetyWdn;    /**< web safety */
    char path[32];             /**< "Device" */
    int8_t deviceChanged;      /**< 1: the device resync is due */
    int32_t roamingRestart;    /**< cleared when a document is applied; for the host */
    int32_t wlanSurveyRestart; /**< 1: a site survey was asked for */
    char DeviceNameRule[128];  /**< node "/sys/friendlyname_validate" */
    char DevicePwdRule[128];   /**< node "/sys/user:1/password_validate" */
} ZepDevice;

/** The whole record. */
typedef struct ZepXmlData {
    ZepSpecVersion specVersion; /**< the device's own */
    ZepDevice device;           /**< everything that can be set */
    int8_t saveflag;            /**< 1: the configuration is to be saved */
    int32_t exeflag;            /**< sync ids for the next commit */
    int32_t pre_exeflag;        /**< the set before that, used once when exeflag is empty */
    int32_t exeWaitSec;         /**< seconds the client is told to wait */
    int32_t setResult;          /**< last ZepSetResult */
    char setMsg[128];           /**< last ZepSetMsg */
    int8_t apCloningOnly;       /**< 1: the last run was for access-point cloning */
    int8_t apCloningFeature;    /**< 0, 1 or 2 */
    int8_t fwUpgradeFeature;    /**< 1 unless node "/bramble/fwupgrade" is "0" */
    int8_t easyRoamingFeature;  /**< 1 when node "/bramble/easyroaming" is "1"; not for version 100 */
    int8_t safetyWdnFeature;    /**< 1 when node "/bramble/safetywdn" is "1" */
    int8_t wlan24Feature;       /**< 1: there is a 2.4 GHz radio */
    int8_t wlan5Feature;        /**< 1: there is a 5 GHz radio */
    char tmpPath[128];          /**< node "/bramble/tempdirecory" */
    char scriptPath[128];       /**< node "/bramble/scriptdirecory" */
} ZepXmlData;

/** The one record; all zero when the library is loaded. */
extern PENDRA_API ZepXmlData zepXmlData;

/** @} */

/**
 * @defgroup tables Enumeration tables
 *
 * Rows counted from 0, each table closed by the sentinel row of SearchKeyArray().
 *
 * Thread rule: constant; any thread.
 * @{
 */

/** "LLC", "VcMux". */
extern PENDRA_API const char* const ADslEncapModeArray[];
/** "2.4", "5": the radios, and the ends of their names in nodes and elements. */
extern PENDRA_API const char* const WirelessTypeArray[];
/** "Ethernet", "ADSL", "VDSL", "WWan802.11", "WWanAPN", "DSL". */
extern PENDRA_API const char* const HardwareTypeArray[];
/** "DHCP", "Static", "PPPoE", "PPPoA". */
extern PENDRA_API const char* const ConnTypeArray[];
/** "None", "WEP", "WPA", "WPAWPA2", "WPA2". */
extern PENDRA_API const char* const WlanEncrypModeArray[];
/** "AUTO", "OPEN", "SHARED", "TKIP", "AES", and a real empty row. */
extern PENDRA_API const char* const WlanEncrypTypeArray[];
/** "AP", "Router", "Extender", "Repeater", "Hotspot". */
extern PENDRA_API const char* const DeviceTypeArray[];
/** @} */

/**
 * @defgroup scanner XML key scanner
 *
 * Finds an element by its tag inside a stretch of a writable NUL-terminated buffer. A length of 0 or below, or beyond
 * the text, means up to the buffer's NUL. Tags match ignoring case, only in their bare form "<tag>", "</tag>", "<tag/>"
 * or "<tag />" (127 bytes), and nesting is not looked at: the first opening tag and the first closing tag behind it
 * count. While a call runs, the byte at the stretch's end is replaced by NUL and then put back. Null arguments find
 * nothing. What is returned points into the caller's buffer; nothing is kept. None of them touches the tree.
 *
 * Thread rule: one call at a time on one buffer. Those that report a miss go through ::XmlErrMsg_LostKey, whose
 * listener in a setup run writes the result document: one thread, one call at a time.
 * @{
 */

/**
 * Called with (parent path or null, tag) for each required element that a lookup misses; null when nobody listens. What
 * it returns is not looked at. A setup run and a form point it at the writer of result 2 (write_ZepXml_ResultXml()),
 * and it stays there; do_FwXml_Parser() clears it.
 */
extern PENDRA_API int32_t (*XmlErrMsg_LostKey)(const char* parentPath, const char* tag);

/**
 * Finds an element.
 *
 * @param buffer     writable text.
 * @param length     bytes to search; 0 or below: up to the NUL.
 * @param tag        the element's name.
 * @param outLength  receives the content's length in bytes (0 for a self-closing element and for a miss); may be null;
 *                   not written for null arguments and header hits.
 * @param headerOnly non-zero: return the position of the opening or self-closing tag, no closing tag needed.
 * @return the content, the self-closing tag itself (an empty value that is present), or null.
 */
PENDRA_API char* FindXmlKeyContain_(char* buffer, int32_t length, const char* tag, int32_t* outLength,
                                    int32_t headerOnly);

/**
 * FindXmlKeyContain_() for the content.
 *
 * @param buffer    writable text.
 * @param length    bytes to search; 0 or below: up to the NUL.
 * @param tag       the element's name.
 * @param outLength receives the content's length in bytes, 0 for a miss; may be null; not written for null arguments.
 * @return the content, the self-closing tag itself, or null.
 */
PENDRA_API char* FindXmlKeyContain(char* buffer, int32_t length, const char* tag, int32_t* outLength);

/**
 * FindXmlKeyContain_() for the opening tag.
 *
 * @param buffer writable text.
 * @param length bytes to search; 0 or below: up to the NUL.
 * @param tag    the element's name.
 * @return the position of the opening or self-closing tag, or null.
 */
PENDRA_API char* SearchXmlKeyHeader(char* buffer, int32_t length, const char* tag);

/**
 * Reads an element's text with entities decoded, see strncpy_XmlDecode().
 *
 * The NUL is written at the length of the encoded text: where entities shortened it, the bytes between keep what the
 * destination held before. Clear it where that matters.
 *
 * @param buffer      writable text.
 * @param length      bytes to search; 0 or below: up to the NUL.
 * @param tag         the element's name.
 * @param destination receives the text, cut at @p capacity - 1 bytes of the encoded one; emptied on a miss.
 * @param capacity    bytes of @p destination, NUL included; below 1 nothing is written and the call is a miss.
 * @return 1 found, 0 not.
 */
PENDRA_API int32_t GetXmlKeyStrValue_(char* buffer, int32_t length, const char* tag, char* destination,
                                      int32_t capacity);

/**
 * Reads an element's text as an integer: blanks and a sign in front are accepted, what follows the digits is ignored,
 * no digits give 0.
 *
 * @param buffer writable text.
 * @param length bytes to search; 0 or below: up to the NUL.
 * @param tag    the element's name.
 * @param value  receives the number; untouched on a miss.
 * @return 1 found, 0 not.
 */
PENDRA_API int32_t GetXmlKeyIntValue_(char* buffer, int32_t length, const char* tag, int32_t* value);

/**
 * GetXmlKeyStrValue_() that reports a miss through ::XmlErrMsg_LostKey.
 *
 * @param buffer      writable text.
 * @param length      bytes to search; 0 or below: up to the NUL.
 * @param parentPath  block path that the report names; may be null.
 * @param tag         the element's name.
 * @param destination receives the text, cut at @p capacity - 1 bytes of the encoded one; emptied on a miss.
 * @param capacity    bytes of @p destination, NUL included; below 1 nothing is written and the call is a miss.
 * @return 1 found, 0 not.
 */
PENDRA_API int32_t GetXmlKeyStrValue(char* buffer, int32_t length, const char* parentPath, const char* tag,
                                     char* destination, int32_t capacity);

/**
 * GetXmlKeyIntValue_() that reports a miss through ::XmlErrMsg_LostKey.
 *
 * @param buffer     writable text.
 * @param length     bytes to search; 0 or below: up to the NUL.
 * @param parentPath block path that the report names; may be null.
 * @param tag        the element's name.
 * @param value      receives the number; untouched on a miss.
 * @return 1 found, 0 not.
 */
PENDRA_API int32_t GetXmlKeyIntValue(char* buffer, int32_t length, const char* parentPath, const char* tag,
                                     int32_t* value);

/**
 * Cuts out an element's block. A miss is reported through ::XmlErrMsg_LostKey with a null parent path.
 *
 * @param parentPath block path of what is around the element; null or empty at the top.
 * @param buffer     writable text.
 * @param length     bytes to search; 0 or below: up to the NUL.
 * @param tag        the element's name.
 * @param blockPath  128 bytes, or null; receives "parent/tag", or the tag alone without a parent path. Not written on a
 *                   miss.
 * @param outLength  receives the content's length in bytes, 0 for a miss; may be null.
 * @return the block's content, or null.
 */
PENDRA_API char* prepareXmlBlockData(const char* parentPath, char* buffer, int32_t length, const char* tag,
                                     char* blockPath, int32_t* outLength);

/**
 * Reads "major" and "minor" of a version element. A miss is reported through ::XmlErrMsg_LostKey and ends the reading.
 *
 * @param parentPath block path of what is around the element; null or empty at the top.
 * @param buffer     writable text.
 * @param length     bytes to search; 0 or below: up to the NUL.
 * @param record     receives path, major and minor as far as they are found, and version when both are.
 * @param tag        the element's name, usually "specVersion".
 * @return 1 when both are there, else 0.
 */
PENDRA_API int32_t do_XmlSpecVersion_Parser(const char* parentPath, char* buffer, int32_t length,
                                            ZepSpecVersion* record, const char* tag);
/** @} */

/**
 * @defgroup run Setup runs
 *
 * Result document: "zepset_result.xml" in the directory of node "/bramble/tempdirecory", written by six shell commands
 * "echo" of at most 127 bytes each, with ZepSetResult, ZepSetMsg and ZepGetWaitSec.
 *
 * Thread rule: one thread, one call at a time; runs use the one record and the one hook.
 * @{
 */

/**
 * Runs a posted setup document: refreshes ::zepXmlData from the tree, parses the document over it, verifies it, writes
 * what differs into the tree, computes the sync ids (exeflag) and the wait time, and writes the result document. A
 * document without "root" leaves the old one as it is. What is written before a refusal stays. Points
 * ::XmlErrMsg_LostKey at the writer of result 2; logs document and record at level 6. Runs no script: see
 * do_ZepXml_Commit().
 *
 * @param document writable NUL-terminated text; cut at "</root>". Null is refused.
 * @return 1 applied; 0 not (the result document says why).
 */
PENDRA_API int32_t do_ZepXml_Parser(char* document);

/**
 * do_ZepXml_Parser() for an access-point cloning document: device and uplink sections are skipped.
 *
 * @param document writable NUL-terminated text; cut at "</root>". Null is refused.
 * @return 1 applied; 0 not (the result document says why).
 */
PENDRA_API int32_t do_ZepXml_Parser_for_ApCloning(char* document);

/**
 * The run itself, in the mode of the last entry point (apCloningOnly).
 *
 * @param document writable NUL-terminated text; cut at "</root>". Null is refused.
 * @return 1 applied; 0 not (the result document says why).
 */
PENDRA_API int32_t do_ZepXml_Parser_(char* document);

/**
 * Makes the last run take effect: hands its sync ids (exeflag, which stays) to exe_ExternalCall(). When the last run
 * changed nothing, the set of the run before (pre_exeflag) is used once more. Call it outside any transaction on the
 * tree: it runs the device's scripts. That the dispatcher failed is logged at level 4.
 *
 * @return 0 when there was nothing to do, else non-zero.
 */
PENDRA_API int32_t do_ZepXml_Commit(void);

/**
 * do_ZepXml_Commit() that may add the device resync and the save.
 *
 * @param flag non-zero: first adds sync ids 16 and 32 to exeflag.
 * @return 0 when there was nothing to do, else non-zero.
 */
PENDRA_API int32_t do_ZepXml_Commit_for_ApCloning(int32_t flag);

/**
 * Writes the result document into tmpPath of ::zepXmlData and keeps code and message there (setResult, setMsg). Logged
 * at level 5.
 *
 * @param code        0 applied, 1 spec version differs, 2 element missing, 3 value invalid, or a code of
 *                    validate_ZepData() or setget_ZepVar().
 * @param message     path of the offending element, or the refused variable; 127 bytes are kept. Put into the shell
 *                    command as it is. Null counts as empty.
 * @param waitSeconds seconds until the client asks again.
 */
PENDRA_API void write_ZepXml_ResultXml(int32_t code, const char* message, int32_t waitSeconds);

/**
 * Appends one element to an XML file in the temporary directory by one "echo" command of at most 255 bytes. The first
 * element starts the file, the one with the close flag ends it; the library remembers that for one file at a time. Name
 * and value are not escaped, neither for XML nor for the shell. Fills an empty tmpPath of ::zepXmlData from node
 * "/bramble/tempdirecory".
 *
 * @param fileName  name of the file in that directory.
 * @param element   the element's name.
 * @param value     the element's text.
 * @param closeFile non-zero: this is the last element.
 * @return the status of system(3); -1, and nothing written, when a text is null.
 */
PENDRA_API int32_t write_TmpXmlFile(const char* fileName, const char* element, const char* value, int32_t closeFile);

/**
 * write_TmpXmlFile() with the close flag: a file of one element, or the last one of a file that was begun.
 *
 * @param fileName name of the file in the temporary directory.
 * @param element  the element's name.
 * @param value    the element's text.
 * @return the status of system(3); -1, and nothing written, when a text is null.
 */
PENDRA_API int32_t write_ResultXmlFile(const char* fileName, const char* element, const char* value);

/**
 * Watches the channels in use (nodes "channel" and "channelusing" of "/lan/wireless2.4:1" and "/lan/wireless5:1").
 * With an automatic channel the first call already reports the channel that the radio has chosen as a change.
 *
 * @return 1 when the channel in use of a radio changed since the last call, else 0.
 */
PENDRA_API int32_t checkWlanChannelUsing(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
