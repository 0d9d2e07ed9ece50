# shellcheck shell=bash
# What the scripts share: where the source tree is, how they speak, how they configure and build.
# Sourced, never run. `root` is the absolute path of the source tree, `scripts` that of script/ in it.

unset CDPATH # where it applies, `cd` goes elsewhere and prints where
root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
# shellcheck disable=SC2034  # for those who source this
scripts=$root/script

# Standard output belongs to the program or to a script's result, so everything else goes to stderr.
say() { printf '%s\n' "$*" >&2; }

die() {
  say "${0##*/}: $*"
  exit 1
}

# Objects come from the user's compiler cache. Where that cannot be written to, as with a home that is
# absent or read-only, ccache would fail every compilation: then it keeps them in the build directory.
choose_compiler_cache() {
  command -v ccache >/dev/null || return 0
  local cache
  cache=$(ccache --get-config cache_dir 2>/dev/null) || cache=
  if [[ -z $cache ]] || ! mkdir -p -- "$cache" 2>/dev/null || [[ ! -w $cache ]]; then
    export CCACHE_DIR=$root/build/ccache
  fi
}

# Holds the build directories while the command runs, in a subshell: two scripts at once would spoil
# each other's. `configure` and `compile` are to be run under it.
with_build_lock() {
  mkdir -p "$root/build" || return
  (
    if ! flock --nonblock 9; then
      say "Waiting for another script that builds here ..."
      flock 9 || exit
    fi
    choose_compiler_cache
    "$@" 9>&-
  ) 9>"$root/build/.lock"
}

# configure PRESET [CMAKE ARGUMENT]...
configure() {
  local preset=$1 cache=$root/build/$1/CMakeCache.txt
  shift
  # A tree that was moved or copied with its build directory starts over instead of failing.
  if [[ -f $cache ]] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$cache"; then
    set -- --fresh "$@"
  fi
  cmake -S "$root" --preset "$preset" "$@"
}

# compile PRESET [CMAKE --build ARGUMENT]...
compile() {
  local preset=$1
  shift
  cmake --build "$root/build/$preset" --parallel "$(nproc)" "$@"
}
