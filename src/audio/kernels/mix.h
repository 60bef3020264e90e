// Mixers: a gained signal into an integer accumulator, in float.
#pragma once

namespace {

// What lies below -2^31 the conversion turns into that itself.
inline i32s mixed(i32s old, i32s x, f32s gain)
{
    const f32s largestFloat = splatF32(2147483392.0f); // below 2^31
    return toNearestEven(smaller(toFloat(x) * gain + toFloat(old), largestFloat));
}

void AudioMixS16(int16_t *accumulator, const int16_t *source, uint32_t count, double gain)
{
    map<i16s>(
        accumulator, (ptrdiff_t)count,
        [g = splatF32((float)gain)](i16s old, i16s x) {
            return narrow(mixed(widenLow(old), widenLow(x), g), mixed(widenHigh(old), widenHigh(x), g));
        },
        accumulator, source);
}

void AudioMixS32(int32_t *accumulator, const int32_t *source, uint32_t count, double gain)
{
    update<i32s>(
        accumulator, (ptrdiff_t)count, [g = splatF32((float)gain)](i32s old, i32s x) { return mixed(old, x, g); },
        source);
}

} // namespace
