# shellcheck shell=bash
# Which files the checks look at. A check takes the tree to look at as its argument, so that its own
# test can show it a bad one. Sourced by the checks; sets `root` to that tree.

root=$(cd -- "${1:-$(dirname -- "${BASH_SOURCE[0]}")/../..}" && pwd -P)

# An exit status that says "could not look" rather than "found something", as automake and ctest have it.
skipped_status=77

# cpp_files FOLDER PATTERN...: the files below FOLDER, relative to the tree; none where it does not exist.
cpp_files() {
  local folder=$1 pattern
  [[ -d $root/$folder ]] || return 0
  for pattern in "${@:2}"; do
    (cd -- "$root" && find "$folder" -path ./build -prune -o -type f -name "$pattern" -print)
  done | sed 's|^[.]/||' | sort
}

# A pinned tool: TOOL-14, or TOOL if that is version 14. Ends the check as skipped where there is neither.
version_14_of() {
  local tool
  for tool in "$1-14" "$1"; do
    if command -v "$tool" >/dev/null && [[ $("$tool" --version) == *"version 14."* ]]; then
      echo "$tool"
      return
    fi
  done
  echo "$1 14 is not installed" >&2
  return "$skipped_status"
}
