#!/bin/sh
# Draws the picture of the README: last month's page of the demo.
#
#   tools/picture.sh BUILD_DIR
#
# Needs chromium, fonts-liberation and imagemagick. Everything but docs/help/images/month.png goes into ./demo.
set -eu

fail() {
  echo "picture: $*" >&2
  exit 1
}

[ $# -eq 1 ] || fail "usage: tools/picture.sh BUILD_DIR"
LC_ALL=C "${0%/*}/demo.sh" "$1"

# The middle of this month less a month is last month, whatever the length of either.
page=$PWD/demo/usage/$(LC_ALL=C date -d "$(date +%Y-%m-15) -1 month" +%b).htm
[ -s "$page" ] || fail "the demo has no $page"

chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
  --disable-background-networking --disable-component-update --disable-sync \
  --user-data-dir="$PWD/demo/browser" --hide-scrollbars --window-size=1000,1560 \
  --force-device-scale-factor=0.7 --screenshot="$PWD/demo/month.png" "file://$page" \
  2>demo/browser.log || fail "chromium failed: $(tail -n 1 demo/browser.log)"
rm -rf demo/browser

# Sixty-four colours and no dates inside: the file stays small and changes with the page only.
convert demo/month.png -colors 64 +dither -strip -define png:exclude-chunks=date,time \
  PNG8:docs/help/images/month.png
echo "Drawn: docs/help/images/month.png"
