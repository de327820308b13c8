#!/usr/bin/env bash
# Prints the folder of a static wxWidgets for the Windows program, and builds it first when it is
# not there yet: cross-built from Debian's source package of the version whose Linux build the
# machine would install, with no more than the windows use.
#
# It stays in HITWICK_CACHE (default: hitwick in the user's cache folder) under its version and a
# key of the options and the compiler. The machine's own package sources stay as they are.
set -euo pipefail

source_package=wxwidgets3.2
binary_package=libwxgtk3.2-dev
triple=x86_64-w64-mingw32

# Everything that can be left out is; this is what the windows use, and what that in turn needs.
features=(accel accessibility any autoidman bmpbutton button checkbox choice clipboard combobox
  commondlg config controls dataobj datetime dccache dirdlg display dynamicloader dynlib exceptions
  ffile file filedlg fontenum fontmap gauge image imaglist intl listbox log longlong menubar menus
  mousewheel msgdlg ole ownerdrawn palette radiobtn regkey scrollbar statbmp statbox statline
  stattext stdpaths stopwatch streams sysoptions textbuf textctrl textfile threads timer tooltips
  treectrl uxtheme validators variant wxdib xpm)
# Not optimised: no window waits for the toolkit's code, and its build takes half the time.
# The pictures of the buttons are drawings in text form: nanosvg, a header in the package, reads
# them.
options=(--host=$triple --disable-shared --enable-unicode --disable-debug_flag --disable-sys-libs
  --disable-tests --enable-pch --disable-all-features "${features[@]/#/--enable-}"
  --disable-dbghelp --disable-hotkey --disable-metafile --with-nanosvg --without-libpng
  --without-libjpeg --without-libtiff --without-expat --without-regex --without-zlib
  --without-liblzma --without-opengl --without-subdirs CFLAGS=-O0 CXXFLAGS=-O0)
cc=$triple-gcc-posix
cxx=$triple-g++-posix

fail() {
  echo "wx_windows.sh: $*" >&2
  exit 1
}

# A binary package rebuilt without a new source names the source's version in brackets.
version=$(apt-cache show --no-all-versions $binary_package 2>/dev/null |
  sed -n 's/^Version: //p; s/^Source: .*(\(.*\))$/\1/p' | tail -1)
[ -n "$version" ] || fail "no package $binary_package is known here; run apt-get update"
key=$({ printf '%s\n' "${options[@]}"; $cxx --version; } | sha256sum | cut -c1-12)
cache=${HITWICK_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/hitwick}
prefix=$cache/wx-$version-$key

finish() {
  echo "$prefix"
  exit 0
}

mkdir -p "$cache"
exec 9>"$cache/wx.lock"
flock 9
[ ! -d "$prefix" ] || finish

work=$cache/wx-build
log=$cache/wx-build.log
rm -rf "$work"
mkdir -p "$work/lists/partial" "$work/archives/partial" "$work/build" "$work/root"
cd "$work"

# "URI COMPONENT" of the machine's own archive.
archive=$(apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(COMPONENT) $(REPO_URI)' \
  'Created-By: Packages' |
  awk -v codename="$(. /etc/os-release && echo "$VERSION_CODENAME")" \
    '$1 == "Debian" && $2 == codename && $3 == "main" { print $4, $2, $3; exit }')
[ -n "$archive" ] || fail "the machine's package sources name no archive of Debian"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
[ -r $keyring ] && signed="[signed-by=$keyring]" || signed=
echo "deb-src $signed $archive" >sources.list

own_apt() {
  apt-get -q -o Dir::Etc::SourceList="$work/sources.list" -o Dir::Etc::SourceParts=/dev/null \
    -o Dir::State::Lists="$work/lists" -o Dir::Cache="$work" -o APT::Sandbox::User=root "$@"
}

build() {
  own_apt update
  own_apt source "$source_package=$version"
  cd build
  "$work"/wxwidgets*/configure --prefix="$prefix" "${options[@]}" CC=$cc CXX=$cxx
  make -j2
  make install DESTDIR="$work/root"
}

echo "Building wxWidgets $version for Windows, once; its words go to $log" >&2
started=$SECONDS
# Not called within a condition, where an error would not end it.
build </dev/null >"$log" 2>&1 9>&- &
wait $! || { tail -30 "$log" >&2; fail "wxWidgets could not be built; all of it is in $log"; }
mv -T "$work/root$prefix" "$prefix"
rm -rf "$work"
echo "Built wxWidgets in $(((SECONDS - started) / 60)) minutes: $prefix" >&2
finish
