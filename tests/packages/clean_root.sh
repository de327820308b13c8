#!/bin/bash
# Installs each .deb in a clean root, runs it there as a new user, upgrades it to a higher version,
# and purges it.
#
#   tests/packages/clean_root.sh PACKAGE_FOLDER [PACKAGE...]
#
# Needs root and a Debian mirror. The root is made once and kept in PACKAGE_FOLDER/../clean-root.tar.
set -euo pipefail

fail() {
  echo "clean_root: $*" >&2
  exit 1
}

[ $# -ge 1 ] || fail "usage: tests/packages/clean_root.sh PACKAGE_FOLDER [PACKAGE...]"
[ "$(id -u)" = 0 ] || fail "needs root"
packages=$(realpath "$1")
shift
[ $# -gt 0 ] || set -- hitwick-server hitwick
kept=$packages/../clean-root.tar
suite=$(. /etc/os-release && echo "$VERSION_CODENAME")

root=$(mktemp -d)
leave() {
  umount -q "$root/proc" "$root/dev" 2>/dev/null || true
  mountpoint -q "$root/proc" || mountpoint -q "$root/dev" || rm -rf "$root"
}
trap leave EXIT

if [ ! -f "$kept" ]; then
  debootstrap --variant=minbase "$suite" "$root" >"$packages/../debootstrap.log" ||
    fail "debootstrap failed, see $packages/../debootstrap.log"
  cp /etc/apt/sources.list "$root/etc/apt/" 2>/dev/null || true
  cp -r /etc/apt/sources.list.d /etc/apt/apt.conf.d "$root/etc/apt/"
  tar cf "$kept.new" -C "$root" . && mv "$kept.new" "$kept"
else
  tar xf "$kept" -C "$root"
fi
cp /etc/resolv.conf "$root/etc/resolv.conf"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C \
  DEBIAN_FRONTEND=noninteractive "$@"; }
as_user() { inside su -s /bin/sh anna -c "$1"; }

# The same package with a higher version.
newer() { # PACKAGE RESULT
  local unpacked
  unpacked=$(mktemp -d)
  dpkg-deb -R "$1" "$unpacked"
  sed -i 's/^Version: .*/&+1/; s/(= \([^)]*\))/(= \1+1)/' "$unpacked/DEBIAN/control"
  dpkg-deb --root-owner-group -b "$unpacked" "$2" >/dev/null
  rm -rf "$unpacked"
}

# Every file and folder of the root but what a package manager keeps for itself.
listing() {
  (cd "$root" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./tmp -o -path ./var/cache \
    -o -path ./var/lib/apt -o -path ./var/lib/dpkg -o -path ./var/log -o -path ./home \
    -o -path ./run \) -prune -o -print) | sort
}

run_as_new_user() { # NAME
  as_user "mkdir -p ~/logs ~/usage ~/.config/hitwick
    day=\$(date -u +%y%m%d)
    { echo '#Fields: date time c-ip cs-uri-stem sc-status sc-bytes'
      echo \"\$(date -u +%Y-%m-%d) 00:00:01 192.0.2.1 /index.htm 200 1000\"
    } | gzip >~/logs/u_ex\$day.log.gz
    printf '[web1]\nIISLogDir=%s\nUsageDir=%s\nUseUTC=True\n' ~/logs ~/usage \
      >~/.config/hitwick/settings.ini
    [ \"\$(hitwick --sites)\" = web1 ] && RES_OPTIONS=attempts:0 hitwick /BATCH /SITE=web1" ||
    fail "$1: the new user's run failed"
  grep -q '/index.htm' "$root"/home/anna/usage/???.htm || fail "$1: the page lacks the hit"
  [ -s "$root/home/anna/usage/index.htm" ] || fail "$1: there is no overview"
  rm -r "$root"/home/anna/usage
}

inside useradd -m anna
for name; do
  package=$(echo "$packages/${name}"_*.deb)
  cp "$package" "$root/tmp/old.deb"
  newer "$package" "$root/tmp/new.deb"
  inside apt-get update -qq
  # What it depends on stays when it goes, so that only its own files can make a difference.
  depends=$(dpkg-deb -f "$package" Depends | sed 's/([^)]*)//g; s/,//g; s/|[^,]*//g')
  # shellcheck disable=SC2086
  inside apt-get install -y -qq --no-install-recommends $depends >/dev/null
  before=$(listing)

  inside apt-get install -y -qq --no-install-recommends /tmp/old.deb >/dev/null
  run_as_new_user "$name"
  echo '; the administrator was here' >>"$root/etc/hitwick/settings.ini"
  inside apt-get install -y -qq --no-install-recommends /tmp/new.deb >/dev/null
  [[ $(inside dpkg-query -W -f '${Version}' "$name") == *+1 ]] || fail "$name was not upgraded"
  grep -q 'the administrator was here' "$root/etc/hitwick/settings.ini" ||
    fail "$name: the upgrade has changed the settings"
  run_as_new_user "$name"
  inside dpkg --verify "$name" | grep -v settings.ini && fail "$name: files have changed"

  inside apt-get remove -y -qq "$name" >/dev/null
  [ -f "$root/etc/hitwick/settings.ini" ] || fail "$name: removal took the settings"
  inside apt-get purge -y -qq "$name" >/dev/null
  left=$(comm -13 <(echo "$before") <(listing))
  [ -z "$left" ] || fail "$name leaves: $left"
  echo "clean_root: $name can be installed, run, upgraded and purged"
done

if [ $# -eq 2 ]; then
  # Each takes the other's place.
  cp "$packages"/hitwick_*.deb "$root/tmp/full.deb"
  cp "$packages"/hitwick-server_*.deb "$root/tmp/server.deb"
  for next in server full server; do
    inside apt-get install -y -qq --no-install-recommends "/tmp/$next.deb" >/dev/null
    [ "$(inside dpkg-query -W -f '${db:Status-Abbrev}\n' 'hitwick*' | grep -c '^ii')" = 1 ] ||
      fail "the packages do not take each other's place"
    inside hitwick --version >/dev/null
  done
  echo "clean_root: the packages take each other's place"
fi
