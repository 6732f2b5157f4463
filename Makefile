# Tavrin Processing: build, test, demo, bench and fuzz entry points.
# Each target installs the Debian packages it needs when they are missing.

JOBS        ?= $(shell nproc)
BUILD       := build
TEST_BUILD  := build-test
BENCH_BUILD := build-bench
FUZZ_BUILD  := build-fuzz
COVERAGE_BUILD := build-coverage
FUZZ_SECONDS ?= 60

PKGS_BUILD := cmake ninja-build g++ libpng-dev
PKGS_TEST  := $(PKGS_BUILD) libgtest-dev libgmock-dev libtiff-tools python3-pil
PKGS_BENCH := $(PKGS_BUILD) libbenchmark-dev python3-scipy python3-numpy libfftw3-dev
PKGS_FUZZ  := $(PKGS_BUILD) clang libclang-rt-14-dev
PKGS_COVERAGE := $(PKGS_TEST) gcovr
PKGS_PYTHON := $(PKGS_BUILD) python3-pybind11 pybind11-dev python3-dev python3-numpy python3-pytest python3-pil

# The Debian interpreter: the one whose packages above the Python package is built and tested with.
PYTHON := /usr/bin/python3
# AddressSanitizer's runtime, loaded first into the interpreter for the sanitised module, and the
# C++ runtime with it (the interpreter has none of its own, and the sanitizer must find the real
# __cxa_throw when it starts).
SANITIZER_PRELOAD = $(shell $(CXX) -print-file-name=libasan.so) $(shell $(CXX) -print-file-name=libstdc++.so)

# $(call need,packages): install what is missing (as root), or print the line to run.
define need
	@missing=""; for p in $(1); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "installing:$$missing"; \
	    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $$missing \
	    || { apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $$missing; }; \
	  else \
	    echo "missing packages; run: sudo apt-get install -y$$missing"; exit 1; \
	  fi; \
	fi
endef

.PHONY: all build python test demo bench fuzz coverage clean

all: build

build:
	$(call need,$(PKGS_BUILD))
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
	cmake --build $(BUILD) -j $(JOBS)

# The Python package in the optimised tree: PYTHONPATH=$(BUILD)/python imports it.
python: build
	$(call need,$(PKGS_PYTHON))
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release -DTAVRIN_PYTHON=ON -DPython3_EXECUTABLE=$(PYTHON) >/dev/null
	cmake --build $(BUILD) -j $(JOBS)

# The optimised tree is built first: the optimiser's warnings are errors too,
# and the demo of a fresh clone must build.
# The test binary runs once in one process (a process per test under the sanitizers costs
# more than the tests), then ctest replays the fuzz corpora.
# The pytest suite runs twice: against the optimised package (where the resident size of the
# memory test means something), and against the sanitised one, with AddressSanitizer loaded into
# the interpreter, for every test but that one (the sanitizer's quarantine keeps freed blocks).
test: build python
	$(call need,$(PKGS_TEST) $(PKGS_PYTHON))
	cmake -S . -B $(TEST_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTAVRIN_TESTS=ON -DTAVRIN_SANITIZE=ON \
	  -DTAVRIN_PYTHON=ON -DPython3_EXECUTABLE=$(PYTHON) >/dev/null
	cmake --build $(TEST_BUILD) -j $(JOBS)
	cd $(TEST_BUILD) && export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 && \
	  ./bin/tavrin_tests --gtest_brief=1 && ctest -j $(JOBS) -R _replay --output-on-failure --timeout 600
	PYTHONPATH=$(BUILD)/python TAVRIN_HOST=$(BUILD)/bin/tavrin $(PYTHON) -m pytest -q -p no:cacheprovider python/tests
	PYTHONPATH=$(TEST_BUILD)/python TAVRIN_HOST=$(TEST_BUILD)/bin/tavrin LD_PRELOAD="$(SANITIZER_PRELOAD)" \
	  ASAN_OPTIONS=detect_leaks=0:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  $(PYTHON) -m pytest -q -p no:cacheprovider -k "not thousand" python/tests

demo: build
	$(BUILD)/bin/tavrin demo

bench:
	$(call need,$(PKGS_BENCH))
	cmake -S . -B $(BENCH_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release -DTAVRIN_BENCH=ON >/dev/null
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	@for b in $(BENCH_BUILD)/bin/bench_*; do echo "== $$b"; $$b; done
	@echo "== scipy.ndimage on the input of bench_filters"; /usr/bin/python3 bench/filters_scipy.py
	@echo "== numpy lstsq on the input of bench_fit"; /usr/bin/python3 bench/fit_numpy.py
	@echo "== numpy lstsq beside bench_poly_regression"; /usr/bin/python3 bench/poly_regression_numpy.py
	@echo "== scipy.ndimage.label on the input of bench_particles"; /usr/bin/python3 bench/particles_scipy.py
	@echo "== scipy.ndimage.map_coordinates on the input of bench_regions"; /usr/bin/python3 bench/drift_scipy.py

# Each fuzz target runs FUZZ_SECONDS on its corpus, JOBS at a time; new inputs go to the
# build tree, never into the committed corpus. Any crash stops with its status.
fuzz:
	$(call need,$(PKGS_FUZZ))
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAVRIN_FUZZ=ON >/dev/null
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	@ls $(FUZZ_BUILD)/bin/fuzz_* | grep -v _replay | xargs -P $(JOBS) -I{} sh -c '\
	  name=$$(basename {}); mkdir -p fuzz/corpus/$$name $(FUZZ_BUILD)/work/$$name; \
	  if {} -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=2048 \
	       $(FUZZ_BUILD)/work/$$name fuzz/corpus/$$name > $(FUZZ_BUILD)/work/$$name.log 2>&1; \
	  then echo "== $$name: $$(grep -o "#[0-9][0-9]*" $(FUZZ_BUILD)/work/$$name.log | tail -1 | tr -d "#") runs in $(FUZZ_SECONDS) s, no crash"; \
	  else tail -40 $(FUZZ_BUILD)/work/$$name.log; echo "== $$name FAILED"; exit 255; fi'

# Line and branch coverage of the library's sources by the tests; HTML under build-coverage/.
# The counters are updated atomically: the commands run their bands on two threads.
coverage:
	$(call need,$(PKGS_COVERAGE))
	cmake -S . -B $(COVERAGE_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTAVRIN_TESTS=ON \
	  -DCMAKE_CXX_FLAGS='--coverage -fprofile-update=atomic' -DCMAKE_C_FLAGS='--coverage -fprofile-update=atomic' \
	  -DCMAKE_EXE_LINKER_FLAGS=--coverage \
	  -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
	cmake --build $(COVERAGE_BUILD) -j $(JOBS)
	find $(COVERAGE_BUILD) -name '*.gcda' -delete
	cd $(COVERAGE_BUILD) && ./bin/tavrin_tests --gtest_brief=1 && ctest -j $(JOBS) -R _replay --timeout 600 --output-on-failure
	mkdir -p $(COVERAGE_BUILD)/html
	gcovr -r . --object-directory $(COVERAGE_BUILD) --filter 'src/' -j $(JOBS) \
	  --html-details $(COVERAGE_BUILD)/html/index.html --print-summary

clean:
	rm -rf $(BUILD) $(TEST_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD) $(COVERAGE_BUILD)
