#include "pendra/setupdoc.h"

// The row that closes every table; it looks empty on purpose, see SearchKeyArray().
#define PENDRA_TABLE_END "\0_"

extern "C" {

ZepXmlData zepXmlData;

const char* const ADslEncapModeArray[] = {"LLC", "VcMux", PENDRA_TABLE_END};
const char* const WirelessTypeArray[] = {"2.4", "5", PENDRA_TABLE_END};
const char* const HardwareTypeArray[] = {"Ethernet", "ADSL", "VDSL", "WWan802.11", "WWanAPN", "DSL", PENDRA_TABLE_END};
const char* const ConnTypeArray[] = {"DHCP", "Static", "PPPoE", "PPPoA", PENDRA_TABLE_END};
const char* const WlanEncrypModeArray[] = {"None", "WEP", "WPA", "WPAWPA2", "WPA2", PENDRA_TABLE_END};
// The last row is a real empty text: an open radio has no encryption type.
const char* const WlanEncrypTypeArray[] = {"AUTO", "OPEN", "SHARED", "TKIP", "AES", "\0", PENDRA_TABLE_END};
const char* const DeviceTypeArray[] = {"AP", "Router", "Extender", "Repeater", "Hotspot", PENDRA_TABLE_END};

} // extern "C"
