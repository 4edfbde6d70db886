#!/bin/sh
# Sets up the 5 GHz radio.
. "$(dirname "$0")/device_common.sh"

resync_radio 5 rai0
