# The door to the project: every target installs what it needs and says so.

# Without windows nothing but the standard library is needed, and zlib for compressed logs.
SERVER_PACKAGES = g++ cmake ninja-build zlib1g-dev
BUILD_PACKAGES = $(SERVER_PACKAGES) libwxgtk3.2-dev libgtk-3-dev pkg-config
SERVER_TEST_PACKAGES = $(SERVER_PACKAGES) libgtest-dev libgmock-dev python3 faketime tzdata \
  libxml2-utils cron locales chromium chromium-driver man-db
# What tells the tests of the windows what is on the screen, and clicks and types for them.
UI_TEST_PACKAGES = xvfb xauth openbox xdotool dbus-daemon at-spi2-core gir1.2-atspi-2.0 \
  python3-gi imagemagick locales cron
TEST_PACKAGES = $(BUILD_PACKAGES) $(SERVER_TEST_PACKAGES) $(UI_TEST_PACKAGES)
BENCH_PACKAGES = $(SERVER_PACKAGES) libbenchmark-dev python3
WINDOWS_SERVER_PACKAGES = cmake ninja-build g++-mingw-w64-x86-64-posix libz-mingw-w64-dev
# The source of the windows' toolkit is built once.
WINDOWS_PACKAGES = $(WINDOWS_SERVER_PACKAGES) dpkg-dev
WINE_PACKAGES = $(WINDOWS_SERVER_PACKAGES) $(SERVER_TEST_PACKAGES) googletest wine wine64
WINE_GUI_PACKAGES = $(WINDOWS_PACKAGES) $(WINE_PACKAGES) xvfb openbox xdotool dbus-daemon \
  imagemagick
FUZZ_PACKAGES = clang libclang-rt-dev cmake ninja-build python3
SETUP_PACKAGES = nsis python3
PACKAGE_PACKAGES = $(BUILD_PACKAGES) dpkg-dev file
PACKAGE_TEST_PACKAGES = lintian systemd debootstrap desktop-file-utils
FORMAT_PACKAGES = clang-format git
PICTURE_PACKAGES = $(SERVER_PACKAGES) chromium fonts-liberation imagemagick
TIDY_PACKAGES = $(TEST_PACKAGES) clang-tidy git

# Extra arguments of the configuration step, such as -DHITWICK_WERROR=ON.
CONFIGURE =
# Extra arguments of ctest, such as -R name.
CTEST =

# How long each fuzz target runs in each of the two builds.
FUZZ_SECONDS = 60

SOURCES = git ls-files -co --exclude-standard '*.cpp' '*.h'

.PHONY: build server demo picture package test test-server test-asan test-faults test-packages \
  fuzz fuzz-fast mutants bench windows test-windows test-windows-gui package-windows \
  test-package-windows format check-format tidy clean

build:
	tools/need.sh $(BUILD_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=OFF -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release

# The program without its windows, for machines without a toolkit.
server:
	tools/need.sh $(SERVER_PACKAGES)
	cmake --preset server -DHITWICK_TESTS=OFF -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset server

demo: server
	tools/demo.sh build/server

# The picture of the README.
picture: server
	tools/need.sh $(PICTURE_PACKAGES)
	tools/picture.sh build/server

test:
	tools/need.sh $(TEST_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release
	ctest --preset release $(CTEST)

test-server:
	tools/need.sh $(SERVER_TEST_PACKAGES)
	cmake --preset server -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset server
	ctest --preset server $(CTEST)

test-asan:
	tools/need.sh $(TEST_PACKAGES)
	cmake --preset asan $(CONFIGURE)
	cmake --build --preset asan
	ctest --preset asan $(CTEST)

# Attacks at their full size, a catch-up run that fails at every call, 500 killed runs: an hour, and
# 4 GB of disk.
test-faults:
	tools/need.sh $(SERVER_TEST_PACKAGES)
	cmake --preset server -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset server
	HITWICK_FULL=1 ctest --preset server -R 'e2e[.](attacks|faults)' --timeout 7200 --verbose

fuzz: fuzz-fast
	cmake --preset fuzz $(CONFIGURE)
	cmake --build --preset fuzz --target fuzz_targets
	tests/fuzz/run.py --build build/fuzz --seconds $(FUZZ_SECONDS)

# Without the sanitizers: several times as many inputs.
fuzz-fast:
	tools/need.sh $(FUZZ_PACKAGES)
	cmake --preset fuzz-fast $(CONFIGURE)
	cmake --build --preset fuzz-fast --target fuzz_targets
	tests/fuzz/run.py --build build/fuzz-fast --seconds $(FUZZ_SECONDS)

# Do the tests notice a small change of the program? An hour and more.
MUTANTS = 300

mutants:
	tools/need.sh $(SERVER_TEST_PACKAGES)
	tools/mutants.py --count $(MUTANTS)

bench:
	tools/need.sh $(BENCH_PACKAGES)
	cmake --preset server -DHITWICK_TESTS=OFF -DHITWICK_BENCH=ON $(CONFIGURE)
	cmake --build --preset server
	bench/run.sh build/server

windows:
	tools/need.sh $(WINDOWS_PACKAGES)
	cmake --preset windows-mingw -DHITWICK_TESTS=OFF $(CONFIGURE)
	cmake --build --preset windows-mingw

test-windows:
	tools/need.sh $(WINE_PACKAGES)
	cmake --preset server -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset server --target hitwick sample_logs
	cmake --preset windows-server -DHITWICK_TESTS=ON $(CONFIGURE)
	cmake --build --preset windows-server
	tests/windows/run.sh build/windows-server build/server

# What test-windows leaves out: the build with windows, and the windows themselves.
test-windows-gui:
	tools/need.sh $(WINE_GUI_PACKAGES)
	cmake --preset server -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset server --target hitwick sample_logs
	cmake --preset windows-mingw -DHITWICK_TESTS=ON $(CONFIGURE)
	cmake --build --preset windows-mingw --target hitwick HitwickHelper window_reader
	tests/windows/run_windows.py --windows build/windows-mingw/hitwick.exe \
	  --linux build/server/hitwick --sample-logs build/server/sample_logs Files
	tests/windows/gui_test.py --build build/windows-mingw --linux build/server/hitwick \
	  --shots build/windows-mingw/ui-shots

# The setup and the zip, in build/packages.
package-windows: windows
	tools/need.sh $(SETUP_PACKAGES)
	packaging/windows/package.py build/windows-mingw build/packages

# The build whose packages are tested; those of windows-mingw hold the windows.
WINDOWS_PACKAGED = windows-server

test-package-windows:
	tools/need.sh $(SETUP_PACKAGES) $(WINE_PACKAGES)
	cmake --preset $(WINDOWS_PACKAGED) -DHITWICK_TESTS=ON $(CONFIGURE)
	cmake --build --preset $(WINDOWS_PACKAGED) --target hitwick HitwickHelper add_task stay
	packaging/windows/package.py build/$(WINDOWS_PACKAGED) build/$(WINDOWS_PACKAGED)/packages
	tests/windows/package_test.py --build build/$(WINDOWS_PACKAGED) \
	  --packages build/$(WINDOWS_PACKAGED)/packages

# Debian packages and archives of both programs, with windows and without.
package:
	tools/need.sh $(PACKAGE_PACKAGES)
	rm -f build/packages/*.deb build/packages/*.tar.gz
	cmake --preset release -DHITWICK_TESTS=OFF -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release
	cpack --config build/release/CPackConfig.cmake
	cmake --preset server -DHITWICK_TESTS=OFF -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset server
	cpack --config build/server/CPackConfig.cmake
	rm -rf build/packages/_CPack_Packages
	cd build/packages && sha256sum hitwick* > SHA256SUMS

# Looks at the packages, then installs, runs, upgrades and purges each in a clean root (needs root).
test-packages: package
	tools/need.sh $(PACKAGE_TEST_PACKAGES)
	tests/packages/look.sh build/packages
	tests/packages/units.sh build/packages
	tests/packages/clean_root.sh build/packages

format:
	tools/need.sh $(FORMAT_PACKAGES)
	$(SOURCES) | xargs clang-format -i

check-format:
	tools/need.sh $(FORMAT_PACKAGES)
	$(SOURCES) | xargs clang-format --dry-run --Werror

tidy:
	tools/need.sh $(TIDY_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release
	git ls-files '*.cpp' ':!*_windows*' ':!bench' | xargs -P2 -n4 clang-tidy -p build/release --quiet

clean:
	rm -rf build demo
