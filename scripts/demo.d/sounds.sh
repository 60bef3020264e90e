# shellcheck shell=bash disable=SC2154,SC2164 # set and checked by scripts/demo, which stops at any failure
# Recorded voices, their mix, and what 8 bits lose: scripts/demo sources this file.

sound_sheet=$work/sound-sheet.png
sound_package=alsa-utils
voices=(Front_Left.wav Rear_Right.wav)
mix_options=(--gain "-3,-9" --normalize -1 --format s24)

panel_width=480 panel_height=300

# levels SOUND: peak and RMS in dBFS as sox measures them.
levels() { sox "$1" -n stats 2>&1 | awk '/^Pk lev dB/ { peak = $4 } /^RMS lev dB/ { rms = $4 } END { print peak, rms }'; }

# check_levels REPORT SOUND: what vela printed of a sound of one channel must be what sox finds in the file.
check_levels() {
    local printed found
    printed=$(awk -v sound="$2" '$1 == sound { print $(NF - 1), $NF }' "$1")
    found=$(levels "$work/$2")
    awk -v a="$printed" -v b="$found" 'function far(x, y) { return x - y > 0.011 || y - x > 0.011 }
        BEGIN { exit split(a, p) != 2 || split(b, q) != 2 || far(p[1], q[1]) || far(p[2], q[2]) }' ||
        fail "$2: vela measures peak and RMS '$printed' dBFS, sox '$found'"
    echo "$2: peak and RMS $printed dBFS; sox finds $found"
}

# add_panel SOUND TITLE TEXT: a spectrogram of the first 1.6 seconds, up to 8 kHz.
add_panel() {
    local panel=$work/sound/panel${#panels[@]}.png
    quietly sox "$1" -n rate 16k spectrogram -r -z 90 -d 1.6 -x "$panel_width" -y "$panel_height" -o "$panel" ||
        fail "sox cannot draw '$1'; see $log"
    caption "$panel_width" "$2" "$3" "$panel.caption.png"
    convert -size "${panel_width}x$panel_height" xc:black "$panel" -composite "$panel.caption.png" -append \
        -bordercolor "$paper" -border 8x8 "$panel"
    panels+=("$panel")
}

# Mixes two voices, sends one through 24 bits and back, and shows what 8 bits lose.
sounds() {
    local folder=$work/sound report=$work/sound/report.txt voice=sound/${voices[0]} peak rms panels=() i
    fetch "$sound_package" voices "recorded voices" || fail "cannot fetch $sound_package"
    rm -rf "$folder"
    mkdir "$folder"
    cp "${voices[@]/#/$work/voices/usr/share/sounds/alsa/}" "$folder"
    cd "$work"

    say "${voices[*]}"
    "$vela" audio "${voices[@]/#/sound/}" sound/mix.wav "${mix_options[@]}" | tee "$report"
    for i in "${voices[@]}" mix.wav; do
        check_levels "$report" "sound/$i"
    done

    "$vela" audio "$voice" sound/wide.wav --format s24 >>"$log"
    "$vela" audio sound/wide.wav sound/back.wav --format s16 >>"$log"
    cmp <(sox "$voice" -t raw -) <(sox sound/back.wav -t raw -) || fail "24 bits have changed $voice"
    echo "$voice to 24 bits and back: every sample is the same"
    "$vela" audio sound/mix.wav sound/mix-u8.wav --format u8 >>"$log"
    sox -m -v 1 sound/mix.wav -v -1 sound/mix-u8.wav -b 24 sound/lost.wav
    echo

    for i in "${voices[@]}"; do
        read -r peak rms < <(levels "sound/$i")
        add_panel "sound/$i" "${i%.wav}" "16 bits; peak $peak dBFS, RMS $rms dBFS
ConvertS16ToF32: $(speed "$report" ConvertS16ToF32 | sed 's/pixel/sample/')
Spectrum up to 8 kHz over 1.6 seconds"
    done
    read -r peak rms < <(levels sound/mix.wav)
    add_panel sound/mix.wav "Mix: ${mix_options[*]}" "peak $peak dBFS, RMS $rms dBFS
MemGainAddF32: $(speed "$report" MemGainAddF32 | sed 's/pixel/sample/')
ConvertF32ToS24: $(speed "$report" ConvertF32ToS24 | sed 's/pixel/sample/')"
    read -r peak rms < <(levels sound/lost.wav)
    add_panel sound/lost.wav "What 8 bits lose of it" "peak $peak dBFS, RMS $rms dBFS
cut off towards zero, not rounded"
    convert "${panels[@]}" +append +repage -depth 8 "$sound_sheet"
    rm "$folder"/panel*
    sheets+=("The voices and their mix" "$sound_sheet")
    cd "$root"
}
