# Every target installs what is missing (Debian packages only), configures and
# builds before doing its job, so each works on a fresh Debian machine.
#   make demo      compose the bundled sample captures into out/
#   make test      build and run every test
#   make sanitize  build and run the tests under ASan + UBSan
#   make bench     build and run the kernel benchmarks
#   make bench-peers  time whole runs next to libvips, sharp and ImageMagick
#   make fuzz      build the fuzz targets with clang, replay their corpora and
#                  crash files, then fuzz each for FUZZ_SECONDS under ASan + UBSan

BUILD    ?= build
ASAN     ?= build-asan
FUZZ     ?= build-fuzz
FUZZ_SECONDS ?= 30
FUZZ_CXX ?= clang++-14
JOBS     ?= $(shell nproc)
# Warnings are errors under CI (which sets CI=true) and on request.
WERROR   ?= $(if $(CI),ON,OFF)
CMAKE_FLAGS ?=

.PHONY: all deps build test sanitize demo bench bench-peers fuzz clean

all: build

deps:
	scripts/install-deps.sh $(BUILD)

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DPLAKARD_WERROR=$(WERROR) $(CMAKE_FLAGS)
	cmake --build $(BUILD) -j $(JOBS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

sanitize:
	scripts/install-deps.sh $(ASAN)
	cmake -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=Debug -DPLAKARD_SANITIZE=ON -DPLAKARD_WERROR=$(WERROR) $(CMAKE_FLAGS)
	cmake --build $(ASAN) -j $(JOBS)
	ctest --test-dir $(ASAN) --output-on-failure -j $(JOBS)

demo: build
	scripts/demo.sh $(BUILD)/plakard out

clean:
	rm -rf $(BUILD) $(ASAN) $(FUZZ) out

bench: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DPLAKARD_BUILD_BENCH=ON $(CMAKE_FLAGS)
	cmake --build $(BUILD) -j $(JOBS) --target plakard_bench
	$(BUILD)/bench/plakard_bench

bench-peers: build
	scripts/bench-peers.sh $(BUILD)

fuzz:
	scripts/install-deps.sh --fuzz $(FUZZ)
	cmake -S . -B $(FUZZ) -DCMAKE_CXX_COMPILER=$(FUZZ_CXX) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DPLAKARD_BUILD_FUZZ=ON -DPLAKARD_BUILD_TESTS=OFF -DPLAKARD_WERROR=$(WERROR) $(CMAKE_FLAGS)
	cmake --build $(FUZZ) -j $(JOBS) --target fuzz_image fuzz_font fuzz_options fuzz_compose
	fuzz/run.sh $(FUZZ) $(FUZZ_SECONDS)
