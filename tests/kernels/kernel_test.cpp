// Every slot of every list, at every tier that this processor has, against its oracle.
//
// VELA_CHECK_SEED=N repeats a run; VELA_CHECK_QUICK=1 thins it out for emulators.

#include "every_tier.hpp"
#include "support/kernel_check.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <string_view>

namespace vela::test {
namespace {

std::uint64_t seed()
{
    static const std::uint64_t value = [] {
        const char *fixed = std::getenv("VELA_CHECK_SEED");
        return fixed ? std::strtoull(fixed, nullptr, 0) : std::random_device{}();
    }();
    return value;
}

class KernelTest : public testing::Test {
public:
    KernelTest(const KernelTable &table, const TierKernels &tier, const KernelCase &kernelCase)
        : table_(table), tier_(tier), case_(kernelCase)
    {
    }

    void TestBody() override
    {
        CheckPlan plan;
        plan.seed = seed();
        plan.quick = std::getenv("VELA_CHECK_QUICK") != nullptr;
        plan.upperHalves = tier_.tier != 0; // of what the library ships
        const CheckResult result = checkKernel(case_, kernelAt(tier_.table, case_.slot),
                                               oracleAt(table_.oracle, tier_.oracle, case_.slot), plan);
        ASSERT_GT(result.runs, 0u);
        EXPECT_FALSE(result.finding) << caseName(table_, case_) << " on " << tier_.name << ": "
                                     << faultName(result.finding->fault) << "\n  " << result.finding->text
                                     << "\n  repeat with: VELA_CHECK_SEED=" << seed()
                                     << " kernel_tests --gtest_filter='" << testName(table_, tier_, case_) << "'";
    }

    static std::string testName(const KernelTable &table, const TierKernels &tier, const KernelCase &kernelCase)
    {
        return "Kernel." + shortName(table, tier, kernelCase);
    }

    static std::string shortName(const KernelTable &table, const TierKernels &tier, const KernelCase &kernelCase)
    {
        return table.label + "_" + caseName(table, kernelCase) + "_" + tier.name;
    }

private:
    const KernelTable &table_;
    const TierKernels &tier_;
    const KernelCase &case_;
};

void registerKernelTests()
{
    const int level = VCB_GetCPUInsHigh();
    for (const KernelTable &table : kernelTables())
        for (const TierKernels &tier : table.tiers)
            for (const KernelCase &kernelCase : table.cases)
                if (level >= tier.needs && kernelAt(tier.table, kernelCase.slot))
                    testing::RegisterTest("Kernel", KernelTest::shortName(table, tier, kernelCase).c_str(), nullptr,
                                          nullptr, __FILE__, __LINE__,
                                          [&]() -> testing::Test * { return new KernelTest(table, tier, kernelCase); });
}

// Plain code has tests of its own. A kernel without arguments has nothing to compare.
bool needsNoCase(const VcbSlotInfo &info)
{
    return info.tiers == VCB_TIERS_PLAIN || std::string_view(info.signature) == "void (void)";
}

TEST(SlotLists, EverySlotHasACaseAndAnOracle)
{
    for (const KernelTable &table : kernelTables()) {
        std::set<std::string> kernels;
        std::set<std::string> names;
        for (const KernelCase &kernelCase : table.cases) {
            kernels.insert(slotInfoOf(table, kernelCase.slot).kernel);
            EXPECT_TRUE(names.insert(caseName(table, kernelCase)).second)
                << table.label << " has two cases " << caseName(table, kernelCase);
            EXPECT_TRUE(kernelAt(table.oracle, kernelCase.slot)) << slotInfoOf(table, kernelCase.slot).name;
        }
        for (const VcbSlotInfo &info : table.slots)
            EXPECT_NE(kernels.contains(info.kernel), needsNoCase(info)) << info.name;
    }
}

TEST(SlotLists, EveryCaseBelongsToATable)
{
    std::set<std::string> labels;
    std::size_t distributed = 0;
    for (const KernelTable &table : kernelTables()) {
        EXPECT_TRUE(labels.insert(table.label).second) << table.label << " twice";
        distributed += table.cases.size();
    }
    for (const KernelCase &kernelCase : allCases())
        EXPECT_TRUE(std::any_of(kernelTables().begin(), kernelTables().end(),
                                [&](const KernelTable &table) { return table.type == kernelCase.table; }))
            << "no table of type " << kernelCase.table.name() << " for the case of its slot " << kernelCase.slot;
    EXPECT_EQ(distributed, allCases().size());
}

TEST(SlotLists, ATierMayHaveResultsOfItsOwn)
{
    VcbVideoProcs base{};
    VcbVideoProcs ofTier{};
    base.SharpenU8 = [](uint8_t *, const uint8_t *, const uint8_t *, int32_t) {};
    base.SmoothRows121U8 = [](uint16_t *, const uint8_t *, const uint8_t *, const uint8_t *, int32_t) {};
    ofTier.SharpenU8 = [](uint8_t *, const uint8_t *, const uint8_t *, int32_t) { std::abort(); };
    const auto sharpen = static_cast<std::size_t>(VcbVideoProcs_SharpenU8);
    const auto smooth = static_cast<std::size_t>(VcbVideoProcs_SmoothRows121U8);
    EXPECT_EQ(oracleAt(&base, &ofTier, sharpen), kernelAt(&ofTier, sharpen));
    EXPECT_EQ(oracleAt(&base, &ofTier, smooth), kernelAt(&base, smooth));
    EXPECT_EQ(oracleAt(&base, nullptr, sharpen), kernelAt(&base, sharpen));
    EXPECT_NE(kernelAt(&base, sharpen), kernelAt(&ofTier, sharpen));
}

TEST(SlotLists, CasesDescribeTheSignature)
{
    for (const KernelTable &table : kernelTables())
        for (const KernelCase &kernelCase : table.cases)
            EXPECT_EQ(contradiction(kernelCase).value_or(""), "") << caseName(table, kernelCase);
}

// A tier table holds kernels exactly where the list says so: nothing forgotten, nothing more.
TEST(SlotLists, TiersProvideWhatTheListSays)
{
    for (const KernelTable &table : kernelTables()) {
        for (const TierKernels &tier : table.tiers) {
            if (!tier.tier)
                continue;
            std::vector<bool> promised(table.size, false);
            for (const VcbSlotInfo &info : table.slots)
                promised[static_cast<std::size_t>(info.number)] = (info.tiers & tier.tier) != 0;
            for (std::size_t slot = 0; slot < table.size; ++slot)
                EXPECT_EQ(kernelAt(tier.table, slot) != nullptr, promised[slot])
                    << table.label << " slot " << slot << " on " << tier.name;
        }
    }
}

// Two slots hold the same pointer exactly where the list says that they share a kernel.
TEST(SlotLists, EveryKernelHasAnAddressOfItsOwn)
{
    std::map<VcbKernel, std::string> owners;
    std::map<std::string, VcbKernel> addresses;
    for (const KernelTable &table : kernelTables()) {
        for (const TierKernels &tier : table.tiers) {
            for (const VcbSlotInfo &info : table.slots) {
                const VcbKernel kernel = kernelAt(tier.table, static_cast<std::size_t>(info.number));
                if (!kernel)
                    continue;
                const std::string owner = table.label + " " + info.kernel + " on " + tier.name;
                EXPECT_EQ(owners.emplace(kernel, owner).first->second, owner) << info.name << " shares its address";
                EXPECT_EQ(addresses.emplace(owner, kernel).first->second, kernel) << info.name << " does not share";
            }
        }
    }
    EXPECT_FALSE(owners.empty());
}

// The whole domain of a kernel of two bytes.
TEST(Exhaustive, SharpenOverAllPairs)
{
    std::vector<uint8_t> a(65536);
    std::vector<uint8_t> b(65536);
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = static_cast<uint8_t>(i >> 8);
        b[i] = static_cast<uint8_t>(i);
    }
    onTiersWith(&VcbVideoProcs::SharpenU8, [&](const auto &tier, const VcbVideoProcs &kernels) {
        std::vector<uint8_t> out(a.size());
        kernels.SharpenU8(out.data(), a.data(), b.data(), 65536);
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double exact = a[i] + std::floor((5.0 * (a[i] - b[i]) + 8.0) / 16.0);
            ASSERT_EQ(out[i], std::clamp(exact, 0.0, 255.0)) << tier << ": " << int{a[i]} << ", " << int{b[i]};
        }
    });
}

} // namespace
} // namespace vela::test

int main(int argumentCount, char **arguments)
{
    testing::InitGoogleTest(&argumentCount, arguments);
    vela::test::registerKernelTests();
    return RUN_ALL_TESTS();
}
