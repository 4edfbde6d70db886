#!/bin/sh
# Takes over what belongs to the device as a whole.
. "$(dirname "$0")/device_common.sh"

note "setting up the device"
base=/sys
apply friendlyname routerenbl
apply_secret user:1/password
base=/bramble
[ "$(text "$base/easyroaming")" != 1 ] || apply easyroaminginfo
