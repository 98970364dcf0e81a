#!/usr/bin/env bash
# Checks the example program "codec", whose path is the first argument: against the system's tools, on a file of some megabytes.
set -euo pipefail
export LC_ALL=C

codec="$1"
[[ -x "$codec" ]] || { echo "no program: $codec" >&2; exit 1; }
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
cd "$folder"
failures=0

failed()
{
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# has TOOL: whether it is there; tells if not.
has()
{
    command -v "$1" > /dev/null || { echo "skipped: no $1"; return 1; }
}

# same FILE ARGUMENT...: codec succeeds, and writes what FILE has.
same()
{
    local expected="$1" code=0
    shift
    "$codec" "$@" > out 2> err || code=$?
    if [[ $code == 1 && ! -s err && -e "$codec.exe" ]]; then
        # Wine ends a program now and then before it has begun; codec never fails without a word.
        echo "once more: codec $*"
        code=0
        "$codec" "$@" > out 2> err || code=$?
    fi
    [[ $code == 0 ]] || failed "codec $*: exit code $code: $(cat err)"
    cmp "$expected" out >&2 || failed "codec $*"
}

# refuses CODE TEXT ARGUMENT...: codec ends with CODE, and tells TEXT on standard error.
refuses()
{
    local expected="$1" text="$2" code=0
    shift 2
    "$codec" "$@" > out 2> err || code=$?
    [[ $code == "$expected" ]] || failed "codec $*: exit code $code instead of $expected"
    grep -qF -- "$text" err || failed "codec $*: '$text' is not in: $(cat err)"
}

# Text and random bytes: whole blocks of a cipher, and a file that is none. A block that is full ends the third.
cat /usr/include/*.h > text
{ head -c 3000000 text; head -c 1500000 /dev/urandom; } > some
size=$(($(stat -c %s some) / 48 * 48))
head -c "$size" some > whole
{ cat whole; printf 'rest!'; } > odd
head -c 131072 odd > blocks
: > empty

for file in whole odd blocks empty; do
    md5sum $file odd > expected && same expected digest md5 $file odd
    sha1sum $file > expected && same expected digest sha1 $file
    base64 -w 0 $file > expected && echo >> expected && same expected base64 $file
    same $file base64 --decode expected
    base64 $file > wrapped && same $file base64 --decode wrapped
    od -An -v -tx1 $file | tr -d ' \n' | tr a-f A-F > expected && echo >> expected && same expected base16 $file
    same $file base16 --decode expected
    # the last 8 bytes of gzip's format: the CRC and the length, least significant byte first
    echo "$(gzip -c $file | tail -c 8 | od -An -N4 -tx4 --endian=little | tr -d ' ')  $file" > expected
    same expected checksum crc32 $file
done
printf 123456789 > digits
echo 'bb3d  -' > expected && same expected checksum crc16 < digits
# Over all the blocks: a message with its own check at the end, least significant byte first, has the check 0.
check="$("$codec" checksum crc16 odd)"
{ cat odd; printf '%b' "\\x${check:2:2}\\x${check:0:2}"; } > checked
echo '0000  checked' > expected && same expected checksum crc16 checked

key=00112233445566778899aabbccddeeff0f1e2d3c4b5a69788796a5b4c3d2e1f0
iv=f0e1d2c3b4a5968778695a4b3c2d1eff
for cipher in aes-{128,192,256}-{ecb,cbc,cfb8,cfb128,ctr} des{,-ede,-ede3}{,-cbc}; do
    case $cipher in
        aes-*) digits=$((${cipher:4:3} / 4)) vector=$iv ;;
        des-ede3*) digits=48 vector=${iv:0:16} ;;
        des-ede*) digits=32 vector=${iv:0:16} ;;
        *) digits=16 vector=${iv:0:16} ;;
    esac
    arguments=(--key "${key:0:digits}" --iv "$vector")
    [[ ! $cipher =~ (ecb|des|ede3?)$ ]] || arguments=(--key "${key:0:digits}")
    file=whole
    [[ $cipher != *-c[ft]* ]] || file=odd
    "$codec" encrypt --cipher "$cipher" "${arguments[@]}" --output secret $file || failed "$cipher: exit code $?"
    same $file decrypt --cipher "$cipher" "${arguments[@]}" secret
    [[ $file == odd ]] || refuses 1 'the last 5 bytes' encrypt --cipher "$cipher" "${arguments[@]}" odd
    name=${cipher/cfb128/cfb}
    [[ $name != des ]] || name=des-ecb
    legacy=() iv_arguments=()
    [[ -z "${arguments[2]:-}" ]] || iv_arguments=(-iv "$vector")
    [[ $name != des-ecb && $name != des-cbc ]] || legacy=(-provider legacy -provider default)
    if ! has openssl || ! openssl enc "-$name" "${legacy[@]}" -nopad -K "${key:0:digits}" "${iv_arguments[@]}" -in $file -out expected 2> err; then
        echo "skipped: openssl with $name: $(head -n 1 err)"
    else
        cmp expected secret >&2 || failed "$cipher differs"
    fi
done

# Characters of one to three bytes, so that each place of a character comes to lie at the end of a block.
perl -CO -e 'print map { chr(0x4E00 + $_ % 20000), "x" x ($_ % 3), "\x{416}" } 1 .. 100000' > chinese
perl -CO -e 'print map { chr(0xC0 + $_ % 64), "\x{20AC}", "y" x ($_ % 3) } 1 .. 100000' > western
perl -e 'print map { chr(0x20 + $_ % 0x5F) } 1 .. 200000' > ascii
if has iconv; then
    iconv -f utf-8 -t gbk chinese > expected && same expected convert --from utf-8 --to gbk chinese
    cp expected gbk && same chinese convert --from gbk --to utf-8 gbk
    iconv -f utf-8 -t cp1252 western > expected && same expected convert --from utf-8 --to cp1252 western
    cp expected latin && same western convert --from cp1252 --to utf-8 latin
    iconv -f utf-8 -t ucs-4le chinese > ucs4 && same chinese convert --from ucs-4 --to utf-8 ucs4
    for set in cp862 cp874 cp1250 cp1251 iso-8859-{1,2,3,4,5,7,8,9,10,13,14,15,16}; do
        { cat ascii; perl -e 'print map { chr } 0xC0 .. 0xFF' | iconv -c -f "$set" -t utf-8 | iconv -f utf-8 -t "$set"; } > bytes
        iconv -f "$set" -t utf-8 bytes > expected && same expected convert --from "$set" --to utf-8 bytes
    done
fi
printf '0\xc7' > bytes && printf '\xd9\xa0\xd8\xa7' > expected && same expected convert --from iso-8859-6 --to utf-8 bytes

printf 'a\xe4\xb8' > torn && refuses 1 'the last 2 bytes' convert --from utf-8 --to gbk torn
printf 'a\xc3\xa9' > accent && refuses 1 'offset 1' convert --from utf-8 --to gbk accent
printf 'ab\x81' > undefined && refuses 1 'offset 2' convert --from cp1252 --to utf-8 undefined
printf '\xf0\x9f\x98\x80' > beyond && refuses 1 'offset 0' convert --from utf-8 --to gbk beyond
printf 'Zg==Zg==' > text && refuses 1 'no base64' base64 --decode text
printf '0g' > text && refuses 1 'no base16' base16 --decode text
refuses 1 'missing' digest md5 missing
refuses 1 'no regular file' digest md5 .
[[ ! -w /dev/full ]] || refuses 1 'cannot be written' base16 --output /dev/full digits

refuses 2 'subcommand'
refuses 2 'sha2' digest sha2
refuses 2 '--iv' encrypt --cipher aes-128-cbc --key ${key:0:32} odd
refuses 2 '--key' encrypt --cipher des --key 0011223344556g77 odd
refuses 2 'one of the two' convert --from gbk --to cp1252 odd
refuses 2 'that is the input' base16 --output ./odd odd
[[ $(stat -c %s odd) == $((size + 5)) ]] || failed "the input is overwritten"
[[ "$("$codec" encrypt --help)" == *aes-256-ctr* ]] || failed "--help"

((failures == 0)) || { echo "codec: $failures checks failed" >&2; exit 1; }
echo "codec: all checks passed"
