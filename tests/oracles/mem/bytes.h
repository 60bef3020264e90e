#pragma once

#include <cmath>
#include <vector>

namespace {

// --- Lane by lane --------------------------------------------------------------------------------------------

void MemAddSat8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(a[i] + b[i] < 255 ? a[i] + b[i] : 255);
}

void MemSubSat8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(a[i] > b[i] ? a[i] - b[i] : 0);
}

void MemAbsDiff8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
}

void MemAverage8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>((a[i] + b[i] + 1) >> 1);
}

void MemAverage16(uint16_t *dst, const uint16_t *a, const uint16_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint16_t>((a[i] + b[i] + 1) >> 1);
}

void MemMax8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] > b[i] ? a[i] : b[i];
}

void MemMin8(uint8_t *dst, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] < b[i] ? a[i] : b[i];
}

void MemMax16(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] > b[i] ? a[i] : b[i];
}

void MemMin16(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] < b[i] ? a[i] : b[i];
}

void MemThresholdOp50(uint8_t *dst, const uint8_t *src, int32_t lower, int32_t upper, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = lower <= src[i] && src[i] <= upper ? 255 : 0;
}

void MemCompareMask8(uint8_t *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] == 0 ? 255 : 0;
}

// --- Mixes ---------------------------------------------------------------------------------------------------

// Fix(w, k): w with k fraction bits, to the nearest integer, ties to even.
int mixWeight(double w, int fractionBits)
{
    double t = w * (1 << fractionBits);
    t = t > -32767 ? t : -32767;
    t = t < 32767 ? t : 32767;
    return static_cast<int>(std::nearbyint(t));
}

// P(x, W)
int mixProduct(int x, int weight) { return (128 * x * weight) >> 16; }

uint8_t mixLimited(int t) { return static_cast<uint8_t>(t < 0 ? 0 : t > 255 ? 255 : t); }

// U(t) and V(t)
uint8_t mixFrom5Bits(int t) { return mixLimited((t + 16) >> 5); }
uint8_t mixFrom3Bits(int t) { return mixLimited((t + 4) >> 3); }

void MemBlend8(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int w = mixWeight(weight, 14);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom5Bits(32 * b[i] + mixProduct(a[i] - b[i], w));
}

void MemScale8(uint8_t *dst, const uint8_t *src, double gain, uint64_t count)
{
    const int g = mixWeight(gain, 12);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom3Bits(mixProduct(src[i], g));
}

void MemMixOp13(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int w = mixWeight(weight, 14);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom5Bits(32 * a[i] + mixProduct(b[i], w));
}

void MemMixOp15(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int g = mixWeight(weight, 12);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom3Bits(1024 + mixProduct(a[i] - b[i], g));
}

void MemMixOp17(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int w = mixWeight(weight, 14);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom5Bits(32 * a[i] + mixProduct(b[i] - 128, w));
}

void MemMixOp19(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int w = mixWeight(weight, 14);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom5Bits(32 * a[i] + mixProduct(b[i] > a[i] ? b[i] - a[i] : 0, w));
}

void MemMixOp21(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int w = mixWeight(weight, 14);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom5Bits(32 * a[i] + mixProduct(b[i] < a[i] ? b[i] - a[i] : 0, w));
}

void MemMixOp23(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int g = mixWeight(weight, 12);
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom3Bits(mixProduct(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i], g));
}

// L(y)
double mixUnitLimited(double y) { return y > 0 ? (y < 1 ? y : 1) : 0; }

void MemMixOp4(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const int ofA = mixWeight(mixUnitLimited(2 - 2 * weight), 14);
    const int ofB = mixWeight(mixUnitLimited(2 * weight), 14);
    for (uint64_t i = 0; i < count; ++i) {
        const int fromA = mixProduct(a[i], ofA);
        const int fromB = mixProduct(b[i], ofB);
        dst[i] = mixFrom5Bits(fromA > fromB ? fromA : fromB);
    }
}

void MemMixOp6(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    std::vector<int> w;
    if (!count)
        return;
    for (int32_t k = 0; k < inputs; ++k)
        w.push_back(mixWeight(weights[k], 14));
    for (uint64_t i = 0; i < count; ++i) {
        int t = 0;
        for (std::size_t k = 0; k < w.size(); ++k) {
            t += mixProduct(src[k][i], w[k]);
            t = t < -32768 ? -32768 : t > 32767 ? 32767 : t;
        }
        dst[i] = mixFrom5Bits(t);
    }
}

void MemMixOp37(uint8_t *dst, const uint8_t *a, const uint8_t *b, int16_t weightA, int16_t weightB, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = mixFrom5Bits(mixProduct(a[i], weightA) + mixProduct(b[i], weightB));
}

void MemMixOp47(uint8_t *dst, const uint8_t *a, const uint8_t *b, const uint8_t *mask, double weight, uint64_t count)
{
    const int w = mixWeight(weight, 14);
    for (uint64_t i = 0; i < count; ++i) {
        const int opacity = ((mask[i] + (mask[i] >> 7)) * 64 * w) >> 16;
        dst[i] = mixFrom3Bits(8 * b[i] + mixProduct(a[i] - b[i], opacity));
    }
}

void MemMixOp61(uint16_t *dst, const uint16_t *a, const uint16_t *b, double weight, uint16_t lower, uint16_t upper,
                uint64_t count)
{
    const int64_t fixed = mixWeight(weight, 14);
    const int64_t w = fixed > -16383 ? fixed : -16383;
    for (uint64_t i = 0; i < count; ++i) {
        int64_t r = b[i] + (((a[i] - b[i]) * w + 8192) >> 14);
        r = r > lower ? r : lower;
        r = r < upper ? r : upper;
        dst[i] = static_cast<uint16_t>(r);
    }
}

// --- Counts --------------------------------------------------------------------------------------------------

// How many values have isCounted(value, threshold), the threshold being one of the blocks or of the tail.
template <class ValueAt, class IsCounted>
uint64_t countByThreshold(ValueAt valueAt, uint32_t threshold, uint64_t count, IsCounted isCounted)
{
    const int lowHalf = static_cast<int16_t>(threshold & 0xFFFF);
    const uint32_t ofBlocks = lowHalf < 0 ? 0 : lowHalf > 255 ? 255 : static_cast<uint32_t>(lowHalf);
    uint64_t counted = 0;
    uint64_t i = 0;
    for (; i < count - count % 16; ++i)
        counted += isCounted(valueAt(i), ofBlocks);
    for (; i < count; ++i)
        counted += isCounted(valueAt(i), threshold);
    return counted;
}

bool isAtLeast(uint32_t x, uint32_t threshold) { return x >= threshold; }
bool isAtMost(uint32_t x, uint32_t threshold) { return x <= threshold; }
bool isEqual(uint32_t x, uint32_t threshold) { return x == threshold; }

uint32_t distanceOf(uint8_t a, uint8_t b) { return static_cast<uint32_t>(a > b ? a - b : b - a); }

uint64_t MemCountBelow8(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return count - countByThreshold([&](uint64_t i) { return src[i]; }, threshold, count, isAtLeast);
}

uint64_t MemCountBelow8Pair(const uint8_t *a, const uint8_t *b, uint32_t threshold, int64_t count)
{
    if (count <= 0)
        return 0;
    const uint64_t n = static_cast<uint64_t>(count);
    return n - countByThreshold([&](uint64_t i) { return distanceOf(a[i], b[i]); }, threshold, n, isAtLeast);
}

uint64_t MemCountAtMost8(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return countByThreshold([&](uint64_t i) { return src[i]; }, threshold, count, isAtMost);
}

uint64_t MemCountAtMost8Pair(const uint8_t *a, const uint8_t *b, uint32_t threshold, uint64_t count)
{
    return countByThreshold([&](uint64_t i) { return distanceOf(a[i], b[i]); }, threshold, count, isAtMost);
}

uint64_t MemCountEqual8(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return countByThreshold([&](uint64_t i) { return src[i]; }, threshold, count, isEqual);
}

uint64_t MemCountEqual8Pair(const uint8_t *a, const uint8_t *b, uint32_t threshold, uint64_t count)
{
    return countByThreshold([&](uint64_t i) { return distanceOf(a[i], b[i]); }, threshold, count, isEqual);
}

// --- Statistics ----------------------------------------------------------------------------------------------

double MemMean8(const uint8_t *src, uint64_t count)
{
    uint64_t sum = 0;
    for (uint64_t i = 0; i < count; ++i)
        sum += src[i];
    return count ? static_cast<double>(sum) / static_cast<double>(count) : 0;
}

double MemMeanOp3(const uint8_t *src, int32_t lower, int32_t upper, uint64_t count)
{
    uint64_t sum = 0;
    uint64_t inside = 0;
    for (uint64_t i = 0; i < count; ++i) {
        if (lower <= src[i] && src[i] <= upper) {
            sum += src[i];
            ++inside;
        }
    }
    return inside ? static_cast<double>(sum) / static_cast<double>(inside) : 0;
}

double MemStatOp24(const uint8_t *src, uint64_t count)
{
    if (!count)
        return 0;
    uint64_t sum = 0;
    uint64_t squares = 0;
    for (uint64_t i = 0; i < count; ++i) {
        sum += src[i];
        squares += uint64_t{src[i]} * src[i];
    }
    const double n = static_cast<double>(count);
    const double mean = static_cast<double>(sum) / n;
    const double variance = static_cast<double>(squares) / n - mean * mean;
    return variance > 0 ? variance : 0;
}

float MemSumU8ToF32(const uint8_t *src, uint64_t count)
{
    uint64_t sum = 0;
    for (uint64_t i = 0; i < count; ++i)
        sum += src[i];
    return static_cast<float>(sum);
}

float MemStatOp38(const uint8_t *src, uint64_t count)
{
    if (count < 2)
        return 0;
    uint64_t sum = 0;
    for (uint64_t i = 0; i + 1 < count; ++i)
        sum += distanceOf(src[i + 1], src[i]);
    return static_cast<float>(static_cast<double>(sum) / static_cast<double>(count - 1));
}

// --- Rows ----------------------------------------------------------------------------------------------------

uint64_t MemCompare8(const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        if (a[i] != b[i])
            return i;
    return count;
}

void MemRowFilter8(uint8_t *dst, const uint8_t *src, int64_t stride, uint64_t count)
{
    if (!count)
        return;
    const uint8_t *above = src - stride;
    const uint8_t *below = src + stride;
    dst[0] = 0;
    for (uint64_t i = 1; i < count; ++i) {
        const int across =
            (above[i] + 2 * src[i] + below[i]) - (above[i - 1] + 2 * src[i - 1] + below[i - 1]); // S[i] - S[i-1]
        const int down = (below[i] - above[i]) + (below[i - 1] - above[i - 1]);                  // D[i] + D[i-1]
        const int strength = ((across < 0 ? -across : across) + 2 * (down < 0 ? -down : down) + 2) >> 2;
        dst[i] = static_cast<uint8_t>(strength < 255 ? strength : 255);
    }
}

void MemDiffOp57(uint16_t *sums, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t first = 0; first < count; first += 8) {
        uint32_t sum = sums[first / 8];
        for (uint64_t i = first; i < count && i < first + 8; ++i)
            sum += distanceOf(a[i], b[i]);
        sums[first / 8] = static_cast<uint16_t>(sum < 65535 ? sum : 65535);
    }
}

void MemDiffOp58(int16_t *sums, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    for (uint64_t first = 0; first < count; first += 8) {
        int sum = sums[first / 8];
        for (uint64_t i = first; i < count && i < first + 8; ++i)
            sum += a[i] - b[i];
        sums[first / 8] = static_cast<int16_t>(sum < -32768 ? -32768 : sum > 32767 ? 32767 : sum);
    }
}

} // namespace
