#include "support/kernel_tables.hpp"

namespace vela::test {
namespace {

// Two rows, the count in elements.
std::vector<Argument> rows(std::int64_t toBytes, std::int64_t fromBytes)
{
    return {destination(toBytes), source(fromBytes), count()};
}

std::vector<Argument> inPlace(std::int64_t bytes) { return {destination(bytes), count()}; }

// Fills: every byte of the value differs.
template <class Value> std::vector<Argument> fill(std::int64_t bytes, std::vector<Value> values)
{
    return {destination(bytes), numbers<Value>(values), count()};
}

// Runs that lie apart, at strides of at least 1; count is the number of runs.
template <auto member>
KernelCase runs(const char *name, std::int64_t runBytes, std::int64_t dstStride, std::int64_t srcStride)
{
    const auto extent = [runBytes](std::int64_t stride) {
        return [=](std::int64_t n) { return (n - 1) * stride + runBytes; };
    };
    return kernelCase<member>({destination(extent(dstStride)), source(extent(srcStride)),
                               numbers<std::int64_t>({dstStride}), numbers<std::int64_t>({srcStride}),
                               numbers<std::uint64_t>({static_cast<std::uint64_t>(runBytes)}), count()})
        .named(name);
}

template <auto member> void addRuns(std::vector<KernelCase> &cases)
{
    cases.push_back(runs<member>("byte", 1, 1, 4));
    cases.push_back(runs<member>("bytes2", 2, 4, 2));
    cases.push_back(runs<member>("bytes3", 3, 3, 4));
    cases.push_back(runs<member>("bytes4", 4, 12, 4));
    cases.push_back(runs<member>("bytes5", 5, 5, 9));
    cases.push_back(runs<member>("bytes7", 7, 8, 7));
    cases.push_back(runs<member>("bytes8", 8, 8, 24));
    cases.push_back(runs<member>("bytes13", 13, 17, 14));
    cases.push_back(runs<member>("bytes16", 16, 16, 32));
    cases.push_back(runs<member>("bytes29", 29, 29, 32));
    cases.push_back(runs<member>("bytes75", 75, 80, 76));
    cases.push_back(runs<member>("bytes640", 640, 640, 704));
}

} // namespace

std::vector<KernelCase> memMoveCases()
{
    std::vector<KernelCase> cases = {
        kernelCase<&VcbMemOrderOps::MemCopy>(rows(1, 1)).mayEqual({1}),
        kernelCase<&VcbMemOrderOps::MemMove>(rows(1, 1)).mayEqual({1}),
        kernelCase<&VcbMemOrderOps::MemReverseBytes>(rows(1, 1)),
        kernelCase<&VcbMemOrderOps::MemReverse16>(rows(2, 2)),
        kernelCase<&VcbMemOrderOps::MemReverse32>(rows(4, 4)),
        kernelCase<&VcbMemOrderOps::MemSwapBytes16>(rows(2, 2)).mayEqual({1}),
        kernelCase<&VcbMemOrderOps::MemSwapBytes32>(rows(4, 4)).mayEqual({1}),
        kernelCase<&VcbMemOrderOps::MemSwapHalves32>(rows(4, 4)).mayEqual({1}),

        kernelCase<&VcbMemInPlaceOrderOps::MemReverseBytesInPlace>(inPlace(1)),
        kernelCase<&VcbMemInPlaceOrderOps::MemReverse16InPlace>(inPlace(2)),
        kernelCase<&VcbMemInPlaceOrderOps::MemReverse32InPlace>(inPlace(4)),
        kernelCase<&VcbMemInPlaceOrderOps::MemExchange>({destination(1), destination(1), count()}),

        kernelCase<&VcbMemFillOps::MemFill8>(fill<std::uint8_t>(1, {0, 0xFF, 0x5C})),
        kernelCase<&VcbMemFillOps::MemFill16>(fill<std::uint16_t>(2, {0x8001, 0x12FE})),
        kernelCase<&VcbMemFillOps::MemFill32>(fill<std::uint32_t>(4, {0x80000001, 0x12345678})),
        kernelCase<&VcbMemFillOps::MemFill24>(fill<std::uint32_t>(3, {0x00800001, 0xFF123456})),
        kernelCase<&VcbMemFillOps::MemFill64>(fill<std::uint64_t>(8, {0x8000000000000001, 0x123456789ABCDEF0})),
        kernelCase<&VcbMemFillOps::MemFillTopByte32>(fill<std::uint8_t>(4, {0, 0x7F, 0xFF})),

        kernelCase<&VcbMemMiscOps::MemNarrow16To8Low>(rows(1, 2)),
        kernelCase<&VcbMemMiscOps::MemNarrow16To8High>(rows(1, 2)),
        kernelCase<&VcbMemMiscOps::MemNarrow16To8Shift2>(rows(1, 2)),
        kernelCase<&VcbMemMiscOps::MemShuffle16A>(inPlace(2)),
        kernelCase<&VcbMemMiscOps::MemShuffle16B>(inPlace(2)),
        kernelCase<&VcbMemMiscOps::MemShuffle32A>(inPlace(4)),
        kernelCase<&VcbMemMiscOps::MemShuffle32B>(inPlace(4)),
        kernelCase<&VcbMemMiscOps::MemPack24>(rows(3, 4)),
        kernelCase<&VcbMemMiscOps::MemUnpack24>(rows(4, 3)),
        kernelCase<&VcbMemMiscOps::MemInsertLow8>(rows(2, 1)),
        kernelCase<&VcbMemMiscOps::MemInsertHigh8>(rows(2, 1)),
        kernelCase<&VcbMemMiscOps::MemInsertLow16>(rows(4, 2)),
        kernelCase<&VcbMemMiscOps::MemInsertHigh16>(rows(4, 2)),
        kernelCase<&VcbMemMiscOps::MemInsertLow32>(rows(8, 4)),
        kernelCase<&VcbMemMiscOps::MemInsertHigh32>(rows(8, 4)),
        kernelCase<&VcbMemMiscOps::MemPackOp25>({destination(8), source(4), source(4), count()}),
        kernelCase<&VcbMemMiscOps::MemDeinterleave32>({destination(4), destination(4), source(8), count()}),
    };
    addRuns<&VcbMemMiscOps::MemCopyStrided>(cases);
    addRuns<&VcbMemMiscOps::MemScatterStrided>(cases);
    return cases;
}

} // namespace vela::test
