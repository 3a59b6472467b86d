# What there is to do beside ./run and ./test. PRESET: one of CMakePresets.json.
PRESET ?= release
SOURCES = $(shell git ls-files '*.cpp' '*.h' '*.mm')

# The tests would wait for each other's processors.
.NOTPARALLEL:
.PHONY: build tour package bench soak format check check-packages check-format check-compilers check-compilers-clang check-portable check-macos macos-on-gnustep check-tests check-tidy check-cppcheck \
  check-sanitizers check-threads fuzz faults coverage

# Where the bundle of the preset is assembled.
BUNDLE_ROOT = $(CURDIR)/build$(if $(filter release,$(PRESET)),,/$(PRESET))

define configure
mkdir -p build; echo "Configuring build/$(PRESET)"; \
cmake --preset $(PRESET) $(1) >build/$(PRESET).configure.log 2>&1 || { cat build/$(PRESET).configure.log; exit 1; }
endef

# Leaves the assembled bundle at build/Tovalin.app (release), else at build/PRESET/Tovalin.app.
build:
	@$(call configure)
	@cmake --build --preset $(PRESET)

# What ./run shows, without the tests; a tree in which these are configured keeps them.
tour:
	@$(call configure,-DBUILD_TESTING=$$(grep -qs '^BUILD_TESTING:.*=ON' build/$(PRESET)/CMakeCache.txt && echo ON || echo OFF))
	@cmake --build --preset $(PRESET) --target tour

# Leaves build/tovalin-tray_VERSION_ARCHITECTURE.deb.
package: build
	packaging/deb/build build/$(PRESET) build

# Prints a table and leaves every figure in build/bench.json.
bench: build
	@tests/bench/run build/$(PRESET)

format:
	clang-format -i $(SOURCES)

# What takes longest and finds least comes last.
check: check-packages check-format check-cppcheck check-compilers check-portable check-macos check-tests check-threads check-sanitizers coverage fuzz faults check-tidy

check-packages:
	packaging/set_up

check-format:
	clang-format --dry-run --Werror $(SOURCES)

# Both compilers, warnings are errors: gcc by `build`.
check-compilers: build check-compilers-clang

# Compiles each file of the product and the tools alone, without precompiled headers: one that doesn't include what it uses fails.
check-compilers-clang:
	@$(MAKE) --no-print-directory build PRESET=clang

# The product folders and platform/portable as another system would compile them: with clang 16 and libc++.
check-portable:
	tests/structure/portable_code

# The types of platform/macos, and that the check can fail.
check-macos:
	packaging/set_up develop
	tests/macos/check
	tests/macos/check_can_fail

# Builds the agent of platform/macos with GNUstep and drives it on a private screen.
macos-on-gnustep:
	packaging/set_up build run test macos
	@$(call configure,-DTOVALIN_MACOS_ON_GNUSTEP=ON)
	@cmake --build --preset $(PRESET) --target macos_agent_test macos_differential_test
	ctest --preset $(PRESET) --tests-regex '^macos_'

# With those that a sanitizer leaves no room for.
check-tests:
	./test

# The tidy preset has a command for each file, and is not built. The macOS files do not compile here: check-macos looks at their types.
check-tidy:
	@mkdir -p build; cmake --preset tidy >build/tidy.configure.log
	git ls-files '*.cpp' ':!*/macos/*' | xargs -P $$(nproc) -n 1 clang-tidy --quiet -p build/tidy

check-cppcheck:
	cppcheck --quiet --std=c++20 --language=c++ --library=posix --inline-suppr --error-exitcode=1 --enable=warning,performance,portability \
	  --suppress=missingIncludeSystem --suppress=passedByValue -I . app ipc notices usage support platform tools

check-sanitizers:
	./test asan

# The parts that several threads use, and the agent as a whole; the toolkit itself is not built for the thread sanitizer.
THREADED = usage_record_test upload_pass_test url_request_test read_pipe_test command_pipe_test \
  launch_test menu_test notice_test process_test tray_test usage_test hostile_pipes_test bundle_watch_agent_test \
  support_window_test
check-threads:
	@cmake --preset tsan >/dev/null
	cmake --build --preset tsan --target $(THREADED)
	ctest --preset tsan --parallel $$(nproc) --tests-regex '^($(subst $() ,|,$(strip $(THREADED))))'

# PAIRS: how often both notices are shown and hidden. OPENINGS: how often the support window is opened and closed.
# MINUTES: how long the mixed life is. SEED: the order of what happens in it; each run has its own when there is none.
PAIRS ?= 10000
OPENINGS ?= 1000
MINUTES ?= 60
SEED ?=
soak: build
	TOVALIN_SOAK_PAIRS=$(PAIRS) TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/harness/sandbox build/$(PRESET)/tests/end_to_end/notice_soak_test
	TOVALIN_SOAK_OPENINGS=$(OPENINGS) TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/harness/sandbox build/$(PRESET)/tests/end_to_end/support_soak_test
	TOVALIN_SOAK_MINUTES=$(MINUTES) TOVALIN_SOAK_SEED=$(SEED) TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/harness/sandbox build/$(PRESET)/tests/end_to_end/life_soak_test

# FUZZ_SECONDS: how long each target is fed. FUZZ_TARGETS: only these (files of tests/fuzz without their ending).
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?=
fuzz:
	@$(MAKE) --no-print-directory build PRESET=fuzz
	tests/fuzz/run build/fuzz $(FUZZ_SECONDS) $(FUZZ_TARGETS)

# Makes each call of the agent's own code fail in each place of a short life, and prints what became of it.
faults: build
	TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/faults/run build/$(PRESET)

# Which lines the tests run, of the product folders and of platform/; doc/coverage.md says why the others aren't.
coverage:
	@$(MAKE) --no-print-directory build PRESET=coverage
	tests/coverage build/coverage
