#!/bin/sh
# Sets up the connection on the uplink.
. "$(dirname "$0")/tree.sh"
settings wan.conf /uplink/conntype
