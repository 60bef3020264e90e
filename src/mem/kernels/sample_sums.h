// Sums over integer samples.
#pragma once

namespace {

// --- In lanes of float ---------------------------------------------------------------------------------------
// The scale is a power of two, so that it may wait for the sum: no term or sum comes near the ends of the exponent.

float MemSumS16F32(const int16_t *src, uint64_t count)
{
    return 0x1p-15f * sumInLanes<32>((ptrdiff_t)count, [](f32s x) { return x; }, Words16AsFloats{src});
}

float MemSumS24F32(const uint8_t *src, uint64_t count)
{
    return 0x1p-31f * sumInLanes<32>((ptrdiff_t)count, [](f32s x) { return x; }, Bytes24AsFloats{src});
}

float MemSumS32F32(const int32_t *src, uint64_t count)
{
    return 0x1p-31f * sumInLanes<32>((ptrdiff_t)count, [](f32s x) { return x; }, Words32AsFloats{src});
}

// The square has no use for the sign of the difference, so 16 bits hold what is converted.
double MemSquaredDiffSumU16(const uint16_t *a, const uint16_t *b, uint64_t count)
{
    const auto squaredError = [](u16s x, u16s y) {
        const u16s d = distance(x, y);
        const f32s low = toFloat(as<i32s>(widenLow(d)));
        const f32s high = toFloat(as<i32s>(widenHigh(d)));
        return Pair<f32s>{low * low, high * high};
    };
    return (double)sumInLanes<32>((ptrdiff_t)count, squaredError, Lanes<u16s>{a}, Lanes<u16s>{b});
}

// --- Of integers ---------------------------------------------------------------------------------------------

// A product with 1 or -1 makes the difference positive; -32768 becomes 32768, which the sum of a pair holds.
uint32_t MemAbsDiffSumS16(const int16_t *a, const int16_t *b, uint64_t count)
{
    const auto magnitudes = [](i16s x, i16s y) {
        const i16s d = subtractLimited(x, y);
        return as<u32s>(multiplyAddPairs(d, unitWithSignOf(d)));
    };
    return sumOf((ptrdiff_t)count, magnitudes, Lanes<i16s>{a}, Lanes<i16s>{b});
}

// Two products of -32768 make 2^31, which is right modulo 2^32.
int32_t MemMulAddS16(const int16_t *a, const int16_t *b, uint64_t count)
{
    const auto products = [](i16s x, i16s y) { return as<u32s>(multiplyAddPairs(x, y)); };
    return (int32_t)sumOf((ptrdiff_t)count, products, Lanes<i16s>{a}, Lanes<i16s>{b});
}

} // namespace
