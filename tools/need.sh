#!/bin/sh
# Installs the named Debian packages that are missing, as root or through sudo, and says which.
set -eu

missing=
for package in "$@"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" = 0 ]; then
  as_root=
elif command -v sudo >/dev/null 2>&1; then
  as_root=sudo
else
  echo "These packages are missing and only root can install them:$missing" >&2
  exit 1
fi
echo "Installing Debian packages:$missing"
$as_root apt-get update -qq </dev/null
# shellcheck disable=SC2086
DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends $missing </dev/null >/dev/null
