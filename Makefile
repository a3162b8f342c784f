# Every target installs what is missing (Debian packages only), configures and
# builds before doing its job, so each works on a fresh Debian machine.
#   make demo      compose the bundled sample captures into out/
#   make test      build and run every test
#   make sanitize  build and run the tests under ASan + UBSan
#   make bench     build and run the kernel benchmarks
#   make bench-peers  time whole runs next to libvips, sharp and ImageMagick
#   make fuzz      build the fuzz targets with clang, replay their corpora and
#                  crash files, then fuzz each for FUZZ_SECONDS under ASan + UBSan
#   make install   install under PREFIX (default /usr/local), staged in DESTDIR
#   make deb       build plakard_VERSION_ARCH.deb in DEB_DIR and check it with lintian
#   make listing   compose the example listing (examples/listing) into out/listing

BUILD    ?= build
ASAN     ?= build-asan
FUZZ     ?= build-fuzz
FUZZ_SECONDS ?= 30
FUZZ_CXX ?= clang++-14
JOBS     ?= $(shell nproc)
# Warnings are errors under CI (which sets CI=true) and on request.
WERROR   ?= $(if $(CI),ON,OFF)
CMAKE_FLAGS ?=
PREFIX   ?= /usr/local
DESTDIR  ?=
DEB_DIR  ?= $(BUILD)

.PHONY: all deps build test sanitize demo bench bench-peers fuzz install deb listing clean

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

install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix "$(PREFIX)"

# Errors fail the target; warnings and notes are shown.
deb:
	scripts/install-deps.sh --package $(BUILD)
	$(MAKE) build
	deb=$$(packaging/deb.sh $(BUILD) $(DEB_DIR)) && echo "$$deb" && lintian --fail-on error --info "$$deb"

listing: build
	$(MAKE) -C examples/listing -j $(JOBS) PLAKARD=$(abspath $(BUILD))/plakard OUT=$(abspath out/listing)

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
