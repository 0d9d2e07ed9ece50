# shellcheck shell=bash
# Which files the checks look at. A check takes the tree to look at as its argument, so that its own
# test can show it a bad one. Sourced by the checks; sets `root` to that tree.

unset CDPATH # where it applies, `cd` goes elsewhere and prints where
root=$(cd -- "${1:-$(dirname -- "${BASH_SOURCE[0]}")/../..}" && pwd -P)

# An exit status that says "could not look" rather than "found something", as automake and ctest have it.
skipped_status=77

# cpp_files SUFFIXES FOLDER...: the C++ files below the folders, relative to the tree, where SUFFIXES is
# "cpp" for sources alone or "h cpp". A folder that does not exist has none.
cpp_files() {
  local -a suffixes names=()
  read -r -a suffixes <<<"$1"
  local suffix folder
  for suffix in "${suffixes[@]}"; do names+=(${names[@]:+-o} -name "*.$suffix"); done
  for folder in "${@:2}"; do
    [[ -d $root/$folder ]] || continue
    (cd -- "$root" && find "$folder" -path ./build -prune -o -type f \( "${names[@]}" \) -print)
  done | sed 's|^[.]/||' | sort
}

# expect_some FILE...: ends the check as failed where it found nothing to look at, since it would pass
# without having looked.
expect_some() {
  if (($# == 0)); then
    echo "no sources found in $root"
    exit 1
  fi
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
