# shellcheck shell=bash
# A setup, for real: the client posts a document, waits as long as it is told to, and the device's scripts run.

set_up() {
  say "The device and its client"
  "$zepctl" hello
  "$zepctl" login
  say "Posting examples/setup.xml"
  "$zepctl" setup examples/setup.xml
}

# Everything that must have happened, seen from outside the device.
show_setup() {
  say "The result document"
  cat "$tmp/zepset_result.xml"
  grep -q '<ZepSetResult>0</ZepSetResult>' "$tmp/zepset_result.xml" || fail "the document was not applied"
  say "What the device's scripts did"
  cat "$state/device/journal.txt"
  for script in uplink wan_resync wlan_resync wlan5g_resync device_resync; do
    grep -q "$script" "$state/device/journal.txt" || fail "$script.sh did not run"
  done
  say "The configuration tree, before (-) and after (+)"
  ! "$xtree" diff "$state/before.tree" || fail "the tree did not change"
  "$xtree" get /sys/friendlyname | grep -qx 'Living Room' || fail "the new name is not in the tree"
}

demo_setup() {
  set_up
  show_setup
}
