# The project's commands. `make demo` and `make check` install missing packages, build, and run.

needs_linux := demo check check-sanitize check-variants check-variants-sanitize coverage mutants \
	endurance fuzz fuzz-coverage build lint packages
.PHONY: $(needs_linux) clean

ifeq ($(shell uname),Darwin)
# The packages, the layer and the simulated desktop need Linux; on a Mac, CMake builds and tests.
$(needs_linux):
	@echo "make $@ needs Linux: on a Mac, cmake -B build && cmake --build build && ctest --test-dir build" >&2; exit 1
else

demo: packages
	@cmake --preset linux >/dev/null
	@cmake --build --preset linux --target KRT9Background krt9-desktop krt9ctl
	@scripts/demo

check: build
	@scripts/run-tests build

# The whole suite again under AddressSanitizer (leaks included) and UndefinedBehaviorSanitizer.
check-sanitize: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset sanitize
	@scripts/run-tests build-sanitize

# The suite in a build that measures coverage, and the branches it reaches. Fails when a branch of
# the driver is missed.
coverage: packages
	@cmake --preset coverage >/dev/null
	@cmake --build --preset coverage
	@scripts/coverage

# Whether the tests notice single-line changes: 400 in the driver's folders, 200 below it. Hours.
mutants: packages
	@scripts/mutants --count 400 --seed 7
	@scripts/mutants --count 200 --seed 7 platform desktop

# Under each variant of the platform layer, the tests that could notice it (docs/platform.md).
check-variants: build
	@scripts/variants build

check-variants-sanitize: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset sanitize
	@scripts/variants build-sanitize

# The tests in their long form: a million requests, a thousand interrupts, ten thousand
# repetitions of each request; then each fuzz target for a quarter of an hour.
endurance: build
	@KRT9_ENDURANCE=1 scripts/run-tests build
	@$(MAKE) fuzz SECONDS=900

# Every fuzz target for SECONDS seconds.
SECONDS ?= 30
fuzz: packages
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz
	@scripts/fuzz $(SECONDS)

# For each fuzz target, the lines of its sources that its corpus reaches.
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

endif

clean:
	rm -rf build build-sanitize build-coverage build-fuzz build-fuzz-coverage build-apple \
	    build-libcxx
