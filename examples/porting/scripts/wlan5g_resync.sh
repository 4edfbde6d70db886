#!/bin/sh
# Sets up the 5 GHz radio.
. "$(dirname "$0")/tree.sh"
radio=/lan/wireless5:1
settings wlan5g.conf $radio/wlenbl $radio/wirelessname $radio/encryptionkey $radio/channel
