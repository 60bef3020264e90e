# shellcheck shell=bash disable=SC2034,SC2154 # shared with scripts/demo
# A photograph graded to high dynamic range and brought back to a common display, and the transfer curves:
# scripts/demo sources this file.

hdr_sheet=$work/hdr-sheet.png
curve_sheet=$work/curve-sheet.png
# Photograph, and the point that the enlarged details show, in percent of width and height.
hdr_photo="sunset_by_Aitzol_Berasategi.jpg 48 38"
hdr_primaries=bt2020:bt709
hdr_peaks=1000:100 # cd/m2: of the grade, and of the display
hdr_width=456 hdr_height=380
frame='#ff9f1c' # seen on clouds

# The grade, as ImageMagick computes it of a code value u: light in 1000 cd/m2. Shadows and mid-tones are those of
# a display of 100 cd/m2; highlights are stretched to ten times its white.
linear='(u<=0.04045?u/12.92:((u+0.055)/1.055)^2.4)'
graded="$linear*(1+9*$linear^3)/10"
# SMPTE ST 2084 of u^4 in 1000 cd/m2: the fourth root spreads dark light over the 16 bits between two steps.
pq='(((3424+18.8515625*4096*(u^4/10)^0.1593017578125)/(4096+18.6875*4096*(u^4/10)^0.1593017578125))^78.84375)'
# What an SDR display of 100 cd/m2 gets of the grade if all above its white is cut off: BT.709.
cut_off="(10*$graded<0.018?45*$graded:1.099*min(10*$graded,1)^0.45-0.099)"

# curve FORMULA FILE: a formula of u as a table for -clut.
curve() { quietly convert -size 4096x1 xc: -depth 16 -fx 'i/(w-1)' -fx "$1" "$2"; }

# grade BMP DPX: PQ and BT.2020 in 10 bits.
grade() {
    curve "$graded" "$folder/graded.png"
    curve "$pq" "$folder/pq.png"
    quietly convert "$1" -depth 16 "$folder/graded.png" -clut \
        -color-matrix '0.627404 0.329283 0.043313 0.069097 0.919540 0.011362 0.016391 0.088013 0.895595' \
        -evaluate pow 0.25 "$folder/pq.png" -clut -set colorspace sRGB -type TrueColor -depth 10 "$2" ||
        fail "ImageMagick cannot grade '$1'; see $log"
}

# add_version NAME TITLE TEXT OPTION...: the grade as `vela tonemap` converts it: the whole, its detail, and how.
add_version() {
    local name=$1 title=$2 text=$3 part=$folder/part-$1
    (cd "$work" && "$vela" tonemap hdr/graded.dpx "hdr/$name.bmp" "${@:4}") >"$folder/$name.txt"
    sed -n 2p "$folder/$name.txt"
    grep ' colorspace ' "$folder/$name.txt"
    convert "$folder/$name.bmp" -fill none -stroke "$frame" -strokewidth "$((width / 250 + 1))" \
        -draw "rectangle $left,$top $((left + detail_width)),$((top + detail_height))" \
        -resize "${hdr_width}x$hdr_height" -background "$paper" -gravity center -extent "${hdr_width}x$hdr_height" \
        "$part-whole.png"
    detail "$folder/$name.bmp" "$part-detail.png"
    caption "$hdr_width" "$title" "$text
CscConvertHdrPixels: $(speed "$folder/$name.txt" CscConvertHdrPixels)" "$part-caption.png"
    convert "$part-whole.png" "$part-detail.png" "$part-caption.png" -background "$paper" -append \
        -bordercolor "$paper" -border 8x8 "$part.png"
    versions+=("$part.png")
}

# check_cut_off BMP: ImageMagick makes the same of the photograph without a detour through PQ and BT.2020.
check_cut_off() {
    local measured
    curve "$cut_off" "$folder/cut-off.png"
    quietly convert "$1" -depth 16 "$folder/cut-off.png" -clut -depth 8 "BMP3:$folder/cut-off.bmp"
    measured=$(psnr "$folder/cut-off.bmp" "$folder/clipped.bmp")
    echo "cut off above 100 cd/m2: PSNR $measured against the photograph as ImageMagick cuts it off"
    awk -v psnr="${measured% dB}" 'BEGIN { exit !(psnr == "exact" || psnr > 45) }' ||
        fail "the picture cut off by vela differs from ImageMagick's: PSNR $measured"
}

# hdr_picture PICTURE [X Y]: graded, shown as it is, cut off, and tone-mapped.
hdr_picture() {
    local folder=$work/hdr x=${2-} y=${3-} width height left top versions=()
    local zoom=1 cell_width=$hdr_width cell_height=$hdr_height
    local detail_width=$hdr_width detail_height=$hdr_height
    rm -rf "$folder"
    mkdir -p "$folder"
    say "$1, graded for 1000 cd/m2"
    to_bmp "$1" "$folder/photograph.bmp"
    grade "$folder/photograph.bmp" "$folder/graded.dpx"
    read -r width height < <(identify -format '%w %h\n' "$folder/photograph.bmp")
    [[ $x ]] || read -r x y < <(brightest "$folder/photograph.bmp")
    left=$(clamp $((width * x / 100 - detail_width / 2)) $((width - detail_width)))
    top=$(clamp $((height * y / 100 - detail_height / 2)) $((height - detail_height)))

    add_version naive "PQ shown as if it were BT.709" "Code values as they are" \
        --from bt709 --primaries bt709:bt709 --mode none
    add_version clipped "Cut off" "--mode none: all above 100 cd/m2 is lost" --mode none
    check_cut_off "$folder/photograph.bmp"
    add_version rolled-off "Rolled off: BT.2390" "--mode bt2390 --peak $hdr_peaks" --mode bt2390 --peak "$hdr_peaks"
    add_version scene "Rendered anew: scene light" "--mode scene-light --peak $hdr_peaks" --mode scene-light \
        --peak "$hdr_peaks"
    convert "${versions[@]}" +append "$folder/row.png"
    make_sheet "$hdr_sheet" "Graded for 1000 cd/m2, shown at 100: vela tonemap --primaries $hdr_primaries" "$folder/row.png"
    rm "$folder"/part-*
    sheets+=("High dynamic range" "$hdr_sheet")
    echo
}

# The point of a picture, in percent, around which it is brightest.
brightest() {
    convert "$1" -colorspace Gray -scale '20x20!' -depth 16 txt:- |
        sed -n 's/^\([0-9]*\),\([0-9]*\): (\([0-9.]*\).*/\3 \1 \2/p' | sort -rg |
        awk 'NR == 1 { print 5 * $2 + 2, 5 * $3 + 2 }'
}

# The transfer curves as the library's tables have them.
transfer_curves() {
    say "Transfer curves"
    "$vela" curves --rows 1024 >"$work/decode.csv"
    "$vela" curves --encode --rows 1024 >"$work/encode.csv"
    quietly gnuplot -e "work = '$work'; sheet = '$curve_sheet'; paper = '$paper'; ink = '$ink'; grey = '$grey'" \
        "$root/scripts/demo.d/curves.gnuplot" || fail "gnuplot cannot draw the curves; see $log"
    sheets+=("Transfer curves" "$curve_sheet")
}

# hdr [PICTURE]: both sheets, of the picture or of the photograph above.
hdr() {
    local photo x y
    if [[ $# -gt 0 ]]; then
        hdr_picture "$1"
    else
        read -r photo x y <<<"$hdr_photo"
        hdr_picture "$work/photos/usr/share/backgrounds/$photo" "$x" "$y"
    fi
    transfer_curves
}
