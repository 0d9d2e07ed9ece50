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

# changed_files: what differs from the branch that work starts from (the upstream of this one, else origin/main, else
# the last commit), committed or not, relative to the tree. Fails where there is no repository to ask.
changed_files() (
  cd -- "$root" || return
  local start
  git rev-parse --is-inside-work-tree >/dev/null 2>&1 || return
  start=$(git merge-base HEAD '@{upstream}' 2>/dev/null) || start=$(git merge-base HEAD origin/main 2>/dev/null) ||
    start=$(git rev-parse HEAD) || return
  git diff --name-only "$start" && git ls-files --others --exclude-standard
)

# depending_on CHANGED SOURCE...: those of the sources that are in CHANGED, a list of lines, or include a file of it,
# however far away. An include names a header from the top of the tree.
depending_on() {
  local changed=$1
  shift
  { grep -rHo --include='*.h' --include='*.cpp' '^#include "[^"]*"' base sizewalk ui app || :; } |
    sed 's/:#include "/\t/; s/"$//' |
    awk -F '\t' -v changed="$changed" -v sources="$(printf '%s\n' "$@")" '
      { includes[$1] = includes[$1] "\n" $2 }
      function reaches(file, parts, count, i) {
        if (file in known) return known[file]
        known[file] = file in is_changed
        count = split(includes[file], parts, "\n")
        for (i = 1; i <= count && !known[file]; ++i) if (parts[i] != "" && reaches(parts[i])) known[file] = 1
        return known[file]
      }
      END {
        count = split(changed, names, "\n")
        for (i = 1; i <= count; ++i) is_changed[names[i]] = 1
        count = split(sources, names, "\n")
        for (i = 1; i <= count; ++i) if (reaches(names[i])) print names[i]
      }'
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
