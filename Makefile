# Two commands for a fresh Debian machine:
#   make run    install what is missing, build, and open the workbench on the default example
#               (without a display: solve it by QLP in the batch tool)
#   make test   install what is missing, build, and run every test (plain, sanitizer, fuzz)
MAKEFLAGS += --no-print-directory
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 60
DEFAULT_EXAMPLE ?= examples/track1.ovi
CLI = build/default/src/app/ovaro-cli
GUI = build/default/src/app/ovaro

.PHONY: run test bootstrap build check-layers check-format test-default check-mpi test-asan fuzz bench screenshots clean

# With a display, the workbench opens on the default example; without one (a plain terminal, CI),
# the batch tool solves it by QLP and prints the table.
run: bootstrap
	@cmake --preset default >/dev/null
	@if [ -n "$${DISPLAY:-}$${WAYLAND_DISPLAY:-}" ]; then \
	  cmake --build --preset default -j $(JOBS) --target ovaro && \
	  $(GUI) $(DEFAULT_EXAMPLE); \
	else \
	  cmake --build --preset default -j $(JOBS) --target ovaro-cli && \
	  $(CLI) solve $(DEFAULT_EXAMPLE) --method qlp --desired --format 778; \
	fi

bootstrap:
	@scripts/bootstrap.sh

build: bootstrap
	@cmake --preset default >/dev/null
	@cmake --build --preset default -j $(JOBS)

test: check-layers check-format test-default check-mpi test-asan fuzz

# A source layer includes only its own and lower layers; no Qt below src/ui.
check-layers:
	@scripts/check-layers.sh

# Every C++ file as the formatter leaves it.
check-format: bootstrap
	@git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror

test-default: build
	@ctest --preset default -j $(JOBS)

# Comparisons under mpirun with two and three processes print the same bytes as one process.
check-mpi: build
	@scripts/mpi-check.sh

test-asan: bootstrap
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j $(JOBS)
	@ctest --preset asan -j $(JOBS)

# Runs each fuzz target for FUZZ_SECONDS, seeded with the example models and interchange files
# (the interchange reader's first byte picks the format: 0 QLP, 1 VELD).
FUZZ_TARGETS = ovi_reader_fuzz interchange_reader_fuzz matrix_file_fuzz
fuzz: bootstrap
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz -j $(JOBS) --target $(FUZZ_TARGETS)
	@mkdir -p build/fuzz/corpus/ovi build/fuzz/corpus/interchange build/fuzz/corpus/dma
	@cp -n examples/*.ovi build/fuzz/corpus/ovi/
	@for f in tests/data/interchange/*.qlp; do printf '\0' | cat - $$f > build/fuzz/corpus/interchange/$$(basename $$f); done
	@for f in tests/data/interchange/*.vld; do printf '\1' | cat - $$f > build/fuzz/corpus/interchange/$$(basename $$f); done
	@printf '\3\3\6' | cat - tests/data/interchange/small.dma > build/fuzz/corpus/dma/small.dma
	@for t in ovi:ovi_reader_fuzz interchange:interchange_reader_fuzz dma:matrix_file_fuzz; do \
	  corpus=$${t%%:*}; target=$${t#*:}; \
	  build/fuzz/fuzz/$$target -max_total_time=$(FUZZ_SECONDS) -rss_limit_mb=4096 \
	    -print_final_stats=1 build/fuzz/corpus/$$corpus 2>build/fuzz/$$target.log \
	    || { tail -50 build/fuzz/$$target.log; exit 1; }; \
	  echo "$$target:"; grep -E 'stat::number_of_executed_units|Done' build/fuzz/$$target.log | tail -2; \
	done

bench: bootstrap
	@cmake --preset bench >/dev/null
	@cmake --build --preset bench -j $(JOBS)

screenshots:
	@scripts/screenshots.sh

clean:
	rm -rf build
