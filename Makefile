# Top-level convenience targets. `make test` builds and runs every test twice:
# an optimised release build and a debug build with AddressSanitizer and
# UndefinedBehaviorSanitizer.

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
RELEASE_DIR := build/release
SANITIZE_DIR := build/sanitize

.PHONY: all build test test-release test-sanitize test-slurm demo bench fuzz fuzz-smoke clean format install uninstall

all: build

build:
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(RELEASE_DIR) -j $(JOBS)

test: test-release test-sanitize

# The sharded search on a real Slurm installation (needs slurmctld and
# slurmd running; not part of make test).
test-slurm: build
	tests/slurm_search.sh $(RELEASE_DIR)

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

# Builds DC and runs its jobs on real data (examples/ubq: ubiquitin's
# structure, N-H couplings and backbone shifts), each step announced with
# what it shows, and draws the results as SVG in build/demo.
DEMO := build/demo
UBQ := examples/ubq
DC := $(RELEASE_DIR)/DC
demo: build
	@mkdir -p $(DEMO)
	@echo "== 1. SVD fit: the alignment tensor of ubiquitin's 63 N-H couplings, and how well the crystal structure agrees"
	$(DC) -pdb $(UBQ)/1ubq_h.pdb -inD $(UBQ)/ubq_nh.tab -outD $(DEMO)/couplings_svd.tab -verb
	@grep -E '^DATA (N |RMS|Q_FACTOR|Da |Rhombicity)' $(DEMO)/couplings_svd.tab
	@echo "== 2. Nonlinear fit from the SVD start (-fit -auto): Da, Dr and three rotations refined to the same minimum"
	$(DC) -pdb $(UBQ)/1ubq_h.pdb -inD $(UBQ)/ubq_nh.tab -fit -auto -outD $(DEMO)/couplings_fit.tab -verb
	@grep -E '^DATA (N |RMS|Q_FACTOR|ROT_XYZ|Da |Rhombicity)' $(DEMO)/couplings_fit.tab
	@echo "== 3. Shift prediction: every backbone shift from the torsion angles, against the measured ones"
	$(DC) -pdb $(UBQ)/1ubq_h.pdb -inCS $(UBQ)/ubq_cs.tab -outCS $(DEMO)/shifts.tab -verb > /dev/null
	@echo "== 4. Homology search: residues 20-39 of the couplings slid along ubiquitin and a fusion peptide; the best offset lies on residues 20-39"
	$(DC) -inD $(UBQ)/ubq_nh.tab -r1 20 -rN 39 -list $(UBQ)/list -path $(UBQ) -ref $(UBQ)/1ubq_h.pdb -bb \
		-outS $(DEMO)/search.txt
	@echo "== Plots: observed against calculated couplings and shifts, and D_RMS along each searched structure"
	$(RELEASE_DIR)/dcplot couplings $(DEMO)/couplings_svd.tab $(DEMO)/couplings.svg
	$(RELEASE_DIR)/dcplot shifts $(DEMO)/shifts.tab $(DEMO)/shifts.svg
	$(RELEASE_DIR)/dcplot search $(DEMO)/search.txt $(DEMO)/search.svg
	@echo "Written: $(DEMO)/couplings.svg $(DEMO)/shifts.svg $(DEMO)/search.svg (open them in a browser)"

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
