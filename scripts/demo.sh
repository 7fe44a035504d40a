#!/usr/bin/env bash
# The main job on real media: film strips, movies and pictures made by other programs are composited, converted and
# looked at, and the gadgets pictured.
# Everything is installed and built on the way.
source "$(dirname "$0")/common.sh"
install_packages
build_preset release zvclip ZVPictures gallery

out=$PWD/demo-output
rm -rf "$out"
mkdir -p "$out/home"
# Keeps the demo out of the user's own data directory.
export KL_APP_DATA_DIR=$out/home
zvclip=$PWD/build/release/bin/zvclip
gallery=$PWD/build/release/bin/gallery
cd "$out"

echo "== Two film strips by ffmpeg: a moving disc with a soft edge, and a background"
ffmpeg -v error -y -f lavfi -i testsrc2=s=640x360:r=25:d=2 \
    -f lavfi -i "color=black:s=640x360:r=25:d=2,format=gray,geq=lum='clip(255-6*(hypot(X-320-190*sin(PI*T),Y-180-40*cos(PI*T))-120),0,255)'" \
    -filter_complex "[0][1]alphamerge,format=rgba" -f filmstrip foreground.flm
ffmpeg -v error -y -f lavfi -i gradients=s=640x360:r=25:d=2:speed=0.03:c0=navy:c1=teal:c2=white:n=3 \
    -vf format=rgba -f filmstrip background.flm
"$zvclip" info foreground.flm background.flm

echo "== Over a colour, over the other clip, and as EIDI"
"$zvclip" composite foreground.flm '#402060' over-colour.flm
"$zvclip" composite foreground.flm background.flm over-clip.flm
"$zvclip" convert over-clip.flm over-clip.ei
"$zvclip" convert foreground.flm small.ei --size 320x180 --frames 25
"$zvclip" info over-colour.flm over-clip.flm over-clip.ei small.ei

echo "== Stills"
"$zvclip" frame foreground.flm --time 0.5 foreground.png
"$zvclip" frame over-colour.flm --time 0.5 over-colour.png
"$zvclip" frame over-clip.flm --time 30f over-clip.png
"$zvclip" frame over-clip.ei --time 30f over-clip-from-eidi.png
"$zvclip" frame small.ei --time 0.5 small.png

echo "== A movie with alpha over film in video, whose film frames are taken out of their fields; with sound"
ffmpeg -v error -y -f filmstrip -i foreground.flm -c:v qtrle -r 25 title.mov
ffmpeg -v error -y -f lavfi -i mandelbrot=s=640x360:r=24000/1001 -f lavfi -i "sine=330:r=48000,tremolo=3" -t 3 \
    -vf scroll=horizontal=0.005,telecine=first_field=top:pattern=23 -c:v mjpeg -q:v 3 -pix_fmt yuvj422p -c:a pcm_s16le telecined.mov
"$zvclip" convert telecined.mov film.mov --field-order upper --pulldown remove --codec png
"$zvclip" composite title.mov film.mov titled.mov --codec prores422 --quality 80
"$zvclip" convert titled.mov streamed.mov --streaming --codec h264 --quality 70 --audio-codec aac
"$zvclip" convert titled.mov 'series[####].vpb' --frames 5
"$zvclip" sound streamed.mov streamed.wav
"$zvclip" info title.mov telecined.mov film.mov titled.mov streamed.mov 'series[####].vpb'
"$zvclip" check titled.mov streamed.mov
ffprobe -v error -show_entries stream=codec_tag_string,time_base,nb_frames -of compact streamed.mov
echo "== Pictures with layers, composited; and deep pictures, out of which one object is lifted"
ffmpeg -v error -y -f filmstrip -i background.flm -frames:v 10 back-%02d.png
ffmpeg -v error -y -f filmstrip -i foreground.flm -frames:v 10 disc-%02d.png
ffmpeg -v error -y -f lavfi -i "color=orange:s=640x360:r=25" \
    -f lavfi -i "color=black:s=640x360:r=25,format=gray,geq=lum='clip(255-6*(abs(X-380)+abs(Y-180)-120),0,255)'" \
    -filter_complex "[0][1]alphamerge,format=rgba" -frames:v 10 gem-%02d.png
for n in 01 02 03 04 05 06 07 08 09 10; do
    oiiotool back-$n.png --ch R,G,B,A -d half -o back.exr disc-$n.png -d half -o disc.exr
    exrmultipart -combine -i back.exr:0::background disc.exr:0::disc -o layers-$n.exr -override 1 >exr.log
    # The disc, object 1 and of glass, is nearer than the gem, object 2.
    oiiotool gem-$n.png --ch R,G,B,A,Z=4,id=2 -d half --deepen disc-$n.png --mulc 0.7 --ch R,G,B,A,Z=2,id=1 -d half --deepen \
        --deepmerge -o deep-$n.exr
done
rm -f back-* disc-* gem-* back.exr disc.exr exr.log
"$zvclip" info 'layers-[##].exr' 'deep-[##].exr'
"$zvclip" composite 'layers-[##].exr' 'layers-[##].exr' layers.flm --layer disc --background-layer background
"$zvclip" extract 'deep-[##].exr' 'gem-alone-[##].exr' --id 2
"$zvclip" frame layers.flm --time 4f layers.png
"$zvclip" frame 'deep-[##].exr' --time 4f deep.png
"$zvclip" frame 'gem-alone-[##].exr' --time 4f gem-alone.png
ffmpeg -v error -y -i titled.mov -vf fps=5,scale=213:-1,tile=3x3 -frames:v 1 contact-sheet.png

echo "== The interface: all gadgets in both themes"
for theme in light dark; do
    "$gallery" --theme "$theme" --screenshot "gallery-$theme.png"
done
rm -rf home

echo "Look at the results in $out:"
ls -l "$out"
