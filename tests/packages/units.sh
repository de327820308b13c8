#!/bin/sh
# Has systemd look at the units that a package holds: no mistakes in them, and no more exposure than
# they need.
#
#   tests/packages/units.sh PACKAGE_FOLDER
set -eu

fail() {
  echo "units: $*" >&2
  exit 1
}

[ $# -eq 1 ] || fail "usage: tests/packages/units.sh PACKAGE_FOLDER"
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$(echo "$1"/hitwick-server_*.deb)" "$root"
# The targets that the units name are systemd's own.
units=$root/usr/lib/systemd/system
mkdir -p "$root/etc/systemd/system"
cp /lib/systemd/system/*.target /lib/systemd/system/*.slice "$units/"
cp "$units/hitwick@.service" "$units/hitwick@web1.service"
cp "$units/hitwick@.timer" "$units/hitwick@web1.timer"

for unit in hitwick@web1.service hitwick@web1.timer; do
  said=$(SYSTEMD_LOG_LEVEL=warning systemd-analyze --root="$root" --man=no verify "$unit" 2>&1) ||
    fail "$unit: $said"
  # Other units of the machine are not our concern.
  if echo "$said" | grep hitwick; then fail "$unit is not clean"; fi
done

# The scale is 0 (safe) to 10; services usually have 9 and more.
systemd-analyze --offline=true --root="$root" --threshold=20 --no-pager security \
  hitwick@web1.service >"$root/security" || {
  cat "$root/security"
  fail "hitwick@web1.service is too exposed"
}
tail -n 1 "$root/security"
