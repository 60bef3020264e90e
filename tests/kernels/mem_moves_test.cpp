// Moves beyond what the kernel check covers: overlaps, strides of any sign, sizes through every class up to streaming
// stores; and results computed by hand.

#include "every_tier.hpp"
#include "oracles/oracles.hpp"
#include "support/domains.hpp"
#include "support/guarded_buffer.hpp"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace vela::test {
namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;
using Longs = std::vector<uint32_t>;

template <class Kernel> struct Named {
    std::string name;
    Kernel kernel;
};

// The kernels of a slot at every tier of this processor, the wide texts included.
template <class Table, class Kernel> auto kernelsOf(Kernel Table::*kernel)
{
    std::vector<Named<Kernel>> kernels;
    onTiersWith(kernel, [&](const std::string &tier, const Table &table) { kernels.push_back({tier, table.*kernel}); });
    return kernels;
}

auto moves()
{
    auto kernels = kernelsOf(&VcbMemOrderOps::MemCopy);
    for (auto &move : kernelsOf(&VcbMemOrderOps::MemMove))
        kernels.push_back({move.name + " MemMove", move.kernel});
    return kernels;
}

// A row in which any two places differ soon.
void number(uint8_t *row, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        row[i] = static_cast<uint8_t>(i * 7 + i / 251 + i / 65521);
}

// --- Overlap -------------------------------------------------------------------------------------------------

// Within one row: `size` bytes from `from` to `to`, against a copy through a buffer.
void expectMove(const Named<decltype(VcbMemOrderOps::MemCopy)> &move, uint8_t *row, std::size_t rowSize, std::size_t to,
                std::size_t from, std::size_t size)
{
    static Bytes expected;
    number(row, rowSize);
    expected.assign(row, row + rowSize);
    std::copy_n(row + from, size, expected.data() + to); // row is the buffer
    move.kernel(row + to, row + from, size);
    const auto difference = std::mismatch(row, row + rowSize, expected.begin()).first - row;
    ASSERT_EQ(difference, static_cast<std::ptrdiff_t>(rowSize))
        << move.name << ", " << size << " bytes from " << from << " to " << to;
}

TEST(MemMove, AnyOverlapOfShortRuns)
{
    alignas(64) uint8_t row[512];
    for (const auto &move : moves())
        for (const std::size_t from : {80, 85, 93, 96})
            for (std::size_t to = from - 80; to <= from + 80; ++to)
                for (std::size_t size = 0; size <= 300; ++size)
                    ASSERT_NO_FATAL_FAILURE(expectMove(move, row, sizeof(row), to, from, size));
}

TEST(MemMove, AnyOverlapOfLongRuns)
{
    GuardedBuffer buffer(100000);
    for (const auto &move : moves())
        for (const std::size_t size : {511, 512, 513, 1000, 2048, 4097, 70001})
            for (const std::size_t distance : {0, 1, 5, 16, 31, 33, 127, 129, 511, 4095, 4096, 4099})
                for (const std::size_t start : {0, 1, 13}) {
                    const std::size_t used = start + distance + size;
                    uint8_t *const row = buffer.end() - used; // faults when more is read or written
                    ASSERT_NO_FATAL_FAILURE(expectMove(move, row, used, start, start + distance, size));
                    ASSERT_NO_FATAL_FAILURE(expectMove(move, row, used, start + distance, start, size));
                    ASSERT_NO_FATAL_FAILURE(expectMove(move, buffer.begin(), used, start, start + distance, size));
                    ASSERT_NO_FATAL_FAILURE(expectMove(move, buffer.begin(), used, start + distance, start, size));
                }
}

// --- Sizes through the streaming threshold -------------------------------------------------------------------

constexpr std::size_t mebibyte = std::size_t{1} << 20;

// Runs of a streaming size that overlap by nearly everything or by one byte, or only just lie apart.
TEST(MemMove, StreamingSizesWithOverlap)
{
    constexpr std::size_t size = 17 * mebibyte + 77;
    GuardedBuffer buffer(2 * size + 64);
    for (const auto &move : moves())
        for (const std::size_t distance : {std::size_t{1}, size - 1, size}) {
            const std::size_t used = distance + size;
            uint8_t *const row = buffer.end() - used;
            ASSERT_NO_FATAL_FAILURE(expectMove(move, row, used, 0, distance, size));
            ASSERT_NO_FATAL_FAILURE(expectMove(move, row, used, distance, 0, size));
        }
}

// Around the sizes at which copies and fills change their stores; fewer where steps are slow.
std::vector<std::size_t> sizes()
{
    if (samplesDomains())
        return {2048, 16 * mebibyte + 129, 32 * mebibyte + 24};
    return {2047, 2048, 4096 + 5, mebibyte + 1, 16 * mebibyte, 16 * mebibyte + 129, 32 * mebibyte, 33 * mebibyte + 24};
}

// Whether bytes that a period separates are equal.
bool repeats(const uint8_t *first, const uint8_t *last, std::ptrdiff_t period)
{
    return last - first <= period || std::equal(first + period, last, first);
}

constexpr uint8_t untouched = 0xA5;

bool isUntouched(const uint8_t *first, const uint8_t *last)
{
    return first == last || (*first == untouched && repeats(first, last, 1));
}

TEST(MemMove, SizesThroughStreaming)
{
    GuardedBuffer source(34 * mebibyte);
    GuardedBuffer destination(34 * mebibyte);
    number(source.begin(), source.size());
    for (const auto &move : moves())
        for (const std::size_t size : sizes())
            for (const bool atEnd : {false, true}) {
                const uint8_t *const from = atEnd ? source.end() - size : source.begin();
                uint8_t *const to = atEnd ? destination.end() - size : destination.begin() + 13;
                std::fill(destination.begin(), destination.end(), untouched);
                move.kernel(to, from, size);
                EXPECT_TRUE(std::equal(to, to + size, from)) << move.name << ", " << size << " bytes";
                EXPECT_TRUE(isUntouched(destination.begin(), to)) << move.name << ", " << size;
                EXPECT_TRUE(isUntouched(to + size, destination.end())) << move.name << ", " << size;
            }
}

// Fills of `unit` bytes a value; skew moves the row off the alignment of its elements.
template <auto member, class Element, class Value> void expectFills(std::size_t unit, Element, Value value)
{
    GuardedBuffer row(34 * mebibyte);
    for (const auto &fill : kernelsOf(member))
        for (const std::size_t size : sizes())
            for (const std::size_t skew : {0, 13}) {
                const std::size_t count = size / unit;
                uint8_t *const to = row.end() - skew - count * unit;
                std::fill(row.begin(), row.end(), untouched);
                fill.kernel(reinterpret_cast<Element *>(to), value, count);
                for (std::size_t i = 0; i < unit; ++i)
                    EXPECT_EQ(to[i], static_cast<uint8_t>(uint64_t{value} >> 8 * i)) << fill.name;
                EXPECT_TRUE(repeats(to, to + count * unit, static_cast<std::ptrdiff_t>(unit)))
                    << fill.name << ", " << size << " bytes, skew " << skew;
                EXPECT_TRUE(isUntouched(row.begin(), to)) << fill.name << ", " << size;
                EXPECT_TRUE(isUntouched(to + count * unit, row.end())) << fill.name << ", " << size;
            }
}

TEST(MemFill, SizesThroughStreaming)
{
    expectFills<&VcbMemFillOps::MemFill8>(1, uint8_t{}, uint8_t{0x5C});
    expectFills<&VcbMemFillOps::MemFill16>(2, uint16_t{}, uint16_t{0x12FE});
    expectFills<&VcbMemFillOps::MemFill32>(4, uint32_t{}, uint32_t{0x12345678});
    expectFills<&VcbMemFillOps::MemFill24>(3, uint8_t{}, uint32_t{0xFF123456});
    expectFills<&VcbMemFillOps::MemFill64>(8, uint64_t{}, uint64_t{0x123456789ABCDEF0});
}

// --- Runs ----------------------------------------------------------------------------------------------------

struct Runs {
    std::ptrdiff_t to, from; // of run 0, in the row
    int64_t dstStride, srcStride;
    uint64_t runBytes, rows;
};

// Every run through a buffer, one after the other.
void copyRuns(Bytes &row, const Runs &runs, bool backwards)
{
    for (uint64_t k = 0; k < runs.rows; ++k) {
        const auto r = static_cast<int64_t>(backwards ? runs.rows - 1 - k : k);
        const auto from = row.begin() + runs.from + r * runs.srcStride;
        const Bytes run(from, from + static_cast<std::ptrdiff_t>(runs.runBytes));
        std::copy(run.begin(), run.end(), row.begin() + runs.to + r * runs.dstStride);
    }
}

// Source and destination in one row: most of these runs overlap each other, the rows of their own side, or both.
TEST(MemRuns, AnyStrideAndOverlap)
{
    const struct {
        bool backwards;
        std::vector<Named<decltype(VcbMemMiscOps::MemCopyStrided)>> kernels;
    } orders[] = {{false, kernelsOf(&VcbMemMiscOps::MemCopyStrided)},
                  {true, kernelsOf(&VcbMemMiscOps::MemScatterStrided)}};
    const uint64_t lengths[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 75, 129, 300};
    uint64_t state = 1;
    const auto random = [&state](int64_t from, int64_t to) {
        state = state * 6364136223846793005 + 1442695040888963407;
        return from + static_cast<int64_t>((state >> 33) % static_cast<uint64_t>(to - from + 1));
    };
    for (int i = 0; i < 20000; ++i) {
        Runs runs{.to = 0,
                  .from = 0,
                  .dstStride = random(-40, 40),
                  .srcStride = random(-40, 40),
                  .runBytes = lengths[random(0, std::size(lengths) - 1)],
                  .rows = static_cast<uint64_t>(random(0, 9))};
        // Where run 0 may begin, so that all others lie behind the row's start too.
        const auto start = [&runs, &random](int64_t stride) {
            return random(0, 60) + (stride < 0 ? -stride * static_cast<int64_t>(runs.rows) : 0);
        };
        runs.to = start(runs.dstStride);
        runs.from = start(runs.srcStride);
        for (const auto &[backwards, kernels] : orders) {
            for (const auto &kernel : kernels) {
                Bytes row(800);
                number(row.data(), row.size());
                Bytes expected = row;
                copyRuns(expected, runs, backwards);
                kernel.kernel(row.data() + runs.to, row.data() + runs.from, runs.dstStride, runs.srcStride,
                              runs.runBytes, runs.rows);
                ASSERT_EQ(row, expected) << kernel.name << (backwards ? " backwards, " : ", ") << runs.rows
                                         << " runs of " << runs.runBytes << " from " << runs.from << " + r * "
                                         << runs.srcStride << " to " << runs.to << " + r * " << runs.dstStride;
            }
        }
    }
}

TEST(MemRuns, StridesThatAreNotUsed)
{
    for (const auto &kernels :
         {kernelsOf(&VcbMemMiscOps::MemCopyStrided), kernelsOf(&VcbMemMiscOps::MemScatterStrided)})
        for (const auto &kernel : kernels)
            for (const int64_t stride : {INT64_MIN, INT64_MAX}) {
                uint8_t row[2] = {1, 2};
                kernel.kernel(nullptr, nullptr, stride, stride, 5, 0); // no rows
                kernel.kernel(nullptr, nullptr, 1, 1, 0, 5);           // no bytes
                kernel.kernel(row, row + 1, stride, stride, 1, 1);
                EXPECT_EQ(row[0], 2) << kernel.name;
            }
}

// --- By hand -------------------------------------------------------------------------------------------------

TEST(MemOracle, Groups)
{
    const auto shuffled = [](auto shuffle, auto row) {
        shuffle(row.data(), row.size());
        return row;
    };
    const auto &misc = oracle::memMiscOps;
    EXPECT_EQ(shuffled(misc.MemShuffle16A, Words{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}),
              (Words{3, 2, 1, 4, 7, 6, 5, 8, 9, 10, 11}));
    EXPECT_EQ(shuffled(misc.MemShuffle32A, Longs{1, 2, 3, 4, 5, 6}), (Longs{3, 2, 1, 4, 5, 6}));
    // L R C LFE Ls Rs
    EXPECT_EQ(shuffled(misc.MemShuffle16B, Words{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}),
              (Words{1, 2, 5, 6, 3, 4, 7, 8, 9, 10, 11}));
    EXPECT_EQ(shuffled(misc.MemShuffle32B, Longs{1, 2, 3, 4, 5, 6, 7}), (Longs{1, 2, 5, 6, 3, 4, 7}));
}

TEST(MemOracle, Order)
{
    const auto &order = oracle::memOrderOps;
    const auto &inPlace = oracle::memInPlaceOrderOps;
    Bytes bytes = {1, 2, 3, 4, 5};
    inPlace.MemReverseBytesInPlace(bytes.data(), 5);
    EXPECT_EQ(bytes, (Bytes{5, 4, 3, 2, 1}));
    Words words = {0x0102, 0x0304, 0x0506};
    inPlace.MemReverse16InPlace(words.data(), 3);
    EXPECT_EQ(words, (Words{0x0506, 0x0304, 0x0102}));
    order.MemSwapBytes16(words.data(), words.data(), 3);
    EXPECT_EQ(words, (Words{0x0605, 0x0403, 0x0201}));
    Longs longs = {0x01020304, 0xA0B0C0D0};
    order.MemReverse32(longs.data(), Longs(longs).data(), 2);
    EXPECT_EQ(longs, (Longs{0xA0B0C0D0, 0x01020304}));
    order.MemSwapBytes32(longs.data(), longs.data(), 2);
    EXPECT_EQ(longs, (Longs{0xD0C0B0A0, 0x04030201}));
    order.MemSwapHalves32(longs.data(), longs.data(), 2);
    EXPECT_EQ(longs, (Longs{0xB0A0D0C0, 0x02010403}));
    // Negative counts of the slots that have a sign.
    order.MemSwapBytes32(longs.data(), longs.data(), -1);
    oracle::memFillOps.MemFillTopByte32(longs.data(), 0xFF, -1);
    EXPECT_EQ(longs, (Longs{0xB0A0D0C0, 0x02010403}));
}

// Which byte goes where, on a little-endian machine.
TEST(MemOracle, Widths)
{
    const auto &misc = oracle::memMiscOps;
    Bytes bytes(6);
    misc.MemPack24(bytes.data(), Longs{0xAA010203, 0xBB040506}.data(), 2);
    EXPECT_EQ(bytes, (Bytes{3, 2, 1, 6, 5, 4}));
    Longs longs(2, 0xEEEEEEEE);
    misc.MemUnpack24(longs.data(), bytes.data(), 2);
    EXPECT_EQ(longs, (Longs{0x00010203, 0x00040506}));
    oracle::memFillOps.MemFillTopByte32(longs.data(), 0xFF, 1);
    EXPECT_EQ(longs, (Longs{0xFF010203, 0x00040506}));
    oracle::memFillOps.MemFill24(bytes.data(), 0xFF010203, 2);
    EXPECT_EQ(bytes, (Bytes{3, 2, 1, 3, 2, 1}));

    const Words words = {0x0100, 0x03FF, 0x0400, 0xFFFF, 0x00AB, 0x03FC};
    misc.MemNarrow16To8Low(bytes.data(), words.data(), 6);
    EXPECT_EQ(bytes, (Bytes{0x00, 0xFF, 0x00, 0xFF, 0xAB, 0xFC}));
    misc.MemNarrow16To8High(bytes.data(), words.data(), 6);
    EXPECT_EQ(bytes, (Bytes{0x01, 0x03, 0x04, 0xFF, 0x00, 0x03}));
    misc.MemNarrow16To8Shift2(bytes.data(), words.data(), 6);
    EXPECT_EQ(bytes, (Bytes{0x40, 0xFF, 0xFF, 0xFF, 0x2A, 0xFF}));

    Words halves = {0x1122, 0x3344};
    misc.MemInsertLow8(halves.data(), Bytes{0xAA, 0xBB}.data(), 2);
    EXPECT_EQ(halves, (Words{0x11AA, 0x33BB}));
    misc.MemInsertHigh8(halves.data(), Bytes{0xCC, 0xDD}.data(), 2);
    EXPECT_EQ(halves, (Words{0xCCAA, 0xDDBB}));
    misc.MemPackOp25(longs.data(), Longs{7}.data(), Longs{8}.data(), 1);
    EXPECT_EQ(longs, (Longs{7, 8}));
}

} // namespace
} // namespace vela::test
