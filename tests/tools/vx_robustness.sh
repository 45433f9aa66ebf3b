#!/bin/bash
# vx under faults and hostile input: output to a full device, bad numbers and lines, a full disk
# during an archive conversion onto itself, readers side by side, a self-referring table and a
# deeply nested document. Usage: vx_robustness.sh PATH_TO_VX
set -u
VX=$1
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
failures=0

# expect NAME WANTED_EXIT ACTUAL_EXIT
expect() {
    if [ "$3" -ne "$2" ]; then
        echo "FAIL: $1: exit $3, wanted $2"
        failures=$((failures + 1))
    fi
}
# contains NAME FILE TEXT
contains() {
    if ! grep -qF -- "$3" "$2"; then
        echo "FAIL: $1: no '$3' in:"
        cat "$2"
        failures=$((failures + 1))
    fi
}

# ---- vx convert: write errors, bad numbers, bad lines ----
"$VX" convert --to RD 52 5 >/dev/full 2>"$DIR/err"
expect "convert to /dev/full" 1 $?
contains "convert to /dev/full" "$DIR/err" "cannot write the output"

seq 1 200000 | sed 's/.*/52 5/' | "$VX" convert --to RD >/dev/full 2>"$DIR/err"
expect "200000 lines to /dev/full" 1 $?

printf '52 5\nnan 5\n91 5\n1 inf\n52 \001\377\n52 5\0007\n' |
    "$VX" convert --to RD >"$DIR/out" 2>"$DIR/err"
expect "bad input lines" 2 $?
[ "$(wc -l <"$DIR/out")" -eq 6 ] || { echo "FAIL: not one output line per input line"; failures=$((failures + 1)); }
contains "NaN" "$DIR/err" "line 2: not a finite number: 'nan'"
contains "latitude" "$DIR/err" "line 3: latitude beyond 90 degrees"
contains "infinity" "$DIR/err" "line 4: not a finite number: 'inf'"
contains "raw bytes" "$DIR/err" "line 5: not a number: '\\x01\\xff'"
contains "NUL" "$DIR/err" "line 6: line holds a NUL byte"
head -c 1100000 /dev/zero | tr '\0' '1' | "$VX" convert --to RD >/dev/null 2>"$DIR/err"
expect "long line" 2 $?
contains "long line" "$DIR/err" "line 1: line longer than 1048576 bytes"

# ---- vx archive convert onto itself on a full disk ----
{
    n=20000
    printf '<VXXMLArchive><Root MFC_RUNTIME_TYPE="CSerObArray" MFC_RUNTIME_TYPE_SCHEMA="0" m_nSize="%d">' $n
    for ((i = 0; i < n; i++)); do
        printf '<pO MFC_RUNTIME_TYPE="CVXWordArray" MFC_RUNTIME_TYPE_SCHEMA="0" m_nSize="1" W0="%d"/>' $i
    done
    printf '</Root></VXXMLArchive>\n'
} >"$DIR/big.xml"
cp "$DIR/big.xml" "$DIR/copy.xml"
# 512 KiB may be written: the document needs more. An ignored SIGXFSZ stays ignored in vx.
(
    trap '' XFSZ
    ulimit -f 512
    exec "$VX" archive convert "$DIR/big.xml" "$DIR/big.xml"
) 2>"$DIR/err"
expect "convert onto itself on a full disk" 2 $?
cmp -s "$DIR/big.xml" "$DIR/copy.xml" || { echo "FAIL: the original was changed"; failures=$((failures + 1)); }
contains "full disk message" "$DIR/err" "File too large: $DIR/big.xml"
[ "$(grep -o "$DIR/big.xml" "$DIR/err" | wc -l)" -eq 1 ] || { echo "FAIL: the path is not named once"; failures=$((failures + 1)); }
[ -z "$(ls -A "$DIR" | grep '\.tmp$')" ] || { echo "FAIL: a temporary file was left"; failures=$((failures + 1)); }
"$VX" archive convert "$DIR/big.xml" "$DIR/big.bin"
expect "convert to binary" 0 $?

# ---- readers side by side ----
pids=()
for i in 1 2 3 4 5 6 7 8; do
    "$VX" archive dump "$DIR/big.bin" >/dev/null 2>"$DIR/err$i" &
    pids+=($!)
done
for i in "${!pids[@]}"; do
    wait "${pids[$i]}"
    expect "simultaneous dump $((i + 1))" 0 $?
done

# ---- hostile archives ----
printf '\377\377\001\000\013\000CTransTabel\001\000\002\000' >"$DIR/cycle.bin"
"$VX" archive dump "$DIR/cycle.bin" >/dev/null 2>"$DIR/err"
expect "self-referring table" 2 $?
contains "self-referring table" "$DIR/err" "bad class"

{
    printf '<VXXMLArchive><Root MFC_RUNTIME_TYPE="X" MFC_RUNTIME_TYPE_SCHEMA="1">'
    for ((i = 0; i < 30000; i++)); do printf '<a>'; done
    for ((i = 0; i < 30000; i++)); do printf '</a>'; done
    printf '</Root></VXXMLArchive>\n'
} >"$DIR/deep.xml"
"$VX" archive dump "$DIR/deep.xml" >"$DIR/out" 2>"$DIR/err"
expect "deep dump" 0 $?
# One tab a level would give 450 million bytes; 32 at most a line gives under 3 MB.
[ "$(wc -c <"$DIR/out")" -lt 3000000 ] || { echo "FAIL: the listing grows with the square of the depth"; failures=$((failures + 1)); }
"$VX" archive convert "$DIR/deep.xml" "$DIR/deep.bin" 2>"$DIR/err"
expect "deep convert" 2 $?

"$VX" archive dump "$DIR/big.bin" >/dev/full 2>"$DIR/err"
expect "dump to /dev/full" 1 $?

[ $failures -eq 0 ] && echo "all vx robustness checks passed"
exit $((failures > 0))
