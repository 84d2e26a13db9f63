#!/bin/bash
# The built Windows programs as a user runs them, on the machine that the runner provides.
#
#   programs_test.sh RUNNER FOLDER     FOLDER holds the programs
#
# The sample is planted into that machine's own C: drive and registry, and the scan must list every
# trace of it and nothing else. Arguments and output are UTF-8.
set -euo pipefail

runner=$1
bin=$2
work=$(mktemp -d "$bin/../programs-test-XXXXXX")
watcher=
trap 'rm -rf "$work"; [[ -z $watcher ]] || kill "$watcher" 2>/dev/null || true' EXIT

fail() {
  echo "programs_test: $*" >&2
  exit 1
}

# Runs a program, which must print plain line feeds into a file or pipe.
run() {
  local program=$1 status=0
  shift
  "$runner" "$bin/$program.exe" "$@" 2>"$work/errors" >"$work/output" || status=$?
  cat "$work/output"
  cat "$work/errors" >&2
  if grep -q $'\r' "$work/output" "$work/errors"; then
    echo "carriage returns: $program $*" >>"$work/faults"
  fi
  return "$status"
}

# Where the runner cannot run anything, it has said why.
status=0
"$runner" "$bin/quarnel-sample-program.exe" 0 || status=$?
[[ $status -eq 0 ]] || exit "$status"

# ---- the sample ----------------------------------------------------------------------------
run quarnel-machine sample >"$work/planted"
threats=$(cut -f2 "$work/planted" | sort -u | wc -l)
traces=$(wc -l <"$work/planted")
[[ $traces -ge 35 && $threats -ge 8 ]] || fail "only $traces traces of $threats threats were planted"

program=$(awk -F'\t' '$1 == "program" { print $3 }' "$work/planted")
"$runner" "$program" 120 >/dev/null 2>&1 &
watcher=$!
# Its first argument becomes its Windows path when it runs.
isRunning() {
  local file first
  for file in /proc/[0-9]*/cmdline; do
    first=
    read -r -d '' first 2>/dev/null <"$file" || true
    [[ ${first^^} != "${program^^}" ]] || return 0
  done
  return 1
}
for ((try = 0; try < 100; ++try)); do
  if isRunning; then break; fi
  sleep 0.1
done
isRunning || fail "the sample's program does not run"

status=0
run quarnel-console scan >"$work/shown" || status=$?
[[ $status -eq 2 ]] || fail "the scan ended with $status: $(cat "$work/shown")"
grep -q "^$threats threats with [0-9]* traces found\. Scanning completed\.$" "$work/shown" ||
  fail "no such summary: $(tail -n 1 "$work/shown")"

# Signatures name paths in their own letter case; the program is found by name and by hash.
folded() { tr '[:upper:]' '[:lower:]' | sort -u; }
cut -f3 "$work/planted" | folded >"$work/expected"
sed -n 's/^    //p' "$work/shown" | folded >"$work/found"
diff "$work/expected" "$work/found" >&2 || fail "what was planted and what was found differ"

# ---- text outside the code page ------------------------------------------------------------
text='ж€中 50%'
folder=$work/ж€中
mkdir "$folder"
printf 'Windows Registry Editor Version 5.00\n\n[HKEY_CURRENT_USER\\Software\\%s]\n"%s"="%s"\n' \
  "$text" "$text" "$text" >"$folder/in.reg"
run quarnel-machine reg import . "$folder/in.reg"
got=$(run quarnel-machine reg query . "HKCU\\Software\\$text" "$text")
[[ $got == "$text" ]] || fail "the registry gave: $got"
run quarnel-machine reg export . "$folder/out.reg" "HKCU\\Software\\$text"
iconv -f UTF-16 -t UTF-8 "$folder/out.reg" 2>/dev/null | grep -qF "\"$text\"=\"$text\"" ||
  grep -qF "\"$text\"=\"$text\"" "$folder/out.reg" || fail "the export lacks the value"

line='Any,Threat,1,31,Planted.txt,,7'
mkdir "$folder/sources" "$folder/compiled"
echo "$line" >"$folder/sources/QNLFSig.txt"
run quarnel-signatures compile "$folder/sources" "$folder/compiled"
[[ $(run quarnel-signatures show "$folder/compiled/QNLFSig.dll") == "$line" ]] ||
  fail "the signature came back changed"

# ---- calls that make no sense here ---------------------------------------------------------
for call in "quarnel-console --machine $work scan" "quarnel-machine create $work/machine" \
  "quarnel-machine sample $work"; do
  # shellcheck disable=SC2086  # words of one call
  if run $call >"$work/refused" 2>&1; then fail "was not refused: $call"; fi
  grep -q 'the machine is this system itself' "$work/refused" ||
    fail "no reason given for $call: $(cat "$work/refused")"
done

# ---- a script on standard input ------------------------------------------------------------
status=0
printf 'get lblUpdatesAvailable\r\nget none\r\n' |
  run quarnel-console >"$work/shown" 2>"$work/refused" || status=$?
[[ $status -eq 1 && $(cat "$work/shown") == "Updates Available" ]] ||
  fail "the script ended with $status: $(cat "$work/shown" "$work/refused")"
grep -qxF '2: unknown name: "none"' "$work/refused" || fail "told: $(cat "$work/refused")"

[[ ! -e $work/faults ]] || fail "$(cat "$work/faults")"
echo "programs_test: $traces traces of $threats threats found"
