// The kernel check itself: kernels with one deliberate fault each, and what the check must call it.

#include "support/kernel_check.hpp"

#include <vela/frame.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace vela::test {
namespace {

struct Gain {
    int32_t factor;
    uint8_t offsets[3];
};

// A sub-table of our own, one slot for each thing that a signature may ask of the check.
struct Table {
    void(VCB_CALL *average)(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count);
    uint32_t(VCB_CALL *sum)(const uint8_t *src, uint32_t count);
    void(VCB_CALL *addSaturating)(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count);
    void(VCB_CALL *scale)(float *dst, const float *src, float gain, int32_t count);
    float(VCB_CALL *total)(const float *src, uint64_t count);
    void(VCB_CALL *accumulate)(double *dst, const double *src, int64_t count);
    float(VCB_CALL *energy)(float *sum, const float *src, uint64_t count);
    void(VCB_CALL *split)(uint16_t *even, uint16_t *odd, const uint16_t *src, uint64_t count);
    void(VCB_CALL *lookUp)(uint32_t *dst, const uint8_t *indices, const uint32_t *table, int32_t count);
    uint64_t(VCB_CALL *countBelow)(const uint8_t *src, uint32_t threshold, uint64_t count);
    void(VCB_CALL *mix)(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count);
    void(VCB_CALL *gainLines)(uint8_t *dst0, uint8_t *dst1, const uint8_t *src0, const uint8_t *src1, int32_t count,
                              const Gain *gain);
    int16_t *(VCB_CALL *widen)(int16_t *dst, const uint8_t *src, int32_t count);
    void(VCB_CALL *pick)(uint8_t *dst, const uint8_t *src, int32_t stride, int32_t count);
    void(VCB_CALL *decay)(double *out, const double *in, const double *c, int32_t count);
    VcbVec4 *(VCB_CALL *negate)(VcbVec4 *out, const VcbVec4 *a);
};

// Rows need no alignment.
template <class T> T at(const T *row, uint64_t i)
{
    T value;
    std::memcpy(&value, reinterpret_cast<const char *>(row) + i * sizeof(T), sizeof(T));
    return value;
}

template <class T> void put(T *row, uint64_t i, T value)
{
    std::memcpy(reinterpret_cast<char *>(row) + i * sizeof(T), &value, sizeof(T));
}

void average(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>((a[i] + b[i] + 1) >> 1);
}

void skipsTail(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count) { average(dst, a, b, count & ~15); }

void roundsDown(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>((a[i] + b[i]) >> 1);
}

void wrongInOneValue(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    average(dst, a, b, count);
    for (int32_t i = 0; i < count; ++i)
        if (a[i] == 255 && b[i] == 255)
            dst[i] = 0;
}

volatile uint8_t sink;

void readsOnePast(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    average(dst, a, b, count);
    if (count > 0)
        sink = b[count];
}

void readsOneBefore(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    if (count > 0)
        sink = a[-1];
    average(dst, a, b, count);
}

void readsWithoutACount(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    sink = a[0];
    average(dst, a, b, count);
}

void writesOneBefore(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    if (count > 0)
        dst[-1] = 0;
    average(dst, a, b, count);
}

// Writes whole blocks of 16: wrong only where the row is not followed by a guard page.
void writesWholeBlocks(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    average(dst, a, b, count);
    for (int32_t i = count; i > 0 && i % 16; ++i)
        dst[i] = 0;
}

void changesItsSource(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    average(dst, a, b, count);
    if (count > 40)
        const_cast<uint8_t *>(a)[3] ^= 1;
}

// Correct unless dst is a or b: looks at its sources again after writing.
void failsInPlace(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    average(dst, a, b, count);
    if (count > 16)
        average(dst + count - 16, a + count - 16, b + count - 16, 16);
}

void takesNegativeForLarge(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    if (count < 0)
        dst[0] = 1;
    average(dst, a, b, count);
}

uint32_t sum(const uint8_t *src, uint32_t count)
{
    uint32_t total = 0;
    for (uint32_t i = 0; i < count; ++i)
        total += src[i];
    return total;
}

uint32_t losesCarry(const uint8_t *src, uint32_t count) { return sum(src, count) & 0xFFFF; }

int16_t saturated(int sum) { return static_cast<int16_t>(std::clamp(sum, -32768, 32767)); }

void addSaturating(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        put(dst, i, saturated(at(a, i) + at(b, i)));
}

void wrongInTheLowestPair(int16_t *dst, const int16_t *a, const int16_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        const bool lowest = at(a, i) == -32768 && at(b, i) == -32768;
        put(dst, i, lowest ? int16_t{0} : saturated(at(a, i) + at(b, i)));
    }
}

using Step = float (*)(float);

template <Step step> void scaleWith(float *dst, const float *src, float gain, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const auto place = static_cast<uint64_t>(i);
        put(dst, place, step(at(src, place) * gain));
    }
}

float unchanged(float x) { return x; }
float dropsNaN(float x) { return std::isnan(x) ? 0.0F : x; }
float otherNaN(float x) { return std::isnan(x) ? -std::numeric_limits<float>::quiet_NaN() : x; }
float losesSignOfZero(float x) { return x == 0 ? 0.0F : x; }
float flushesDenormals(float x) { return std::fpclassify(x) == FP_SUBNORMAL ? std::copysign(0.0F, x) : x; }
float limitsInfinity(float x) { return std::isinf(x) ? std::copysign(std::numeric_limits<float>::max(), x) : x; }
float onlyDenormalsRight(float x) { return std::isnormal(x) ? std::nextafter(x, 0.0F) : x; }

template <Step step> float totalWith(const float *src, uint64_t count)
{
    float sum = 0;
    for (uint64_t i = 0; i < count; ++i)
        sum += at(src, i);
    return step(sum);
}

void accumulate(double *dst, const double *src, int64_t count)
{
    for (int64_t i = 0; i < count; ++i) {
        const auto place = static_cast<uint64_t>(i);
        put(dst, place, at(dst, place) + at(src, place));
    }
}

void overwrites(double *dst, const double *src, int64_t count)
{
    for (int64_t i = 0; i < count; ++i)
        put(dst, static_cast<uint64_t>(i), at(src, static_cast<uint64_t>(i)));
}

void accumulatesInFloat(double *dst, const double *src, int64_t count)
{
    for (int64_t i = 0; i < count; ++i) {
        const auto place = static_cast<uint64_t>(i);
        const double sum = at(dst, place) + at(src, place);
        put(dst, place, std::abs(sum) > std::numeric_limits<float>::max() ? std::copysign(HUGE_VAL, sum) : sum);
    }
}

void looksAtHalfTheCount(double *dst, const double *src, int64_t count)
{
    accumulate(dst, src, static_cast<int32_t>(count));
}

// Adds to a sum that is there whatever the count, and returns it.
float energy(float *sum, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        put(sum, 0, at(sum, 0) + at(src, i) * at(src, i));
    return at(sum, 0);
}

float returnsNothingForNothing(float *sum, const float *src, uint64_t count)
{
    return count ? energy(sum, src, count) : 0.0F;
}

void split(uint16_t *even, uint16_t *odd, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        put(even, i, at(src, 2 * i));
        put(odd, i, at(src, 2 * i + 1));
    }
}

void losesAnOddOne(uint16_t *even, uint16_t *odd, const uint16_t *src, uint64_t count)
{
    if (count > 9) {
        const uint16_t kept = at(odd, count - 1);
        split(even, odd, src, count);
        put(odd, count - 1, kept);
    } else {
        split(even, odd, src, count);
    }
}

void writesAnOddOneMore(uint16_t *even, uint16_t *odd, const uint16_t *src, uint64_t count)
{
    split(even, odd, src, count);
    if (count > 0)
        put(odd - 1, 0, uint16_t{0});
}

void lookUp(uint32_t *dst, const uint8_t *indices, const uint32_t *table, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        put(dst, static_cast<uint64_t>(i), at(table, indices[i]));
}

void readsBehindTheTable(uint32_t *dst, const uint8_t *indices, const uint32_t *table, int32_t count)
{
    lookUp(dst, indices, table, count);
    if (count > 0)
        sink = reinterpret_cast<const uint8_t *>(table)[1024];
}

void readsTheTableForNothing(uint32_t *dst, const uint8_t *indices, const uint32_t *table, int32_t count)
{
    sink = reinterpret_cast<const uint8_t *>(table)[0];
    lookUp(dst, indices, table, count);
}

uint64_t countBelow(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return static_cast<uint64_t>(std::count_if(src, src + count, [=](uint8_t x) { return x < threshold; }));
}

uint64_t wrongWithoutPopcnt(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    const uint64_t below = countBelow(src, threshold, count);
    return !g_CPUID.popcnt && count > 100 ? below & 0x7F : below;
}

uint64_t wrongWithPopcnt(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    const uint64_t below = countBelow(src, threshold, count);
    return g_CPUID.popcnt && count > 100 ? below & 0x7F : below;
}

uint64_t countsInBytes(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return std::min<uint64_t>(countBelow(src, threshold, count), 255 * 128);
}

void mix(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        float sum = 0;
        for (int32_t k = 0; k < inputs; ++k)
            sum += static_cast<float>(src[k][i]) * at(weights, static_cast<uint64_t>(k));
        dst[i] = static_cast<uint8_t>(sum > 0 ? std::min(sum, 255.0F) : 0.0F);
    }
}

void readsARowTooFar(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    mix(dst, src, weights, inputs, count);
    if (inputs > 1 && count > 0)
        sink = src[inputs - 1][count];
}

void readsAPointerTooMany(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    mix(dst, src, weights, inputs, count);
    if (inputs > 0 && count > 0)
        sink = static_cast<uint8_t>(reinterpret_cast<uintptr_t>(src[inputs]));
}

void readsAWeightTooMany(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    mix(dst, src, weights, inputs, count);
    if (inputs > 0 && count > 0)
        sink = reinterpret_cast<const uint8_t *>(weights)[sizeof(float) * static_cast<uint64_t>(inputs)];
}

void leavesOutTheFifth(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    mix(dst, src, weights, std::min(inputs, 4), count);
}

void changesARow(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    mix(dst, src, weights, inputs, count);
    if (inputs == 3 && count > 30 && src[2] != dst)
        const_cast<uint8_t *>(src[2])[30] ^= 1;
}

// Correct unless dst is one of the rows: reads them once for each input.
void writesBeforeItReads(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    mix(dst, src, weights, inputs, count);
    mix(dst, src, weights, inputs, count);
}

uint8_t gained(uint8_t x, const Gain &gain) { return static_cast<uint8_t>(x * gain.factor + gain.offsets[2]); }

void gainLines(uint8_t *dst0, uint8_t *dst1, const uint8_t *src0, const uint8_t *src1, int32_t count, const Gain *gain)
{
    const Gain own = at(gain, 0);
    for (int32_t i = 0; i < count; ++i) {
        const uint8_t upper = gained(src0[i], own);
        const uint8_t lower = gained(src1[i], own);
        dst0[i] = upper;
        dst1[i] = lower;
    }
}

void ignoresAnOffset(uint8_t *dst0, uint8_t *dst1, const uint8_t *src0, const uint8_t *src1, int32_t count,
                     const Gain *gain)
{
    Gain own = at(gain, 0);
    own.offsets[2] = 0;
    gainLines(dst0, dst1, src0, src1, count, &own);
}

void readsBehindTheBlock(uint8_t *dst0, uint8_t *dst1, const uint8_t *src0, const uint8_t *src1, int32_t count,
                         const Gain *gain)
{
    sink = reinterpret_cast<const uint8_t *>(gain)[sizeof(Gain)];
    gainLines(dst0, dst1, src0, src1, count, gain);
}

// Correct unless the second line is the first: adds to what it finds there.
void addsUpTheLines(uint8_t *dst0, uint8_t *dst1, const uint8_t *src0, const uint8_t *src1, int32_t count,
                    const Gain *gain)
{
    for (int32_t i = 0; i < count; ++i)
        dst1[i] = 0;
    gainLines(dst0, dst0, src0, src0, count, gain);
    for (int32_t i = 0; i < count; ++i)
        dst1[i] = static_cast<uint8_t>(dst1[i] + gained(src1[i], at(gain, 0)));
}

// Correct unless the second line alone stays where it is.
void clearsTheSecondLine(uint8_t *dst0, uint8_t *dst1, const uint8_t *src0, const uint8_t *src1, int32_t count,
                         const Gain *gain)
{
    if (dst0 != dst1)
        for (int32_t i = 0; i < count; ++i)
            dst1[i] = 0;
    gainLines(dst0, dst1, src0, src1, count, gain);
}

int16_t *widen(int16_t *dst, const uint8_t *src, int32_t count)
{
    int32_t i = 0;
    for (; i < count; ++i)
        put(dst, static_cast<uint64_t>(i), static_cast<int16_t>(src[i]));
    return dst + i;
}

int16_t *returnsTheStart(int16_t *dst, const uint8_t *src, int32_t count)
{
    widen(dst, src, count);
    return dst;
}

void forgetsTheUpperHalves(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    average(dst, a, b, count);
    fillUpperHalf();
}

// Reads from sample `first` to so many behind the last one of the count.
template <int first, int behind> void pickFrom(uint8_t *dst, const uint8_t *src, int32_t stride, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(src[i * stride] - src[(i - 1) * stride]);
    if (count > 0)
        sink = static_cast<uint8_t>(src[first * stride] + src[(count - 1 + behind) * stride]);
}

void decayFrom(double last, double *out, const double *in, const double *c, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        last = at(in + i, 0) * at(c, 0) + last * at(c, 1);
        put(out + i, 0, last);
    }
}

void decay(double *out, const double *in, const double *c, int32_t count)
{
    if (count > 0)
        decayFrom(at(out - 1, 0), out, in, c, count);
}

void startsFromNothing(double *out, const double *in, const double *c, int32_t count)
{
    decayFrom(0, out, in, c, count);
}

void clearsWhatCameBefore(double *out, const double *in, const double *c, int32_t count)
{
    decay(out, in, c, count);
    if (count > 0)
        put(out - 1, 0, 0.0);
}

void readsTwoBefore(double *out, const double *in, const double *c, int32_t count)
{
    if (count > 0)
        sink = static_cast<uint8_t>(at(out - 2, 0) > 0);
    decay(out, in, c, count);
}

// Without a count, and for aligned rows alone.
bool isAligned(const void *row) { return reinterpret_cast<std::uintptr_t>(row) % alignof(VcbVec4) == 0; }

VcbVec4 *negate(VcbVec4 *out, const VcbVec4 *a)
{
    for (int i = 0; i < 4; ++i)
        out->v[i] = isAligned(out) && isAligned(a) ? -a->v[i] : 0;
    return out;
}

VcbVec4 *returnsTheSource(VcbVec4 *out, const VcbVec4 *a)
{
    negate(out, a);
    return const_cast<VcbVec4 *>(a);
}

KernelCase averageCase()
{
    return kernelCase<&Table::average>({destination(1), source(1), source(1), count()}).mayEqual({1, 2});
}

KernelCase sumCase() { return kernelCase<&Table::sum>({source(1), count()}); }

KernelCase addSaturatingCase()
{
    return kernelCase<&Table::addSaturating>({destination(2), source(2), source(2), count()}).mayEqual({1, 2});
}

KernelCase scaleCase()
{
    const Argument gains = numbers<float>({0, -1, 0.7F, 1});
    return kernelCase<&Table::scale>({destination(4), source(4), gains, count()}).mayEqual({1});
}

KernelCase totalCase() { return kernelCase<&Table::total>({source(4), count()}); }
KernelCase accumulateCase() { return kernelCase<&Table::accumulate>({destination(8), source(8), count()}); }
KernelCase energyCase() { return kernelCase<&Table::energy>({standingDestination(4), source(4), count()}); }
KernelCase splitCase() { return kernelCase<&Table::split>({destination(2), destination(2), source(4), count()}); }

KernelCase lookUpCase() { return kernelCase<&Table::lookUp>({destination(4), source(1), fixedSource(1024), count()}); }

KernelCase countBelowCase()
{
    return kernelCase<&Table::countBelow>({source(1), number({0, 1, 128, 256}), count()}).readsPopcnt();
}

KernelCase mixCase()
{
    const Argument inputs = numbers<int32_t>({-1, 0, 1, 2, 3, 5});
    return kernelCase<&Table::mix>({destination(1), sourceRows(1, 3), sourcePerInput(4, 3), inputs, count()})
        .mayEqual({1});
}

KernelCase gainLinesCase()
{
    const Argument gain = blocks<Gain>({{2, {0, 0, 3}}, {3, {1, 2, 0}}});
    return kernelCase<&Table::gainLines>({destination(1), destination(1), source(1), source(1), count(), gain})
        .mayShare({{1, 0}, {3, 2}})
        .mayShare({{0, 2}, {1, 3}})
        .mayShare({{0, 2}, {1, 0}, {3, 2}});
}

// From the sample before the first to the last, in either direction.
KernelCase pickCase()
{
    return kernelCase<&Table::pick>(
        {destination(1),
         sourceBy(2,
                  [](std::int64_t n, std::int64_t stride) {
                      return stride > 0 ? Span{stride, (n - 1) * stride + 1} : Span{(1 - n) * stride, 1 - stride};
                  }),
         numbers<int32_t>({3, 0, -2}), count()});
}

KernelCase decayCase()
{
    return kernelCase<&Table::decay>(
        {continuedDestination(8, 8), source(8), blocks<std::array<double, 2>>({{1, 0.5}, {2, -0.25}}), count()});
}

KernelCase widenCase() { return kernelCase<&Table::widen>({destination(2), source(1), count()}); }

KernelCase negateCase()
{
    return kernelCase<&Table::negate>({aligned(16, standingDestination(16)), aligned(16, standingSource(16))})
        .mayEqual({1});
}

template <class Function> VcbKernel untyped(Function *function) { return reinterpret_cast<VcbKernel>(function); }

TEST(KernelCheck, AcceptsCorrectKernels)
{
    const struct {
        KernelCase shape;
        VcbKernel kernel;
        VcbKernel oracle;
    } correct[] = {
        {averageCase(), untyped(average), untyped(average)},
        {sumCase(), untyped(sum), untyped(sum)},
        {addSaturatingCase(), untyped(addSaturating), untyped(addSaturating)},
        {scaleCase(), untyped(scaleWith<unchanged>), untyped(scaleWith<unchanged>)},
        {scaleCase(), untyped(scaleWith<otherNaN>), untyped(scaleWith<unchanged>)},
        {totalCase(), untyped(totalWith<otherNaN>), untyped(totalWith<unchanged>)},
        {accumulateCase(), untyped(accumulate), untyped(accumulate)},
        {energyCase(), untyped(energy), untyped(energy)},
        {splitCase(), untyped(split), untyped(split)},
        {lookUpCase(), untyped(lookUp), untyped(lookUp)},
        {countBelowCase(), untyped(countBelow), untyped(countBelow)},
        {mixCase(), untyped(mix), untyped(mix)},
        {gainLinesCase(), untyped(gainLines), untyped(gainLines)},
        {widenCase(), untyped(widen), untyped(widen)},
        {pickCase(), untyped(pickFrom<-1, 0>), untyped(pickFrom<-1, 0>)},
        {decayCase(), untyped(decay), untyped(decay)},
        {negateCase(), untyped(negate), untyped(negate)},
    };
    for (const auto &c : correct) {
        for (const bool quick : {false, true}) {
            CheckPlan plan;
            plan.quick = quick;
            const CheckResult result = checkKernel(c.shape, c.kernel, c.oracle, plan);
            EXPECT_FALSE(result.finding) << "slot " << c.shape.slot << ": " << result.finding->text;
            EXPECT_GT(result.runs, quick ? 500u : 3000u);
        }
    }
}

TEST(KernelCheck, RejectsFaultyKernelsAndNamesTheFault)
{
    const VcbKernel scale = untyped(scaleWith<unchanged>);
    const VcbKernel total = untyped(totalWith<unchanged>);
    const struct {
        const char *name;
        KernelCase shape;
        VcbKernel kernel;
        VcbKernel oracle;
        Fault expected;
    } faulty[] = {
        {"skips the tail", averageCase(), untyped(skipsTail), untyped(average), Fault::wrongResult},
        {"rounds down", averageCase(), untyped(roundsDown), untyped(average), Fault::wrongResult},
        {"is wrong for one value", averageCase(), untyped(wrongInOneValue), untyped(average), Fault::wrongResult},
        {"reads one past", averageCase(), untyped(readsOnePast), untyped(average), Fault::crash},
        {"reads one before", averageCase(), untyped(readsOneBefore), untyped(average), Fault::crash},
        {"reads without a count", averageCase(), untyped(readsWithoutACount), untyped(average), Fault::crash},
        {"writes one before", averageCase(), untyped(writesOneBefore), untyped(average), Fault::wroteOutside},
        {"writes whole blocks", averageCase(), untyped(writesWholeBlocks), untyped(average), Fault::crash},
        {"changes its source", averageCase(), untyped(changesItsSource), untyped(average), Fault::changedSource},
        {"fails in place", averageCase(), untyped(failsInPlace), untyped(average), Fault::wrongResult},
        {"takes negative for large", averageCase(), untyped(takesNegativeForLarge), untyped(average), Fault::crash},
        {"returns too little", sumCase(), untyped(losesCarry), untyped(sum), Fault::wrongReturn},
        {"is wrong in the lowest pair", addSaturatingCase(), untyped(wrongInTheLowestPair), untyped(addSaturating),
         Fault::wrongResult},
        {"loses NaN", scaleCase(), untyped(scaleWith<dropsNaN>), scale, Fault::wrongResult},
        {"is wrong in -0", scaleCase(), untyped(scaleWith<losesSignOfZero>), scale, Fault::wrongResult},
        {"flushes denormals", scaleCase(), untyped(scaleWith<flushesDenormals>), scale, Fault::wrongResult},
        {"limits infinity", scaleCase(), untyped(scaleWith<limitsInfinity>), scale, Fault::wrongResult},
        {"returns a wrong low bit", totalCase(), untyped(totalWith<onlyDenormalsRight>), total, Fault::wrongReturn},
        {"returns no NaN", totalCase(), untyped(totalWith<dropsNaN>), total, Fault::wrongReturn},
        {"returns no denormal", totalCase(), untyped(totalWith<flushesDenormals>), total, Fault::wrongReturn},
        {"overwrites a sum", accumulateCase(), untyped(overwrites), untyped(accumulate), Fault::wrongResult},
        {"goes through float", accumulateCase(), untyped(accumulatesInFloat), untyped(accumulate), Fault::wrongResult},
        {"looks at half the count", accumulateCase(), untyped(looksAtHalfTheCount), untyped(accumulate), Fault::crash},
        {"drops the sum of nothing", energyCase(), untyped(returnsNothingForNothing), untyped(energy),
         Fault::wrongReturn},
        {"loses an odd one", splitCase(), untyped(losesAnOddOne), untyped(split), Fault::wrongResult},
        {"reads behind the table", lookUpCase(), untyped(readsBehindTheTable), untyped(lookUp), Fault::crash},
        {"reads the table for nothing", lookUpCase(), untyped(readsTheTableForNothing), untyped(lookUp), Fault::crash},
        {"needs POPCNT", countBelowCase(), untyped(wrongWithoutPopcnt), untyped(countBelow), Fault::wrongReturn},
        {"counts in bytes", countBelowCase(), untyped(countsInBytes), untyped(countBelow), Fault::wrongReturn},
        {"reads a row too far", mixCase(), untyped(readsARowTooFar), untyped(mix), Fault::crash},
        {"reads a pointer too many", mixCase(), untyped(readsAPointerTooMany), untyped(mix), Fault::crash},
        {"reads a weight too many", mixCase(), untyped(readsAWeightTooMany), untyped(mix), Fault::crash},
        {"leaves out the fifth row", mixCase(), untyped(leavesOutTheFifth), untyped(mix), Fault::wrongResult},
        {"changes a row", mixCase(), untyped(changesARow), untyped(mix), Fault::changedSource},
        {"writes before it reads", mixCase(), untyped(writesBeforeItReads), untyped(mix), Fault::wrongResult},
        {"ignores an offset", gainLinesCase(), untyped(ignoresAnOffset), untyped(gainLines), Fault::wrongResult},
        {"reads behind the block", gainLinesCase(), untyped(readsBehindTheBlock), untyped(gainLines), Fault::crash},
        {"adds up the lines", gainLinesCase(), untyped(addsUpTheLines), untyped(gainLines), Fault::wrongResult},
        {"clears the second line", gainLinesCase(), untyped(clearsTheSecondLine), untyped(gainLines),
         Fault::wrongResult},
        {"returns the start", widenCase(), untyped(returnsTheStart), untyped(widen), Fault::wrongReturn},
        {"begins a sample early", pickCase(), untyped(pickFrom<-2, 0>), untyped(pickFrom<-1, 0>), Fault::crash},
        {"ends a sample late", pickCase(), untyped(pickFrom<-1, 1>), untyped(pickFrom<-1, 0>), Fault::crash},
        {"starts from nothing", decayCase(), untyped(startsFromNothing), untyped(decay), Fault::wrongResult},
        {"clears what came before", decayCase(), untyped(clearsWhatCameBefore), untyped(decay), Fault::wroteOutside},
        {"reads two before", decayCase(), untyped(readsTwoBefore), untyped(decay), Fault::crash},
        {"returns its source", negateCase(), untyped(returnsTheSource), untyped(negate), Fault::wrongReturn},
    };
    for (const auto &f : faulty) {
        for (const std::uint64_t seed : {1u, 2u, 3u}) {
            for (const bool quick : {false, true}) {
                CheckPlan plan;
                plan.seed = seed;
                plan.quick = quick;
                const CheckResult result = checkKernel(f.shape, f.kernel, f.oracle, plan);
                ASSERT_TRUE(result.finding) << "accepted a kernel that " << f.name;
                EXPECT_EQ(result.finding->fault, f.expected)
                    << "a kernel that " << f.name << ": " << faultName(result.finding->fault) << ", "
                    << result.finding->text;
                EXPECT_NE(result.finding->text.find("count"), std::string::npos);
            }
        }
    }
}

// Outside its row a destination may not be touched, and at the start of the second one a write before it may fall on
// the guard page.
TEST(KernelCheck, WatchesEveryDestination)
{
    const CheckResult result = checkKernel(splitCase(), untyped(writesAnOddOneMore), untyped(split), {});
    ASSERT_TRUE(result.finding);
    EXPECT_EQ(result.finding->fault, Fault::wroteOutside);
    EXPECT_NE(result.finding->text.find("argument 1, byte -2"), std::string::npos) << result.finding->text;
}

TEST(KernelCheck, LooksAtTheUpperHalves)
{
    if (!tracksUpperHalves())
        GTEST_SKIP() << "the processor does not tell, or the build does not care";
    const CheckResult result = checkKernel(averageCase(), untyped(forgetsTheUpperHalves), untyped(average), {});
    ASSERT_TRUE(result.finding);
    EXPECT_EQ(result.finding->fault, Fault::leftRegisters) << result.finding->text;
}

// A setting that the processor does not have is never tried, and the one it has comes back.
TEST(KernelCheck, SetsPopcntForItsTrialsOnly)
{
    VCB_GetCPUInsHigh();
    const uint8_t detected = g_CPUID.popcnt;
    const CheckResult result = checkKernel(countBelowCase(), untyped(wrongWithPopcnt), untyped(countBelow), {});
    EXPECT_EQ(result.finding.has_value(), detected != 0);
    EXPECT_EQ(g_CPUID.popcnt, detected);
}

TEST(KernelCheck, RefusesCasesThatContradictTheSignature)
{
    const Argument gain = numbers<float>({1});
    EXPECT_EQ(contradiction(scaleCase()), std::nullopt);
    EXPECT_EQ(contradiction(mixCase()), std::nullopt);
    EXPECT_EQ(contradiction(decayCase()), std::nullopt);
    const KernelCase wrong[] = {
        kernelCase<&Table::scale>({destination(4), source(4), gain}),
        kernelCase<&Table::scale>({source(4), source(4), gain, count()}),
        kernelCase<&Table::scale>({destination(4), destination(4), gain, count()}),
        kernelCase<&Table::scale>({destination(4), source(4), count(), gain}),
        kernelCase<&Table::scale>({destination(4), source(4), number({1}), count()}),
        kernelCase<&Table::scale>({destination(4), source(4), numbers<double>({1}), count()}),
        kernelCase<&Table::scale>({destination(4), source(4), numbers<float>({}), count()}),
        kernelCase<&Table::scale>({destination(4), source(4), gain, count()}).mayEqual({2}),
        kernelCase<&Table::scale>({destination(4), source(4), gain, count()}).mayEqual({0}),
        kernelCase<&Table::lookUp>({destination(4), source(1), fixedSource(1024), count()}).mayEqual({1}),
        kernelCase<&Table::mix>(
            {destination(1), sourceRows(1, 4), sourcePerInput(4, 3), numbers<int32_t>({1}), count()}),
        kernelCase<&Table::mix>({destination(1), source(1), sourcePerInput(4, 3), numbers<int32_t>({1}), count()}),
        gainLinesCase().mayShare({{2, 0}}),
        gainLinesCase().mayShare({{2, 5}}),
        kernelCase<&Table::gainLines>(
            {destination(1), destination(1), source(1), source(1), count(), blocks<int32_t>({1})}),
        kernelCase<&Table::decay>({destination(8), source(8), blocks<std::array<float, 3>>({{1, 2, 3}}), count()}),
        kernelCase<&Table::pick>({destination(1), sourceBy(3, {}), numbers<int32_t>({1}), count()}),
    };
    for (const KernelCase &c : wrong) {
        EXPECT_NE(contradiction(c), std::nullopt) << "case " << &c - wrong;
        EXPECT_THROW(static_cast<void>(checkKernel(c, nullptr, nullptr, {})), std::invalid_argument);
    }
}

// A slot whose kernels disagree: one tier passes, the other is found out.
TEST(KernelCheck, FindsTheTierThatDiffers)
{
    const VcbKernel tiers[] = {untyped(average), untyped(wrongInOneValue)};
    std::vector<bool> accepted;
    for (const VcbKernel kernel : tiers)
        accepted.push_back(!checkKernel(averageCase(), kernel, untyped(average), {}).finding);
    EXPECT_EQ(accepted, (std::vector<bool>{true, false}));
}

// The order of arguments, the seed and the count are in the message, so that a run can be repeated.
TEST(KernelCheck, RepeatsItselfFromItsSeed)
{
    CheckPlan plan;
    plan.seed = 42;
    const CheckResult first = checkKernel(averageCase(), untyped(wrongInOneValue), untyped(average), plan);
    const CheckResult second = checkKernel(averageCase(), untyped(wrongInOneValue), untyped(average), plan);
    ASSERT_TRUE(first.finding && second.finding);
    EXPECT_EQ(first.finding->text, second.finding->text);
    EXPECT_EQ(first.runs, second.runs);
}

} // namespace
} // namespace vela::test
