# The door to the project: every target installs what it needs and says so.

BUILD_PACKAGES = g++ cmake ninja-build
TEST_PACKAGES = $(BUILD_PACKAGES) libgtest-dev libgmock-dev python3 faketime tzdata cron \
  locales chromium chromium-driver
BENCH_PACKAGES = $(BUILD_PACKAGES) libbenchmark-dev python3
WINDOWS_PACKAGES = cmake ninja-build g++-mingw-w64-x86-64-posix
WINE_PACKAGES = $(WINDOWS_PACKAGES) $(TEST_PACKAGES) googletest wine wine64
FORMAT_PACKAGES = clang-format git
TIDY_PACKAGES = $(TEST_PACKAGES) clang-tidy git

# Extra arguments of the configuration step, such as -DHITWICK_WERROR=ON.
CONFIGURE =

SOURCES = git ls-files -co --exclude-standard '*.cpp' '*.h'

.PHONY: build demo test test-asan bench windows test-windows format check-format tidy clean

build:
	tools/need.sh $(BUILD_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=OFF -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release

demo: build
	tools/demo.sh build/release

test:
	tools/need.sh $(TEST_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release
	ctest --preset release

test-asan:
	tools/need.sh $(TEST_PACKAGES)
	cmake --preset asan $(CONFIGURE)
	cmake --build --preset asan
	ctest --preset asan

bench:
	tools/need.sh $(BENCH_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=OFF -DHITWICK_BENCH=ON $(CONFIGURE)
	cmake --build --preset release
	bench/run.sh build/release

windows:
	tools/need.sh $(WINDOWS_PACKAGES)
	cmake --preset windows-mingw -DHITWICK_TESTS=OFF $(CONFIGURE)
	cmake --build --preset windows-mingw

test-windows:
	tools/need.sh $(WINE_PACKAGES)
	cmake --preset release -DHITWICK_TESTS=ON -DHITWICK_BENCH=OFF $(CONFIGURE)
	cmake --build --preset release --target hitwick sample_logs
	cmake --preset windows-mingw -DHITWICK_TESTS=ON $(CONFIGURE)
	cmake --build --preset windows-mingw
	tests/windows/run.sh build/windows-mingw build/release

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
