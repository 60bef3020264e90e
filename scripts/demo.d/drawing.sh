# shellcheck shell=bash disable=SC2034,SC2154 # shared with scripts/demo
# Sheets, their cells and captions, and what is measured for them: scripts/demo sources this file.

font=/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf
bold=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf
paper='#16181c' ink='#f2f2f2' grey='#9aa3ad' accent='#ffffff'
photo_width=560 cell_width=360 cell_height=400 zoom=3
detail_width=$((cell_width / zoom)) detail_height=$((cell_height / zoom + 1))

# caption WIDTH TITLE TEXT FILE: two kinds of text below each other, TEXT of up to three lines.
caption() {
    convert -size "$1x84" "xc:$paper" -gravity northwest -font "$bold" -pointsize 17 -fill "$ink" -annotate +2+2 "$2" \
        -font "$font" -pointsize 14 -fill "$grey" -annotate +2+26 "$3" "$4"
}

clamp() { echo $(($1 < 0 ? 0 : $1 > $2 ? ($2 > 0 ? $2 : 0) : $1)); }

# speed REPORT KERNEL: what the report says of a kernel's step.
speed() { awk -v kernel="$2" '$0 ~ " " kernel " " { print $(NF - 1) ", " $NF " Mpixel/s" }' "$1"; }

# psnr BEFORE AFTER: of all channels in decibels, as ImageMagick measures it.
psnr() {
    local measured status=0
    measured=$(compare -metric PSNR "$1" "$2" null: 2>&1) || status=$?
    ((status < 2)) || fail "ImageMagick cannot compare '$1' with '$2': $measured"
    [[ $measured == inf ]] && echo exact || printf '%.2f dB' "${measured%% *}"
}

# detail PICTURE FILE: the chosen detail, enlarged with its pixels kept visible.
detail() {
    convert "$1" -alpha off -crop "${detail_width}x$detail_height+$left+$top" +repage -background "$paper" \
        -gravity center -extent "${detail_width}x$detail_height" -filter point -resize "$((100 * zoom))%" \
        -gravity northwest -crop "${cell_width}x$cell_height+0+0" +repage "$2"
}

# loss BEFORE AFTER FILE: the chosen detail of what has changed, 16 times as strong around grey.
loss() {
    local changed=$parts/changed.png
    convert "$1" "$2" -alpha off -compose mathematics -define compose:args=0,-16,16,0.5 -composite "$changed"
    detail "$changed" "$3"
    rm "$changed"
}

# join_cells FILE COUNT: the parts 0.png, 1.png, ... with their captions below, side by side.
join_cells() {
    local i cells=()
    for ((i = 0; i < $2; ++i)); do
        convert "$parts/$i.png" "$parts/c$i.png" -append -bordercolor "$paper" -border 8x8 "$parts/cell$i.png"
        cells+=("$parts/cell$i.png")
    done
    convert "${cells[@]}" +append "$1"
}

# make_sheet FILE TITLE ROW...
make_sheet() {
    local processor
    processor=$(sed -n 's/^processor *//p' "$work/info.txt")
    convert -size "$(identify -format %w "$3")x84" "xc:$paper" -gravity northwest -font "$bold" \
        -pointsize 30 -fill "$ink" -annotate +18+14 "$2" -font "$font" -pointsize 16 -fill "$grey" \
        -annotate +18+54 "Processor $processor. Speeds: one thread, median over the whole picture." "$work/title.png"
    convert "$work/title.png" "${@:3}" -append +repage -depth 8 "$1"
    rm "$work/title.png"
}
