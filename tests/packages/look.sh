#!/bin/sh
# Looks at the packages without installing them: lintian, what they hold, what they ask for.
#
#   tests/packages/look.sh PACKAGE_FOLDER
set -eu

fail() {
  echo "look: $*" >&2
  exit 1
}

holds() { # PACKAGE PATH...
  package=$1
  shift
  for path; do
    dpkg-deb --fsys-tarfile "$package" | tar t | grep -Fqx "./$path" || fail "$package lacks $path"
  done
}

field() { # PACKAGE FIELD PATTERN
  dpkg-deb -f "$1" "$2" | grep -Eq "$3" || fail "$1: $2 is '$(dpkg-deb -f "$1" "$2")'"
}

[ $# -eq 1 ] || fail "usage: tests/packages/look.sh PACKAGE_FOLDER"
cd "$1"
full=$(echo hitwick_*.deb) server=$(echo hitwick-server_*.deb)
[ -f "$full" ] && [ -f "$server" ] || fail "there are not two .deb in $1"

for package in "$full" "$server"; do
  name=$(dpkg-deb -f "$package" Package)
  lintian --allow-root --fail-on error "$package" || fail "lintian refuses $package"
  holds "$package" usr/bin/hitwick usr/share/man/man1/hitwick.1.gz usr/share/hitwick/index.htm \
    usr/share/hitwick/images/month.png usr/share/bash-completion/completions/hitwick \
    usr/lib/systemd/system/hitwick@.service usr/lib/systemd/system/hitwick@.timer \
    usr/lib/sysusers.d/hitwick.conf etc/hitwick/settings.ini \
    "usr/share/doc/$name/examples/settings.ini" "usr/share/doc/$name/copyright"
  [ "$(dpkg-deb --ctrl-tarfile "$package" | tar xO ./conffiles)" = /etc/hitwick/settings.ini ] ||
    fail "$package has other configuration files"
  field "$package" Depends 'libc6 \(>='
  field "$package" Depends 'zlib1g'
done

holds "$full" usr/lib/hitwick/hitwick-windows.so usr/share/applications/hitwick.desktop \
  usr/share/icons/hicolor/scalable/apps/hitwick.svg usr/share/icons/hicolor/48x48/apps/hitwick.png
field "$full" Depends libwxgtk3.2
field "$full" Provides hitwick-server
field "$full" Conflicts '^hitwick-server$'
field "$server" Conflicts '^hitwick$'
if dpkg-deb -f "$server" Depends | grep -Eq 'gtk|libx11'; then fail "$server needs a toolkit"; fi
if dpkg-deb --fsys-tarfile "$server" | tar t | grep -Eq 'windows.so|[.]desktop'; then
  fail "$server has windows"
fi

for archive in hitwick-[0-9]*.tar.gz hitwick-server-[0-9]*.tar.gz; do
  tar tzf "$archive" | grep -q '^[^/]*/bin/hitwick$' || fail "$archive has no program"
  if tar tzf "$archive" | grep -q '^[^/]*/etc/'; then fail "$archive has a system's settings"; fi
done
sha256sum --quiet -c SHA256SUMS
echo "look: the packages are as they should be"
