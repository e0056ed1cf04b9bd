# The two commands of the README: `make demo` and `make test`.
BUILD      ?= build
BENCHBUILD ?= build-release
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_ARGS ?=
MAKEFLAGS  += --no-print-directory

.PHONY: all deps configure build test demo bench clean

all: build

deps:
	@sh scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Debug $(CMAKE_ARGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

test: build
	@cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

demo: build
	@sh scripts/run-demo.sh $(BUILD)

bench: deps
	@cmake -S . -B $(BENCHBUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BENCHBUILD) -j $(JOBS)
	@sh scripts/run-bench.sh $(BENCHBUILD)

clean:
	rm -rf $(BUILD) $(BENCHBUILD)
