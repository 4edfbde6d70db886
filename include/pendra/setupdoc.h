/**
 * @file
 * Setup documents: the XML key scanner, the setup record, the entry points, the commit and the result document.
 *
 * Thread rule: one record and one hook for the whole library; one call at a time.
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
 * of a section ("Device/Wireless5"), used in messages.
 * @{
 */

/** Access rules of one radio. */
#define ZEP_AC_RULE_MAX 40

/** A spec version. */
typedef struct ZepSpecVersion {
    int32_t major;
    int32_t minor;
    char path[32];
    int32_t version; /**< major * 100 + minor; 100 is the first generation of clients */
} ZepSpecVersion;

/** An internet provider (elements DSL and APN). */
typedef struct ZepIsp {
    char CountryName[128];
    char IspName[128];
    int32_t VPI;
    int32_t VCI;
    char EncapsulationMode[128];
    char path[128];
    int32_t encapModeIdx; /**< row of ::ADslEncapModeArray */
} ZepIsp;

/** The site an extender connects to (element ExtenderSite). */
typedef struct ZepExtenderSite {
    int32_t Survey;
    char ConnRefSiteBSSID[18];
    char WirelessType[32];
    char WirelessName[128];
    char EncryptionKey[128];
    char path[128];
    int32_t wirelessTypeIdx; /**< row of ::WirelessTypeArray */
} ZepExtenderSite;

/** The uplink (element UpLinkConnection). */
typedef struct ZepUpLink {
    int32_t Configurable;
    char HardwareSupport[128]; /**< uplink kinds that the device has */
    char HardwareType[32];
    char ConnType[32];
    char reserved[96]; /**< not used by the setup document */
    int32_t MTU;       /**< version 100 only */
    char LoginUserName[128];
    char LoginPassword[128];
    char IP[16];
    char NetMask[16];
    char Gateway[16];
    char DNS[16];
    ZepIsp dsl;
    ZepIsp apn;
    ZepExtenderSite extenderSite;
    char path[128];
    int32_t restart;
    int32_t connTypeIdx;     /**< row of ::ConnTypeArray */
    int32_t hardwareTypeIdx; /**< row of ::HardwareTypeArray */
    char LoginUserNameRule[128];
    char LoginPasswordRule[128];
} ZepUpLink;

/** One access rule (element AcRule). */
typedef struct ZepAcRule {
    int32_t Active;
    char MAC[18];
    char path[128];
} ZepAcRule;

/** Access control of a radio (element AccessControl). */
typedef struct ZepAccessControl {
    int32_t WlAcEnbl;
    int32_t WlAcMode;
    ZepAcRule acRule[ZEP_AC_RULE_MAX];
    char path[128];
    int32_t acRuleCount; /**< rules in use; negative when the stored count could not be read */
} ZepAccessControl;

/** A radio (elements Wireless2.4 and Wireless5). */
typedef struct ZepWireless {
    int32_t Configurable;
    int32_t WlEnbl;
    int32_t WlSchedule;
    char WirelessBSSID[18];
    char WirelessName[128];
    char EncryptionMode[32];
    char EncryptionType[32];
    char EncryptionKey[128];
    char Country[32];
    char ChannelList[128];
    char Channel[32];
    ZepAccessControl accessControl;
    char path[128];
    int32_t restart;
    int32_t encrypModeIdx; /**< row of ::WlanEncrypModeArray */
    int32_t encrypTypeIdx; /**< row of ::WlanEncrypTypeArray */
    char WirelessNameRule[128];
    char EncryptionKeyRule[128];
} ZepWireless;

/** Web safety (element SafetyWdn). */
typedef struct ZepSafetyWdn {
    int32_t SafetyWdnEnbl;
    int32_t UrlDetectEnbl;
    int32_t SafetyNotifyEnbl;
    int32_t ToolRecommendEnbl;
    char path[128];
    int32_t restart;
} ZepSafetyWdn;

/** The device (element Device). */
typedef struct ZepDevice {
    int32_t Configurable;
    char DeviceName[128];
    char DevicePwd[128];
    char DeviceType[128];
    int32_t RouterEnbl;
    int32_t ExtenderEnbl; /**< version 100 only */
    char EasyRoaming[128];
    ZepUpLink upLink;
    ZepWireless wireless[2]; /**< indexed by the rows of ::WirelessTypeArray */
    ZepSafetyWdn safetyWdn;
    char path[32];
    int8_t deviceChanged;
    int32_t roamingRestart;
    int32_t wlanSurveyRestart;
    char DeviceNameRule[128];
    char DevicePwdRule[128];
} ZepDevice;

/** The whole record. */
typedef struct ZepXmlData {
    ZepSpecVersion specVersion; /**< the device's own */
    ZepDevice device;
    int8_t saveflag;
    int32_t exeflag;     /**< sync ids for the next commit */
    int32_t pre_exeflag; /**< the set before that, used once when exeflag is empty */
    int32_t exeWaitSec;  /**< seconds the client is told to wait */
    int32_t setResult;   /**< last ZepSetResult */
    char setMsg[128];    /**< last ZepSetMsg */
    int8_t apCloningOnly;
    int8_t apCloningFeature; /**< 0, 1 or 2 */
    int8_t fwUpgradeFeature;
    int8_t easyRoamingFeature;
    int8_t safetyWdnFeature;
    int8_t wlan24Feature;
    int8_t wlan5Feature;
    char tmpPath[128];
    char scriptPath[128];
} ZepXmlData;

/** The one record; all zero when the library is loaded. */
extern PENDRA_API ZepXmlData zepXmlData;

/** Enumeration tables, each closed by the sentinel row of SearchKeyArray(). @{ */
extern PENDRA_API const char* const ADslEncapModeArray[];
extern PENDRA_API const char* const WirelessTypeArray[];
extern PENDRA_API const char* const HardwareTypeArray[];
extern PENDRA_API const char* const ConnTypeArray[];
extern PENDRA_API const char* const WlanEncrypModeArray[];
extern PENDRA_API const char* const WlanEncrypTypeArray[];
extern PENDRA_API const char* const DeviceTypeArray[];
/** @} */
/** @} */

/**
 * @defgroup scanner XML key scanner
 *
 * Finds an element by its tag inside a stretch of a writable NUL-terminated buffer. A length of 0 or below, or beyond
 * the text, means up to the buffer's NUL. Tags match ignoring case, only in their bare form "<tag>", "</tag>", "<tag/>"
 * or "<tag />", and nesting is not looked at: the first opening tag and the first closing tag behind it count. While a
 * call runs, the byte at the stretch's end is replaced by NUL and then put back. Null arguments find nothing.
 * @{
 */

/**
 * Called with (parent path or null, tag) for each required element that a lookup misses; null when nobody listens. A
 * setup run points it at the writer of result 2.
 */
extern PENDRA_API int32_t (*XmlErrMsg_LostKey)(const char* parentPath, const char* tag);

/**
 * Finds an element.
 *
 * @param outLength  receives the content's length (0 for a self-closing element and for a miss); may be null; not
 *                   written for null arguments and header hits.
 * @param headerOnly non-zero: return the position of the opening or self-closing tag, no closing tag needed.
 * @return the content, the self-closing tag itself (an empty value that is present), or null.
 */
PENDRA_API char* FindXmlKeyContain_(char* buffer, int32_t length, const char* tag, int32_t* outLength,
                                    int32_t headerOnly);

/** FindXmlKeyContain_() for the content. */
PENDRA_API char* FindXmlKeyContain(char* buffer, int32_t length, const char* tag, int32_t* outLength);

/** FindXmlKeyContain_() for the opening tag. */
PENDRA_API char* SearchXmlKeyHeader(char* buffer, int32_t length, const char* tag);

/**
 * Reads an element's text with entities decoded.
 *
 * The NUL is written at the length of the encoded text: where entities shortened it, the bytes between keep what the
 * destination held before. Clear it where that matters.
 *
 * @param destination emptied on a miss.
 * @param capacity    bytes of @p destination, NUL included; below 1 nothing is written and the call is a miss.
 * @return 1 found, 0 not.
 */
PENDRA_API int32_t GetXmlKeyStrValue_(char* buffer, int32_t length, const char* tag, char* destination,
                                      int32_t capacity);

/** Reads an element's text as an integer (atoi); @p value stays untouched on a miss. @return 1 found, 0 not. */
PENDRA_API int32_t GetXmlKeyIntValue_(char* buffer, int32_t length, const char* tag, int32_t* value);

/** GetXmlKeyStrValue_() that reports a miss through ::XmlErrMsg_LostKey with the parent path. */
PENDRA_API int32_t GetXmlKeyStrValue(char* buffer, int32_t length, const char* parentPath, const char* tag,
                                     char* destination, int32_t capacity);

/** GetXmlKeyIntValue_() that reports a miss through ::XmlErrMsg_LostKey with the parent path. */
PENDRA_API int32_t GetXmlKeyIntValue(char* buffer, int32_t length, const char* parentPath, const char* tag,
                                     int32_t* value);

/**
 * Cuts out an element's block. A miss is reported through ::XmlErrMsg_LostKey with a null parent path.
 *
 * @param blockPath 128 bytes; receives "parent/tag", or the tag alone without a parent path. Not written on a miss.
 * @return the block's content (its length in @p outLength), or null.
 */
PENDRA_API char* prepareXmlBlockData(const char* parentPath, char* buffer, int32_t length, const char* tag,
                                     char* blockPath, int32_t* outLength);

/** Reads "major" and "minor" of a version element. @return 1 when both are there, else 0 (the miss is reported). */
PENDRA_API int32_t do_XmlSpecVersion_Parser(const char* parentPath, char* buffer, int32_t length,
                                            ZepSpecVersion* record, const char* tag);
/** @} */

/**
 * @defgroup run Setup runs
 * @{
 */

/**
 * Runs a posted setup document: refreshes ::zepXmlData from the tree, parses the document over it, verifies it, writes
 * what differs into the tree, computes the sync ids and the wait time, and writes "zepset_result.xml" into the
 * temporary directory. A document without "root" leaves the old result document as it is.
 *
 * @param document writable NUL-terminated text; cut at "</root>".
 * @return 1 applied; 0 not (the result document says why).
 */
PENDRA_API int32_t do_ZepXml_Parser(char* document);

/** The same for an access-point cloning document: device and uplink sections are skipped. */
PENDRA_API int32_t do_ZepXml_Parser_for_ApCloning(char* document);

/** The run itself, in the mode of the last entry point. */
PENDRA_API int32_t do_ZepXml_Parser_(char* document);

/**
 * Makes the last run take effect: hands its sync ids to exe_ExternalCall(). When the last run changed nothing, the set
 * of the run before is used once more. Call it outside any transaction on the tree: it runs the device's scripts.
 *
 * @return 0 when there was nothing to do, else non-zero.
 */
PENDRA_API int32_t do_ZepXml_Commit(void);

/** do_ZepXml_Commit() that first adds sync ids 16 and 32 when @p flag is non-zero. */
PENDRA_API int32_t do_ZepXml_Commit_for_ApCloning(int32_t flag);

/**
 * Writes "zepset_result.xml" by six "echo" commands and keeps code and message in ::zepXmlData.
 *
 * @param code        0 applied, 1 spec version differs, 2 element missing, 3 value invalid, or a validate_ZepData()
 * code.
 * @param message     path of the offending element, or the refused variable; put into the shell command as it is.
 * @param waitSeconds seconds until the client asks again.
 */
PENDRA_API void write_ZepXml_ResultXml(int32_t code, const char* message, int32_t waitSeconds);

/**
 * Appends one element to an XML file in the temporary directory by one "echo" command of at most 255 bytes. The first
 * element starts the file, the one with the close flag ends it. Name and value are not escaped, neither for XML nor for
 * the shell.
 *
 * @return the status of system(3).
 */
PENDRA_API int32_t write_TmpXmlFile(const char* fileName, const char* element, const char* value, int32_t closeFile);

/** write_TmpXmlFile() with the close flag: a file of one element. */
PENDRA_API int32_t write_ResultXmlFile(const char* fileName, const char* element, const char* value);

/** @return 1 when the channel in use of a radio changed since the last call, else 0. */
PENDRA_API int32_t checkWlanChannelUsing(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
