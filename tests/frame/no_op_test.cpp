// The declared conversions of the colour table that convert nothing.

#include <gtest/gtest.h>
#include <vela/frame.h>
#include <vela/vela.hpp>

#include <array>
#include <cstdint>
#include <numeric>
#include <string_view>

namespace {

TEST(NoOp, EverySlotHoldsOneKernelThatTouchesNothing)
{
    if (VCB_GetCPUInsHigh() < VCB_CPU_SSE2)
        GTEST_SKIP() << "no kernels on this processor";
    const VcbColorSpaceProcs procs = vela::ColorSpaceProcs().colorSpace;
    const auto kernel = vela::slotPointer(procs, VcbColorSpaceProcs_CscNoOp053);
    int slots = 0;
    for (const VcbSlotInfo &info : vela::slotInfo<VcbColorSpaceProcs>()) {
        const bool isNoOp = std::string_view(info.kernel) == "CscNoOp";
        EXPECT_EQ(vela::slotPointer(procs, static_cast<std::size_t>(info.number)) == kernel, isNoOp) << info.name;
        slots += isNoOp;
    }
    EXPECT_EQ(slots, 28);

    // Called as by a host that takes the slot for a conversion.
    using AnyRow = void VCB_CALL(std::uint8_t * a, std::uint8_t * b, std::int32_t width, std::uint8_t * c, int alpha);
    std::array<std::array<std::uint8_t, 64>, 3> rows;
    for (auto &row : rows)
        std::iota(row.begin(), row.end(), std::uint8_t{1});
    const auto before = rows;
    ASSERT_TRUE(kernel);
    reinterpret_cast<AnyRow *>(kernel)(rows[0].data(), rows[1].data(), 16, rows[2].data(), 255);
    EXPECT_EQ(rows, before);
}

} // namespace
