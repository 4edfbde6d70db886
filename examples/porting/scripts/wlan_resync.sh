#!/bin/sh
# Sets up the 2.4 GHz radio.
. "$(dirname "$0")/tree.sh"
radio=/lan/wireless2.4:1
settings wlan.conf $radio/wlenbl $radio/wirelessname $radio/encryptionkey $radio/channel
