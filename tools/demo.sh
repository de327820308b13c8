#!/bin/sh
# Makes sample logs, reports them with a built program and says which page to open.
#
#   tools/demo.sh BUILD_DIR
#
# Everything goes into ./demo, settings and event log included.
set -eu

fail() {
  echo "demo: $*" >&2
  exit 1
}

[ $# -eq 1 ] || fail "usage: tools/demo.sh BUILD_DIR"
build=$1
for program in hitwick sample_logs; do
  [ -x "$build/$program" ] || fail "$build/$program is not built"
done

demo=$PWD/demo
logs=$demo/logs
usage=$demo/usage
events=$demo/state/hitwick/events.log

# In milliseconds.
now() {
  echo $(($(date +%s%N) / 1000000))
}

# A value as settings.ini holds it.
quoted() {
  printf '%s' "$1" | sed 's/\\/\\\\/g'
}

rm -rf "$logs" "$usage" "$demo/config" "$demo/state"
mkdir -p "$logs" "$usage" "$demo/config/hitwick" "$demo/state"

echo "Making thirteen months of sample logs in $logs"
"$build/sample_logs" demo "$logs" >/dev/null || fail "the sample logs could not be made"

cat >"$demo/config/hitwick/settings.ini" <<END
[demo]
IISLogFormat=W3C
IISLogDir=$(quoted "$logs")
UsageDir=$(quoted "$usage")
MaxListSize=50
UseUTC=False
ShowUsernames=True
GenerateCSV=True
END

echo "Reporting them"
begin=$(now)
status=0
# The visitors' addresses belong to nobody, so no name server is troubled with them.
RES_OPTIONS='attempts:0' XDG_CONFIG_HOME=$demo/config XDG_STATE_HOME=$demo/state \
  "$build/hitwick" /C /SITE=demo || status=$?
took=$(($(now) - begin))
if [ "$status" -ne 0 ]; then
  [ ! -f "$events" ] || tail -n 5 "$events" >&2
  fail "hitwick ended with exit code $status; the event log is $events"
fi
[ -s "$usage/index.htm" ] || fail "hitwick wrote no $usage/index.htm"

lines=$(cat "$logs"/*.log | grep -vc '^#')
echo
echo "Log lines: $lines"
printf 'Run took:  %d.%02d s\n' $((took / 1000)) $((took % 1000 / 10))
printf 'That is:   %d lines per second\n' $((lines * 1000 / (took > 0 ? took : 1)))
echo "Open this: $usage/index.htm"
