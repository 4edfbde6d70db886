// The record's layout is the same on every target: it holds no pointer, so one set of numbers pins it everywhere, and
// hosts built against one build of the library work with the next.
#include <cstddef>

#include "pendra/setupdoc.h"

static_assert(sizeof(ZepSpecVersion) == 44);
static_assert(offsetof(ZepSpecVersion, major) == 0);
static_assert(offsetof(ZepSpecVersion, version) == 40);

static_assert(sizeof(ZepIsp) == 524);
static_assert(offsetof(ZepIsp, CountryName) == 0);
static_assert(offsetof(ZepIsp, encapModeIdx) == 520);

static_assert(sizeof(ZepExtenderSite) == 444);
static_assert(offsetof(ZepExtenderSite, Survey) == 0);
static_assert(offsetof(ZepExtenderSite, wirelessTypeIdx) == 440);

static_assert(sizeof(ZepUpLink) == 2504);
static_assert(offsetof(ZepUpLink, Configurable) == 0);
static_assert(offsetof(ZepUpLink, reserved) == 196);
static_assert(offsetof(ZepUpLink, dsl) == 616);
static_assert(offsetof(ZepUpLink, apn) == 1140);
static_assert(offsetof(ZepUpLink, extenderSite) == 1664);
static_assert(offsetof(ZepUpLink, LoginPasswordRule) == 2376);

static_assert(sizeof(ZepAcRule) == 152);
static_assert(offsetof(ZepAcRule, Active) == 0);
static_assert(offsetof(ZepAcRule, path) == 22);

static_assert(sizeof(ZepAccessControl) == 6220);
static_assert(offsetof(ZepAccessControl, WlAcEnbl) == 0);
static_assert(offsetof(ZepAccessControl, acRule) == 8);
static_assert(offsetof(ZepAccessControl, acRuleCount) == 6216);

static_assert(sizeof(ZepWireless) == 7160);
static_assert(offsetof(ZepWireless, Configurable) == 0);
static_assert(offsetof(ZepWireless, accessControl) == 544);
static_assert(offsetof(ZepWireless, EncryptionKeyRule) == 7032);

static_assert(sizeof(ZepSafetyWdn) == 148);
static_assert(offsetof(ZepSafetyWdn, SafetyWdnEnbl) == 0);
static_assert(offsetof(ZepSafetyWdn, restart) == 144);

static_assert(sizeof(ZepDevice) == 17796);
static_assert(offsetof(ZepDevice, Configurable) == 0);
static_assert(offsetof(ZepDevice, upLink) == 524);
static_assert(offsetof(ZepDevice, wireless) == 3028);
static_assert(offsetof(ZepDevice, safetyWdn) == 17348);
static_assert(offsetof(ZepDevice, DevicePwdRule) == 17668);

static_assert(sizeof(ZepXmlData) == 18252);
static_assert(offsetof(ZepXmlData, specVersion) == 0);
static_assert(offsetof(ZepXmlData, device) == 44);
static_assert(offsetof(ZepXmlData, saveflag) == 17840);
static_assert(offsetof(ZepXmlData, exeflag) == 17844);
static_assert(offsetof(ZepXmlData, apCloningOnly) == 17988);
static_assert(offsetof(ZepXmlData, wlan5Feature) == 17994);
static_assert(offsetof(ZepXmlData, tmpPath) == 17995);
static_assert(offsetof(ZepXmlData, scriptPath) == 18123);
