# The commands of the house. `make demo` and `make check` install what is missing, build, and run.

.PHONY: demo check check-sanitize build lint packages clean

demo: build
	@scripts/demo

check: build
	@scripts/run-tests build

# The whole suite again under AddressSanitizer (leaks included) and UndefinedBehaviorSanitizer.
check-sanitize: packages
	@cmake --preset sanitize >/dev/null
	@cmake --build --preset sanitize
	@scripts/run-tests build-sanitize

build: packages
	@cmake --preset linux >/dev/null
	@cmake --build --preset linux

lint: build
	@scripts/lint

packages:
	@scripts/install-packages

clean:
	rm -rf build build-sanitize
