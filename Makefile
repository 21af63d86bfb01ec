# The commands of the house. `make demo` and `make check` install what is missing, build, and run.

.PHONY: demo check check-sanitize fuzz fuzz-coverage build lint packages clean

demo: build
	@scripts/demo

check: build
	@scripts/run-tests build

# The whole suite again under AddressSanitizer (leaks included) and UndefinedBehaviorSanitizer.
check-sanitize: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset sanitize
	@scripts/run-tests build-sanitize

# Every fuzz target for SECONDS seconds.
SECONDS ?= 30
fuzz: packages
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz
	@scripts/fuzz $(SECONDS)

# Which lines of the code that each target aims at its corpus reaches.
fuzz-coverage: packages
	@cmake --preset fuzz-coverage >/dev/null
	@cmake --build --preset fuzz-coverage
	@scripts/fuzz --coverage

build: packages
	@cmake --preset linux >/dev/null
	@cmake --build --preset linux

lint: build
	@scripts/lint

packages:
	@scripts/install-packages

clean:
	rm -rf build build-sanitize build-fuzz build-fuzz-coverage
