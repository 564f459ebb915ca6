# The two commands of the README: `make run` and `make test`.
JOBS ?= $(shell nproc)

.PHONY: all deps configure build run test test-asan fuzz bench clean

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

test: build
	@ctest --test-dir build --output-on-failure -j $(JOBS)

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
	rm -rf build build-asan build-fuzz
