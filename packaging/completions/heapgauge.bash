# Completion of heapgauge(1) for bash.
# shellcheck shell=bash disable=SC2207

# Folders and files are left to readline, which knows how to quote them.
_heapgauge() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=
  ((COMP_CWORD < 2)) || previous=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $previous in
    --capture) compopt +o dirnames -o default 2>/dev/null ;;
    --capture-after) COMPREPLY=($(compgen -W '0 1 2 5 10' -- "$current")) ;;
    *)
      if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W '--capture --capture-after --help -h --version' -- "$current"))
      fi
      ;;
  esac
} &&
  complete -o dirnames -F _heapgauge heapgauge
