#!/bin/sh
# Takes over what belongs to the device as a whole.
. "$(dirname "$0")/tree.sh"
settings device.conf /sys/friendlyname
