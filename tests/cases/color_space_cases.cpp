#include "support/kernel_tables.hpp"

namespace vela::test {
namespace {

Argument alpha() { return number({0, 255, 0x5A}); }

// 4:2:2 rows hold whole pairs. Extents are those of the source's pairs or of the pixels in them.
Extent pairsOf(std::int64_t bytes)
{
    return [bytes](std::int64_t n) { return n / 2 * bytes; };
}

std::vector<Argument> expand() { return {destination(pairsOf(8)), source(pairsOf(4)), count(), alpha()}; }

std::vector<Argument> pack()
{
    return {destination([](std::int64_t n) { return (n + 1) / 2 * 4; }), source(4), count()};
}

std::vector<Argument> packPlanar(Extent packed)
{
    return {destination(std::move(packed)), source(pairsOf(4)), source(pairsOf(2)), source(pairsOf(2)), count()};
}

// A final pair takes bytes 0, 2, 4 and 6 of the place where it starts.
std::int64_t spreadFinalPair(std::int64_t n) { return n / 4 * 8 + (n % 4 >= 2 ? 7 : 0); }

} // namespace

std::vector<KernelCase> colorSpaceCases()
{
    using Procs = VcbColorSpaceProcs;
    return {
        kernelCase<&Procs::ExpandYuyvToYuva>(expand()),
        kernelCase<&Procs::PackYuvaToYuyv>(pack()),
        kernelCase<&Procs::ExpandUyvyToYuva>(expand()),
        kernelCase<&Procs::PackYuvaToUyvy>(pack()),
        kernelCase<&Procs::AppendAlpha24To32>({destination(4), source(3), count(), alpha()}),
        kernelCase<&Procs::PackPlanar16ToYuyv8>(packPlanar(spreadFinalPair)),
        kernelCase<&Procs::PackPlanar16ToUyvy8>(packPlanar(pairsOf(4))),
    };
}

} // namespace vela::test
