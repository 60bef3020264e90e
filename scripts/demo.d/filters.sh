# shellcheck shell=bash disable=SC2034,SC2154,SC2164 # set and checked by scripts/demo, which stops at any failure
# Filters, upsampling, and luma sharpened in 4:2:2: scripts/demo sources this file.

filter_sheet=$work/filter-sheet.png
sharpen_sheet=$work/sharpen-sheet.png

filter_rate=48000
# A filter as vela takes it, and as sox does.
filter_pairs=(
    "lowpass:200:2|lowpass 200 2q"
    "highpass:60|highpass 60 0.7071067811865476q"
    "bandpass:500:3|bandpass 500 3q"
    "notch:1200:2|bandreject 1200 2q"
    "peak:3000:3:9|equalizer 3000 3q 9"
    "lowshelf:150:0.7:6|bass 6 150 0.7q"
    "highshelf:8000:0.7:-12|treble -12 8000 0.7q"
)
plotted_filters=(lowpass:200:2 bandpass:500:3 notch:1200:2 peak:3000:3:9 highshelf:8000:0.7:-12)
cascade=(highpass:60 lowshelf:150:0.7:6 notch:1200:2 peak:3000:3:9 highshelf:8000:0.7:-12)
largest_difference=-140 # dBFS between vela and sox, which rounds to 32 bits where vela's result is rounded to float
farthest_response=0.001 # dB between the response to an impulse and the formula, down to -60 dB
largest_image=-60       # dB, as vela audio --help says

chart_width=640 chart_height=440
colours=('#6cb6ff' '#f2c14e' '#ef6f6c' '#7bd389' '#c792ea')

# The curves that the digital filters map onto the frequencies below half the rate: with s the frequency over that of
# the filter, both as tangents. peak and shelves take A, the square root of the gain.
formulas="
rate = $filter_rate.0
j = {0,1}
s(f, f0) = j * tan(pi * f / rate) / tan(pi * f0 / rate)
lowpass(s, q, g) = 1 / (s**2 + s/q + 1)
highpass(s, q, g) = s**2 / (s**2 + s/q + 1)
bandpass(s, q, g) = (s/q) / (s**2 + s/q + 1)
notch(s, q, g) = (s**2 + 1) / (s**2 + s/q + 1)
A(g) = 10 ** (g / 40.0)
peak(s, q, g) = (s**2 + s*A(g)/q + 1) / (s**2 + s/(A(g)*q) + 1)
lowshelf(s, q, g) = A(g) * (s**2 + sqrt(A(g))/q*s + A(g)) / (A(g)*s**2 + sqrt(A(g))/q*s + 1)
highshelf(s, q, g) = A(g) * (A(g)*s**2 + sqrt(A(g))/q*s + 1) / (s**2 + sqrt(A(g))/q*s + A(g))
dB(h) = 20 * log10(abs(h) + 1e-12)
"

# formula FILTER: what gnuplot computes for it at the frequency x.
formula() {
    local kind frequency q gain
    IFS=: read -r kind frequency q gain <<<"$1"
    echo "$kind(s(x, $frequency.0), ${q:-sqrt(0.5)}, ${gain:-0})"
}

# chart FILE COMMANDS: as gnuplot draws it, in the colours of the sheets.
chart() {
    gnuplot 2>>"$log" <<PLOT || fail "gnuplot cannot draw $1; see $log"
set terminal pngcairo size $chart_width,$chart_height background rgb '$paper' font 'DejaVu Sans,10'
set output '$1'
set border 3 lc rgb '$grey'
set tics nomirror textcolor rgb '$grey'
set xlabel textcolor rgb '$grey'
set ylabel textcolor rgb '$grey'
set key textcolor rgb '$ink'
set grid lc rgb '#33383f' lt 1
set samples 1000
$formulas
$2
PLOT
}

# response SOUND: the Fourier sum of a response to an impulse of a half at 160 frequencies from 30 Hz to 22 kHz: hertz
# and decibels.
response() {
    sox -V1 "$1" -t dat - | awk -v rate="$filter_rate" '
        $1 != ";" { x[n++] = 2 * $2 }
        END {
            for (k = 0; k < 160; ++k) {
                f = 30 * exp(k / 159 * log(22000 / 30)); w = 2 * atan2(0, -1) * f / rate
                c = cos(w); s = sin(w); re = im = 0; a = 1; b = 0
                for (i = 0; i < n; ++i) { re += x[i] * a; im += x[i] * b; t = a * c - b * s; b = a * s + b * c; a = t }
                printf "%.6f %.6f\n", f, 10 * log(re * re + im * im + 1e-24) / log(10)
            }
        }'
}

# spectrum SOUND: the mean power of its blocks of 4096 samples as sox measures it, hertz and decibels.
spectrum() {
    sox -V1 "$1" -n stat -freq 2>&1 | awk '
        NF == 2 && $1 ~ /^[0-9.]+$/ { if (!($1 in sum)) order[n++] = $1; sum[$1] += $2; ++blocks[$1] }
        END { for (i = 0; i < n; ++i) { f = order[i]; print f, 10 * log(sum[f] / blocks[f] + 1e-9) / log(10) } }'
}

# check_filters: every filter on noise must leave what that of sox does.
check_filters() {
    local pair filter other difference
    for pair in "${filter_pairs[@]}"; do
        IFS='|' read -r filter other <<<"$pair"
        "$vela" audio noise.wav filtered.wav --biquad "$filter" --format f32 >>"$log"
        # shellcheck disable=SC2086 # words of a command
        sox noise.wav -e float -b 32 reference.wav $other
        difference=$(sox -m -v 1 filtered.wav -v -1 reference.wav -n stats 2>&1 | awk '/^Pk lev dB/ { print $4 }')
        awk -v d="$difference" -v most="$largest_difference" 'BEGIN { exit d != "-inf" && !(d < most) }' ||
            fail "$filter: vela and sox differ by a peak of '$difference' dBFS"
        echo "$filter: differs from sox $other by a peak of $difference dBFS"
    done
}

# draw_responses: of some filters to an impulse, beside the formulas. The largest distance must be small.
draw_responses() {
    local filter i=0 curves='' points='' distances='' farthest
    sox impulse.dat -b 24 impulse.wav pad 0 16383s
    for filter in "${plotted_filters[@]}"; do
        "$vela" audio impulse.wav response.wav --biquad "$filter" --format f32 >>"$log"
        response response.wav >"response$i.txt"
        curves+="dB($(formula "$filter")) with lines lw 3 lc rgb '${colours[i]}' title '$filter', "
        points+="'response$i.txt' every 3 with points pt 6 ps 0.8 lc rgb '$ink' notitle, "
        distances+="dB_$i(x) = dB($(formula "$filter"))
stats 'response$i.txt' using (dB_$i(\$1) > -60 ? abs(\$2 - dB_$i(\$1)) : 0) nooutput
print STATS_max
"
        i=$((i + 1))
    done
    chart responses.png "
set print 'distances.txt'
$distances
set print
set logscale x
set xrange [30:22000]
set yrange [-40:27]
set xlabel 'Hz'
set ylabel 'dB'
set key top left Left reverse samplen 2
plot $curves $points NaN with points pt 6 ps 0.8 lc rgb '$ink' title 'measured'"
    farthest=$(sort -g distances.txt | tail -n 1)
    awk -v d="$farthest" -v most="$farthest_response" 'BEGIN { exit d == "" || d > most }' ||
        fail "a response is '$farthest' dB from its formula"
    farthest_found=$(printf '%.5f' "$farthest")
    echo "responses to an impulse: within $farthest_found dB of the formulas"
}

# draw_noise: the spectrum of noise before and after several filters.
draw_noise() {
    local filter product=1
    "$vela" audio noise.wav filtered.wav "${cascade[@]/#/--biquad=}" --format f32 | tee cascade.txt
    for filter in "${cascade[@]}"; do
        product+=" * $(formula "$filter")"
    done
    spectrum noise.wav >before.txt
    spectrum filtered.wav >after.txt
    chart noise.png "
stats 'before.txt' using 2 nooutput
level = STATS_mean
set logscale x
set xrange [40:22000]
set xlabel 'Hz'
set ylabel 'dB'
set key bottom left Left reverse samplen 2
set yrange [-30:15]
plot 'before.txt' using 1:(\$2 - level) with lines lc rgb '$grey' title 'noise', \\
    'after.txt' using 1:(\$2 - level) with lines lw 1.5 lc rgb '${colours[0]}' title 'filtered', \\
    dB($product) with lines lw 2 dt 2 lc rgb '${colours[1]}' title 'formula'"
}

# draw_upsampled: tones at four times the rate, by zeros between the samples and by vela. The tones have whole periods
# in the blocks of the spectrum.
draw_upsampled() {
    local image
    sox -r "$filter_rate" -c 6 -n -b 24 tones.wav \
        synth 1 sine 1500 sine 4500 sine 7500 sine 10500 sine 13500 sine 16312.5 remix 1-6 gain -3
    "$vela" audio tones.wav tones4.wav --upsample4 --format f32 | tee upsample.txt
    sox -V1 tones4.wav steady.wav trim 8192s 32768s
    sox tones.wav -r $((4 * filter_rate)) -e float -b 32 zeros.wav upsample 4 trim 8192s 32768s
    spectrum steady.wav >upsampled.txt
    spectrum zeros.wav >zeros.txt
    image=$(awk '$1 < 24000 { if (!tones++ || $2 > tone) tone = $2 }
        $1 > 24000 { if (!images++ || $2 > most) most = $2 }
        END { if (tones && images) print most - tone }' upsampled.txt)
    awk -v image="$image" -v most="$largest_image" 'BEGIN { exit image == "" || image > most }' ||
        fail "upsampling leaves an image at '$image' dB"
    image_found=$(printf '%.1f' "$image")
    echo "tones at four times the rate: the strongest image is at $image_found dB"
    chart upsampled.png "
stats 'upsampled.txt' using 2 nooutput
tone = STATS_max
stats 'zeros.txt' using 2 nooutput
zeros = STATS_max
set xrange [0:96]
set yrange [-100:0]
set xtics 12
set xlabel 'kHz'
set ylabel 'dB'
set key outside top center horizontal samplen 2
lift(y) = y > -100 ? y + 100 : NaN
plot 'zeros.txt' using (\$1 / 1000):(-100):(0):(lift(\$2 - zeros)) with vectors nohead lw 4 lc rgb '#59606a' \\
        title 'zeros between the samples', \\
    'upsampled.txt' using (\$1 / 1000):(-100):(0):(lift(\$2 - tone)) with vectors nohead lw 4 lc rgb '${colours[0]}' \\
        title 'upsampled', \\
    $largest_image with lines dt 2 lc rgb '${colours[1]}' title '$largest_image dB'"
}

# add_chart FILE TITLE TEXT
add_chart() {
    caption "$chart_width" "$2" "$3" "$1.caption.png"
    convert "$1" "$1.caption.png" -append -bordercolor "$paper" -border 8x8 "$1.panel.png"
    panels+=("$1.panel.png")
}

# speed_of REPORT KERNEL: as speed, of samples.
speed_of() { speed "$1" "$2" | sed 's/pixel/sample/; s/^/'"$2"': /'; }

# Filters and upsampling on sounds from sox, checked and drawn.
filters() {
    local folder=$work/filter farthest_found image_found panels=()
    say "Filters and upsampling"
    rm -rf "$folder"
    mkdir "$folder"
    cd "$folder"
    printf '; Sample Rate %d\n; Channels 1\n0 0.5\n' "$filter_rate" >impulse.dat
    sox -R -n -r "$filter_rate" -b 24 noise.wav synth 20 whitenoise gain -14
    check_filters
    draw_responses
    draw_noise
    draw_upsampled
    echo

    add_chart responses.png "Second-order filters" "Circles: Fourier sums of responses to an impulse; within
$farthest_found dB of the formulas. On noise, all seven kinds differ
from those of sox by less than $largest_difference dBFS"
    add_chart noise.png "Noise through ${#cascade[@]} of them" "$(speed_of cascade.txt AudioBiquadS24Strided)
$(speed_of cascade.txt AudioBiquadF64)
highpass, lowshelf, notch, peak, highshelf, one after the other"
    add_chart upsampled.png "Tones upsampled from 48 to 192 kHz" "$(speed_of upsample.txt AudioUpsample4S24Strided)
the strongest image: $image_found dB"
    convert "${panels[@]}" +append +repage -depth 8 "$filter_sheet"
    sheets+=("Filters and upsampling" "$filter_sheet")
    cd "$root"
}

# The luma of a photograph sharpened on its way through 4:2:2.
sharpening() {
    local picture x y name folder=$work/sharpen parts=$work/sharpen/parts width height left top amount i=2
    read -r picture x y <<<"${photos[0]}"
    name=${picture%.jpg}
    say "$picture sharpened in 4:2:2"
    rm -rf "$folder"
    mkdir -p "$parts"
    local before=$folder/$name.bmp
    to_bmp "$work/photos/usr/share/backgrounds/$picture" "$before"
    read -r width height < <(identify -format '%w %h\n' "$before")
    left=$(clamp $((width * x / 100 - detail_width / 2)) $((width - detail_width)))
    top=$(clamp $((height * y / 100 - detail_height / 2)) $((height - detail_height)))
    overview
    cd "$folder"
    "$vela" convert "$name.bmp" plain.yuyv --to YUYV >>"$log"
    for amount in 0.25 0.5 1; do
        "$vela" convert "$name.bmp" sharp.yuyv --to YUYV --sharpen-luma "$amount" --runs 9 | tee report.txt
        "$vela" convert sharp.yuyv sharp.bmp --from YUYV --size "${width}x$height" >>"$log"
        # cmp counts from 1: chroma are the even ones.
        { cmp -l plain.yuyv sharp.yuyv || true; } | awk '{ ++changed[$1 % 2] } END { exit !(changed[1] && !changed[0]) }' ||
            fail "sharpening by $amount has changed chroma, or nothing"
        echo "every byte of chroma is the same"
        echo
        detail sharp.bmp "$parts/$i.png"
        caption "$cell_width" "--sharpen-luma $amount" "SharpenLuma422YFirst8
$(speed report.txt SharpenLuma422YFirst8)" "$parts/c$i.png"
        i=$((i + 1))
    done
    join_cells row.png "$i"
    make_sheet "$sharpen_sheet" "Luma sharpened in 4:2:2: vela convert --to YUYV --sharpen-luma" row.png
    sheets+=("Sharpened in 4:2:2" "$sharpen_sheet")
    cd "$root"
}
