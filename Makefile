# Thin calls of the CMake presets. Each target first installs the Debian packages that it needs and
# that are missing (as root, or through sudo).

BUILD_DEPS := g++ cmake make libcli11-dev libfmt-dev libtinyxml2-dev libtomlplusplus-dev \
              libyaml-cpp-dev nlohmann-json3-dev
              libyaml-dev nlohmann-json3-dev
TEST_DEPS := libgtest-dev liborocos-kdl-dev pkg-config

.PHONY: demo test build-deps test-deps clean

## Builds, and runs the main job.
demo: build-deps
	cmake --preset release
	cmake --build --preset release

## Builds and runs every test, plain and under the address and undefined-behaviour sanitizers.
test: test-deps
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

build-deps:
	packaging/install-deps $(BUILD_DEPS)

test-deps:
	packaging/install-deps $(BUILD_DEPS) $(TEST_DEPS)

clean:
	rm -rf build out
