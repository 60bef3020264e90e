// Gains on integer samples: in float, then to the nearest integer within the range.
#pragma once

namespace {

// The largest float below a half. Added before truncation it rounds to nearest: a fraction of a half goes up, since the
// sum is then rounded up; the largest float below a half does not, and neither do integers from 2^23 on, which have no
// room for a fraction. A half itself would fail on both.
constexpr float belowHalf = 0x1.fffffep-2f;

// To the nearest integer, halves away from zero; INT32_MIN for a NaN and for what 32 bits do not hold.
inline i32s toNearest(f32s x) { return truncate(x + (signBits(x) | splatF32(belowHalf))); }

// For writers that limit to 16 bits: above, since 32 bits may not hold x; below they do it themselves, NaN included.
inline i32s nearestS16(f32s x) { return toNearest(smaller(splatF32(32767), x)); }

// Limited to 24 bits. The larger of x and a limit is the limit if x is a NaN.
inline i32s nearestS24(f32s x) { return toNearest(smaller(larger(x, splatF32(-0x1p23f)), splatF32(0x7FFFFF))); }

// Limited to 32 bits: what lies beyond comes out as INT32_MIN, which turned over is INT32_MAX.
inline i32s nearestS32(f32s x) { return toNearest(x) ^ as<i32s>(atLeast(x, splatF32(0x1p31f))); }

// Limited to 0..65535, where the half needs no sign.
inline i32s nearestU16(f32s x)
{
    return truncate(smaller(larger(x, splatF32(0)), splatF32(65535)) + splatF32(belowHalf));
}

void MemScaleS16(int16_t *dst, const int16_t *src, double gain, uint64_t count)
{
    const f32s factor = splatF32((float)gain);
    map<i16s>(
        dst, (ptrdiff_t)count,
        [factor](i16s x) {
            return narrow(nearestS16(toFloat(widenLow(x)) * factor), nearestS16(toFloat(widenHigh(x)) * factor));
        },
        src);
}

void MemScaleS32(int32_t *dst, const int32_t *src, double gain, uint64_t count)
{
    const f32s factor = splatF32((float)gain);
    map<i32s>(
        dst, (ptrdiff_t)count, [factor](i32s x) { return nearestS32(toFloat(x) * factor); }, src);
}

void MemScaleClampS32(int32_t *dst, const int32_t *src, double gain, int32_t lower, int32_t upper, uint64_t count)
{
    const f32s factor = splatF32((float)gain);
    const i32s low = splatI32(lower);
    const i32s high = splatI32(upper);
    map<i32s>(
        dst, (ptrdiff_t)count,
        [factor, low, high](i32s x) { return smaller(larger(nearestS32(toFloat(x) * factor), low), high); }, src);
}

void MemScaleU16(uint16_t *dst, const uint16_t *src, double gain, uint64_t count)
{
    const f32s factor = splatF32((float)gain);
    const auto scale = [factor](u32s x) { return nearestU16(toFloat(as<i32s>(x)) * factor); };
    map<u16s>(
        dst, (ptrdiff_t)count, [scale](u16s x) { return narrowWords(scale(widenLow(x)), scale(widenHigh(x))); }, src);
}

void MemScaleOp39(uint8_t *dst, const uint8_t *src, float gain, uint64_t count)
{
    const f32s factor = splatF32(gain);
    convertWithin<S24>(dst, src, count,
                       [factor](i32s top) { return nearestS24(toFloat(shiftRight<8>(top)) * factor); });
}

void MemScaleOp40(uint8_t *dst, const int32_t *src, double gain, uint64_t count)
{
    const f32s factor = splatF32((float)gain * 0x1p-8f);
    convert<S24, S32>(dst, src, count, [factor](i32s x) { return nearestS24(toFloat(x) * factor); });
}

void MemScaleOp41(int16_t *dst, const int32_t *src, double gain, uint64_t count)
{
    const f32s factor = splatF32((float)gain * 0x1p-16f);
    convert<S16, S32>(dst, src, count, [factor](i32s x) { return nearestS16(toFloat(x) * factor); });
}

// The sum of a pair times a weight of at most 32767 fits 32 bits, and so does what is added to round it.
void MemScaleOp51(int16_t *dst, const int16_t *src, double gain, uint64_t count)
{
    const i16s weight = splatI16(toFixed<weightBits>(gain));
    const auto mono = [weight](const uint8_t *from) {
        return shiftRight<14>(multiplyAddPairs(load<i16s>(from), weight) + splatI32(8192));
    };
    forBlocks<i16s::lanes>(
        (ptrdiff_t)count,
        [mono](uint8_t *to, const uint8_t *from) { store(to, narrow(mono(from), mono(from + sizeof(i16s)))); },
        Out<2>{dst}, In<4>{src});
}

} // namespace
