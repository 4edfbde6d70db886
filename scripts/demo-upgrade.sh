# shellcheck shell=bash
# A firmware upgrade, for real: a server on this machine, the search, the download, the check and the flash. Then an image
# that is damaged.

images=$build/platform/fwserver/files/PB100
flash=$state/device/flash/firmware.bin

start_server() {
  # A rate at which the bar can be watched.
  platform/fwserver/serve "$build/platform/fwserver/files" --rate 1024 2>"$state/fwserver.log" &
  server=$!
  for _ in $(seq 100); do
    ! curl -sf -o /dev/null http://127.0.0.1:8481/PB100/PB100.xml || break
    sleep 0.1
  done
  kill -0 "$server" 2>/dev/null || fail "the firmware server did not start: $(tail -n 1 "$state/fwserver.log")"
}

prepare_upgrade() {
  mkdir -p "$state/device/flash"
  echo "the firmware before" >"$flash"
  # The start of the command is what the device finds its download by: another demo on this machine has another one.
  local fetch
  fetch=$("$xtree" get /fwupgradeinfo/urlgetcmd)
  "$xtree" set /fwupgradeinfo/urlgetcmd "${fetch/PB100/r${tmp##*.}}"
}

show_flash() {
  sha256sum "$1" "$flash" | sed "s#$PWD/##"
  cmp "$1" "$flash" || fail "the flash does not hold the image"
}

show_upgrade() {
  say "Firmware $("$xtree" get /fwupgradeinfo/currfwfilename) looks for a newer one"
  "$zepctl" upgrade --yes --no-wait
  say "The flash holds the image, byte for byte"
  show_flash "$images/PB100_FW1.4.0.bin"
}

show_refusal() {
  "$xtree" set /fwupgradeinfo/currfwfilename PB100_FW1.4.0.bin
  say "The device runs 1.4.0 now; the image of 1.5.0 is damaged"
  local status=0
  "$zepctl" upgrade --yes --no-wait || status=$?
  [ "$status" -eq 11 ] || fail "the damaged image was not refused (status $status)"
  say "The flash is untouched"
  show_flash "$images/PB100_FW1.4.0.bin"
  say "What the device notes"
  cat "$state/device/journal.txt"
  grep -q 'refused firmware: .*corrupted data' "$state/device/journal.txt" || fail "the device does not tell the reason"
}

demo_upgrade() {
  start_server
  prepare_upgrade
  show_upgrade
  show_refusal
}
