# Top-level convenience targets. `make test` builds and runs every test twice:
# an optimised release build and a debug build with AddressSanitizer and
# UndefinedBehaviorSanitizer.

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
RELEASE_DIR := build/release
SANITIZE_DIR := build/sanitize

.PHONY: all build test test-release test-sanitize demo bench fuzz fuzz-smoke clean format install uninstall

all: build

build:
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(RELEASE_DIR) -j $(JOBS)

test: test-release test-sanitize

# Installs DC, dcplot, the shift surfaces, the manual page and the README
# under PREFIX (DESTDIR is honoured for packaging). The list of installed
# files is kept in build/release/install_manifest.txt for uninstall.
PREFIX ?= /usr/local
install: build
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_INSTALL_PREFIX=$(PREFIX)
	cmake --build $(RELEASE_DIR) -j $(JOBS) --target install

uninstall:
	@test -f $(RELEASE_DIR)/install_manifest.txt || { echo "make uninstall: nothing installed from this tree"; exit 1; }
	xargs rm -f < $(RELEASE_DIR)/install_manifest.txt
	@echo "removed the files listed in $(RELEASE_DIR)/install_manifest.txt"

test-release: build
	cd $(RELEASE_DIR) && ctest --output-on-failure -j $(JOBS)

test-sanitize:
	cmake -S . -B $(SANITIZE_DIR) -DCMAKE_BUILD_TYPE=Debug -DDC_SANITIZE=ON
	cmake --build $(SANITIZE_DIR) -j $(JOBS)
	cd $(SANITIZE_DIR) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

# Builds DC, writes a demonstration peptide and couplings made from a known
# tensor, fits them and shows the fitted tensor beside the one chosen.
demo: build
	mkdir -p build/demo
	$(RELEASE_DIR)/make_demo build/demo
	$(RELEASE_DIR)/DC -pdb build/demo/peptide.pdb -inD build/demo/couplings.tab \
		-outD build/demo/fitted.tab -verb
	@echo "Fitted tensor (from build/demo/fitted.tab):"
	@grep -E '^DATA (N |RMS|Q_FACTOR|EULER_ANGLES|Da |Dr |Rhombicity)' build/demo/fitted.tab

bench:
	cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=Release -DDC_BUILD_BENCH=ON
	cmake --build build/bench -j $(JOBS)
	@failed=0; for b in build/bench/bench/bench_*; do echo "== $$b"; $$b || failed=1; done; \
	if [ $$failed -ne 0 ]; then echo "make bench: a benchmark missed its target"; exit 1; fi

# libFuzzer targets (clang), one per reader, in their own build with
# AddressSanitizer and UndefinedBehaviorSanitizer. fuzz-smoke runs each for
# FUZZ_SECONDS and fails on any finding (fuzz/smoke.sh).
FUZZ_DIR := build/fuzz
FUZZ_SECONDS ?= 20

fuzz:
	cmake -S . -B $(FUZZ_DIR) --log-level=WARNING -DCMAKE_CXX_COMPILER=clang++ \
		-DCMAKE_BUILD_TYPE=RelWithDebInfo -DDC_BUILD_FUZZ=ON
	cmake --build $(FUZZ_DIR) -j $(JOBS)

fuzz-smoke: fuzz
	fuzz/smoke.sh $(FUZZ_DIR) $(FUZZ_SECONDS)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf build
