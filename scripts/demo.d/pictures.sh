# shellcheck shell=bash disable=SC2154 # shared with scripts/demo
# Photographs before and after, and what video layouts leave of them: scripts/demo sources this file.

sheet=$work/contact-sheet.png
layout_sheet=$work/layout-sheet.png
photo_package=lomiri-wallpapers-16.04
# Photograph, and the point that the enlarged details show, in percent of width and height.
photos=(
    "Picture_1A_by_freespace.jpg 51 33"
    "seeding_by_Clements_Engelhardt.jpg 30 24"
    "picosdeeuropa_by_Aitzol_Berasategi.jpg 66 42"
)
enhance_options=(--passes 2 --strength 2)
largest_side=1920
trips=(NV12 V210 HSV) # layouts that every photograph is brought to and back from
trip_options=(--matrix bt709 --range limited:full)

# to_bmp PICTURE BMP: 24 bits, upright, of a size that a screen shows.
to_bmp() {
    local extension=${1##*.} safe
    # ImageMagick gives some characters of a file name a meaning; a link has a harmless one.
    [[ $extension =~ ^[A-Za-z0-9]{1,5}$ ]] || extension=img
    safe=$work/input.$extension
    ln -sf "$(realpath "$1")" "$safe"
    quietly convert "${safe}[0]" -auto-orient -colorspace sRGB -background white -alpha remove -alpha off \
        -resize "${largest_side}x$largest_side>" -type TrueColor -strip "BMP3:$2" ||
        fail "ImageMagick cannot read '$1'; see $log"
    rm "$safe"
}

# The top left corner of the busiest detail of a picture: where smoothing changes it most.
busiest_detail() {
    local original=$1 smoothed=$2 columns=$((width / detail_width)) rows=$((height / detail_height)) x y
    ((columns > 0 && rows > 0)) || { echo 50 50; return; }
    read -r x y < <(convert "$original" "$smoothed" -alpha off -compose difference -composite -colorspace Gray \
        -crop "$((columns * detail_width))x$((rows * detail_height))+0+0" +repage -scale "${columns}x$rows!" -depth 16 \
        txt:- | sed -n 's/^\([0-9]*\),\([0-9]*\): (\([0-9.]*\).*/\3 \1 \2/p' | sort -rg | sed -n '1s/^[^ ]* //p')
    echo $(((2 * x + 1) * 50 / columns)) $(((2 * y + 1) * 50 / rows))
}

# overview: part 0, the whole picture with a frame around the chosen detail; and part 1, the detail itself.
overview() {
    convert "$before" -fill none -stroke "$accent" -strokewidth "$((width / 250 + 1))" \
        -draw "rectangle $left,$top $((left + detail_width)),$((top + detail_height))" \
        -resize "${photo_width}x$cell_height" -background "$paper" -gravity west \
        -extent "${photo_width}x$cell_height" "$parts/0.png"
    detail "$before" "$parts/1.png"
    caption "$photo_width" "$(tr _ ' ' <<<"${name#*-}")" "$width x $height; the frame marks the detail on the right" \
        "$parts/c0.png"
    caption "$cell_width" "Original" "detail, $((100 * zoom)) %" "$parts/c1.png"
}

# add_row NAME X Y: appends the row of one picture to the sheet; X and Y are percentages, or nothing.
add_row() {
    local name=$1 folder=$work/$1 x=${2-} y=${3-} width height left top report=$work/$1/report.txt
    local before=$folder/$name.bmp after=$folder/$name parts=$folder/parts
    mkdir -p "$parts"
    read -r width height < <(identify -format '%w %h\n' "$before")
    [[ $x ]] || read -r x y < <(busiest_detail "$before" "$after-smoothed.bmp")
    left=$(clamp $((width * x / 100 - detail_width / 2)) $((width - detail_width)))
    top=$(clamp $((height * y / 100 - detail_height / 2)) $((height - detail_height)))

    overview
    detail "$after-smoothed.bmp" "$parts/2.png"
    detail "$after-sharpened.bmp" "$parts/3.png"
    detail "$after-yuyv.bmp" "$parts/4.png"
    loss "$before" "$after-yuyv.bmp" "$parts/5.png"

    local trip lost
    trip=$(sed -n 's/^yuyv round trip: //p' "$report")
    lost=${trip#* (}
    caption "$cell_width" "Smoothed" "SmoothRows121U8, SmoothCols121U16ToU8
$(speed "$report" SmoothRows121U8)" "$parts/c2.png"
    caption "$cell_width" "Sharpened" "SharpenU8
$(speed "$report" SharpenU8)" "$parts/c3.png"
    caption "$cell_width" "4:2:2 and back" "PackYuvaToYuyv: $(speed "$report" PackYuvaToYuyv)
ExpandYuyvToYuva: $(speed "$report" ExpandYuyvToYuva)
${trip%% (*}" "$parts/c4.png"
    caption "$cell_width" "What 4:2:2 changed, times 16" "${lost%)}
with the rounding to YUV and back" "$parts/c5.png"

    join_cells "$folder/row.png" 6
    sheet_rows+=("$folder/row.png")
    add_layout_row
}

# Brings the picture of add_row to other layouts and back, and appends a row with what they leave of it. The overview
# is that of add_row.
add_layout_row() {
    local layout trip frame back measured i=2
    for layout in "${trips[@]}"; do
        trip=$folder/$layout.txt frame=$name/$name.${layout,,} back=$name/$name-${layout,,}.bmp
        (cd "$work" && "$vela" convert "$name/$name.bmp" "$frame" --to "$layout" "${trip_options[@]}" --runs 9 &&
            "$vela" convert "$frame" "$back" --from "$layout" --size "${width}x$height" "${trip_options[@]}" --runs 9) >"$trip"
        measured=$(psnr "$before" "$work/$back")
        grep ' > .* colorspace ' "$trip"
        echo "$layout and back: PSNR $measured, $(stat -c %s "$work/$frame") bytes between"
        echo
        detail "$work/$back" "$parts/$i.png"
        caption "$cell_width" "$layout and back: PSNR $measured" \
            "$(awk -v layout="$layout" \
                '$2 == ">" && ($1 == layout || $3 == layout) { print $4 ": " $(NF - 1) ", " $NF " Mpixel/s" }' "$trip")" \
            "$parts/c$i.png"
        loss "$before" "$work/$back" "$parts/$((i + 1)).png"
        caption "$cell_width" "What $layout changed, times 16" "" "$parts/c$((i + 1)).png"
        i=$((i + 2))
    done
    join_cells "$folder/layouts.png" "$i"
    layout_rows+=("$folder/layouts.png")
}

# enhance NUMBER PICTURE [X Y]
enhance() {
    local picture=$2 name folder
    name=$(basename "${picture%.*}" | tr -c 'A-Za-z0-9.\n-' _)
    name=$1-$name
    folder=$work/$name
    rm -rf "$folder"
    mkdir -p "$folder"
    to_bmp "$picture" "$folder/$name.bmp"
    say "$picture"
    (cd "$work" && "$vela" enhance "${enhance_options[@]}" "$name/$name.bmp" "$name") | tee "$folder/report.txt"
    echo
    add_row "$name" "${@:3}"
}

# fetch_photographs: the demo's own.
fetch_photographs() {
    fetch "$photo_package" photos photographs ||
        fail "cannot fetch $photo_package; name your own: scripts/demo PICTURE..."
}

# photographs [PICTURE...]: both sheets, of the pictures or of the photographs above.
photographs() {
    local picture number=0 entry x y sheet_rows=() layout_rows=()
    if [[ $# -gt 0 ]]; then
        for picture in "$@"; do
            enhance $((++number)) "$picture"
        done
    else
        for entry in "${photos[@]}"; do
            read -r picture x y <<<"$entry"
            enhance $((++number)) "$work/photos/usr/share/backgrounds/$picture" "$x" "$y"
        done
    fi
    make_sheet "$sheet" "VelaCPUBase on photographs: vela enhance ${enhance_options[*]}" "${sheet_rows[@]}"
    make_sheet "$layout_sheet" "Photographs in other layouts and back: vela convert ${trip_options[*]}" \
        "${layout_rows[@]}"
    sheets+=("Before and after" "$sheet" "What other layouts leave" "$layout_sheet")
}
