# shellcheck shell=bash
# An X server that nobody sees. Sourced, after common.sh, by the scripts that draw without a display.

# start_display LOG SIZE DPI [XVFB ARGUMENT]...: starts it with one screen of SIZE (WIDTHxHEIGHT) and points
# DISPLAY at it. Sets `server`, the process that `stop_display` ends. Fails, with the log shown, when the
# server does not start.
start_display() {
  local log=$1 number
  # The server itself picks a free number and writes it to descriptor 3 when it is ready; should it
  # fail to start, the descriptor closes and the read ends.
  exec {ready}< <(exec Xvfb -displayfd 3 -screen 0 "$2x24" -dpi "$3" -nolisten tcp -noreset "${@:4}" \
    3>&1 >"$log" 2>&1 </dev/null)
  server=$!
  if ! IFS= read -r -t 30 -u "$ready" number; then
    cat "$log" >&2
    die "Xvfb did not start"
  fi
  exec {ready}<&-
  export DISPLAY=:$number
  unset WAYLAND_DISPLAY XAUTHORITY
}

stop_display() {
  [[ -n ${server:-} ]] || return 0
  kill "$server" 2>/dev/null || :
  wait "$server" 2>/dev/null || :
  server=
}
