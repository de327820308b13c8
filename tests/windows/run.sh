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

# Wine's services are started here: a test that had to start them would wait for their end, too. The
# first program may be any but `wineboot -i`, which would start the services a second time.
wineserver -p
wine cmd /c exit >/dev/null 2>&1 </dev/null

status=0
ctest --test-dir "$windows" --output-on-failure || status=1
python3 "$here/run_windows.py" --windows "$windows/hitwick.exe" --linux "$linux/hitwick" \
  --sample-logs "$linux/sample_logs" --prefix "$WINEPREFIX" || status=1
python3 "$here/hostile_logs.py" --windows "$windows/hitwick.exe" --linux "$linux/hitwick" \
  --prefix "$WINEPREFIX" --count "${HOSTILE_LOGS:-15}" || status=1
exit $status
