# Thin wrapper over CMake; `make run` and `make test` are the whole set-up on a fresh Debian machine.
BUILD ?= build
CMAKE_FLAGS ?=
JOBS ?= $(shell nproc)

.PHONY: all setup configure build run test bench format clean

all: build

setup:
	@bash scripts/setup

$(BUILD)/build.ninja: | setup
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

configure: $(BUILD)/build.ninja

build: setup configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./$(BUILD)/src/dustmere $(ARGS)

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

bench: build
	bash bench/run $(BUILD)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD)
