# shellcheck shell=sh
# Shared by the scripts of the simulated device: they read the configuration tree and note in the device's journal what
# a real device would do with it.
#
#   PENDRA_TREE    the tree file (read by xtree)
#   PENDRA_DEVICE  the device's directory
#   PENDRA_XTREE   the xtree to use; by default the one on the PATH

script=${0##*/}
xtree=${PENDRA_XTREE:-xtree}

fail() {
    printf '%s: %s\n' "$script" "$*" >&2
    exit 1
}

[ -n "${PENDRA_DEVICE:-}" ] || fail "PENDRA_DEVICE does not name the device's directory"
[ -n "${PENDRA_TREE:-}" ] || fail "PENDRA_TREE does not name the tree"
command -v "$xtree" >/dev/null || fail "$xtree not found: put xtree on the PATH or name it in PENDRA_XTREE"
"$xtree" list / >/dev/null || fail "the tree cannot be read"

journal=$PENDRA_DEVICE/journal.txt

note() {
    printf '%s: %s\n' "$script" "$*" >>"$journal" || fail "cannot write $journal"
}

# Text of a node, safe to stand on one line; empty when there is none.
text() {
    "$xtree" get --escaped "$1" 2>/dev/null || :
}

# apply NAME... : notes the texts of nodes below $base; "" for an absent one.
apply() {
    for name; do
        note "$name=\"$(text "$base/$name")\""
    done
}

# apply_secret NAME... : notes whether they are set, and nothing of what they hold.
apply_secret() {
    for name; do
        if [ -n "$(text "$base/$name")" ]; then
            note "$name=********"
        else
            note "$name is not set"
        fi
    done
}

# resync_radio BAND INTERFACE
resync_radio() {
    base=/lan/wireless$1:1
    if [ "$(text "$base/wlenbl")" != 1 ]; then
        note "taking $2 down"
        return
    fi
    note "setting up $2"
    apply wirelessname encryptionmode encryptiontype channel wlschedule
    apply_secret encryptionkey
    resync_access_rules
}

resync_access_rules() {
    base=$base/accesscontrol
    if [ "$(text "$base/wlacenbl")" != 1 ]; then
        note "access control off"
        return
    fi
    apply wlacmode
    "$xtree" list "$base" | grep '^acrule:' | sort -t : -k 2n | while read -r rule; do
        apply "$rule/active" "$rule/mac"
    done
}
