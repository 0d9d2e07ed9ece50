# shellcheck shell=bash
# A home of their own for programs that must not touch the user's. Sourced by test and bench, after common.sh.

# Points HOME, TMPDIR and every XDG directory into a temporary directory, `private`, that is removed when
# the script ends, and takes the desktop away. Objects still come from the user's compiler cache.
make_private_environment() {
  choose_compiler_cache
  if command -v ccache >/dev/null; then
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR
  fi
  local name
  for name in $(compgen -e XDG_) $(compgen -e HEAPGAUGE_); do unset "$name"; done
  # Nothing leaves the machine: what would ask for updates finds nobody.
  export HEAPGAUGE_UPDATE_URL=http://127.0.0.1:9/
  unset DISPLAY WAYLAND_DISPLAY XAUTHORITY DBUS_SESSION_BUS_ADDRESS GTK_THEME
  unset CTEST_PARALLEL_LEVEL CTEST_OUTPUT_ON_FAILURE

  private=$(mktemp -d "${TMPDIR:-/tmp}/heapgauge-script.XXXXXX")
  trap 'rm -rf --one-file-system -- "$private"' EXIT
  mkdir -p "$private"/{tmp,home/.config,home/.cache,home/.local/share,home/.local/state,share,etc}
  mkdir -m 700 "$private/run"
  export HOME=$private/home TMPDIR=$private/tmp LC_ALL=C.UTF-8
  export XDG_CONFIG_HOME=$HOME/.config XDG_CACHE_HOME=$HOME/.cache XDG_STATE_HOME=$HOME/.local/state
  export XDG_DATA_HOME=$HOME/.local/share XDG_RUNTIME_DIR=$private/run
  export XDG_CONFIG_DIRS=$private/etc XDG_DATA_DIRS=$private/share
}
