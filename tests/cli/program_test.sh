#!/usr/bin/env bash
# Runs the pelinor program as people and scripts do and checks, for each
# case, the exit status, the message and that no file changed where none
# may.
#
# Usage: program_test.sh PELINOR SOURCE_DIR BUILD_DIR
set -u

PELINOR=$1
SRC=$2
BUILD=$3
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1
# No store of this machine may take part.
export PELINOR_REGISTRY=$WORK/absent-default.reg
export PELINOR_USER_REGISTRY=$WORK/absent-user.reg
unset PELINORLOGFORMAT

passed=0
failed=0
fail() {
  echo "FAILED: $1"
  failed=$((failed + 1))
}

# expect NAME STATUS STDERR_PART [STDOUT_PART] -- ARGS...
# Runs pelinor ARGS; checks the status and that stderr and stdout hold the
# given parts ("" checks that stderr is empty).
expect() {
  local name=$1 status=$2 err_part=$3 out_part=""
  shift 3
  if [ "$1" != "--" ]; then
    out_part=$1
    shift
  fi
  shift
  "$PELINOR" "$@" >out.txt 2>err.txt
  local got=$?
  local err out
  err=$(cat err.txt)
  out=$(cat out.txt)
  if [ "$got" -ne "$status" ]; then
    fail "$name: status $got, expected $status (stderr: $err)"
  elif [ -z "$err_part" ] && [ -n "$err" ]; then
    fail "$name: unexpected stderr: $err"
  elif [ -n "$err_part" ] && [[ "$err" != *"$err_part"* ]]; then
    fail "$name: stderr \"$err\" lacks \"$err_part\""
  elif [ -n "$out_part" ] && [[ "$out" != *"$out_part"* ]]; then
    fail "$name: stdout \"$out\" lacks \"$out_part\""
  else
    passed=$((passed + 1))
  fi
}

# unchanged NAME FILE SUM: FILE still has checksum SUM.
unchanged() {
  if [ "$(sha256sum <"$2")" = "$3" ]; then
    passed=$((passed + 1))
  else
    fail "$1: $2 changed"
  fi
}

sum() { sha256sum <"$1"; }

# --- Registry files that are not registry exports are left alone ---------
cp "$SRC/examples/profiles/Invoices.ini" profile.ini
head -c 3000 /dev/urandom >binary.reg
printf 'Windows Registry Editor Version 5.00\r\n' >empty.reg
for f in profile.ini binary.reg; do
  before=$(sum "$f")
  expect "registry set on $f" 1 \
    "pelinor: $WORK/$f: not a registry file (no \"Windows Registry Editor Version 5.00\" header); left unchanged" \
    -- registry set HKLM App Sec Key Value --registry "$WORK/$f"
  unchanged "registry set on $f" "$f" "$before"
  expect "registry get on $f" 1 "not a registry file" \
    -- registry --registry "$WORK/$f" get HKLM App Sec Key
  PELINOR_REGISTRY=$WORK/$f expect "registry list on $f" 1 \
    "$WORK/$f: not a registry file" -- registry list
  unchanged "registry list on $f" "$f" "$before"
done
expect "registry get on a missing file" 1 \
  "pelinor: $WORK/none.reg: cannot read registry file: No such file or directory" \
  -- registry --registry "$WORK/none.reg" get HKLM App Sec Key
expect "registry delete on a missing file" 1 \
  "$WORK/none.reg: cannot read registry file" \
  -- registry --registry "$WORK/none.reg" delete HKLM App Sec
[ ! -e none.reg ] && passed=$((passed + 1)) || fail "delete created none.reg"
expect "registry set creates its store" 0 "" \
  -- registry --registry "$WORK/new.reg" set HKLM App Sec Key Value
if head -1 new.reg | grep -q "Windows Registry Editor Version 5.00"; then
  passed=$((passed + 1))
else
  fail "registry set did not create new.reg"
fi
expect "registry set on an export" 0 "" \
  -- registry --registry "$WORK/empty.reg" set HKLM App Sec Key Value
expect "registry get reads it back" 0 "" "Value" \
  -- registry --registry "$WORK/empty.reg" get HKLM App Sec Key
expect "validate date with a missing --registry" 1 \
  "$WORK/none.reg: cannot read registry file: No such file or directory" \
  -- validate -t DATEGB --registry "$WORK/none.reg" 01/02/2004
expect "format with --locale needs no registry" 0 "" "02/01/2004" \
  -- format -t DATEGB --locale US "1 February 2004"

# --- Configuration that is not configuration ------------------------------
mkdir adir
: >empty.ini
head -c 2000 /dev/urandom | tr -d '\n' >binary.ini
printf 'just some text\r\nno sections here\r\n' >plain.ini
printf '[Main]\r\nDisplayName:x\r\n' >noversion.ini
for verb in "settings get FILE Main Key" "settings section FILE Main" \
  "settings states FILE" "detect show FILE" "scan show FILE" \
  "profile show FILE"; do
  for f in adir empty.ini binary.ini plain.ini; do
    case $f in
      adir) why="is a directory, not a configuration file" ;;
      empty.ini) why="is empty, not a configuration file" ;;
      binary.ini) why="is not a text file" ;;
      plain.ini) why="has no section"
        [[ $verb == profile* ]] && why="has no version line" ;;
    esac
    # shellcheck disable=SC2086
    expect "$verb on $f" 1 "pelinor: $WORK/$f: $why" -- ${verb/FILE/$WORK/$f}
  done
  # shellcheck disable=SC2086
  expect "$verb on a missing file" 1 \
    "pelinor: $WORK/none.ini: cannot read: No such file or directory" \
    -- ${verb/FILE/$WORK/none.ini}
done
expect "profile show without a version line" 1 \
  "$WORK/noversion.ini: has no version line" -- profile show "$WORK/noversion.ini"
expect "settings get of a real profile" 0 "" "Supplier invoices" \
  -- settings get "$SRC/examples/profiles/Invoices.ini" Main DisplayName

# --- Exit codes and usage errors ------------------------------------------
expect "a typo of a verb" 2 "pelinor: unknown verb 'formt' for pelinor; did you mean 'format'?" \
  -- formt -t 4 1.00
expect "a typo of a sub-verb" 2 "did you mean 'show'?" -- queue shw x
expect "an unknown option" 2 "pelinor: The following argument was not expected: --bogus" \
  -- validate -t 4 --bogus 1.00
expect "a missing argument" 2 "pelinor: " -- settings get
expect "an invalid value" 1 "" "not a valid AMOUNT" -- validate -t 4 abc
expect "a valid value" 0 "" "ok" -- validate -t 4 1.00
expect "an invalid pattern specification" 2 \
  "pelinor: invalid pattern specification \"((\": Unclosed group" \
  -- pattern --spec "((" AB
expect "a text that does not match" 1 "pelinor: AB: Pattern validation failed." \
  -- pattern --spec 0000 AB
expect "validate with a bad --spec" 2 "invalid pattern specification" \
  -- validate -t 9 --spec "A((B))" x
expect "no verb prints the help" 0 "" "Usage: pelinor" --
expect "--version" 0 "" "PCRE2 " -- --version
if "$PELINOR" --version | head -1 | grep -qx "pelinor [0-9.]*"; then
  passed=$((passed + 1))
else
  fail "--version does not start with the program name and version"
fi

# --- Standard output ------------------------------------------------------
"$PELINOR" validate -t 4 1.00 >/dev/full 2>err.txt
status=$?
if [ $status -eq 1 ] &&
  grep -q "pelinor: standard output: cannot write: No space left on device" err.txt; then
  passed=$((passed + 1))
else
  fail "/dev/full: status $status, stderr $(cat err.txt)"
fi
"$PELINOR" --help-all 2>err.txt | head -c 10 >/dev/null
if [ ! -s err.txt ]; then
  passed=$((passed + 1))
else
  fail "closed pipe printed: $(cat err.txt)"
fi
long=$("$PELINOR" --help-all | awk 'length > 80' | head -3)
[ -z "$long" ] && passed=$((passed + 1)) || fail "help wider than 80: $long"

# --- Encoding -------------------------------------------------------------
expect "a character without a Windows-1252 form" 2 \
  "pelinor: \"中\" (U+4E2D) in \"中1\" cannot be written in Windows-1252" \
  -- validate -t 4 "中1"
expect "a Windows-1252 character" 0 "" -- queue reject write "$WORK/r.reject" "Tâche €"
printf 'ver0.946\r\nT\xc3\xa2che\r\n' >utf8.reject
expect "show of a UTF-8 file warns" 0 "pelinor: warning: $WORK/utf8.reject: is UTF-8 text" \
  -- queue reject show "$WORK/utf8.reject"
printf '\xef\xbb\xbf' | cat - "$SRC/examples/detect/TemplateDetect.ini" >bom.ini
expect "show of a file with a UTF-8 byte-order mark warns" 0 \
  "pelinor: warning: $WORK/bom.ini: starts with a UTF-8 byte-order mark" \
  -- detect show "$WORK/bom.ini"
expect "show of a Windows-1252 file is quiet" 0 "" \
  -- detect show "$SRC/examples/detect/TemplateDetect.ini"

# --- Writing through a symbolic link --------------------------------------
mkdir target
printf 'ver0.946\r\nold\r\n' >target/real.reject
ln -s target/real.reject link.reject
expect "write through a link" 0 "" -- queue reject write link.reject "new"
if [ -L link.reject ] && grep -q new target/real.reject; then
  passed=$((passed + 1))
else
  fail "writing through link.reject replaced the link"
fi
leftovers=$(find . -name '*.tmp-*')
[ -z "$leftovers" ] && passed=$((passed + 1)) || fail "temporary files left: $leftovers"

# --- JSON lines -----------------------------------------------------------
"$PELINOR" format -t AMOUNT --json-lines 1,234.50 abc >lines.txt
n=0
while IFS= read -r line; do
  if python3 -c 'import json,sys; json.loads(sys.argv[1])' "$line"; then
    n=$((n + 1))
  fi
done <lines.txt
[ "$n" -eq 2 ] && passed=$((passed + 1)) || fail "format --json-lines: $(cat lines.txt)"
"$PELINOR" queue show --json-lines "$SRC/examples/queue/queue.txt" >lines.txt
if [ "$(wc -l <lines.txt)" -ge 2 ] && head -1 lines.txt | grep -q '"DocId"'; then
  passed=$((passed + 1))
else
  fail "queue show --json-lines: $(head -2 lines.txt)"
fi

# --- Man page and completion ----------------------------------------------
if [ -f "$BUILD/pelinor.1" ] && grep -q "registry" "$BUILD/pelinor.1"; then
  passed=$((passed + 1))
elif ! command -v help2man >/dev/null; then
  echo "skipped: the man page (help2man is not installed)"
else
  fail "no man page at $BUILD/pelinor.1"
fi
complete_words() {
  bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1));
           _pelinor; echo "${COMPREPLY[*]}"' _ "$BUILD/pelinor.bash" "$@"
}
[ "$(complete_words pelinor que)" = "queue" ] && passed=$((passed + 1)) ||
  fail "completion of 'que': $(complete_words pelinor que)"
[[ " $(complete_words pelinor validate --js) " == *" --json-lines "* ]] &&
  passed=$((passed + 1)) || fail "completion of validate options"

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
