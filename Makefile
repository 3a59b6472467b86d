# Development tasks besides ./run and ./test. PRESET is one of CMakePresets.json.
PRESET ?= release
SOURCES = $(shell git ls-files '*.cpp' '*.h' '*.mm')

# Parallel targets would compete for processors and make tests time out.
.NOTPARALLEL:
.PHONY: build tour package bench soak desktops format check check-packages check-format check-language check-compilers check-compilers-clang check-portable check-headers check-macos macos-on-gnustep check-tests check-tidy check-cppcheck \
  check-sanitizers check-threads fuzz faults coverage

# The folder in which the preset's bundle is assembled.
BUNDLE_ROOT = $(CURDIR)/build$(if $(filter release,$(PRESET)),,/$(PRESET))

define configure
mkdir -p build; echo "Configuring build/$(PRESET)"; \
cmake --preset $(PRESET) $(1) >build/$(PRESET).configure.log 2>&1 || { cat build/$(PRESET).configure.log; exit 1; }
endef

# Assembles the bundle at build/Tovalin.app (release) or build/PRESET/Tovalin.app.
build:
	@$(call configure)
	@cmake --build --preset $(PRESET)

# Builds what ./run needs. Does not configure the tests unless they are configured already.
tour:
	@$(call configure,-DBUILD_TESTING=$$(grep -qs '^BUILD_TESTING:.*=ON' build/$(PRESET)/CMakeCache.txt && echo ON || echo OFF))
	@cmake --build --preset $(PRESET) --target tour

# Writes build/tovalin-tray_VERSION_ARCHITECTURE.deb and build/tovalin-tray-webview_VERSION_ARCHITECTURE.deb.
package: build
	packaging/deb/build build/$(PRESET) build

# Prints a table and writes all results to build/bench.json.
bench: build
	@tests/bench/run build/$(PRESET)

format:
	clang-format -i $(SOURCES)

# The slowest checks, which find the fewest errors, come last.
check: check-packages check-format check-language check-cppcheck check-compilers check-portable check-headers check-macos macos-on-gnustep check-tests check-threads check-sanitizers coverage fuzz faults check-tidy

check-packages:
	packaging/set_up

check-format:
	clang-format --dry-run --Werror $(SOURCES)

# Documents and comments use standard terms.
check-language:
	tests/structure/plain_language

# Both compilers with warnings as errors; `build` runs gcc.
check-compilers: build check-compilers-clang

# Compiles each file of the product and the tools separately, without precompiled headers, so that a missing include is an error.
check-compilers-clang:
	@$(MAKE) --no-print-directory build PRESET=clang

# Compiles the product folders and platform/portable with clang 16 and libc++, as another system would.
check-portable:
	tests/structure/portable_code

# Compiles each header of platform/linux alone. ./test compiles the portable ones.
check-headers:
	tests/structure/headers_alone $(CXX) linux

# Checks the types of platform/macos, and tests that this check detects errors. COCOA_REFERENCE: a folder of other declarations
# of Cocoa, with which ours are compared if it exists.
COCOA_REFERENCE ?= ../shared/cocoa_reference
check-macos:
	packaging/set_up develop
	tests/macos/check
	tests/macos/check_can_fail
	tests/macos/check_package
	@if [ -d "$(COCOA_REFERENCE)" ]; then tests/macos/compare "$(COCOA_REFERENCE)"; \
	else echo "declarations not compared: no folder $(COCOA_REFERENCE)"; fi

# Builds the agent of platform/macos with GNUstep and tests it on a private display.
macos-on-gnustep:
	packaging/set_up build run test macos
	@$(call configure,-DTOVALIN_MACOS_ON_GNUSTEP=ON)
	@cmake --build --preset $(PRESET) --target macos_bracket_escapes_test macos_agent_test macos_differential_test macos_file_event_stream_test
	ctest --preset $(PRESET) --tests-regex '^macos_'

# Includes the tests that do not run under a sanitizer.
check-tests:
	./test

# The tidy preset is only configured, for its compile commands. The macOS files do not compile on Linux; check-macos checks their
# types.
check-tidy:
	@mkdir -p build; cmake --preset tidy >build/tidy.configure.log
	git ls-files '*.cpp' ':!*/macos/*' | xargs -P $$(nproc) -n 1 clang-tidy --quiet -p build/tidy

check-cppcheck:
	cppcheck --quiet --std=c++20 --language=c++ --library=posix --inline-suppr --error-exitcode=1 --enable=warning,performance,portability \
	  --suppress=missingIncludeSystem --suppress=passedByValue -I . app ipc notices usage support platform companions tools

check-sanitizers:
	./test asan

# Tests of code that runs on several threads, and of the whole agent. Qt itself is not instrumented.
THREADED = usage_record_test upload_pass_test url_request_test read_pipe_test command_pipe_test \
  launch_test menu_test notice_test process_test tray_test usage_test hostile_pipes_test bundle_watch_agent_test \
  support_window_test
check-threads:
	@cmake --preset tsan >/dev/null
	cmake --build --preset tsan --target $(THREADED)
	ctest --preset tsan --parallel $$(nproc) --tests-regex '^($(subst $() ,|,$(strip $(THREADED))))'

# PAIRS: how often both notices are shown and hidden. OPENINGS: how often the support window is opened and closed. MINUTES:
# duration of the randomised soak test. SEED: the order of its events; random if empty.
PAIRS ?= 10000
OPENINGS ?= 1000
MINUTES ?= 60
SEED ?=
soak: build
	TOVALIN_SOAK_PAIRS=$(PAIRS) TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/harness/sandbox build/$(PRESET)/tests/end_to_end/notice_soak_test
	TOVALIN_SOAK_OPENINGS=$(OPENINGS) TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/harness/sandbox build/$(PRESET)/tests/end_to_end/support_soak_test
	TOVALIN_SOAK_MINUTES=$(MINUTES) TOVALIN_SOAK_SEED=$(SEED) TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/harness/sandbox build/$(PRESET)/tests/end_to_end/random_session_soak_test

# DESKTOPS: the folder of the system with the desktops. DESKTOP_NAMES: only these desktops (tests/desktops/run). Needs root.
DESKTOPS ?= /var/tmp/desktops
DESKTOP_NAMES ?=
desktops: build
	packaging/set_up desktops package
	DESKTOPS=$(DESKTOPS) tests/desktops/run $(DESKTOP_NAMES)

# FUZZ_SECONDS: run time of each target. FUZZ_TARGETS: only these targets (files of tests/fuzz without suffix).
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?=
fuzz:
	@$(MAKE) --no-print-directory build PRESET=fuzz
	tests/fuzz/run build/fuzz $(FUZZ_SECONDS) $(FUZZ_TARGETS)

# Injects a failure into each call that the agent's code makes in a scripted session and prints the outcomes.
faults: build
	TOVALIN_BUNDLE_ROOT=$(BUNDLE_ROOT) tests/faults/run build/$(PRESET)

# Line coverage of the product folders and platform/; doc/coverage.md explains the uncovered lines.
coverage:
	@$(MAKE) --no-print-directory build PRESET=coverage
	tests/coverage build/coverage
