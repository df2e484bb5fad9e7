# Thin calls of the CMake presets. Each target first installs the Debian packages that it needs and
# that are missing (as root, or through sudo).

BUILD_DEPS := g++ cmake make libcli11-dev libeigen3-dev libelf-dev libfmt-dev libhdf5-dev \
              libtinyxml2-dev libtomlplusplus-dev libyaml-dev nlohmann-json3-dev pybind11-dev python3-dev python3-numpy
# What the report's page is built by; a machine's own node and npm do as well.
NODE_DEPS = $(shell packaging/node-deps)
BENCH_DEPS := libbenchmark-dev libkdl-parser-dev liborocos-kdl-dev python3 python3-scipy valgrind
DOCS_DEPS := doxygen furo python3-breathe python3-myst-parser python3-sphinx
# With what Debian packages are made.
PACKAGE_DEPS = debhelper dh-python dpkg-dev lintian python3-setuptools $(DOCS_DEPS)
TEST_DEPS := libgtest-dev pkg-config chromium clang clang-tidy cppcheck fish g++-aarch64-linux-gnu man-db qemu-user \
             mypy parallel python3-distributed python3-matplotlib python3-pip python3-pytest python3-setuptools python3-tqdm \
             python3-venv python3-wheel python3-yaml zsh $(PACKAGE_DEPS) mmdebstrap uidmap $(BENCH_DEPS)

# How long `fuzz` takes with each harness, and `tsan`.
SECONDS ?= 60

.PHONY: demo test docs lint coverage fuzz tsan valgrind figures bench bench-check arm-table package package-test \
        sbom abi build-deps package-deps test-deps bench-deps clean

## Builds, and runs the main job.
demo: build-deps
	@packaging/quietly "Configuring build/release" cmake --preset release
	@packaging/quietly "Building, for some minutes" cmake --build --preset release
	@mkdir -p out
	@rm -f out/report.html
	@build/release/bin/qal plan examples/welding_seam.toml -o out/welding_seam.csv \
	  $$([ ! -f build/release/report/page.html ] || echo --report out/report.html)
	@echo
	@build/release/bin/qal verify out/welding_seam.csv --strict
	@echo
	@echo "Made: the libraries in build/release/lib, the tools in build/release/bin, and"
	@echo "out/welding_seam.csv, a joint move, lines, an arc and the zones between them by the reference"
	@echo "arm: examples/welding_seam.toml, within every limit."
	@[ ! -f out/report.html ] || echo "out/report.html plays it, with its curves and its verdict: open it in a browser."
	@[ -f out/report.html ] || echo "No out/report.html: built without its page; cmake --preset release says why."
	@echo "Three things to try next:"
	@echo "  build/release/bin/qal ik --all --pose 0.35 0 0.7 0 0 1 0 --near 0 0 0 0 0 0"
	@echo "  build/release/bin/qal plan examples/palletising.toml -o out/palletising.csv"
	@echo "  build/release/bin/mkik arms/foundry_spherical.urdf -o out/libik.so"

## Builds and runs every test: by clang, under the address and undefined-behaviour sanitizers; and by
## g++, static analysis with them.
test: test-deps
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

## The guides and the references of C++ and Python as one folder of pages, their links tested.
docs: build-deps
	@packaging/install-deps $(DOCS_DEPS)
	@packaging/quietly "Configuring build/release" cmake --preset release
	@packaging/quietly "Building Python's package, for some minutes" \
	  cmake --build --preset release --target qal_python
	@packaging/quietly "Making the pages" docs/site/build build/release/python build/docs
	@echo "Made: build/docs/index.html. Open it in a browser."

## The static analysis of src, solver and tools alone.
lint: test-deps
	cmake --preset dev
	ctest --preset dev -R '^Lint'

## Lines and branches of src and solver that the tests reach: our own branches, not those that only an
## exception takes.
coverage: test-deps
	packaging/install-deps gcovr
	cmake --preset coverage
	cmake --build --preset coverage
	ctest --preset coverage
	gcovr --branches --exclude-throw-branches --exclude-unreachable-branches \
	  --exclude-directories '.*/qal_headers_alone' build/coverage

## Draws the pictures of the docs from real output.
figures: demo
	packaging/install-deps python3-matplotlib
	docs/plot_trajectories.py build/release/bin
	build/release/bin/qal plot out/welding_seam.csv --deg --mm --only velocity,tool -o docs/figures/plot.svg

## Times the library beside its peers: a table of ratios, as text, JSON and a picture.
bench: bench-deps
	cmake --preset bench
	cmake --build --preset bench --target bench
	cmake --build --preset bench --target bench-python

## Compares instruction counts with the figures kept in bench/instructions.json.
bench-check: bench-deps
	cmake --preset bench
	cmake --build --preset bench --target bench-check

## Solves poses of every URDF in the folder ARMS: the tables of docs/your-arm.md.
arm-table: bench-deps
	@test -d "$(ARMS)" || { echo "ARMS='$(ARMS)' is no folder; say ARMS=FOLDER" >&2; exit 2; }
	@packaging/quietly "Configuring build/bench" cmake --preset bench
	@packaging/quietly "Building" cmake --build --preset bench --target qal_arm_table
	@build/bench/bin/qal_arm_table "$(ARMS)"/*.urdf

## Searches for inputs that break something, with each fuzz harness for SECONDS.
fuzz: test-deps
	cmake --preset fuzz
	cmake --build --preset fuzz
	tests/fuzz/run $(SECONDS)

## Runs every operation in 8 threads at once for SECONDS, under the thread sanitizer.
tsan: test-deps
	cmake --preset tsan
	cmake --build --preset tsan
	QAL_THREAD_SECONDS=$(SECONDS) ctest --preset tsan

## Debian packages, in out/packages.
package: package-deps
	@packaging/debs build/package out/packages
	@echo
	@echo "Made:"
	@ls -1 out/packages/*.deb
	@echo "To install them: sudo apt install ./out/packages/*.deb. docs/packages.md says what each is for."

## Builds the packages again in another folder, at another place of the earth, and compares them; installs
## them into an empty Debian, uses them there and removes them.
package-test: package
	@packaging/install-deps mmdebstrap uidmap
	@umask 027 && TZ=Pacific/Kiritimati packaging/debs build/package-elsewhere/built build/package-elsewhere/out
	@diff -r out/packages build/package-elsewhere/out || { \
	  echo "The packages differ: diffoscope out/packages build/package-elsewhere/out says where" >&2; exit 1; }
	@echo "The same bytes in another folder"
	@tests/package/debian.sh out/packages build/package-cache

## What a release build contains, in the form of SPDX.
sbom: build-deps
	@packaging/install-deps python3 binutils
	@packaging/quietly "Configuring build/release" cmake --preset release
	@packaging/quietly "Building, for some minutes" cmake --build --preset release
	@mkdir -p out
	@packaging/sbom build/release "$$(sed -n 's/^project(.*VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)" \
	  out/QAL_kinematics.spdx.json

## The binary interface of each library, for abidiff.
abi: test-deps
	@packaging/install-deps abigail-tools
	cmake --preset dev
	cmake --build --preset dev --target QAL_kinematics --target qal_shared --target ik
	@mkdir -p out
	for name in QAL_kinematics qal ik; do \
	  abidw --out-file out/lib$$name.abi build/dev/lib/lib$$name.so || exit 1; \
	done

## Runs the library's and the solver's tests under valgrind.
valgrind: test-deps
	cmake --preset dev
	cmake --build --preset dev
	for test in library robustness solver; do \
	  valgrind -q --leak-check=full --error-exitcode=1 \
	    --soname-synonyms=somalloc=nouserintercepts build/dev/bin/qal_$${test}_test || exit 1; \
	done

build-deps:
	@packaging/install-deps $(BUILD_DEPS) $(NODE_DEPS)

package-deps:
	@packaging/install-deps $(BUILD_DEPS) $(NODE_DEPS) $(PACKAGE_DEPS)

test-deps:
	@packaging/install-deps $(BUILD_DEPS) $(NODE_DEPS) $(TEST_DEPS)
	@packaging/install-deps libclang-rt-$$(clang -dumpversion | cut -d. -f1)-dev

bench-deps:
	@packaging/install-deps $(BUILD_DEPS) $(NODE_DEPS) $(BENCH_DEPS)

clean:
	rm -rf build out
