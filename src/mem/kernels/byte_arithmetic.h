// Bytes and words lane by lane: limited sums, distances, means, extremes, masks.
#pragma once

namespace {

void MemAddSat8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x, u8s y) { return addLimited(x, y); }, a, b);
}

void MemSubSat8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x, u8s y) { return subtractLimited(x, y); }, a, b);
}

void MemAbsDiff8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x, u8s y) { return distance(x, y); }, a, b);
}

void MemAverage8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x, u8s y) { return average(x, y); }, a, b);
}

void MemAverage16(uint16_t *dst, const uint16_t *a, const uint16_t *b, uint64_t count)
{
    map<u16s>(
        dst, (ptrdiff_t)count, [](u16s x, u16s y) { return average(x, y); }, a, b);
}

void MemMax8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x, u8s y) { return larger(x, y); }, a, b);
}

void MemMin8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x, u8s y) { return smaller(x, y); }, a, b);
}

void MemMax16(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count)
{
    map<i16s>(
        dst, (ptrdiff_t)count, [](i16s x, i16s y) { return larger(x, y); }, a, b);
}

void MemMin16(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count)
{
    map<i16s>(
        dst, (ptrdiff_t)count, [](i16s x, i16s y) { return smaller(x, y); }, a, b);
}

// The bytes from one 32-bit number to another.
struct ByteRange {
    u8s lower;
    u8s upper;

    ByteRange(int32_t from, int32_t to)
    {
        const bool isEmpty = from > 255 || to < 0;
        lower = splat8((uint8_t)(isEmpty ? 255 : from < 0 ? 0 : from)); // no byte is at least 255 and at most 0
        upper = splat8((uint8_t)(isEmpty ? 0 : to > 255 ? 255 : to));
    }
    // A mask.
    u8s contains(u8s x) const { return equal(subtractLimited(lower, x) | subtractLimited(x, upper), splat8(0)); }
};

void MemThresholdOp50(uint8_t *dst, const uint8_t *src, int32_t lower, int32_t upper, uint64_t count)
{
    const ByteRange range(lower, upper);
    map<u8s>(
        dst, (ptrdiff_t)count, [range](u8s x) { return range.contains(x); }, src);
}

void MemCompareMask8(uint8_t *dst, const uint8_t *src, uint64_t count)
{
    map<u8s>(
        dst, (ptrdiff_t)count, [](u8s x) { return equal(x, splat8(0)); }, src);
}

} // namespace
