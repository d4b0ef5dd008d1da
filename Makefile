# The entry point: each target is one command, and the script of its name does the work.
.PHONY: demo check clients desktops format bench check-arm64 clang sanitize tidy faults fuzz coverage reference large pictures archive check-archive packages check-packages subproject reproducible abi prove

PRESET = release
# Options for CTest, such as ARGS="-R Base64".
ARGS =

demo:
	scripts/demo

check:
	scripts/check $(PRESET) $(ARGS)

# ARGS=--check changes nothing and fails if a file differs.
format:
	scripts/format $(ARGS)

clang:
	scripts/check clang $(ARGS)

sanitize:
	scripts/check asan-ubsan $(ARGS)
	scripts/check tsan $(ARGS)

tidy:
	scripts/tidy

bench:
	scripts/bench

desktops:
	scripts/desktops $(ARGS)

clients:
	scripts/clients $(ARGS)

check-arm64:
	scripts/check-arm64 $(ARGS)

faults:
	scripts/faults

# FUZZ_SECONDS is the time for each target: FUZZ_SECONDS=600 make fuzz
fuzz:
	scripts/fuzz

coverage:
	scripts/coverage

reference:
	scripts/reference

large:
	scripts/large

# The pictures of the window in README.md, drawn without a screen.
pictures:
	scripts/pictures

# The source archive of a release, from the last commit.
archive:
	scripts/archive

subproject:
	scripts/subproject

check-archive:
	scripts/check-archive

# ARGS=arm64 makes the packages of that architecture.
packages:
	scripts/packages $(ARGS)

check-packages:
	scripts/check-packages

reproducible:
	scripts/reproducible

# ARGS=prove also shows that a change is noticed; ARGS=update stores the present interface.
abi:
	scripts/abi $(ARGS)

prove:
	scripts/prove
