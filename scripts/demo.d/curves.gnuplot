# The CSV files of `vela curves`: light by code value, and code value by light. scripts/demo.d/hdr.sh sets the names.
set terminal pngcairo size 2000,980 background rgb paper font "DejaVu Sans,12"
set output sheet
set datafile separator ","

# Curve, colour, dash and width: displays blue, HDR red, cameras by maker.
count = 19
array name[count] = ["bt709", "bt601", "bt2020-12bit", "power2.2", "power2.4", "power2.6", "power2.8", \
    "pq", "hlg", "hlg-scene", "s-log2", "s-log3", "s-log3-high", "canon-log", "canon-log2", "canon-log3", \
    "log3g10", "v-log", "log-210"]
array colour[count] = ["#4f9df7", "#4f9df7", "#4f9df7", "#8fd0ff", "#8fd0ff", "#8fd0ff", "#8fd0ff", \
    "#ff5a4d", "#ffa24d", "#ffa24d", "#4fd06a", "#4fd06a", "#4fd06a", "#f2d64b", "#f2d64b", "#f2d64b", \
    "#c78bff", "#ff7fd0", "#c9ced4"]
array dash[count] = [1, 3, 2, 1, 2, 4, 3, 1, 1, 2, 1, 2, 3, 1, 2, 3, 1, 1, 1]
array thick[count] = [2, 4, 2, 2, 2, 2, 2, 4, 4, 3, 2, 2, 2, 2, 2, 2, 2, 2, 2]

set border lc rgb grey
set grid lc rgb "#3a3f46" lt 1 lw 1
set tics textcolor rgb ink
set multiplot

set size 0.43, 1
set origin 0, 0
set title "Decoded: light by code value" textcolor rgb ink font "DejaVu Sans,18"
set xlabel "code value" textcolor rgb grey
set ylabel "light; of PQ and HLG 1.0 is 100 cd/m²" textcolor rgb grey
set logscale y
set format y "10^{%L}"
set xrange [0:1]
set yrange [1e-4:300]
unset key
plot for [i = 1:count] work."/decode.csv" using "code":(column(name[i]) > 0 ? column(name[i]) : NaN) \
    with lines lc rgb colour[i] dt dash[i] lw thick[i]

set size 0.57, 1
set origin 0.43, 0
set title "Encoded: code value by light"
set xlabel "light; tables end at 16, or at 64"
set ylabel "code value"
unset logscale y
set logscale x
set format y "%.1f"
set format x "10^{%L}"
set xrange [1e-3:64]
set yrange [0:1]
set key outside right center textcolor rgb ink spacing 1.7 samplen 4 noenhanced font "DejaVu Sans,13"
plot for [i = 1:count] work."/encode.csv" using "light":name[i] \
    with lines lc rgb colour[i] dt dash[i] lw thick[i] title name[i]
unset multiplot
