#!/usr/bin/env bash
# Tests the Windows build under Wine, in a prefix made for this run: every test program, then the
# program itself from outside.
#
#     run.sh WINDOWS_BUILD_FOLDER LINUX_BUILD_FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
windows=$(cd "$1" && pwd)
linux=$(cd "$2" && pwd)

export WINEPREFIX="$windows/wine" WINEDEBUG=-all
rm -rf "$WINEPREFIX"
mkdir -p "$WINEPREFIX"
trap 'wineserver -k || true' EXIT

# Wine's services are started here: a test that had to start them would wait for their end, too.
start_services() {
  wineserver -p
  wine wineboot -i >/dev/null 2>&1 </dev/null
  wine net start Schedule >/dev/null 2>&1 </dev/null
}
# Starting them while the prefix is being made can fail for good on a busy machine.
for _ in 1 2 3; do
  start_services && break
  wineserver -k -w
done

status=0
ctest --test-dir "$windows" --output-on-failure || status=1
python3 "$here/run_windows.py" --windows "$windows/hitwick.exe" --linux "$linux/hitwick" \
  --sample-logs "$linux/sample_logs" --prefix "$WINEPREFIX" || status=1
python3 "$here/hostile_logs.py" --windows "$windows/hitwick.exe" --linux "$linux/hitwick" \
  --prefix "$WINEPREFIX" --count "${HOSTILE_LOGS:-15}" || status=1
exit $status
