# shellcheck shell=bash
# A little harness for the tests of script/, which report in the Test Anything Protocol.
# Sourced; gives each test a fresh directory and runs it in a subshell, where `exit 1` fails it.
set -uo pipefail

unset CDPATH # where it applies, `cd` goes elsewhere and prints where
# shellcheck disable=SC2034  # for the tests
repository=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
suite_directory=$(mktemp -d)
trap 'rm -rf -- "$suite_directory"' EXIT
failures=0
test_number=0

# it SAYS FUNCTION: runs the function in a directory of its own and reports it under what it says.
it() {
  test_number=$((test_number + 1))
  local directory=$suite_directory/$test_number
  mkdir "$directory"
  if (
    cd -- "$directory" || exit
    "$2"
  ) >"$suite_directory/output" 2>&1; then
    echo "ok $1"
  else
    echo "not ok $1"
    sed 's/^/# /' "$suite_directory/output"
    failures=$((failures + 1))
  fi
}

# The last line of a test program.
finish_tests() { exit $((failures > 0)); }

fail() {
  echo "$*"
  exit 1
}

# run COMMAND...: sets `status`, `out` and `err`.
run() {
  status=0
  "$@" >out.txt 2>err.txt || status=$?
  out=$(<out.txt)
  err=$(<err.txt)
}

show() { printf 'status %s\n--- stdout\n%s\n--- stderr\n%s\n' "$status" "$out" "$err"; }

expect_status() { [[ $status == "$1" ]] || { show && fail "status is not $1"; }; }
expect_failure() { [[ $status != 0 ]] || { show && fail "it succeeded"; }; }
expect_out() { [[ $out == *"$1"* ]] || { show && fail "stdout lacks: $1"; }; }
expect_no_out() { [[ $out != *"$1"* ]] || { show && fail "stdout has: $1"; }; }
expect_err() { [[ $err == *"$1"* ]] || { show && fail "stderr lacks: $1"; }; }
expect_equal() { [[ $1 == "$2" ]] || { show && fail "is '$1', not '$2'"; }; }
expect_file() { [[ -s $1 ]] || { show && fail "no file $1"; }; }
expect_no_file() { [[ ! -e $1 ]] || { show && fail "there is a file $1"; }; }

# write FILE LINE...: with the directories on the way.
write() {
  mkdir -p -- "$(dirname -- "$1")"
  printf '%s\n' "${@:2}" >"$1"
}

# write_program FILE LINE...: the same, for a bash script.
write_program() {
  write "$1" '#!/usr/bin/env bash' "${@:2}"
  chmod +x -- "$1"
}
