#!/bin/sh
# Runs a command on a screen of its own, with a window manager, and with a user's folders that are
# empty:  with_display.sh COMMAND [ARGUMENT...]
set -eu

folder=$(mktemp -d)
server=
manager=
cleanup() {
  [ -z "$manager" ] || kill "$manager" 2>/dev/null || true
  [ -z "$server" ] || kill "$server" 2>/dev/null || true
  rm -rf "$folder"
}
trap cleanup EXIT INT TERM

# The server picks a free display and says which.
mkfifo "$folder/display"
Xvfb -displayfd 3 -screen 0 1600x1200x24 -noreset 3>"$folder/display" >/dev/null 2>&1 &
server=$!
read -r number <"$folder/display"
export DISPLAY=":$number"
export HOME="$folder" XDG_CONFIG_HOME="$folder/config" XDG_STATE_HOME="$folder/state"
export XDG_RUNTIME_DIR="$folder" NO_AT_BRIDGE="${NO_AT_BRIDGE:-1}" GDK_BACKEND=x11
openbox >/dev/null 2>&1 &
manager=$!

status=0
"$@" || status=$?
exit $status
