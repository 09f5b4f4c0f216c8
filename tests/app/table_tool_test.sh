#!/usr/bin/env bash
# The table tool as people and the build use it: round trips, and clear failures on bad input.
set -u
tool="$1"
source "$(dirname "$0")/checks.sh"

text='Phone "HD", 720 x 1280 é'
hex=$("$tool" encipher-line "$text")
[[ "$hex" =~ ^[0-9A-F]+$ ]]; check "encipher-line prints uppercase hexadecimal" $?
bytes=$(printf %s "$text" | wc -c)
[ ${#hex} -eq $(( (bytes + 8) * 2 )) ]; check "the line is the text's bytes plus an 8-byte trailer" $?
[ "$("$tool" decipher-line "$hex")" = "$text" ]; check "decipher-line gives the text back" $?
[ "$("$tool" decipher-line "&H$(echo "$hex" | tr 'A-F' 'a-f')")" = "$text" ]; check "lowercase digits and &H are taken" $?
[ "$("$tool" encipher-line "$text")" = "$hex" ]; check "the same text gives the same line" $?

"$tool" decipher-line ABC >/dev/null 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "odd number" "$work/err"; check "odd hexadecimal is refused" $?
"$tool" decipher-line XYZW >/dev/null 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "not hexadecimal" "$work/err"; check "non-hexadecimal text is refused" $?
"$tool" decipher-line 00112233445566778899AABB >/dev/null 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "does not decipher" "$work/err"; check "a line that does not decipher is refused" $?

printf '"ID","Name"\r\n"1","A, b"\r\n\r\n"2","C"\r\n' > "$work/plain.txt"
"$tool" encode "$work/plain.txt" "$work/table.dat"; check "encode succeeds" $?
[ "$(wc -l < "$work/table.dat")" -eq 4 ]; check "one enciphered line per plain line" $?
cmp -s <("$tool" decode "$work/table.dat") "$work/plain.txt"; check "decode gives the plain file back" $?
printf '"ID"\n"1"\n' > "$work/lf.txt"
"$tool" encode "$work/lf.txt" "$work/lf.dat" && [ "$("$tool" decode "$work/lf.dat")" = $'"ID"\r\n"1"\r' ]
check "a plain file with bare line feeds is taken" $?

"$tool" decode "$work/missing.dat" >/dev/null 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "missing.dat" "$work/err"; check "an unreadable file is named" $?
printf 'GARBAGE\r\n' > "$work/bad.dat"
"$tool" decode "$work/bad.dat" >/dev/null 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "line 1" "$work/err"; check "a bad line is reported with its number" $?
"$tool" encode "$work/plain.txt" "$work/no/such/dir/out.dat" 2>/dev/null; [ $? -eq 1 ]; check "an unwritable output fails" $?
# Lines of any length that the tool writes it reads back; inputs too large to be tables are refused.
awk 'BEGIN { printf "\"ID\",\"Name\"\r\n\"1\",\""; for (i = 0; i < 20000; i++) printf "%0100d", i; printf "\"\r\n" }' >"$work/long.txt"
"$tool" encode "$work/long.txt" "$work/long.dat" && cmp -s <("$tool" decode "$work/long.dat") "$work/long.txt"
check "a 2 MB line comes back unchanged" $?
truncate -s 65M "$work/huge.dat"
for command in "encode $work/huge.dat $work/huge.out" "decode $work/huge.dat"; do
    "$tool" $command >/dev/null 2>"$work/err"; rc=$?
    [ $rc -eq 1 ] && grep -q "huge.dat.*larger than 64 MiB" "$work/err" && [ ! -e "$work/huge.out" ]
    check "${command%% *} refuses a file over 64 MiB by name" $?
done

# A full disk leaves no partial file: an older output stays whole and no temporary file is left.
ln -s /dev/full "$work/full.dat"
"$tool" encode "$work/plain.txt" "$work/full.dat" 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "full.dat.*No space left on device" "$work/err"; check "encode onto a full device fails" $?
"$tool" decode "$work/table.dat" >/dev/full 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "No space left" "$work/err"; check "decode onto a full device fails" $?
mkdir "$work/disk" && echo "older table" >"$work/disk/out.dat"
(ulimit -f 64; trap '' XFSZ; "$tool" encode "$work/long.txt" "$work/disk/out.dat" 2>"$work/err"); rc=$?
[ $rc -eq 1 ] && [ "$(cat "$work/disk/out.dat")" = "older table" ] && [ "$(ls "$work/disk")" = "out.dat" ]
check "a write that runs out of room keeps the older output whole" $?

"$tool" frobnicate 2>/dev/null; [ $? -eq 2 ]; check "an unknown command is a usage error" $?

finish
