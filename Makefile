# The two commands of the README: `make run` and `make test`.
JOBS ?= $(shell nproc)

.PHONY: all deps configure build run test test-linux test-windows windows screenshots test-asan fuzz bench clean

all: build

deps:
	@scripts/install-deps.sh

build/build.ninja: | deps
	@cmake --preset default >/dev/null

configure: build/build.ninja

build: configure
	@cmake --build build -j $(JOBS)

run: build
	@build/bin/sentrune demo

# The Linux tests, then the x86_64 Windows tests under wine64 (in a fresh Wine
# prefix of the build tree's own), then the checks of every Windows binary;
# the i686 tree is built and checked but cannot be run here.
test: test-linux test-windows

test-linux: build
	@ctest --test-dir build --output-on-failure -j $(JOBS)

test-windows: windows
	@rm -rf build-win64/wine-prefix*
	@# A test program that dies under Wine before printing anything was seen
	@# once in three full runs; a failed test runs once more before it counts.
	@ctest --test-dir build-win64 --output-on-failure -j $(JOBS) --repeat until-pass:2
	@scripts/check-pe-binaries x86_64 $(wildcard build-win64/bin/*.exe build-win64/bin/*.dll)
	@scripts/check-pe-binaries i686 $(wildcard build-win32/bin/*.exe build-win32/bin/*.dll)

# Both Windows trees: build-win32 (i686, what the VB6 IDE loads) and
# build-win64 (x86_64, what the tests run under wine64).
windows: build-win32/build.ninja build-win64/build.ninja
	@cmake --build build-win32 -j $(JOBS)
	@cmake --build build-win64 -j $(JOBS)

# Pictures of the add-in's dialogs for the documentation, into
# docs/screenshots/: the x86_64 program that plays the IDE, under wine64 on a
# virtual display of its own (large enough for the largest dialog), in a
# fresh Wine prefix of its own. No window manager runs there: Wine is told
# to draw the windows' frames and captions itself.
SHOTS_PREFIX = $(CURDIR)/build-win64/wine-prefix-shots
screenshots: build-win64/build.ninja
	@cmake --build build-win64 -j $(JOBS) --target addin_screenshots
	@rm -rf $(SHOTS_PREFIX)
	@scripts/wine-run $(SHOTS_PREFIX) reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /d N /f >/dev/null
	@# The program's Wine starts afresh, on the virtual display.
	@WINEPREFIX=$(SHOTS_PREFIX) wineserver -w
	@xvfb-run -a -s "-screen 0 1920x1080x24" scripts/wine-run $(SHOTS_PREFIX) \
		build-win64/screenshots/addin_screenshots.exe $(CURDIR)/docs/screenshots

third_party/sqlite/sqlite3.c: | deps
	@scripts/fetch-sqlite.sh

build-win32/build.ninja build-win64/build.ninja: | deps third_party/sqlite/sqlite3.c
	@cmake --preset $(subst build-,,$(@D)) >/dev/null

test-asan: deps
	@cmake --preset asan >/dev/null
	@cmake --build build-asan -j $(JOBS)
	@ctest --test-dir build-asan --output-on-failure -j $(JOBS)

fuzz: deps
	@cmake --preset fuzz >/dev/null
	@cmake --build build-fuzz -j $(JOBS)

bench: build
	@for b in build/bin/bench_*; do $$b; done

clean:
	rm -rf build build-asan build-fuzz build-win32 build-win64
