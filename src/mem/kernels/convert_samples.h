// Conversions between sample formats: a row of the list each.
#pragma once

namespace {

// --- Steps ---------------------------------------------------------------------------------------------------

constexpr auto asIs = [](i32s x) { return x; };

// Samples in the top of their lanes as the low three bytes of 24-bit ones.
constexpr auto topToS24 = [](i32s top) { return shiftRight<8>(top); };

// Every signed format is read as 32-bit samples, so that one scale serves all. Up to 24 bits nothing is rounded.
constexpr auto topToUnit = [](i32s top) { return toFloat(top) * splatF32(0x1p-31f); };
constexpr auto topToUnitDouble = [](i32s top) { return toDouble(topToUnit(top)); };

// Truncated to integers of `bits` bits. Only the upper limit needs its own instruction: a NaN and what lies below the
// 32-bit range become INT32_MIN, which the writers limit as any other. The smaller of limit and x is x if it is a NaN.
template <int bits> inline i32s unitToLimited(f32s x)
{
    constexpr float scale = (float)(1u << (bits - 1));
    return truncate(smaller(splatF32(scale - 1), x * splatF32(scale)));
}
constexpr auto unitToS8 = [](f32s x) { return unitToLimited<8>(x); };
constexpr auto unitToS16 = [](f32s x) { return unitToLimited<16>(x); };
constexpr auto unitToS24 = [](f32s x) { return truncate(x * splatF32(0x1p23f)); };
constexpr auto unitToS32 = [](f32s x) { return truncate(x * splatF32(0x1p31f)); };

constexpr auto rounded = [](Pair<f64s> x) { return toFloat(x.low, x.high); };

constexpr auto nearestByte = [](f32s x) { return truncate(smaller(splatF32(255), x + splatF32(0.5f))); };

// --- From integers -------------------------------------------------------------------------------------------

void ConvertU8ToF32(float *dst, const uint8_t *src, uint64_t count)
{
    convert<F32, U8>(dst, src, count, [](i32s x) { return toFloat(x); });
}

void ConvertS32ToF32Gain(float *dst, const int32_t *src, float gain, uint64_t count)
{
    const f32s factor = splatF32(gain);
    map<i32s>(
        dst, (ptrdiff_t)count, [factor](i32s x) { return toFloat(x) * factor; }, src);
}

void ConvertS8ToS16(int16_t *dst, const int8_t *src, uint64_t count)
{
    const auto widen = [](uint8_t *to, const uint8_t *from) {
        const u8s x = load<u8s>(from);
        store(to, interleaveLow(zero<u8s>(), x));
        store(to + sizeof(u8s), interleaveHigh(zero<u8s>(), x));
    };
    forBlocksAndParts<2 * u8s::lanes, u8s::lanes>( // the loop's own instructions show in so short a kernel
        (ptrdiff_t)count,
        [widen](uint8_t *to, const uint8_t *from) {
            widen(to, from);
            widen(to + 2 * sizeof(u8s), from + sizeof(u8s));
        },
        widen, Out<2>{dst}, In<1>{src});
}

void ConvertS8ToS24(uint8_t *dst, const int8_t *src, uint64_t count) { convert<S24, S8>(dst, src, count, topToS24); }
void ConvertS8ToS32(int32_t *dst, const int8_t *src, uint64_t count) { convert<S32, S8>(dst, src, count, asIs); }
void ConvertS16ToS24(uint8_t *dst, const int16_t *src, uint64_t count) { convert<S24, S16>(dst, src, count, topToS24); }
void ConvertS16ToS32(int32_t *dst, const int16_t *src, uint64_t count) { convert<S32, S16>(dst, src, count, asIs); }
void ConvertS24ToS32(int32_t *dst, const uint8_t *src, uint64_t count) { convert<S32, S24>(dst, src, count, asIs); }

void ConvertS8ToF32(float *dst, const int8_t *src, uint64_t count) { convert<F32, S8>(dst, src, count, topToUnit); }
void ConvertS16ToF32(float *dst, const int16_t *src, uint64_t count) { convert<F32, S16>(dst, src, count, topToUnit); }
void ConvertS24ToF32(float *dst, const uint8_t *src, uint64_t count) { convert<F32, S24>(dst, src, count, topToUnit); }

void ConvertS32ToF32Scaled(float *dst, const int32_t *src, uint64_t count)
{
    map<i32s>(dst, (ptrdiff_t)count, topToUnit, src);
}

void ConvertS8ToF64(double *dst, const int8_t *src, uint64_t count)
{
    convert<F64, S8>(dst, src, count, topToUnitDouble);
}

void ConvertS16ToF64(double *dst, const int16_t *src, uint64_t count)
{
    convert<F64, S16>(dst, src, count, topToUnitDouble);
}

void ConvertS24ToF64(double *dst, const uint8_t *src, uint64_t count)
{
    convert<F64, S24>(dst, src, count, topToUnitDouble);
}

void ConvertS32ToF64(double *dst, const int32_t *src, uint64_t count)
{
    convert<F64, S32>(dst, src, count, [](i32s x) {
        const Pair<f64s> wide = toDouble(x);
        return Pair<f64s>{wide.low * splatF64(0x1p-31), wide.high * splatF64(0x1p-31)};
    });
}

// --- From floats ---------------------------------------------------------------------------------------------

void ConvertF64ToF32(float *dst, const double *src, uint64_t count) { convert<F32, F64>(dst, src, count, rounded); }

void ConvertF32ToF64(double *dst, const float *src, uint64_t count)
{
    convert<F64, F32>(dst, src, count, [](f32s x) { return toDouble(x); });
}

void ConvertF32ToS8(int8_t *dst, const float *src, uint64_t count) { convert<S8, F32>(dst, src, count, unitToS8); }
void ConvertF32ToS16(int16_t *dst, const float *src, uint64_t count) { convert<S16, F32>(dst, src, count, unitToS16); }
void ConvertF32ToS24(uint8_t *dst, const float *src, uint64_t count) { convert<S24, F32>(dst, src, count, unitToS24); }

void ConvertF32ToS32(int32_t *dst, const float *src, uint64_t count)
{
    map<f32s>(dst, (ptrdiff_t)count, unitToS32, src);
}

void ConvertF64ToS8(int8_t *dst, const double *src, uint64_t count)
{
    convert<S8, F64>(dst, src, count, [](Pair<f64s> x) { return unitToS8(rounded(x)); });
}

void ConvertF64ToS16(int16_t *dst, const double *src, uint64_t count)
{
    convert<S16, F64>(dst, src, count, [](Pair<f64s> x) { return unitToS16(rounded(x)); });
}

void ConvertF64ToS24(uint8_t *dst, const double *src, uint64_t count)
{
    convert<S24, F64>(dst, src, count, [](Pair<f64s> x) { return unitToS24(rounded(x)); });
}

// Every whole block writes the same eight elements, and the rows do not overlap: of all blocks only the last one
// leaves a trace, so only that one is converted.
void ConvertF64ToS32(int32_t *dst, const double *src, uint64_t count)
{
    static constexpr double everySecond[4] = {0x1p31, 1, 0x1p31, 1}; // times 1 changes no value
    const uint64_t blocks = count / 8;
    if (blocks > 0) {
        const f64s scale = load<f64s>(everySecond);
        const double *block = src + 12 * (blocks - 1);
        for (int k = 0; k < 8; k += i32s::lanes)
            store(dst + k, truncate(load<f64s>(block + k) * scale, load<f64s>(block + k + f64s::lanes) * scale));
    }
    forBlocks<i32s::lanes>((ptrdiff_t)(count % 8),
                           [](uint8_t *to, const uint8_t *from) {
                               const f64s scale = splatF64(0x1p31);
                               store(to, truncate(load<f64s>(from) * scale, load<f64s>(from + sizeof(f64s)) * scale));
                           },
                           Out<4>{dst}, In<8>{src + 12 * blocks});
}

void ConvertUnitF32ToU8(uint8_t *dst, const float *src, uint64_t count)
{
    convert<U8, F32>(dst, src, count, [](f32s x) { return nearestByte(x * splatF32(255)); });
}

void ConvertF32ToU8(uint8_t *dst, const float *src, uint64_t count) { convert<U8, F32>(dst, src, count, nearestByte); }

} // namespace
