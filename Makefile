# The commands of this project. Each works from a fresh clone on a fresh machine, on its own.
WERROR ?= OFF
JOBS ?= $(shell nproc)
# How long soak and fuzz take.
MINUTES ?= 5
CONFIGURE = cmake --preset $(1) -DZQAPI_WARNINGS_AS_ERRORS=$(WERROR)

.PHONY: all deps build demo test test-release test-asan test-tsan test-aarch64 soak coverage mutations fuzz sdk bench install format clean

all: build

deps:
	@scripts/deps.sh

build: deps
	$(call CONFIGURE,release)
	cmake --build --preset release -j $(JOBS)

demo: deps
	$(call CONFIGURE,release)
	cmake --build --preset release -j $(JOBS) --target zq zqgentl
	@scripts/demo.sh build/release

test: deps test-release test-asan test-tsan test-aarch64

test-release test-asan test-tsan: test-%: deps
	scripts/test.sh $* $(WERROR) $(JOBS)

# Cross-compiled for 64-bit Arm and run in an emulator.
test-aarch64:
	@scripts/deps.sh aarch64
	scripts/test.sh aarch64 $(WERROR) $(JOBS)

# SEED repeats a run, as far as the machine does.
soak: deps
	$(call CONFIGURE,release)
	cmake --build --preset release -j $(JOBS) --target soak
	GENICAM_GENTL64_PATH=build/release/lib build/release/bin/soak --seconds $$((60 * $(MINUTES))) \
		$(if $(SEED),--seed $(SEED))

coverage:
	@scripts/deps.sh coverage
	scripts/coverage.sh $(JOBS)

# Whether the suites see it when the library is broken.
mutations: deps
	@scripts/deps.sh mutations
	scripts/mutations.py

# All targets share the time; TARGETS names some.
fuzz:
	@scripts/deps.sh fuzz
	scripts/fuzz.sh $(MINUTES) $(JOBS) $(TARGETS)

# Whether the library builds with the node maps of an SDK, ours laid out like one unless ZQAPI_GENICAM_SDK names another.
sdk: deps
	scripts/sdk.sh $(JOBS)

bench: build
	@scripts/bench.sh build/release

install: build
	cmake --install build/release

format:
	git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format -i

clean:
	rm -rf build demo-out
