#!/bin/sh
# Brings up the line that the uplink uses.
. "$(dirname "$0")/device_common.sh"

base=/uplink
hardware=$(text "$base/hardwaretype")
note "starting the uplink over ${hardware:-no line}"
case $hardware in
ADSL | VDSL)
    apply dsl/countryname dsl/ispname
    ;;
DSL)
    apply dsl/vpi dsl/vci dsl/encapsulationmode
    ;;
WWanAPN)
    apply apn/countryname apn/ispname
    ;;
WWan802.11)
    apply extendersite/connrefsitebssid extendersite/wirelesstype extendersite/wirelessname
    apply_secret extendersite/encryptionkey
    ;;
esac
