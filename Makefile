# The commands of this project. Each works from a fresh clone on a fresh machine, on its own.
WERROR ?= OFF
JOBS ?= $(shell nproc)
CONFIGURE = cmake --preset $(1) -DZQAPI_WARNINGS_AS_ERRORS=$(WERROR)

.PHONY: all deps build demo test test-release test-asan test-tsan bench install format clean

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

test: deps test-release test-asan test-tsan

test-release test-asan test-tsan: test-%: deps
	scripts/test.sh $* $(WERROR) $(JOBS)

bench: build
	@scripts/bench.sh build/release

install: build
	cmake --install build/release

format:
	git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format -i

clean:
	rm -rf build demo-out
