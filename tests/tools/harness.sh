# shellcheck shell=sh
# What the tests of the tool share. To be sourced with the tool as first argument.
set -u
qelta=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
out=$folder/out
err=$folder/err
status=0

fail() {
  echo "FAILED: $1"
  head -n 20 "$out" | sed 's/^/  out: /'
  head -n 20 "$err" | sed 's/^/  err: /'
  status=1
}

# expect CODE ARGUMENT...: runs the tool; what it prints stays in $out and $err.
expect() {
  code=$1
  shift
  "$qelta" "$@" >"$out" 2>"$err"
  got=$?
  [ $got -eq "$code" ] || fail "qelta $* gave $got, not $code"
  # A failure is one line on standard error and nothing on standard output.
  if [ "$code" -ge 2 ]; then
    [ ! -s "$out" ] || fail "qelta $* printed results before it failed"
    { [ "$(wc -l <"$err")" -eq 1 ] && grep -q '^qelta: ' "$err"; } || fail "qelta $*: no one-line error"
  else
    [ ! -s "$err" ] || fail "qelta $* complained"
  fi
}
prints() { grep -qF -- "$1" "$out" || fail "'$1' was not printed"; }
complains() { grep -qF -- "$1" "$err" || fail "no complaint about '$1'"; }
counts() { [ "$(wc -l <"$out")" -eq "$1" ] || fail "not $1 lines"; }

# check CODE TEXT ARGUMENT...: the same; TEXT is among what it prints, or among what it complains of.
check() {
  code=$1
  wanted=$2
  shift 2
  expect "$code" "$@"
  if [ "$code" -ge 2 ]; then complains "$wanted"; else prints "$wanted"; fi
}
