#!/bin/sh
# Sets up the 2.4 GHz radio.
. "$(dirname "$0")/device_common.sh"

resync_radio 2.4 ra0
