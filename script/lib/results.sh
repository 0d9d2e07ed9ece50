# shellcheck shell=bash
# Runs the steps of script/test, shows how far they are and keeps the sum. Sourced by it.
# A step's output is shown only when it fails.

log_directory=  # where the output of the steps goes; for the sourcing script to set
without_aslr=() # the command that runs another without address randomisation, where there is one
passed=0
failed=0
skipped=()
step_number=0
heartbeat_seconds=${HEARTBEAT_SECONDS:-20}

# step NAME COMMAND...: sets `step_status` and `step_log`. A long one says every so often where it is.
step() {
  local name=$1 started=$SECONDS finished outcome
  shift
  step_number=$((step_number + 1))
  step_log=$log_directory/$step_number.log
  printf '[%4d s] %s\n' "$SECONDS" "$name"
  exec {finished}< <(
    status=0
    "$@" >"$step_log" 2>&1 </dev/null || status=$?
    echo "$status"
  )
  while :; do
    outcome=0
    IFS= read -r -t "$heartbeat_seconds" -u "$finished" step_status || outcome=$?
    ((outcome == 0)) && break
    # read answers 1 at the end of the stream and more than 128 when its time is over.
    if ((outcome <= 128)); then
      step_status=1
      break
    fi
    printf '         ... %d s: %s\n' "$((SECONDS - started))" "$(tail -n 1 -- "$step_log" | cut -c 1-100)"
  done
  exec {finished}<&-
}

show_log() { sed 's/^/    | /' -- "$step_log"; }

count_failed() {
  failed=$((failed + 1))
  printf '         FAILED: %s\n' "$1"
}

count_skipped() { skipped+=("$1"); }

# check NAME COMMAND...: counts as one. Exit status 77 is a skip, its last line the reason.
check() {
  step "$@"
  case $step_status in
    0) passed=$((passed + 1)) ;;
    77) count_skipped "$1: $(tail -n 1 -- "$step_log")" ;;
    *)
      show_log
      count_failed "$1"
      ;;
  esac
}

# tap_tests NAME COMMAND...: runs a program that reports in the Test Anything Protocol
# ("ok NAME", "not ok NAME", "ok NAME # SKIP reason") and counts what it reports.
tap_tests() {
  local name=$1 line ok=0 bad=0 skips=0
  step "$@"
  while IFS= read -r line; do
    case $line in
      'ok '*' # SKIP '*)
        line=${line#ok }
        count_skipped "$name: ${line/ \# SKIP /: }"
        skips=$((skips + 1))
        ;;
      'ok '*) ok=$((ok + 1)) ;;
      'not ok '*)
        bad=$((bad + 1))
        count_failed "$name: ${line#not ok }"
        ;;
    esac
  done <"$step_log"
  passed=$((passed + ok))
  ((step_status == 0 && bad == 0)) || show_log
  if ((step_status != 0 && bad == 0)); then
    count_failed "$name: ended with status $step_status"
  elif ((ok + bad + skips == 0)); then
    count_failed "$name: reported no test"
  fi
}

# What the readers of reports share: text(LINE) without XML's entities, attribute(LINE, NAME).
awk_xml='
  function text(line) {
    gsub(/&lt;/, "<", line); gsub(/&gt;/, ">", line); gsub(/&quot;/, "\"", line); gsub(/&apos;/, "\047", line)
    gsub(/&#x0A;/, " ", line); gsub(/&amp;/, "\\&", line)
    return line
  }
  function attribute(line, name) {
    if (!match(line, " " name "=\"[^\"]*\"")) return ""
    return text(substr(line, RSTART + length(name) + 3, RLENGTH - length(name) - 4))
  }'

# Reads what ctest --output-junit wrote; prints a line for each program: "passed NAME", "failed NAME" or "skipped NAME".
# The counts in the file's head will not do: there, a test whose program could not be found counts as skipped.
read_junit() {
  # shellcheck disable=SC2016  # the program is awk's
  awk "$awk_xml"'
    /^\t<testcase / {
      status = attribute($0, "status")
      print (status == "run" ? "passed" : status == "disabled" ? "skipped" : "failed") " " attribute($0, "name")
    }' "$1"
}

# Reads the list of tests that a GoogleTest program wrote; prints a line for each: "passed NAME", "failed NAME" or
# "skipped NAME: reason".
read_gtest() {
  # shellcheck disable=SC2016  # the program is awk's
  awk "$awk_xml"'
    function report() {
      if (name == "") return
      if (result == "skipped") print "skipped " name ": " (reason == "" ? "no reason given" : reason)
      else if (result == "suppressed") print "skipped " name ": disabled"
      else print (broken ? "failed " : "passed ") name
      name = ""
    }
    /^ *<testcase / {
      report()
      name = attribute($0, "classname") "." attribute($0, "name"); result = attribute($0, "result")
      reason = ""; broken = 0
    }
    /^ *<failure / { broken = 1 }
    # "file:line", then the reason.
    /^ *<skipped / { reason = attribute($0, "message"); sub(/^[^ ]*:[0-9]+ /, "", reason); sub(/ +$/, "", reason) }
    END { report() }' "$1"
}

# count_ctest NAME JUNIT RESULTS: counts each test of the programs that ctest ran, and says how many failed in
# `failed_here`. A program that left no list of its tests in RESULTS, or failed beside them, counts as one.
count_ctest() {
  local name=$1 program outcome line own
  failed_here=0
  while read -r outcome program; do
    own=$failed_here
    if [[ -f $3/$program.xml ]]; then
      while IFS= read -r line; do
        case $line in
          'passed '*) passed=$((passed + 1)) ;;
          'skipped '*) count_skipped "$name: ${line#skipped }" ;;
          'failed '*)
            failed_here=$((failed_here + 1))
            count_failed "$name: ${line#failed }"
            ;;
        esac
      done < <(read_gtest "$3/$program.xml")
      [[ $outcome == failed && $own == "$failed_here" ]] || continue
    fi
    case $outcome in
      passed) passed=$((passed + 1)) ;;
      skipped) count_skipped "$name: $program" ;;
      failed)
        failed_here=$((failed_here + 1))
        count_failed "$name: $program"
        ;;
    esac
  done < <(read_junit "$2")
}

# Leaves out of a log of ctest what passed: lines of ctest, and the two lines of each test of a GoogleTest program.
without_passed() {
  awk '
    /^ *([0-9]+\/[0-9]+ Test +#.* (Passed|\*\*\*Skipped) |Start +[0-9]+:)/ { next }
    /^\[ RUN      \] / { held = $0; next }
    /^\[       OK \] / { held = ""; next }
    held != "" { print held; held = "" }
    { print }
    END { if (held != "") print held }' "$1"
}

# ctest_tests NAME BUILD_DIRECTORY [CTEST ARGUMENT]...: counts each test of the programs that ctest knows. Some of them
# wait more than they work, so that there is one more at a time than there are processors.
ctest_tests() {
  local name=$1 junit=$log_directory/junit.xml failed_here=0
  rm -rf -- "$junit" "$2/results"
  step "$name" "${without_aslr[@]}" ctest --test-dir "$2" --parallel "$(($(nproc) + 1))" --no-tests=error \
    --output-on-failure --output-junit "$junit" "${@:3}"
  [[ ! -f $junit ]] || count_ctest "$name" "$junit" "$2/results"
  if ((step_status != 0)); then
    without_passed "$step_log" | sed 's/^/    | /'
    ((failed_here)) || count_failed "$name: ctest ended with status $step_status"
  fi
}

# Names what was skipped and prints the sum. Fails unless everything that ran passed.
finish() {
  local line="$passed passed, $failed failed"
  if ((${#skipped[@]})); then
    echo "Skipped:"
    printf '  %s\n' "${skipped[@]}"
    line+=", ${#skipped[@]} skipped"
  fi
  echo "$line"
  ((failed == 0))
}
