// Kernels of a small domain against their oracles, on all 2^24 pixels.

#include "support/domains.hpp"
#include "support/kernel_tables.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace vela::test {
namespace {

using Procs = VcbColorSpaceProcs;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t rowPixels = 1 << 16; // every pixel with one first byte

// Runs a slot on a row and gives all that it has written.
using Convert = std::function<Bytes(const Procs &, const Bytes &row)>;

// Pixels of 3 or 4 bytes, each of them `times` in a row. The fourth byte repeats the third.
template <int size, int times = 1> Bytes pixelRow(std::int32_t first)
{
    Bytes row;
    row.reserve(static_cast<std::size_t>(size) * times * rowPixels);
    for (std::int32_t i = 0; i < times * rowPixels; ++i) {
        const std::int32_t bytes[] = {first, i / times >> 8, i / times, i / times};
        for (int k = 0; k < size; ++k)
            row.push_back(static_cast<std::uint8_t>(bytes[k]));
    }
    return row;
}

using ToPairs = void VCB_CALL(std::uint8_t *, const std::uint8_t *, std::int32_t);
Convert toPairs(ToPairs *Procs::*slot)
{
    return [slot](const Procs &procs, const Bytes &row) {
        Bytes packed(row.size() / 2);
        (procs.*slot)(packed.data(), row.data(), static_cast<std::int32_t>(row.size() / 4));
        return packed;
    };
}

using FromPairs = void VCB_CALL(std::uint8_t *, const std::uint8_t *, std::int32_t, std::int32_t);
Convert fromPairs(FromPairs *Procs::*slot)
{
    return [slot](const Procs &procs, const Bytes &row) {
        Bytes pixels(row.size() * 2);
        (procs.*slot)(pixels.data(), row.data(), 200, static_cast<std::int32_t>(row.size() / 2));
        return pixels;
    };
}

template <class Width>
Convert toHues(std::int16_t *(VCB_CALL *Procs::*slot)(std::int16_t *, std::uint8_t *, std::uint8_t *,
                                                      const std::uint8_t *, Width))
{
    return [slot](const Procs &procs, const Bytes &row) {
        std::vector<std::int16_t> hues(rowPixels);
        Bytes all(2 * rowPixels);
        (procs.*slot)(hues.data(), all.data(), all.data() + rowPixels, row.data(), rowPixels);
        for (const std::int16_t hue : hues)
            for (const int shift : {0, 8})
                all.push_back(static_cast<std::uint8_t>(hue >> shift));
        return all;
    };
}

TEST(EveryPixel, IsTheOracles)
{
    // Chroma is that of the even pixels, so pixels come twice. Of pairs Y U Y V and U Y V Y, the even pixel is every
    // one of three components.
    const struct {
        const char *name;
        Bytes (*row)(std::int32_t first);
        Convert convert;
    } slots[] = {
        {"CscBgraToYuyv2020", pixelRow<4, 2>, toPairs(&Procs::CscBgraToYuyv2020)},
        {"CscBgraToUyvy2020", pixelRow<4, 2>, toPairs(&Procs::CscBgraToUyvy2020)},
        {"CscRgbaToYuyv2020", pixelRow<4, 2>, toPairs(&Procs::CscRgbaToYuyv2020)},
        {"CscRgbaToUyvy2020", pixelRow<4, 2>, toPairs(&Procs::CscRgbaToUyvy2020)},
        {"CscYuyvToBgra2020", pixelRow<4>, fromPairs(&Procs::CscYuyvToBgra2020)},
        {"CscUyvyToBgra2020", pixelRow<4>, fromPairs(&Procs::CscUyvyToBgra2020)},
        {"CscYuyvToBgra2020B", pixelRow<4>, fromPairs(&Procs::CscYuyvToBgra2020B)},
        {"CscUyvyToBgra2020B", pixelRow<4>, fromPairs(&Procs::CscUyvyToBgra2020B)},
        {"CscRgb24ToHsvPlanes", pixelRow<3>, toHues(&Procs::CscRgb24ToHsvPlanes)},
        {"CscRgb24ToHsvPlanesB", pixelRow<3>, toHues(&Procs::CscRgb24ToHsvPlanesB)},
        {"CscRgb32ToHsvPlanes", pixelRow<4>, toHues(&Procs::CscRgb32ToHsvPlanes)},
        {"CscRgb32ToHsvPlanesB", pixelRow<4>, toHues(&Procs::CscRgb32ToHsvPlanesB)},
    };
    const KernelTable &table = kernelTableOf(typeid(Procs));
    const std::int32_t step = samplesDomains() ? 85 : 1;
    for (const auto &slot : slots)
        for (std::int32_t first = 0; first < 256; first += step) {
            const Bytes row = slot.row(first);
            const Bytes expected = slot.convert(*static_cast<const Procs *>(table.oracle), row);
            for (const TierKernels &tier : table.tiers) {
                const Procs &kernels = *static_cast<const Procs *>(tier.table);
                if (VCB_GetCPUInsHigh() < tier.needs || !kernels.CscBgraToYuyv2020) // a tier has all of them, or none
                    continue;
                ASSERT_EQ(slot.convert(kernels, row), expected)
                    << slot.name << ' ' << tier.name << ", first byte " << first;
            }
        }
}

} // namespace
} // namespace vela::test
