# Thin wrapper over CMake; `make run` and `make test` are the whole set-up on a fresh Debian machine.
BUILD ?= build
CMAKE_FLAGS ?=
JOBS ?= $(shell nproc)

.PHONY: all setup configure build run test package bench sanitize tsan format clean

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

# A .deb of the installed tree (cmake/Package.cmake), left in $(BUILD)/.
package: build
	cd $(BUILD) && cpack -G DEB

bench: build
	bash bench/run $(BUILD)

# The whole suite under AddressSanitizer and UndefinedBehaviorSanitizer, in its own build folder.
sanitize: setup
	cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDUSTMERE_SANITIZE=address
	cmake --build build-asan -j $(JOBS)
	cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
		ctest --output-on-failure -j $(JOBS)

# The scanner's tests under ThreadSanitizer.
tsan: setup
	cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDUSTMERE_SANITIZE=thread
	cmake --build build-tsan -j $(JOBS) --target test_scanner test_walks dustmere
	cd build-tsan && TSAN_OPTIONS="halt_on_error=1 die_after_fork=0" ctest --output-on-failure -R 'test_scanner|test_walks'

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD)
