#!/usr/bin/env bash
# What zvclip promises: results, exit statuses, one-line errors, and files that are whole or not there.
set -euo pipefail
zvclip=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export KL_APP_DATA_DIR=$work
cd "$work"
failures=0

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# expect STATUS PATTERN WORDS...: runs zvclip; standard error must be one line with the pattern, or empty for "".
expect() {
    local status=$1 pattern=$2 got=0
    shift 2
    "$zvclip" "$@" >out.txt 2>err.txt || got=$?
    [ "$got" -eq "$status" ] || fail "zvclip $*: status $got, not $status: $(cat err.txt)"
    if [ -z "$pattern" ]; then
        [ ! -s err.txt ] || fail "zvclip $*: said $(cat err.txt)"
    else
        [ "$(wc -l <err.txt)" -eq 1 ] && grep -q -- "$pattern" err.txt || fail "zvclip $*: said $(cat err.txt)"
    fi
}

pixels() { ffmpeg -v fatal -i "$1" "${@:2}" -f rawvideo -pix_fmt rgba - | md5sum; }
same() { [ "$1" = "$2" ] || fail "$3"; }

ffmpeg -v fatal -f lavfi -i testsrc2=s=96x64:r=25:d=1 -f lavfi -i "color=gray:s=96x64:r=25:d=1,format=gray,geq=lum='2*X'" \
    -filter_complex "[0][1]alphamerge,format=rgba" -f filmstrip in.flm
ffmpeg -v fatal -f lavfi -i testsrc=s=80x48:r=25:d=1 -vf format=rgba -f filmstrip back.flm

# --- results
expect 0 "" info in.flm
grep -q "96 x 64" out.txt && grep -q "frames  25" out.txt || fail "info: $(cat out.txt)"
expect 0 "" info --json in.flm back.flm
python3 -c 'import json; a = json.load(open("out.txt")); assert [c["width"] for c in a] == [96, 80], a' 2>err.txt ||
    fail "info --json: $(cat err.txt)"
expect 0 "" convert in.flm copy.flm
same "$(pixels in.flm)" "$(pixels copy.flm)" "a copy has other pixels"
expect 0 "" convert in.flm packed.ei
expect 0 "" convert packed.ei back-again.flm
same "$(pixels in.flm)" "$(pixels back-again.flm)" "a copy by way of EIDI has other pixels"
expect 0 "" convert in.flm strip.dat --format flm
same "$(pixels in.flm)" "$(ffmpeg -v fatal -f filmstrip -i strip.dat -f rawvideo -pix_fmt rgba - | md5sum)" "--format"
expect 0 "" convert in.flm part.flm --start 5 --frames 3
same "$(pixels in.flm -vf "trim=start_frame=5:end_frame=8")" "$(pixels part.flm)" "--start in frames"
expect 0 "" convert in.flm part.flm --start 0.2s --frames 3 --overwrite
same "$(pixels in.flm -vf "trim=start_frame=5:end_frame=8")" "$(pixels part.flm)" "--start in seconds"
expect 0 "" convert in.flm half.flm --size 48x32
python3 - <<'EOF' || fail "--size takes the pixel under the corner"
whole, half = open("in.flm", "rb").read(), open("half.flm", "rb").read()
at = [4 * (2 * y * 96 + 2 * x) for y in range(32) for x in range(48)]
assert half[:48 * 32 * 4] == b"".join(whole[i:i + 4] for i in at)
EOF
expect 0 "" convert in.flm slow.flm --rate 50
expect 0 "" info slow.flm
grep -q "frames  50" out.txt && grep -q "length  1.000" out.txt || fail "--rate: $(cat out.txt)"
expect 0 "" composite in.flm '#204060' colour.flm
expect 0 "" convert in.flm flat.flm --background '#204060'
python3 - <<'EOF' || fail "composite and --background differ by more than a step"
a, b = (open(name, "rb").read(96 * 64 * 4) for name in ("colour.flm", "flat.flm"))
assert a[3::4] == b[3::4] == b"\xff" * (96 * 64)
assert max(abs(x - y) for x, y in zip(a, b)) <= 1
EOF
expect 0 "" composite in.flm back.flm over.flm --at 10,-4
expect 0 "" info over.flm
grep -q "80 x 48" out.txt || fail "the composite has not the size of its background"
expect 0 "" convert in.flm lum.flm --luminance --frames 1
expect 0 "" convert in.flm matte.flm --matte '#102030' --invert --frames 1
expect 0 "" frame in.flm --time 0.4 still.png
same "$(pixels in.flm -vf trim=start_frame=10:end_frame=11)" "$(pixels still.png)" "a still has other pixels"
expect 0 "" convert in.flm poor.pict --frames 1 --codec mjpeg --quality 5
expect 0 "" convert in.flm good.pict --frames 1 --codec mjpeg --quality 95
[ "$(stat -c %s poor.pict)" -lt "$(stat -c %s good.pict)" ] || fail "--quality of a compressed PICT"
expect 0 "" convert in.flm exact.pict --frames 1 --codec png
expect 0 "" convert exact.pict exact.flm
same "$(pixels in.flm -vf trim=end_frame=1)" "$(pixels exact.flm)" "a PICT without loss has other pixels"
for command in "" info convert composite extract frame sound check; do
    # shellcheck disable=SC2086  # no word for the general help
    "$zvclip" $command --help | grep -q Usage || fail "help of $command"
done

# --- movies, their sound, series of pictures, and film in video
film() { ffmpeg -v fatal -f lavfi -i testsrc2=s=96x64:r=24:d=2 "$@"; }
film -vf format=rgba -c:v png film.mov
ffmpeg -v fatal -f lavfi -i testsrc2=s=96x64:r=25:d=2 -f lavfi -i sine=440:r=48000:d=2 \
    -pix_fmt yuv420p -c:v libx264 -bf 2 -g 25 -c:a pcm_s16le sounding.mov
expect 0 "" info --json sounding.mov
python3 -c 'import json; a, = json.load(open("out.txt")); assert (a["codec"], a["frames"]) == ("avc1", 50) and a["sound"] == {"rate": 48000, "channels": 1, "bits": 16}, a' 2>err.txt || fail "info of a movie: $(cat err.txt)"
expect 0 "" convert sounding.mov sounding2.mov --codec ffv1 --quality 100
samples() { ffmpeg -v fatal -i "$1" -f s16le -ac 1 - | md5sum; }
same "$(samples sounding.mov)" "$(samples sounding2.mov)" "a copy has other sound"
expect 0 "" sound sounding2.mov sound.wav
same "$(samples sounding.mov)" "$(samples sound.wav)" "the WAVE file has other sound"
expect 0 "" convert sounding.mov quiet.mov --no-audio --start 10 --frames 5 --codec png
[ -z "$(ffprobe -v error -select_streams a -show_entries stream=index quiet.mov)" ] || fail "--no-audio"
same "$(pixels sounding2.mov -vf "trim=start_frame=10:end_frame=15,setpts=PTS-STARTPTS")" "$(pixels quiet.mov)" "frames behind a jump"
expect 0 "" composite film.mov sounding.mov both.mov --codec prores4444 --audio-codec aac
[ "$(ffprobe -v error -show_entries stream=codec_tag_string -of csv=p=0 both.mov | xargs)" = "ap4h mp4a" ] ||
    fail "the codecs of a composite"
expect 0 "" convert sounding.mov stream.mov --streaming --codec h264 --audio-codec aac
[ "$(ffprobe -v error -show_entries stream=codec_tag_string -of csv=p=0 stream.mov | xargs)" = "avc1 mp4a rtp rtp" ] ||
    fail "--streaming gives no hint tracks"
expect 0 "" convert film.mov 'series[####].vpb'
expect 0 "" convert 'series[####].vpb' series.mov --source-rate 24 --codec png
[ "$(ffprobe -v error -show_entries stream=nb_frames,r_frame_rate -of csv=p=0 series.mov)" = 24/1,48 ] || fail "a series"
expect 0 "" convert in.flm 'series[####].vpb' --overwrite --frames 3
[ "$(echo series*.vpb)" = "series0000.vpb series0001.vpb series0002.vpb" ] || fail "a new series beside an old one"
expect 0 "" convert film.mov video.mov --pulldown insert --codec png
[ "$(ffprobe -v error -show_entries stream=nb_frames,r_frame_rate -of csv=p=0 video.mov)" = 30/1,60 ] || fail "--pulldown insert"
expect 0 "" convert video.mov film-again.mov --pulldown remove --codec png
same "$(pixels film.mov)" "$(pixels film-again.mov)" "film frames taken out of their fields have other pixels"
film -vf format=rgba,telecine=first_field=top:pattern=23 -c:v png telecined.mov
expect 0 "" convert telecined.mov film-again.mov --pulldown guess --field-order upper --codec png --overwrite
expect 0 "" info film-again.mov
grep -q "rate    24" out.txt || fail "ffmpeg's pull-down was not found: $(cat out.txt)"
expect 0 "" check film.mov sounding.mov sound.wav series0000.vpb
head -c 20000 film.mov >broken.mov
film -vf format=rgba -c:v png -movflags faststart whole.mov
head -c $(($(stat -c %s whole.mov) / 2)) whole.mov >broken2.mov
expect 1 "broken.mov: the file could not be opened" check broken.mov
expect 1 "broken2.mov: frame [0-9]* cannot be read" check broken2.mov

# --- pictures with layers, and deep ones
if [ -e "$(dirname "$zvclip")/../lib/zvlib/Plugins/Pictures.ifm" ]; then
    for n in 1 2 3; do
        oiiotool --create 64x48 4 --addc 0,0,0.$n,1 -d half -o back.exr --create 64x48 4 --fill:color=0.5,0,0,0.5 20x20 -d half -o front.exr
        exrmultipart -combine -i back.exr:0::back front.exr:0::front -o layers$n.exr -override 1 >err.txt
        oiiotool front.exr --ch R,G,B,A,Z=2,id=1 --deepen back.exr --ch R,G,B,A,Z=4,id=2 --deepen --deepmerge -o deep$n.exr
    done
    expect 0 "" info --json 'layers[#].exr' 'deep[#].exr'
    python3 -c 'import json; a, b = json.load(open("out.txt")); assert a["layers"] == ["back", "front"] and a["frames"] == 3 and {"depth", "object", "coverage"} <= set(b["deep"]), (a, b)' 2>err.txt ||
        fail "info of pictures: $(cat err.txt)"
    expect 0 "" composite 'layers[#].exr' 'layers[#].exr' 'layered[#].png' --layer front --background-layer 1
    oiiotool layered1.png --cut 1x1+5+5 -d uint8 -o pixel.png
    oiiotool --dumpdata pixel.png | grep -q ': 12[78] 0 25' || fail "layers"
    expect 0 "" extract 'deep[#].exr' 'one[#].tif' --id 1
    expect 0 "" extract 'deep[#].exr' 'rest[#].tif' --id 1 --remove
    oiiotool one1.tif --ch A -d uint8 --cut 2x1+19+5 -o pixel.tif
    [ "$(oiiotool --dumpdata pixel.tif | grep -o '): [0-9]*' | xargs)" = "): 128 ): 0" ] || fail "an extracted object"
    expect 0 "" frame 'rest[#].tif' --time 1f rest.png
    expect 0 "" convert 'layers[#].exr' small.jpg --frames 1 --quality 5
    expect 1 "no layer 'none'" convert 'layers[#].exr' none.png --layer none
    expect 1 "has no ids" extract 'layers[#].exr' none.tif --id 1
    expect 1 "can be read but not written" convert small.jpg none.psd
    expect 2 "--id tells" extract 'deep[#].exr' none.tif
fi

# --- refusals
expect 1 "hold one picture each" convert in.flm out.vpb
expect 1 "hold all frames" convert in.flm 'out[##].flm'
expect 1 "no file of this series" info 'none[###].vpb'
expect 1 "series0000.vpb: exists already" convert in.flm 'series[####].vpb'
expect 1 "Filmstrip files hold no sound" convert sounding.mov out.flm --audio
expect 1 "no sound to write" convert film.mov out.mov --audio
expect 1 "codec 'wxyz'" convert film.mov out.mov --codec wxyz
expect 1 "codec 'avc1'" convert film.mov out.pict --frames 1 --codec h264
expect 1 "are for movies" convert film.mov out.flm --codec png
expect 1 "no film frames" convert film.mov out.mov --pulldown remove
expect 1 "film.mov: has no sound" sound film.mov out.wav
expect 2 "--pulldown takes" convert film.mov out.mov --pulldown some
expect 1 "copy.flm: exists already" convert in.flm copy.flm
expect 1 "none.flm: no such file" info none.flm
expect 1 ".: not a file" info .
echo "no film" >text.flm
expect 1 "text.flm: the file is damaged" info text.flm
expect 1 "out.xyz: no format" convert in.flm out.xyz
expect 1 "there is no format 'avi9'" convert in.flm out.flm --format avi9
expect 1 "no such file or directory" convert in.flm nowhere/out.flm
expect 1 "8 bits" convert in.flm deep.flm --depth 16
expect 1 "ends before" frame in.flm --time 9 still2.png
expect 2 "--size takes" convert in.flm out.flm --size 10
expect 2 "--rate takes" convert in.flm out.flm --rate fast
expect 2 "no option --sieze" convert in.flm out.flm --sieze
expect 2 "IN and OUT" convert in.flm
expect 2 "no command 'play'" play in.flm
[ ! -e deep.flm ] && [ -z "$(echo out.flm out.mov out.wav out*.vpb | xargs ls 2>/dev/null)" ] || fail "a refused job left a file"

# --- failures and interruptions leave what was there
before=$(md5sum <copy.flm)
if (ulimit -f 100 && "$zvclip" convert in.flm copy.flm --overwrite 2>err.txt); then fail "a full disk went unnoticed"; fi
grep -q "copy.flm: " err.txt || fail "a full disk: $(cat err.txt)"
same "$before" "$(md5sum <copy.flm)" "a failed job changed a file"
"$zvclip" convert in.flm copy.flm --overwrite --rate 10000 --size 2000x2000 2>err.txt &
job=$!
sleep 0.5
kill -INT $job
status=0
wait $job || status=$?
[ "$status" -eq 130 ] || fail "an interrupted job ended with $status: $(cat err.txt)"
same "$before" "$(md5sum <copy.flm)" "an interrupted job changed a file"
[ -z "$(find . -name '.*-*')" ] || fail "work files were left behind: $(find . -name '.*-*')"

# --- memory does not grow with the length of a clip: three frames and 32 MB
for frames in 100 1000; do
    ffmpeg -v fatal -y -f lavfi -i color=red:s=320x180:r=25:d=$((frames / 25)) -vf format=rgba -f filmstrip long.flm
    peak=$(python3 - "$zvclip" <<'EOF'
import resource, subprocess, sys
subprocess.run([sys.argv[1], "convert", "long.flm", "long.ei", "--overwrite"], check=True)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)
EOF
)
    # A sanitizer keeps memory of its own.
    [ -n "${ZV_SANITIZED:-}" ] || [ "$peak" -lt $((3 * 320 * 180 * 4 / 1024 + 32768)) ] || fail "$frames frames took $peak KiB"
done

[ "$failures" -eq 0 ] || exit 1
echo "zvclip keeps its promises"
