#!/bin/sh
# Sets up the connection on the uplink.
. "$(dirname "$0")/device_common.sh"

base=/uplink
connection=$(text "$base/conntype")
note "connecting with ${connection:-nothing}"
case $connection in
PPPoE | PPPoA)
    apply loginusername
    apply_secret loginpassword
    ;;
Static)
    apply ip netmask gateway dns
    ;;
esac
