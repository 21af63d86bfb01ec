# The project's commands. `make demo` and `make check` install missing packages, build, and run.

needs_linux := demo check check-sanitize check-variants check-variants-sanitize coverage mutants \
	endurance fuzz fuzz-coverage build lint packages
.PHONY: $(needs_linux) clean help

## help: this list
help:
	@sed -n 's/^## \([a-z-]*\): /make \1\t/p' Makefile | expand -t 30

ifeq ($(shell uname),Darwin)
# The packages, the layer and the simulated desktop need Linux; on a Mac, CMake builds and tests.
$(needs_linux):
	@echo "make $@ needs Linux: on a Mac, cmake -B build && cmake --build build && ctest --test-dir build" >&2; exit 1
else

## demo: a session with the driver, shown to a person
demo: packages
	@cmake --preset linux >/dev/null
	@cmake --build --preset linux --target KRT9Background krt9-desktop krt9ctl
	@scripts/demo

## check: every test; the last line counts them
check: build
	@scripts/run-tests build

## check-sanitize: the same under AddressSanitizer, with leaks, and UndefinedBehaviorSanitizer
check-sanitize: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset sanitize
	@scripts/run-tests build-sanitize

## coverage: the branches that the tests reach; fails when they miss one of the driver
coverage: packages
	@cmake --preset coverage >/dev/null
	@cmake --build --preset coverage
	@scripts/coverage

## mutants: whether the tests notice single changed lines, 400 in the driver, 200 below; hours
mutants: packages
	@scripts/mutants --count 400 --seed 7
	@scripts/mutants --count 200 --seed 7 platform desktop

## check-variants: tests under each way in which macOS may behave (docs/platform.md)
check-variants: build
	@scripts/variants build

## check-variants-sanitize: the same under the sanitizers
check-variants-sanitize: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset sanitize
	@scripts/variants build-sanitize

# A million requests, a thousand interrupts, ten thousand repetitions of each request.
## endurance: tests in their long form, then each fuzz target for a quarter of an hour
endurance: build
	@KRT9_ENDURANCE=1 scripts/run-tests build
	@$(MAKE) fuzz SECONDS=900

## fuzz: every fuzz target for SECONDS seconds (30)
SECONDS ?= 30
fuzz: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset fuzz
	@scripts/fuzz $(SECONDS)

## fuzz-coverage: for each fuzz target, the lines of its sources that its corpus reaches
fuzz-coverage: packages
	@cmake --preset fuzz-coverage >/dev/null
	@cmake --build --preset fuzz-coverage
	@scripts/fuzz --coverage

## build: the driver, krt9ctl, the simulated desktop and the tests
build: packages
	@cmake --preset linux >/dev/null
	@cmake --build --preset linux

## lint: style, includes, static analysis, and that what macOS compiles compiles
lint: build
	@scripts/lint

## packages: installs what is missing, as root or with sudo
packages:
	@scripts/install-packages

endif

## clean: removes every build folder
clean:
	rm -rf build build-sanitize build-coverage build-fuzz-coverage build-apple \
	    build-libcxx
