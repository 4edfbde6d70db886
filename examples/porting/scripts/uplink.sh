#!/bin/sh
# Brings up the line that the uplink uses.
. "$(dirname "$0")/tree.sh"
settings uplink.conf /uplink/hardwaretype
