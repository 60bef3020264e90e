// The kernel check itself: kernels with one deliberate fault each, and what the check must call it.

#include "support/kernel_check.hpp"

#include <gtest/gtest.h>

namespace vela::test {
namespace {

// A sub-table of our own: dst[i] = (a[i] + b[i] + 1) >> 1, and a sum that returns.
struct Table {
    void(VCB_CALL *average)(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count);
    uint32_t(VCB_CALL *sum)(const uint8_t *src, uint32_t count);
};

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

KernelCase averageCase()
{
    return kernelCase<&Table::average>({destination(1), source(1), source(1), signedCount()}).mayEqual({1, 2});
}

KernelCase sumCase() { return kernelCase<&Table::sum>({source(1), unsignedCount()}); }

template <class Function> VcbKernel untyped(Function *function) { return reinterpret_cast<VcbKernel>(function); }

TEST(KernelCheck, AcceptsACorrectKernel)
{
    const CheckResult result = checkKernel(averageCase(), untyped(average), untyped(average), {});
    EXPECT_FALSE(result.finding) << result.finding->text;
    EXPECT_GT(result.runs, 1000u);
    EXPECT_FALSE(checkKernel(sumCase(), untyped(sum), untyped(sum), {}).finding);
}

TEST(KernelCheck, RejectsFaultyKernelsAndNamesTheFault)
{
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
