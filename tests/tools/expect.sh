#!/usr/bin/env bash
# Runs one vx command line and checks its exit code and its output.
#   expect.sh EXIT REGEX SCRIPT
# SCRIPT is a bash snippet run with $VX set to the tool and $DATA to the sample data, in a
# scratch directory of its own; REGEX (grep -E) must match its standard output and error
# together. On a mismatch the whole output is printed.
set -uo pipefail
want_exit=$1 regex=$2 script=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
output=$(bash -c "set -o pipefail; $script" 2>&1)
got_exit=$?
ok=1
if [ "$got_exit" -ne "$want_exit" ]; then
  echo "expected exit code $want_exit, got $got_exit"
  ok=0
fi
if ! grep -Eq -- "$regex" <<<"$output"; then
  echo "output does not match: $regex"
  ok=0
fi
if [ "$ok" -eq 0 ]; then
  echo "---- script: $script"
  echo "---- output:"
  echo "$output"
  exit 1
fi
