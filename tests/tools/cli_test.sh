#!/usr/bin/env bash
# Shell-level checks of the kestrelink tool: demo pictures, exact raw
# conversions of a hand-made frame, PNG headers, and refusals of bad requests.
set -euo pipefail

tool=$(realpath -e "${1:?usage: cli_test.sh PATH-TO-kestrelink}")  # absolute: some checks change folder
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "FAIL: $*" >&2
  failures=$((failures + 1))
}

# The bytes of a file as lower-case hex pairs separated by single spaces.
hex() { od -An -v -tx1 "$1" | tr -s ' \n' '  ' | sed 's/^ //; s/ $//'; }

# Bytes from offset $2, $3 long, of file $1, as hex pairs.
hex_at() { od -An -v -tx1 -j "$2" -N "$3" "$1" | tr -s ' \n' '  ' | sed 's/^ //; s/ $//'; }

# The pixel bytes of an 8- or 16-bit grey or RGB PNG, inflated and unfiltered, as hex pairs.
png_bytes() {
  python3 - "$1" <<'PYTHON'
import struct, sys, zlib
data = open(sys.argv[1], "rb").read()
pos, idat, ihdr = 8, b"", None
while pos + 8 <= len(data):
    length, kind = struct.unpack(">I4s", data[pos:pos + 8])
    body = data[pos + 8:pos + 8 + length]
    if kind == b"IHDR":
        ihdr = struct.unpack(">IIBB", body[:10])
    elif kind == b"IDAT":
        idat += body
    pos += 12 + length
width, height, depth, colour = ihdr
bpp = (3 if colour == 2 else 1) * depth // 8
stride = width * bpp
raw, out, prev = zlib.decompress(idat), bytearray(), bytearray(stride)
for y in range(height):
    start = y * (stride + 1)
    kind, row = raw[start], bytearray(raw[start + 1:start + 1 + stride])
    for i in range(stride):
        a = row[i - bpp] if i >= bpp else 0
        b = prev[i]
        c = prev[i - bpp] if i >= bpp else 0
        if kind == 1:
            row[i] = (row[i] + a) & 255
        elif kind == 2:
            row[i] = (row[i] + b) & 255
        elif kind == 3:
            row[i] = (row[i] + (a + b) // 2) & 255
        elif kind == 4:
            p = a + b - c
            pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
            row[i] = (row[i] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
    out += row
    prev = row
print(" ".join(f"{v:02x}" for v in out))
PYTHON
}

expect_png_bytes() {  # name file expected-hex
  [[ -f $2 ]] || { fail "$1: $2 was not written"; return; }
  local got
  got=$(png_bytes "$2")
  [[ $got == "$3" ]] || fail "$1: pixels '$got', want '$3'"
}

expect_bytes() {  # name file expected-hex
  [[ -f $2 ]] || { fail "$1: $2 was not written"; return; }
  local got
  got=$(hex "$2")
  [[ $got == "$3" ]] || fail "$1: got '$got', want '$3'"
}

# A PNG's signature and, from its IHDR chunk, width, height, bit depth and colour type.
expect_png() {  # file width height bit-depth colour-type
  local file=$1
  [[ -f $file ]] || { fail "$file was not written"; return; }
  [[ $(hex_at "$file" 0 8) == "89 50 4e 47 0d 0a 1a 0a" ]] || fail "$file: no PNG signature"
  [[ $(hex_at "$file" 12 4) == "49 48 44 52" ]] || fail "$file: first chunk is not IHDR"
  local want
  want=$(printf '%08x%08x%02x%02x' "$2" "$3" "$4" "$5" | sed 's/../& /g; s/ $//')
  [[ $(hex_at "$file" 16 10) == "$want" ]] || fail "$file: IHDR $(hex_at "$file" 16 10), want $want"
}

# Runs the tool expecting exit status $1 and exactly one line on standard
# error that holds $2; nothing may go to standard output.
expect_refusal() {  # status fragment args...
  local want=$1 fragment=$2 status=0
  shift 2
  "$tool" "$@" >"$work/stdout" 2>"$work/stderr" || status=$?
  local lines
  lines=$(wc -l <"$work/stderr")
  [[ $status == "$want" ]] || fail "'$*': exit $status, want $want"
  [[ $lines == 1 ]] || fail "'$*': $lines lines on stderr, want 1: $(cat "$work/stderr")"
  grep -qF -- "$fragment" "$work/stderr" || fail "'$*': stderr lacks '$fragment': $(cat "$work/stderr")"
  [[ ! -s $work/stdout ]] || fail "'$*': wrote to stdout"
}

# --- demo ---------------------------------------------------------------
(cd "$work" && "$tool" demo --size 64x48 >"$work/demo.txt") || fail "demo exited non-zero"
demo_dir=$(cd "$work" && pwd -P)/kestrelink-demo
grep -qxF "$demo_dir" "$work/demo.txt" || fail "demo did not print its folder $demo_dir: $(head -1 "$work/demo.txt")"
grep -q "^wavelet round trip .* bytes, largest difference [0-9]" "$work/demo.txt" || fail "demo printed no wavelet round trip"
grep -q "^jpeg round trip .* bytes -> [0-9]* bytes, PSNR [0-9.]* dB" "$work/demo.txt" || fail "demo printed no JPEG round trip"
[[ $(hex_at "$work/kestrelink-demo/19-scene.jpg" 0 2) == "ff d8" ]] || fail "demo wrote no JPEG of its scene"
expect_png "$demo_dir/01-scene-mono16.png" 64 48 16 0
expect_png "$demo_dir/02-mono8.png" 64 48 8 0
expect_png "$demo_dir/03-bgrx.png" 64 48 8 2
expect_png "$demo_dir/04-bgr-flipped.png" 64 48 8 2
expect_png "$demo_dir/08-pseudo2-heat.png" 64 48 8 2
for file in "$demo_dir"/*.png; do
  grep -qF "$(basename "$file")" "$work/demo.txt" || fail "demo did not list $(basename "$file")"
done
(( $(ls "$demo_dir"/*.png | wc -l) >= 11 )) || fail "demo wrote fewer than 11 pictures"
"$tool" demo --out "$work/other/nested" --size 5x3 >/dev/null || fail "demo --out into a new nested folder"
cmp -s "$demo_dir/02-mono8.png" <(cd "$work" && "$tool" demo --size 64x48 --out again >/dev/null && cat again/02-mono8.png) ||
  fail "demo is not the same from run to run"

# --- exact raw conversions ---------------------------------------------
# A 4x2 mono16 frame at depth 12, little-endian words:
#   row 0: 0x000 0x0ff 0x800 0xfff     row 1: 0x010 0x123 0xabc 0x7f0
printf '\x00\x00\xff\x00\x00\x08\xff\x0f\x10\x00\x23\x01\xbc\x0a\xf0\x07' >"$work/in16.raw"
row0_8="00 0f 80 ff"  # each sample >> 4
row1_8="01 12 ab 7f"
# Converts into $work/out.raw (removed first) and compares the bytes written.
expect_conversion() {  # name expected-hex convert-arguments-before-OUT...
  local name=$1 want=$2
  shift 2
  rm -f "$work/out.raw"
  "$tool" convert "$@" "$work/out.raw" || { fail "$name: exit $?"; return; }
  expect_bytes "$name" "$work/out.raw" "$want"
}
m16=(--from mono16 --depth 12 --size 4x2)

expect_conversion "mono16 -> mono8" "$row0_8 $row1_8" "${m16[@]}" --to mono8 "$work/in16.raw"
expect_conversion "mono16 -> mono8, flipped" "$row1_8 $row0_8" "${m16[@]}" --to mono8 --flip "$work/in16.raw"
# Left-justified: sample << 4, still little-endian.
expect_conversion "mono16 -> mono16msb" "00 00 f0 0f 00 80 f0 ff 00 01 30 12 c0 ab 00 7f" \
  "${m16[@]}" --to Mono16MSB "$work/in16.raw"
expect_conversion "mono16 -> mono16" "$(hex "$work/in16.raw")" "${m16[@]}" --to mono16 "$work/in16.raw"
# Grey BGRx repeats the narrowed sample in B, G and R, fourth byte 0; depth 12 by default.
printf '\x00\x08\xff\x0f' >"$work/in16-2x1.raw"
expect_conversion "mono16 -> bgrx" "80 80 80 00 ff ff ff 00" --from mono16 --to BGRx --size 2x1 "$work/in16-2x1.raw"
expect_conversion "mono16 at depth 10 -> mono8" "00 ff" --from mono16 --depth 10 --to mono8 --size 2x1 \
  "$work/in16-2x1.raw"  # 0x800 >> 2 and 0xfff >> 2 keep their low byte: the library narrows by shifting alone
printf '\x12\xab' >"$work/in8.raw"
expect_conversion "mono8 -> bgr24" "12 12 12 ab ab ab" --from mono8 --to bgr --size 2x1 "$work/in8.raw"
expect_conversion "mono8 -> mono16msb" "00 12 00 ab" --from MONO8 --to mono16msb --size 2x1 "$work/in8.raw"
# A longer file: the first frame is used.
cat "$work/in16.raw" "$work/in16.raw" >"$work/two-frames.raw"
expect_conversion "first of two frames" "$row0_8 $row1_8" "${m16[@]}" --to mono8 "$work/two-frames.raw"
# Negative pseudo-colour: entry 0 is black, entry v above 0 is 256 - v, in every channel.
expect_conversion "mono8 -> bgr24, negative" "ee ee ee 55 55 55" --from mono8 --to bgr24 --size 2x1 --pseudo 4 \
  "$work/in8.raw"

# --- colour-map settings ---------------------------------------------------
# A LUT entry gives the output value of one source sample; other samples convert as usual.
printf '291, 200, 0, 0\n# a comment line\n255, 100, 7, 9\n' >"$work/table.lut"
expect_conversion "mono16 -> mono8 through a LUT" "00 64 80 ff 01 c8 ab 7f" "${m16[@]}" --to mono8 \
  --lut "$work/table.lut" "$work/in16.raw"
expect_conversion "mono16 -> bgr24 through a LUT" "00 00 00 64 07 09 80 80 80 ff ff ff 01 01 01 c8 00 00 ab ab ab 7f 7f 7f" \
  "${m16[@]}" --to bgr24 --lut "$work/table.lut" "$work/in16.raw"
# Clip level 1 on 12-bit samples spreads 0..511 over the byte: min(255, s >> 1).
expect_conversion "mono16 -> mono8, clip level 1" "00 7f ff ff 08 91 ff ff" "${m16[@]}" --to mono8 --clip 1 \
  "$work/in16.raw"
# ASC: 255 * min(1, (v / 255 * gain + offset) ^ gamma), truncated.
asc_byte() { awk -v v="$1" 'BEGIN { x = v / 255 * 1.5; y = x ^ 0.6; if (y > 1) y = 1; printf "%02x", int(255 * y) }'; }
expect_conversion "mono8 -> mono8, ASC curve" "$(asc_byte 18) $(asc_byte 171)" --from mono8 --to mono8 --size=2x1 \
  --asc 1.5,0,0.6 "$work/in8.raw"

# --- PNG output ----------------------------------------------------------
for case in "mono16 out16.png 16 0" "bgrx outx.PNG 8 2" "bgr24 out24.png 8 2" "mono8 out8.png 8 0"; do
  read -r layout file depth colour <<<"$case"
  "$tool" convert "${m16[@]}" --to "$layout" "$work/in16.raw" "$work/$file" || fail "PNG $layout: exit $?"
  expect_png "$work/$file" 4 2 "$depth" "$colour"
done

# PNG samples are big-endian; mono16 moves a d-bit sample to the top of the word.
expect_png_bytes "mono16 PNG" "$work/out16.png" "00 00 0f f0 80 00 ff f0 01 00 12 30 ab c0 7f 00"
expect_png_bytes "mono8 PNG" "$work/out8.png" "$row0_8 $row1_8"
# Heat (pseudo-colour 2) puts 3v - 2 in red for small v, so a PNG shows the
# channel order: BGRx and BGR both come out R, G, B.
printf '\x12\x20' >"$work/in8-dark.raw"
expect_conversion "mono8 -> bgrx, heat" "00 00 34 00 00 00 5e 00" --from mono8 --to bgrx --pseudo 2 --size 2x1 \
  "$work/in8-dark.raw"
for layout in bgrx bgr24; do
  "$tool" convert --from mono8 --to $layout --pseudo 2 --size 2x1 "$work/in8-dark.raw" "$work/heat.png" ||
    fail "heat PNG from $layout: exit $?"
  expect_png_bytes "heat PNG from $layout" "$work/heat.png" "34 00 00 5e 00 00"
done
# Heat with blue and red exchanged (pseudo-colour 3) and --flip together.
"$tool" convert --from mono8 --to bgr --pseudo 3 --flip --size 1x2 "$work/in8-dark.raw" "$work/heat.png" ||
  fail "flipped heat PNG: exit $?"
expect_png_bytes "flipped heat PNG, blue and red exchanged" "$work/heat.png" "00 00 5e 00 00 34"

# --- packed and swapped mono sources ----------------------------------------
# Two pixels in three bytes, a 12-bit slot each, low pixel first: 34 12 ab hold 0x234 and 0xab1.
printf '\x34\x12\xab' >"$work/pair.raw"
expect_conversion "mono12p -> mono16" "34 02 b1 0a" --from mono12p --to mono16 --size 2x1 "$work/pair.raw"
expect_conversion "mono12p -> mono8" "23 ab" --from mono12p --to mono8 --size 2x1 "$work/pair.raw"
# 8448: 8 high bits, 4 low bits, 4 low bits, 8 high bits.
printf '\xab\x21\xcd' >"$work/pair8448.raw"
expect_conversion "mono12p8448 -> mono16" "b1 0a d2 0c" --from Mono16PixelPacked8448 --to mono16 --size 2x1 \
  "$work/pair8448.raw"
# --packed-bits 16 starts row 1 of a 2x2 frame at byte (1 * 2 * 16) / 8 = 4.
printf '\x34\x12\xab\x00\x56\x34\xcd' >"$work/pair-rows.raw"
expect_conversion "mono12p, --packed-bits 16" "34 02 b1 0a 56 04 d3 0c" --from mono12p --packed-bits 16 --to mono16 \
  --size 2x2 "$work/pair-rows.raw"
# PCO: pixels 0x123 0x456 0x789 0xabc 0xdef 0x012 0x345 0x678, most significant bit first in
# little-endian words. To mono16 a group writes nine values, the third p2 & 0xff0; the frame keeps
# the first eight, the ninth lands past it.
printf '\x34\x12\x78\x56\xbc\x9a\xf0\xde\x34\x12\x78\x56' >"$work/pco.raw"
expect_conversion "mono12pco -> mono16" "23 01 56 04 80 07 89 07 bc 0a ef 0d 12 00 40 03" --from mono12pco \
  --to mono16 --size 8x1 "$work/pco.raw"
expect_conversion "mono12pco -> mono8" "12 45 78 ab de 01 34 67" --from mono12pco --to mono8 --size 8x1 "$work/pco.raw"
# mono16msbswap: byte 0 holds the high byte; 0xabcd at depth 12 is 0xabc.
printf '\xab\xcd' >"$work/swap.raw"
expect_conversion "mono16msbswap -> mono16" "bc 0a" --from mono16msbswap --to mono16 --size 1x1 "$work/swap.raw"
# 8448 to BGR24 through the colour map: the library spaces rows 4 bytes a pixel apart, the tool
# packs them again. Negative map at 12 bits: 4096 - v, narrowed by 4.
expect_conversion "mono12p8448 -> bgr24, negative" "cb cb cb 87 87 87 a9 a9 a9 65 65 65" --from mono12p8448 \
  --to bgr24 --pseudo 4 --size 2x2 "$work/pco.raw"

# --- packed and planar colour sources --------------------------------------
# A 2x1 BGR24 frame: B, G, R of two pixels.
printf '\x01\x02\x03\x04\x05\x06' >"$work/bgr.raw"
expect_conversion "bgr24 -> rgb24" "03 02 01 06 05 04" --from bgr24 --to rgb24 --size 2x1 "$work/bgr.raw"
expect_conversion "bgr24 -> bgr48, each byte to the high byte" "00 01 00 02 00 03 00 04 00 05 00 06" \
  --from bgr24 --to bgr48 --size 2x1 "$work/bgr.raw"
expect_conversion "bgr24 -> bgr24p, planes B, G, R" "01 04 02 05 03 06" --from bgr24 --to BGR24P --size 2x1 "$work/bgr.raw"
# Planar sources are read plane after plane. To BGR24 the first plane lands in
# byte 0; to BGRx it is red, in byte 2, and the fourth byte is 0.
printf '\x0a\x0b\x14\x15\x1e\x1f' >"$work/planes.raw"
expect_conversion "bgr24p -> bgr24" "0a 14 1e 0b 15 1f" --from bgr24p --to bgr24 --size 2x1 "$work/planes.raw"
expect_conversion "bgr24p -> bgrx" "1e 14 0a 00 1f 15 0b 00" --from bgr24p --to bgrx --size 2x1 "$work/planes.raw"
# 5-6-5 white: each channel at the top of its byte, the low bits 0.
printf '\xff\xff' >"$work/white565.raw"
expect_conversion "bgr565 -> bgr24" "f8 fc f8" --from BGR565Packed --to bgr24 --size 1x1 "$work/white565.raw"
# 16-bit colour at depth 12: words 0xfff, 0x123, 0x010, each >> 4 and cut to a byte.
printf '\xff\x0f\x23\x01\x10\x00' >"$work/bgr48.raw"
expect_conversion "bgr48 -> bgr24" "ff 12 01" --from bgr48 --depth 12 --to bgr24 --size 1x1 "$work/bgr48.raw"
"$tool" convert --from bgr48 --depth 12 --to bgr48 --size 1x1 "$work/bgr48.raw" "$work/bgr48.png" || fail "bgr48 PNG: exit $?"
expect_png "$work/bgr48.png" 1 1 16 2
expect_png_bytes "bgr48 PNG, R, G, B moved to the top of 16 bits" "$work/bgr48.png" "01 00 12 30 ff f0"
expect_refusal 2 "no conversion from bgr555 to bgr48" convert --from bgr555 --to bgr48 --size 1x1 "$work/white565.raw" \
  "$work/x.raw"
expect_refusal 2 "--depth" convert --from bgr565 --depth 12 --to bgr24 --size 1x1 "$work/white565.raw" "$work/x.raw"

# --- the YUV family ---------------------------------------------------------
# Grey YUV422 (Y 100, U = V = 128): studio range gives 98 on the plain path,
# the integer formula 100, 101, 100 through the colour map (identity LUT).
printf '\x64\x80\x64\x80' >"$work/grey422.raw"
expect_conversion "yuv422 -> bgr24" "62 62 62 62 62 62" --from yuv422 --to bgr24 --size 2x1 "$work/grey422.raw"
printf '0,0,0,0,\n' >"$work/one.lut"
expect_conversion "yuv422 -> bgr24, colour map" "64 65 64 64 65 64" --from yuv422 --to bgr24 --lut "$work/one.lut" \
  --size 2x1 "$work/grey422.raw"
# A pure red 2x2 BGR24 frame to planar 4:2:0: Y 81 each, U 90, V 240.
printf '\x00\x00\xff\x00\x00\xff\x00\x00\xff\x00\x00\xff' >"$work/red.raw"
expect_conversion "bgr24 -> yuv420p" "51 51 51 51 5a f0" --from bgr24 --to yuv420p --size 2x2 "$work/red.raw"

# --- refusals ------------------------------------------------------------
expect_refusal 2 "--depth for mono12p sources is 10 or 12" convert --from mono12p --depth 14 --to mono16 --size 2x1 \
  "$work/pair.raw" "$work/x.raw"
expect_refusal 2 "--packed-bits applies to packed sources" convert --from mono16 --packed-bits 12 --to mono8 \
  --size 4x2 "$work/in16.raw" "$work/x.raw"
expect_refusal 1 "a 4x2 mono12p frame needs 12" convert --from mono12p --to mono16 --size 4x2 "$work/pair.raw" \
  "$work/x.raw"
expect_refusal 2 "--size" convert --from mono16 --to mono8 --size 4x0 "$work/in16.raw" "$work/x.raw"
expect_refusal 2 "--size" convert --from mono16 --to mono8 --size four "$work/in16.raw" "$work/x.raw"
expect_refusal 2 "--size" convert --from mono16 --to mono8 --size 70000x1 "$work/in16.raw" "$work/x.raw"
expect_refusal 2 "pixels" convert --from mono16 --to mono8 --size 65536x65536 "$work/in16.raw" "$work/x.raw"
expect_refusal 2 "--size" convert --from mono16 --to mono8 "$work/in16.raw" "$work/x.raw"
head -c 10 "$work/in16.raw" >"$work/short.raw"
expect_refusal 1 "holds 10 bytes; a 4x2 mono16 frame needs 16" \
  convert --from mono16 --to mono8 --size 4x2 "$work/short.raw" "$work/x.raw"
[[ ! -e $work/x.raw ]] || fail "a refused conversion left an output file"
expect_refusal 2 "known layouts: mono8, mono16" convert --from mono16 --to cmyk32 --size 4x2 "$work/in16.raw" "$work/x.raw"
expect_refusal 2 "no conversion from mono8 to mono16" convert --from mono8 --to mono16 --size 2x1 "$work/in8.raw" "$work/x.raw"
expect_refusal 2 "unknown option '--speed'" convert --speed 3 --from mono8 --to mono8 --size 2x1 "$work/in8.raw" "$work/x.raw"
expect_refusal 2 "IN and OUT" convert --from mono8 --to mono8 --size 2x1 "$work/in8.raw"
expect_refusal 2 "needs a value" convert --from mono8 --to mono8 --size
expect_refusal 2 "--depth" convert --from mono16 --depth 17 --to mono8 --size 4x2 "$work/in16.raw" "$work/x.raw"
expect_refusal 2 "--pseudo" convert --from mono8 --pseudo 9 --to bgrx --size 2x1 "$work/in8.raw" "$work/x.raw"
expect_refusal 2 "--asc" convert --from mono8 --asc 1,2 --to bgrx --size 2x1 "$work/in8.raw" "$work/x.raw"
expect_refusal 1 "cannot write" convert --from mono8 --to mono8 --size 2x1 "$work/in8.raw" "$work/no/such/dir/x.raw"
expect_refusal 1 "cannot write" convert --from mono8 --to mono8 --size 2x1 "$work/in8.raw" "$work/no/such/dir/x.png"
expect_refusal 1 "cannot open" convert --from mono8 --to mono8 --size 2x1 "$work/missing.raw" "$work/x.raw"
expect_refusal 1 "LUT" convert --from mono8 --lut "$work/missing.lut" --to bgrx --size 2x1 "$work/in8.raw" "$work/x.raw"
expect_refusal 2 "unknown command" frobnicate

# --- lossless compress and decompress --------------------------------------
# The stream as the library writes it: total (itself included), then the
# payload; RLE codes "aab" as a a 0 b.
printf 'aab' >"$work/aab.raw"
"$tool" compress --method rle "$work/aab.raw" "$work/aab.rle" >/dev/null || fail "compress rle: exit $?"
expect_bytes "rle stream of aab" "$work/aab.rle" "08 00 00 00 61 61 00 62"
# Every method gives the file back, byte for byte.
cat "$demo_dir/01-scene-mono16.png" "$work/in16.raw" "$work/two-frames.raw" >"$work/mixed.bin"
mixed_bytes=$(wc -c <"$work/mixed.bin")
for method in huffman lzss rle; do
  "$tool" compress --method "$method" "$work/mixed.bin" "$work/mixed.$method" >"$work/compress.txt" ||
    fail "compress $method: exit $?"
  grep -q "bytes ($method, ratio" "$work/compress.txt" || fail "compress $method printed no sizes"
  "$tool" decompress --method "$method" --bytes "$mixed_bytes" "$work/mixed.$method" "$work/mixed.back" ||
    fail "decompress $method: exit $?"
  cmp -s "$work/mixed.bin" "$work/mixed.back" || fail "compress and decompress $method do not round-trip"
done
expect_refusal 2 "missing --bytes" decompress --method rle "$work/aab.rle" "$work/x.raw"
expect_refusal 2 "unknown method 'zip'" compress --method zip "$work/aab.raw" "$work/x.rle"
expect_refusal 1 "decodes to 3 bytes, not the 4" decompress --method rle --bytes 4 "$work/aab.rle" "$work/x.raw"
expect_refusal 1 "is no stream" decompress --method rle --bytes 3 "$work/aab.raw" "$work/x.raw"
[[ ! -e $work/x.raw ]] || fail "a refused decompress left an output file"

# --- help ----------------------------------------------------------------
# grep reads the whole help: one that quits at the first match would leave a
# long help's writer to die of SIGPIPE, which pipefail reports.
"$tool" --help | grep "usage" >/dev/null || fail "--help printed no usage"
"$tool" help convert | grep -- "--from LAYOUT" >/dev/null || fail "help convert lacks --from"
"$tool" convert --help | grep "example" >/dev/null || fail "convert --help has no example"
"$tool" convert --help | grep -- "--packed-bits N" >/dev/null || fail "convert --help lacks --packed-bits"
status=0
"$tool" >/dev/null 2>&1 || status=$?
[[ $status == 2 ]] || fail "no arguments: exit $status, want 2"

# --- h264 round trip ------------------------------------------------------
# Five 64x48 planar 4:2:0 frames: a ramp that moves a pixel a frame, flat chroma.
python3 - "$work/in.yuv" <<'PYTHON'
import sys
w, h = 64, 48
with open(sys.argv[1], "wb") as f:
    for t in range(5):
        f.write(bytes(16 + (x * 3 + y + t) % 200 for y in range(h) for x in range(w)))
        f.write(bytes([110]) * (w * h // 4) + bytes([140]) * (w * h // 4))
PYTHON
"$tool" h264 encode --size 64x48 --gop 4 "$work/in.yuv" "$work/clip.records" >"$work/h264.txt" ||
  fail "h264 encode exited non-zero"
grep -q "^5 frames" "$work/h264.txt" || fail "h264 encode did not report 5 frames: $(cat "$work/h264.txt")"
# The first record is a key frame: GOP field 4, count 0, a start code and a sequence parameter set.
[[ $(hex_at "$work/clip.records" 4 9) == "04 00 00 00 00 00 00 01 67" ]] ||
  fail "h264 encode: first record header $(hex_at "$work/clip.records" 0 13)"
"$tool" h264 decode --size 64x48 "$work/clip.records" "$work/frames" >/dev/null || fail "h264 decode into a folder"
for n in 1 5; do expect_png "$work/frames/frame-0000$n.png" 64 48 8 2; done
"$tool" h264 decode --size 64x48 "$work/clip.records" "$work/clip.bgr" >/dev/null || fail "h264 decode into .bgr"
[[ $(stat -c %s "$work/clip.bgr") == $((5 * 64 * 48 * 3)) ]] || fail "h264 decode: .bgr holds $(stat -c %s "$work/clip.bgr") bytes"
status=0
"$tool" h264 decode "$work/clip.records" "$work/frames" >/dev/null 2>&1 || status=$?
[[ $status == 2 ]] || fail "h264 decode without --size: exit $status, want 2"
status=0
"$tool" h264 encode --size 64x48 "$work/in16.raw" "$work/x.records" >/dev/null 2>&1 || status=$?
[[ $status == 1 ]] || fail "h264 encode of a partial frame: exit $status, want 1"

# --- wavelet encode and decode ----------------------------------------------
# A black 40x40 frame is four empty blocks: two bytes each (FF D0) behind their
# lengths, after the 20-byte total.
head -c 1600 /dev/zero >"$work/black.raw"
"$tool" wavelet encode --size 40x40 "$work/black.raw" "$work/black.wvl" >/dev/null || fail "wavelet encode: exit $?"
expect_bytes "wavelet frame of a black 40x40 frame" "$work/black.wvl" \
  "14 00 00 00 02 00 ff d0 02 00 ff d0 02 00 ff d0 02 00 ff d0"
# A 12-bit ramp comes back within a few grey levels, as encode reports.
python3 - "$work/ramp12.raw" <<'PYTHON'
import sys
w, h = 72, 50
with open(sys.argv[1], "wb") as f:
    f.write(b"".join(((x * 40 + y * 17) % 4096).to_bytes(2, "little") for y in range(h) for x in range(w)))
PYTHON
"$tool" wavelet encode --size 72x50 --bits 12 --levels 4 "$work/ramp12.raw" "$work/ramp12.wvl" >"$work/wavelet.txt" ||
  fail "wavelet encode 12 bits: exit $?"
grep -q "largest difference" "$work/wavelet.txt" || fail "wavelet encode printed no difference"
"$tool" wavelet decode --size 72x50 --bits 12 --levels 4 "$work/ramp12.wvl" "$work/ramp12.back" ||
  fail "wavelet decode: exit $?"
python3 - "$work/ramp12.raw" "$work/ramp12.back" "$(sed 's/.*largest difference \([0-9]*\).*/\1/' "$work/wavelet.txt")" <<'PYTHON' ||
import sys
a, b = open(sys.argv[1], "rb").read(), open(sys.argv[2], "rb").read()
worst = max(abs(int.from_bytes(a[i:i + 2], "little") - int.from_bytes(b[i:i + 2], "little")) for i in range(0, len(a), 2))
sys.exit(0 if len(a) == len(b) and worst == int(sys.argv[3]) and worst <= 20 else 1)
PYTHON
  fail "wavelet decode does not match what encode reported"
head -c 10 "$work/ramp12.wvl" >"$work/short.wvl"
expect_refusal 1 "too short" wavelet decode --size 72x50 --bits 12 "$work/short.wvl" "$work/x.raw"
expect_refusal 2 "missing --size" wavelet encode "$work/black.raw" "$work/x.wvl"

# --- j2k encode --------------------------------------------------------------
# A 1x1 grey frame of 128 is one zero coefficient: six packets, each only its
# "not empty" bit (80), the first with the code-block left out (bits 10).
printf '\x80' >"$work/grey1.raw"
"$tool" j2k encode --size 1x1 --record "$work/grey1.bin" "$work/grey1.raw" "$work/grey1.jp2" >"$work/j2k.txt" ||
  fail "j2k encode: exit $?"
expect_bytes "packet record of a 1x1 grey frame" "$work/grey1.bin" "06 00 00 00 80 80 80 80 80 80"
[[ $(hex_at "$work/grey1.jp2" 0 12) == "00 00 00 0c 6a 50 20 20 0d 0a 87 0a" ]] ||
  fail "j2k encode: the file does not start with the signature box"
[[ $(hex_at "$work/grey1.jp2" $(($(stat -c %s "$work/grey1.jp2") - 8)) 8) == "80 80 80 80 80 80 ff d9" ]] ||
  fail "j2k encode: the file does not end with the packets and EOC"
grep -q "grey1.jp2 .* bytes" "$work/j2k.txt" || fail "j2k encode printed no size"
head -c $((6 * 4 * 3)) /dev/urandom >"$work/planar.raw"
"$tool" j2k encode --layout planar --size 6x4 "$work/planar.raw" "$work/planar.jp2" >/dev/null ||
  fail "j2k encode planar: exit $?"
expect_refusal 2 "missing --size" j2k encode "$work/grey1.raw" "$work/x.jp2"
expect_refusal 2 "unknown --layout" j2k encode --layout yuv --size 1x1 "$work/grey1.raw" "$work/x.jp2"
expect_refusal 1 "" j2k encode --layout bgr24 --size 2x2 "$work/grey1.raw" "$work/x.jp2"
grep -qF "18-bgrx-lossless.jp2" "$work/demo.txt" || fail "demo did not list its JP2 file"
[[ -s "$demo_dir/18-bgrx-lossless.jp2" ]] || fail "demo wrote no JP2 file"

# --- demosaic -------------------------------------------------------------
# A 6x4 RGGB frame of one colour (red 200, green 100, blue 50) comes back as
# that colour at every pixel, blue first; a balance adds to red and blue
# (on 12-bit frames it acts on the narrowed 8-bit samples).
python3 - "$work/rggb.raw" "$work/rggb12.raw" <<'PYTHON'
import sys
site = lambda x, y: (200, 100, 50)[(y & 1) + (x & 1)]
open(sys.argv[1], "wb").write(bytes(site(x, y) for y in range(4) for x in range(6)))
open(sys.argv[2], "wb").write(b"".join((site(x, y) * 16).to_bytes(2, "little") for y in range(4) for x in range(6)))
PYTHON
"$tool" demosaic --pattern RGGB --size 6x4 "$work/rggb.raw" "$work/rggb.bgr" || fail "demosaic: exit $?"
expect_bytes "demosaic of one colour" "$work/rggb.bgr" "$(printf '32 64 c8 %.0s' {1..24} | sed 's/ $//')"
"$tool" demosaic --pattern RGGB --depth 12 --size 6x4 --balance 10,0,-20 "$work/rggb12.raw" "$work/rggb12.bgr" ||
  fail "demosaic --balance: exit $?"
expect_bytes "demosaic of 12 bits with a balance" "$work/rggb12.bgr" "$(printf '1e 64 d2 %.0s' {1..24} | sed 's/ $//')"
"$tool" demosaic --pattern BGGR --size 6x4 "$work/rggb.raw" "$work/bggr.bgr" || fail "demosaic BGGR: exit $?"
[[ $(hex_at "$work/bggr.bgr" 0 3) == "c8 64 32" ]] || fail "demosaic BGGR did not exchange red and blue"
printf '[0-256],1,2,3\n' >"$work/table.txt"
"$tool" demosaic --size 6x4 --lut "$work/table.txt" "$work/rggb.raw" "$work/lut.bgr" || fail "demosaic --lut: exit $?"
expect_bytes "demosaic through a table file" "$work/lut.bgr" "$(printf '03 02 01 %.0s' {1..24} | sed 's/ $//')"

# --- looks ----------------------------------------------------------------
# A 1D look of two entries (red, green, blue): (0.5, 0.25, 1.0) and (1.0, 0, 0.5).
# On 8-bit samples an entry is the sample shifted right by 7.
printf '<look><LUT1D><size>"2"</size><data>"0000003F 0000803E 0000803F\n0000803F 00000000 0000003F"</data></LUT1D></look>' \
  >"$work/curve.xml"
printf '\x0a\xc8\x82\xff\x00\x00' >"$work/bgr2x1.raw"
"$tool" look --layout bgr24 --size 2x1 --look "$work/curve.xml" "$work/bgr2x1.raw" "$work/curve.png" ||
  fail "look: exit $?"
expect_png_bytes "look, 1D table on bgr24" "$work/curve.png" "ff 00 ff 7f 3f 7f"
"$tool" demosaic --pattern RGGB --size 6x4 --look "$work/curve.xml" --look-alg 1d "$work/rggb.raw" "$work/look.bgr" ||
  fail "demosaic --look: exit $?"
expect_bytes "demosaic through a 1D look" "$work/look.bgr" "$(printf 'ff 3f ff %.0s' {1..24} | sed 's/ $//')"
expect_refusal 1 "has no 3D table" look --layout bgr24 --size 2x1 --look "$work/curve.xml" --alg exact \
  "$work/bgr2x1.raw" "$work/x.png"
expect_refusal 1 "cannot read the look file" look --layout bgr24 --size 2x1 --look "$work/rggb.raw" \
  "$work/bgr2x1.raw" "$work/x.png"
expect_refusal 2 "--alg wants" look --layout bgr24 --size 2x1 --look "$work/curve.xml" --alg cubic \
  "$work/bgr2x1.raw" "$work/x.png"
expect_refusal 2 "missing --look" look --layout bgrx --size 2x1 "$work/bgr2x1.raw" "$work/x.png"
expect_refusal 2 "--look-alg needs" demosaic --size 6x4 --look-alg exact "$work/rggb.raw" "$work/x.bgr"
grep -q "<size>\"32\"</size>" "$demo_dir/20-look-warm-contrast.xml" || fail "demo wrote no 32-node look file"
expect_png "$demo_dir/21-bayer-graded.png" 64 48 8 2
head -c $((8 * 4 * 6)) /dev/urandom >"$work/bgr48.raw"
"$tool" look --layout bgr48 --depth 16 --size 8x4 --look "$demo_dir/20-look-warm-contrast.xml" --alg table \
  "$work/bgr48.raw" "$work/graded48.png" || fail "look on bgr48: exit $?"
expect_png "$work/graded48.png" 8 4 16 2
"$tool" demosaic --depth 12 --size 64x48 --auto gray-gain "$demo_dir/13-bayer-rggb12.raw" "$work/bayer.png" ||
  fail "demosaic of the demo's Bayer frame: exit $?"
expect_png "$work/bayer.png" 64 48 8 2
expect_png "$demo_dir/14-bayer-demosaic.png" 64 48 8 2
expect_refusal 2 "--auto wants" demosaic --size 6x4 --auto brightest "$work/rggb.raw" "$work/x.bgr"
expect_refusal 2 "exclude each other" demosaic --size 6x4 --auto gray-gain --balance 1,2,3 "$work/rggb.raw" "$work/x.bgr"
expect_refusal 1 "Bayer frame" demosaic --size 60x4 "$work/rggb.raw" "$work/x.bgr"

# --- mirror and rotate ------------------------------------------------------
# A 3x2 mono8 frame: row 0: 01 02 03, row 1: 04 05 06.
printf '\x01\x02\x03\x04\x05\x06' >"$work/m3x2.raw"
for case in "h:04 05 06 01 02 03" "v:03 02 01 06 05 04" "both:06 05 04 03 02 01"; do
  axis=${case%%:*}
  "$tool" mirror --axis "$axis" --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/mirror.raw" || fail "mirror --axis $axis: exit $?"
  expect_bytes "mirror --axis $axis" "$work/mirror.raw" "${case#*:}"
done
# 90: output row x, column y = source row 1-y, column x; rows padded to 4 pixels on the right.
"$tool" rotate --angle 90 --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/r90.raw" || fail "rotate 90: exit $?"
expect_bytes "rotate 90 keeps the pad at the right" "$work/r90.raw" "04 01 00 00 05 02 00 00 06 03 00 00"
"$tool" rotate --angle=-90 --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/r270.raw" || fail "rotate -90: exit $?"
expect_bytes "rotate -90 keeps the pad at the left" "$work/r270.raw" "00 00 03 06 00 00 02 05 00 00 01 04"
"$tool" rotate --angle -90 --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/r270.png" || fail "rotate -90 to PNG: exit $?"
expect_png "$work/r270.png" 2 3 8 0
expect_png_bytes "rotate -90 PNG shows the picture without its pad" "$work/r270.png" "03 06 02 05 01 04"
printf '\x01\x02\x03\x04\x05\x06' >"$work/bgr2x1.raw"
"$tool" rotate --angle 180 --size 2x1 --layout bgr24 "$work/bgr2x1.raw" "$work/r180.raw" || fail "rotate 180: exit $?"
expect_bytes "rotate 180 moves whole pixels" "$work/r180.raw" "04 05 06 01 02 03"
# Any other angle turns about the centre pixel into a frame of the same size.
"$tool" rotate --angle 12.5 --interp cubic --smooth --size 64x48 --layout mono8 <(head -c 3072 /dev/zero | tr '\0' '\200') \
  "$work/tilt.png" || fail "rotate 12.5: exit $?"
expect_png "$work/tilt.png" 64 48 8 0
"$tool" rotate --angle 0 --centre 1,0 --interp nearest --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/r0.raw" ||
  fail "rotate 0 about a centre: exit $?"
expect_bytes "rotate by 0 is a copy" "$work/r0.raw" "01 02 03 04 05 06"
expect_png "$demo_dir/15-bgrx-mirrored.png" 64 48 8 2
expect_png "$demo_dir/16-bgrx-rotated-12.5.png" 64 48 8 2
expect_refusal 2 "missing --angle" rotate --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "--interp wants" rotate --angle 5 --interp lanczos --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "--angle wants" rotate --angle right --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "not one that turns" mirror --axis h --size 2x1 --layout yuv422 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "--axis wants" mirror --axis x --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "no PNG form" mirror --axis h --size 1x1 --layout bgrx64 "$work/m3x2.raw" "$work/x.png"
expect_refusal 1 "frame" mirror --axis v --size 3x3 --layout mono8 "$work/m3x2.raw" "$work/x.raw"
# --- jpeg encode, decode and info -------------------------------------------
# A flat grey frame is exact through the codec; libavcodec (the ffmpeg tool)
# reads our streams too; info reports the frame and the progressive script.
python3 -c 'import sys; open(sys.argv[1], "wb").write(bytes([128]) * 24 * 16)' "$work/flat.raw"
"$tool" jpeg encode --layout gray --size 24x16 --quality 50 "$work/flat.raw" "$work/flat.jpg" >/dev/null ||
  fail "jpeg encode: exit $?"
[[ $(hex_at "$work/flat.jpg" 0 4) == "ff d8 ff e0" ]] || fail "jpeg encode: stream starts $(hex_at "$work/flat.jpg" 0 4)"
[[ $(tail -c 2 "$work/flat.jpg" | od -An -tx1 | tr -d ' \n') == "ffd9" ]] || fail "jpeg encode: no EOI at the end"
"$tool" jpeg decode "$work/flat.jpg" "$work/flat.png" || fail "jpeg decode: exit $?"
expect_png "$work/flat.png" 24 16 8 0
[[ $(png_bytes "$work/flat.png") == "$(printf '80 %.0s' {1..384} | sed 's/ $//')" ]] || fail "jpeg decode of a flat frame"
if command -v ffmpeg >/dev/null; then
  ffmpeg -loglevel error -i "$work/flat.jpg" -f rawvideo -pix_fmt gray -y "$work/flat.ff" || fail "ffmpeg refused our stream"
  cmp -s "$work/flat.raw" "$work/flat.ff" || fail "ffmpeg decodes our flat frame differently"
fi
"$tool" jpeg info "$work/flat.jpg" >"$work/info.txt" || fail "jpeg info: exit $?"
grep -q "^frame: baseline, 24x16, 8 bits, 1 components, gray" "$work/info.txt" || fail "jpeg info: $(head -1 "$work/info.txt")"
python3 -c 'import sys; open(sys.argv[1], "wb").write(bytes((x * 7 + y * 3 + c * 50) % 256 for y in range(30) for x in range(41) for c in range(3)))' "$work/colour.raw"
"$tool" jpeg encode --layout bgr24 --size 41x30 --progressive "$work/colour.raw" "$work/colour.jpg" >/dev/null ||
  fail "jpeg encode --progressive: exit $?"
"$tool" jpeg info "$work/colour.jpg" >"$work/info.txt" || fail "jpeg info of a progressive stream: exit $?"
grep -q "^frame: progressive, 41x30, 8 bits, 3 components, YCbCr" "$work/info.txt" || fail "jpeg info: $(head -1 "$work/info.txt")"
grep -q "^scans: 10" "$work/info.txt" || fail "jpeg info: the progressive script has not 10 scans"
grep -q "component 1: sampling 2x2" "$work/info.txt" || fail "jpeg info: luma sampling"
"$tool" jpeg decode "$work/colour.jpg" "$work/colour.png" || fail "jpeg decode of a progressive stream: exit $?"
expect_png "$work/colour.png" 41 30 8 2
# A 12-bit extended frame decodes to a 16-bit PNG.
deep="$(dirname "$0")/../../fuzz/corpus/jpeg_decode/ours-extended-12bit-restart.jpg"
"$tool" jpeg info "$deep" >"$work/info.txt" || fail "jpeg info of a 12-bit stream: exit $?"
grep -q "^frame: extended, 37x21, 12 bits, 3 components, YCbCr" "$work/info.txt" || fail "jpeg info: $(head -1 "$work/info.txt")"
"$tool" jpeg decode "$deep" "$work/deep.png" || fail "jpeg decode of a 12-bit stream: exit $?"
expect_png "$work/deep.png" 37 21 16 2
expect_refusal 2 "missing --layout" jpeg encode --size 4x4 "$work/flat.raw" "$work/x.jpg"
expect_refusal 1 "frame" jpeg encode --layout bgr24 --size 64x64 "$work/flat.raw" "$work/x.jpg"
expect_refusal 1 "reading the header" jpeg decode "$work/flat.raw" "$work/x.png"
head -c 200 "$work/colour.jpg" >"$work/cut.jpg"
expect_refusal 1 "buffer too small" jpeg decode "$work/cut.jpg" "$work/x.png"
# --format: camera layouts through CJpegConversion. A flat 12-bit frame in
# 16-bit words becomes 8-bit grey 128; 10-bit planes become BGRx, which the
# general library writes as four components; without a companion --gpu says so.
python3 -c 'import sys; open(sys.argv[1], "wb").write(bytes([0, 8]) * 24 * 16)' "$work/flat12.raw"
"$tool" jpeg encode --format 101 --bits 16 --sample-bits 12 --size 24x16 "$work/flat12.raw" "$work/flat12.jpg" >"$work/stdout" ||
  fail "jpeg encode --format 101: exit $?"
grep -q "decodes as format 100, 8 bits" "$work/stdout" || fail "jpeg encode --format 101: $(cat "$work/stdout")"
"$tool" jpeg decode "$work/flat12.jpg" "$work/flat12.png" || fail "jpeg decode of a --format stream: exit $?"
[[ $(png_bytes "$work/flat12.png") == "$(printf '80 %.0s' {1..384} | sed 's/ $//')" ]] || fail "jpeg --format 101 of a flat frame"
python3 -c 'import sys; open(sys.argv[1], "wb").write(bytes([0, 2]) * 24 * 16 * 3)' "$work/planes30.raw"
"$tool" jpeg encode --format 300 --bits 48 --sample-bits 30 --size 24x16 "$work/planes30.raw" "$work/planes.jpg" >/dev/null ||
  fail "jpeg encode --format 300: exit $?"
"$tool" jpeg info "$work/planes.jpg" >"$work/info.txt" || fail "jpeg info of a four-component stream: exit $?"
grep -q "^frame: baseline, 24x16, 8 bits, 4 components" "$work/info.txt" || fail "jpeg info: $(head -1 "$work/info.txt")"
expect_refusal 1 "Cuda video card not detected." jpeg encode --format 100 --bits 8 --size 24x16 --gpu "$work/flat.raw" "$work/x.jpg"
# With the tests' stand-in companion, when it is built, --gpu encodes.
standin="$(dirname "$tool")/../tests/standins/velcuda/libvelcuda_standin.so"
if [[ -f $standin ]]; then
  python3 -c 'import sys; open(sys.argv[1], "wb").write(bytes([90]) * 128 * 128)' "$work/gpu.raw"
  KESTRELINK_VELCUDA=$standin "$tool" jpeg encode --format 100 --bits 8 --size 128x128 --gpu "$work/gpu.raw" "$work/gpu.jpg" >"$work/stdout" ||
    fail "jpeg encode --gpu with the stand-in: exit $?"
  grep -q "(GPU, decodes as format 100" "$work/stdout" || fail "jpeg encode --gpu: $(cat "$work/stdout")"
  [[ $(hex_at "$work/gpu.jpg" 0 2) == "ff d8" ]] || fail "jpeg encode --gpu wrote no JPEG stream"
fi
expect_refusal 1 "does not take" jpeg encode --format 100 --bits 24 --size 8x8 "$work/flat.raw" "$work/x.jpg"
expect_refusal 2 "--format needs --bits" jpeg encode --format 100 --size 8x8 "$work/flat.raw" "$work/x.jpg"
# --- combine --------------------------------------------------------------
# Mono8 frames of 3x2 and 2x2 side by side make rows of 5; a 2x1 frame under
# a 3x2 one leaves the rest of its row 0.
printf '\x01\x02\x03\x04\x05\x06' >"$work/a.mono8"
printf '\x0a\x14\x1e\x28' >"$work/b.mono8"
"$tool" combine --layout mono8 "$work/a.mono8" 3x2 "$work/b.mono8" 2x2 "$work/side.raw" || fail "combine: exit $?"
expect_bytes "combine side by side" "$work/side.raw" "01 02 03 0a 14 04 05 06 1e 28"
"$tool" combine --layout mono8 --above "$work/a.mono8" 3x2 "$work/b.mono8" 2x1 "$work/above.raw" ||
  fail "combine --above: exit $?"
expect_bytes "combine one above the other" "$work/above.raw" "01 02 03 04 05 06 0a 14 00"
# YUV422 grey (Y 100, U = V = 128) through the integer formula: G comes out one above Y.
printf '\x64\x80\x64\x80%.0s' 1 2 >"$work/grey.yuv"
"$tool" combine --layout yuv422 --to bgr24 "$work/grey.yuv" 4x1 "$work/grey.yuv" 4x1 "$work/grey.bgr" ||
  fail "combine yuv422 to bgr24: exit $?"
expect_bytes "combine of grey YUV" "$work/grey.bgr" "$(printf '64 65 64 %.0s' {1..8} | sed 's/ $//')"
"$tool" combine --layout yuv422 --to bgr24 --above "$work/grey.yuv" 4x1 "$work/grey.yuv" 4x1 "$work/grey.png" ||
  fail "combine to PNG: exit $?"
expect_png "$work/grey.png" 4 2 8 2
# 12-bit samples to 8 bits: d1 differs from the output depth, so both frames
# shift left by 4 and the mask keeps the low byte: 0xABC gives 0xC0.
printf '\xbc\x0a' >"$work/m12.raw"
"$tool" combine --layout mono16 --depth 12 --out-depth 8 "$work/m12.raw" 1x1 "$work/m12.raw" 1x1 "$work/m8.raw" ||
  fail "combine with a depth change: exit $?"
expect_bytes "combine depth change" "$work/m8.raw" "c0 00 c0 00"
expect_refusal 2 "no combine of mono8 to bgrx" combine --layout mono8 --to bgrx "$work/a.mono8" 3x2 "$work/b.mono8" 2x2 "$work/x.raw"
expect_refusal 2 "missing --layout" combine "$work/a.mono8" 3x2 "$work/b.mono8" 2x2 "$work/x.raw"
expect_refusal 1 "holds" combine --layout mono8 "$work/a.mono8" 9x9 "$work/b.mono8" 2x2 "$work/x.raw"

# --- average --------------------------------------------------------------
# 2x2 mono8 frames 1 2 3 4, 2 2 5 4, 9 9 9 9: the mean of the first two
# truncates; rolling over a span of 2, the third frame enters and the first leaves.
printf '\x01\x02\x03\x04' >"$work/f1.raw"
printf '\x02\x02\x05\x04' >"$work/f2.raw"
printf '\x09\x09\x09\x09' >"$work/f3.raw"
"$tool" average --layout mono8 --size 2x2 --raw "$work/f1.raw" "$work/f2.raw" "$work/avg" || fail "average: exit $?"
expect_bytes "average of two" "$work/avg/average.raw" "01 02 04 04"
"$tool" average --layout mono8 --size 2x2 --rolling 2 --raw "$work/f1.raw" "$work/f2.raw" "$work/f3.raw" "$work/roll" ||
  fail "average --rolling: exit $?"
expect_bytes "rolling average, first span" "$work/roll/average-0000.raw" "01 02 04 04"
expect_bytes "rolling average, moved on" "$work/roll/average-0001.raw" "05 05 07 06"
"$tool" average --layout mono8 --size 2x2 "$work/f1.raw" "$work/f3.raw" "$work/avgpng" || fail "average to PNG: exit $?"
expect_png "$work/avgpng/average.png" 2 2 8 0
expect_png_bytes "average PNG" "$work/avgpng/average.png" "05 05 06 06"
expect_refusal 2 "needs at least" average --layout mono8 --size 2x2 --rolling 3 "$work/f1.raw" "$work/f2.raw" "$work/x"
expect_refusal 2 "no average of layout" average --layout bgr10 --size 2x2 "$work/f1.raw" "$work/x"
# --- resize ---------------------------------------------------------------
# A 3x2 mono8 frame doubled by nearest neighbour gives 2x2 blocks; halved by
# area average, a 4x2 frame gives the mean of each 2x2 block; bgrx keeps its
# fourth byte 0; a bgr24 PNG has the output's size.
printf '\x00\x10\x20\x30\x40\x50' >"$work/m3x2.raw"
"$tool" resize --size 3x2 --layout mono8 --to 6x4 --mode nearest "$work/m3x2.raw" "$work/m6x4.raw" >/dev/null ||
  fail "resize nearest: exit $?"
expect_bytes "resize nearest 2x" "$work/m6x4.raw" \
  "00 00 10 10 20 20 00 00 10 10 20 20 30 30 40 40 50 50 30 30 40 40 50 50"
printf '\x00\x10\x20\x40\x20\x30\x60\x80' >"$work/m4x2.raw"
"$tool" resize --size 4x2 --layout mono8 --to 2x1 --mode super "$work/m4x2.raw" "$work/m2x1.raw" >/dev/null ||
  fail "resize super: exit $?"
expect_bytes "resize area half" "$work/m2x1.raw" "18 50"
printf '\x01\x02\x03\x04%.0s' {1..4} >"$work/x2x2.raw"
"$tool" resize --size 2x2 --layout bgrx --to 3x1 --mode cubic "$work/x2x2.raw" "$work/x3x1.raw" >/dev/null ||
  fail "resize bgrx: exit $?"
expect_bytes "resize bgrx of one colour" "$work/x3x1.raw" "01 02 03 00 01 02 03 00 01 02 03 00"
head -c $((64 * 48 * 3)) /dev/urandom >"$work/bgr.raw"
"$tool" resize --size 64x48 --layout bgr24 --to 40x30 --mode lanczos "$work/bgr.raw" "$work/small.png" >/dev/null ||
  fail "resize to PNG: exit $?"
expect_png "$work/small.png" 40 30 8 2
head -c $((8 * 4 * 8)) /dev/urandom >"$work/b64.raw"
"$tool" resize --size 8x4 --layout bgrx64 --to 5x3 "$work/b64.raw" "$work/b64.png" >/dev/null ||
  fail "resize bgrx64 to PNG: exit $?"
expect_png "$work/b64.png" 5 3 16 2
expect_png "$demo_dir/17-resized-half-lanczos.png" 32 24 16 0
expect_refusal 2 "--mode wants" resize --size 3x2 --layout mono8 --to 6x4 --mode box "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "--layout wants" resize --size 3x2 --layout rgb24 --to 6x4 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 2 "missing --to" resize --size 3x2 --layout mono8 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 1 "mono8 frame" resize --size 30x2 --layout mono8 --to 6x4 "$work/m3x2.raw" "$work/x.raw"
expect_refusal 1 "no PNG form" resize --size 2x1 --layout yuv422 --to 4x4 "$work/m3x2.raw" "$work/x.png"

# --- motion ---------------------------------------------------------------
# B holds a 3 x 3 block of 100 at x 2..4, y 1..3 of an 8 x 6 frame; A is
# black. The opening erodes from one row down (rows 1..5, its top row
# replicated), leaving column 3 of rows 1 and 2, and dilates rows 0..4: 12
# pixels. The Sobel ring around the block is 24 pixels.
head -c 48 /dev/zero >"$work/still.raw"
python3 -c "
import sys
b = bytearray(48)
for y in range(1, 4):
    b[8 * y + 2:8 * y + 5] = bytes([100] * 3)
sys.stdout.buffer.write(bytes(b))" >"$work/moved.raw"
"$tool" motion --size 8x6 "$work/still.raw" "$work/moved.raw" "$work/motion.raw" >"$work/motion.txt" ||
  fail "motion: exit $?"
grep -qx "changed pixels: 9 (mean difference 100)" "$work/motion.txt" || fail "motion: $(cat "$work/motion.txt")"
grep -qx "after opening: 12" "$work/motion.txt" || fail "motion opening: $(cat "$work/motion.txt")"
grep -qx "edge pixels of B: 24" "$work/motion.txt" || fail "motion edges: $(cat "$work/motion.txt")"
expect_bytes "motion mask" "$work/motion.raw" \
  "$( (printf '00 00 ff ff ff 00 00 00 %.0s' 1 2 3 4; printf '00 %.0s' {1..16}) | sed 's/ $//')"
"$tool" motion --size 8x6 --threshold 101 "$work/still.raw" "$work/moved.raw" "$work/motion.png" >/dev/null ||
  fail "motion to PNG: exit $?"
expect_png "$work/motion.png" 8 6 8 0
expect_refusal 2 "missing --size" motion "$work/still.raw" "$work/moved.raw" "$work/x.raw"
expect_refusal 2 "--threshold" motion --size 8x6 --threshold 0 "$work/still.raw" "$work/moved.raw" "$work/x.raw"
expect_refusal 1 "mono8 frame" motion --size 9x9 "$work/still.raw" "$work/moved.raw" "$work/x.raw"
# --- merge and spectrum --------------------------------------------------
printf '\x10\x20\x30\x40\x50\x60\x70\x80\x90' >"$work/ma.raw"
printf '\x64%.0s' {1..9} >"$work/mb.raw"
"$tool" merge --size 3x3 --weight 1 "$work/ma.raw" "$work/mb.raw" "$work/merged.raw" >/dev/null || fail "merge: exit $?"
# Row 0 and column 0 belong to the second frame alone; inside, weight 1 keeps the first.
expect_bytes "merge of equal frames" "$work/merged.raw" "64 64 64 64 50 60 64 80 90"
"$tool" merge --size 3x3 --size2 2x2 --offset 1,1 --weight 0 "$work/ma.raw" "$work/mb.raw" "$work/m2.raw" >/dev/null ||
  fail "merge with offset: exit $?"
expect_bytes "merge: the second frame's edge inside the first is the first's" "$work/m2.raw" \
  "10 20 30 40 50 60 70 80 64"
"$tool" merge --size 3x3 --sub --colour pseudo "$work/ma.raw" "$work/mb.raw" "$work/ratio.png" >/dev/null ||
  fail "merge to pseudo-colour PNG: exit $?"
expect_png "$work/ratio.png" 3 3 8 2
expect_refusal 2 "--colour pseudo colours a ratio" merge --size 3x3 --colour pseudo "$work/ma.raw" "$work/mb.raw" "$work/x.png"
expect_refusal 2 "--mirror wants" merge --size 3x3 --mirror diagonal "$work/ma.raw" "$work/mb.raw" "$work/x.raw"
expect_refusal 1 "mono8 frame" merge --size 4x4 "$work/ma.raw" "$work/mb.raw" "$work/x.raw"
# Rows of 16 samples 2048 + 1000 cos(2 pi 4 x / 16), rounded down: the sum of two rows halved by the transform.
python3 -c "
import math, struct, sys
sys.stdout.buffer.write(b''.join(struct.pack('<H', int(2048 + 1000 * math.cos(2 * math.pi * 4 * x / 16)))
                                 for y in range(4) for x in range(16)))" >"$work/rows.raw"
"$tool" spectrum --size 16x4 --rows 1:3 "$work/rows.raw" "$work/spectrum.csv" >/dev/null || fail "spectrum: exit $?"
[[ $(sed -n 2p "$work/spectrum.csv") == 0,327* ]] || fail "spectrum: bin 0 is $(sed -n 2p "$work/spectrum.csv")"
[[ $(sed -n 6p "$work/spectrum.csv") == 4,8000.* ]] || fail "spectrum: bin 4 is $(sed -n 6p "$work/spectrum.csv")"
"$tool" spectrum --size 16x4 --centred "$work/rows.raw" "$work/spectrum.csv" >/dev/null || fail "spectrum centred: exit $?"
[[ $(sed -n 10p "$work/spectrum.csv") == 0,655* ]] || fail "spectrum centred: $(sed -n 10p "$work/spectrum.csv")"
"$tool" spectrum --size 16x4 "$work/rows.raw" "$work/spectrum.png" >/dev/null || fail "spectrum plot: exit $?"
expect_png "$work/spectrum.png" 16 256 8 0
expect_refusal 2 "--rows A:B wants" spectrum --size 16x4 --rows 3:2 "$work/rows.raw" "$work/x.csv"

if ((failures)); then
  echo "$failures check(s) failed" >&2
  exit 1
fi
echo "all kestrelink command-line checks passed"
