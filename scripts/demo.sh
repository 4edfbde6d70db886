# shellcheck shell=bash
# Shared by what scripts/run shows: a simulated device with a directory of its own, started and cleaned away again.

build=$PWD/build/run
state=$build/state
xtree=$build/platform/xtree
zepctl=$build/client/zepctl

say() { if [ -t 1 ]; then printf '\n\033[1m== %s\033[0m\n' "$*"; else printf '\n== %s\n' "$*"; fi; }
fail() { echo "run: $*" >&2; exit 1; }

device=
server=
tmp=
end_program() {
  if [ -n "$1" ] && kill -TERM "$1" 2>/dev/null; then wait "$1" || true; fi
}
stop_device() {
  end_program "$device"
  device=
}
clean_up() {
  stop_device
  end_program "$server"
  [ -z "$tmp" ] || rm -rf "$tmp"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

prepare() {
  scripts/setup --run
  echo "run: building into build/run"
  scripts/build build/run -DPENDRA_BUILD_TESTS=OFF
  rm -rf "$state"
  mkdir -p "$state/device/bin"
  tmp=$(mktemp -d /tmp/pendra.XXXXXX) # short: the library's shell commands are bounded
  cp platform/device/stations.txt "$state/device/"
  cp platform/device/iwpriv "$state/device/bin/"
  export PENDRA_TREE=$state/router.mdb PENDRA_XTREE=$xtree
  "$xtree" load platform/device/router.tree
}

start_device() {
  : >"$state/pendrad.out" # there before it is read, whichever process runs first
  "$build/host/pendrad" --tree "$PENDRA_TREE" --tmp "$tmp" --scripts "$PWD/platform/device" \
    --device "$state/device" --port 0 --log-level 6 >"$state/pendrad.out" &
  device=$!
  for _ in $(seq 100); do
    address=$(sed -n 's/^pendrad: listening on //p' "$state/pendrad.out")
    [ -z "$address" ] || break
    kill -0 "$device" 2>/dev/null || fail "the device did not start, see $state/pendrad.out"
    sleep 0.1
  done
  [ -n "$address" ] || fail "the device did not start within 10 seconds"
  export ZEPCTL_DEVICE=$address
  ZEPCTL_PASSWORD=$("$xtree" get /sys/user:1/password)
  export ZEPCTL_PASSWORD
  "$xtree" dump >"$state/before.tree"
}

keep_serving() {
  say "The device is at $ZEPCTL_DEVICE; its password is '$ZEPCTL_PASSWORD'. Ctrl-C ends it"
  echo "Its pages: $ZEPCTL_DEVICE/"
  echo "Try: ZEPCTL_DEVICE=$ZEPCTL_DEVICE $zepctl stations"
  wait "$device"
}
