#include "support/kernel_check.hpp"

#include "support/fills.hpp"
#include "support/guarded_buffer.hpp"

#include <vela/frame.h>

#include <algorithm>
#include <cmath>
#include <cpuid.h>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace vela::test {
namespace {

enum class Side { after, before };

constexpr std::size_t margin = 128; // bytes watched on the open side of a row
constexpr std::size_t largestSkew = 63;

struct Trial {
    std::int64_t count;
    Side side;
    Fill fill;
    bool skewed;
    const SharedRows *shared; // rows that coincide
    bool popcnt;              // what g_CPUID says
    std::uint64_t seed;
};

void limitWords(std::uint8_t *bytes, std::size_t size, std::uint32_t largest)
{
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        std::uint16_t word;
        std::memcpy(&word, bytes + i, sizeof(word));
        if (word > largest)
            word = static_cast<std::uint16_t>(word % (largest + 1));
        std::memcpy(bytes + i, &word, sizeof(word));
    }
}

template <class T> bool bothNaN(const std::uint8_t *a, const std::uint8_t *b)
{
    T values[2];
    std::memcpy(&values[0], a, sizeof(T));
    std::memcpy(&values[1], b, sizeof(T));
    return std::isnan(values[0]) && std::isnan(values[1]);
}

// Which NaN an operation gives depends on the order of its operands, which the compiler chooses.
bool bothNaN(Element element, const std::uint8_t *a, const std::uint8_t *b)
{
    return element == Element::float32 ? bothNaN<float>(a, b) : element == Element::float64 && bothNaN<double>(a, b);
}

bool sameResult(const Parameter &type, Bits a, Bits b)
{
    return a == b || bothNaN(type.element, reinterpret_cast<std::uint8_t *>(&a), reinterpret_cast<std::uint8_t *>(&b));
}

std::string valueText(Bits bits, const Parameter &type)
{
    std::ostringstream text;
    text.precision(std::numeric_limits<double>::max_digits10);
    if (type.element == Element::float32)
        text << fromBits<float>(bits);
    else if (type.element == Element::float64)
        text << fromBits<double>(bits);
    else
        text << integerOf(bits, type);
    return text.str();
}

// One row: where the kernel sees it, and the oracle's aligned copy.
class Row {
public:
    explicit Row(std::size_t largest) : guarded_(largest + 2 * (margin + largestSkew + 1)) {}

    void place(const Argument &argument, const Parameter &type, const Span &span, const Trial &trial, Random &random)
    {
        const auto before = static_cast<std::size_t>(span.before);
        const auto bytes = static_cast<std::size_t>(span.bytes);
        const auto after = static_cast<std::size_t>(span.after);
        const std::size_t whole = before + bytes + after;
        bytes_ = bytes;
        const std::size_t skew =
            trial.skewed ? random.below(largestSkew + 1) / argument.alignment * argument.alignment : 0;
        start_ = (trial.side == Side::after ? guarded_.end() - skew - whole : guarded_.begin() + skew) + before;
        windowBegin_ = std::max(guarded_.begin(), start_ - before - margin);
        windowEnd_ = std::min(guarded_.end(), start_ + bytes + after + margin);

        if (argument.kind == Argument::Kind::destination) {
            // Canaries, whatever the sources hold; floats that a kernel adds to may be any.
            fillBytes(windowBegin_, windowSize(), Fill::random, random);
            if (type.element != Element::integer)
                fillRow(start_ - before, whole, type, random.next() & 1 ? Fill::random : trial.fill, random);
        } else {
            fillSpan(windowBegin_, start_ - before, trial.fill, random);
            if (argument.contents.empty())
                fillRow(start_ - before, whole, type, trial.fill, random);
            else
                std::memcpy(start_, argument.contents[random.below(argument.contents.size())].data(), bytes);
            fillSpan(start_ + bytes + after, windowEnd_, trial.fill, random);
        }
        if (argument.largest)
            limitWords(start_ - before, whole, argument.largest);
        copyForOracle();
    }

    // An aligned array of pointers.
    void place(const std::vector<const std::uint8_t *> &pointers, Side side)
    {
        bytes_ = pointers.size() * sizeof(pointers[0]);
        start_ = side == Side::after ? guarded_.end() - bytes_ : guarded_.begin();
        windowBegin_ = start_;
        windowEnd_ = start_ + bytes_;
        if (bytes_)
            std::memcpy(start_, pointers.data(), bytes_);
        copyForOracle();
    }

    std::uint8_t *start() const { return start_; }
    std::uint8_t *copyStart() { return copyStart_; }
    std::size_t bytes() const { return bytes_; }

    // The first byte of the window that differs from the oracle's, relative to the row's start. Whole elements may be
    // different NaNs.
    std::optional<std::ptrdiff_t> difference(const Parameter &type)
    {
        const std::uint8_t *mine = windowBegin_;
        const std::uint8_t *theirs = copyStart_ - lead();
        for (;;) {
            std::tie(mine, theirs) = std::mismatch(mine, static_cast<const std::uint8_t *>(windowEnd_), theirs);
            if (mine == windowEnd_)
                return std::nullopt;
            const std::ptrdiff_t at = mine - start_;
            if (at < 0)
                return at;
            const std::size_t element = static_cast<std::size_t>(at) / type.size * type.size;
            if (element + type.size > bytes_ || !bothNaN(type.element, start_ + element, copyStart_ + element))
                return at;
            mine = start_ + element + type.size;
            theirs = copyStart_ + element + type.size;
        }
    }

private:
    static constexpr std::size_t copyAlignment = 64;

    static void fillSpan(std::uint8_t *begin, std::uint8_t *end, Fill fill, Random &random)
    {
        fillBytes(begin, static_cast<std::size_t>(end - begin), fill, random);
    }

    std::size_t windowSize() const { return static_cast<std::size_t>(windowEnd_ - windowBegin_); }
    std::size_t lead() const { return static_cast<std::size_t>(start_ - windowBegin_); } // of the window before the row

    // The same bytes, with the row aligned for whatever type the oracle reads.
    void copyForOracle()
    {
        copy_.resize(windowSize() + copyAlignment);
        copyStart_ = copy_.data() + lead();
        copyStart_ += (copyAlignment - reinterpret_cast<std::uintptr_t>(copyStart_) % copyAlignment) % copyAlignment;
        if (windowSize())
            std::memcpy(copyStart_ - lead(), windowBegin_, windowSize());
    }

    GuardedBuffer guarded_;
    std::uint8_t *start_ = nullptr;
    std::uint8_t *windowBegin_ = nullptr;
    std::uint8_t *windowEnd_ = nullptr;
    std::size_t bytes_ = 0;
    std::vector<std::uint8_t> copy_;
    std::uint8_t *copyStart_ = nullptr;
};

bool isRow(const Argument &argument)
{
    return argument.kind != Argument::Kind::count && argument.kind != Argument::Kind::number;
}

// The upper halves of the vector registers, which AVX has.
void clearUpperHalves() { __asm__ volatile("vzeroupper"); }

bool upperHalvesInUse()
{
    constexpr std::uint32_t avxState = 1 << 2;
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(1)); // state that is not as after a reset
    return low & avxState;
}

bool findsOutUpperHalves()
{
#if defined(NDEBUG)
    if (VCB_GetCPUInsHigh() < VCB_CPU_AVX)
        return false;
    constexpr std::uint32_t hasXgetbv1 = 1 << 2;
    std::uint32_t a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid_count(0xD, 1, &a, &b, &c, &d) || !(a & hasXgetbv1))
        return false;
    fillUpperHalf();
    const bool filled = upperHalvesInUse();
    clearUpperHalves();
    return filled && !upperHalvesInUse(); // emulators do not tell
#else
    return false; // compilers clear them only when they optimise
#endif
}

// What g_CPUID says for the time of a trial.
class PopcntSetting {
public:
    explicit PopcntSetting(bool value) : detected_(g_CPUID.popcnt) { g_CPUID.popcnt = value; }
    ~PopcntSetting() { g_CPUID.popcnt = detected_; }
    PopcntSetting(const PopcntSetting &) = delete;
    PopcntSetting &operator=(const PopcntSetting &) = delete;

private:
    std::uint8_t detected_;
};

class Checker {
public:
    Checker(const KernelCase &kernelCase, VcbKernel kernel, VcbKernel oracle, std::int64_t largestCount,
            bool upperHalves)
        : case_(kernelCase), kernel_(kernel), oracle_(oracle), upperHalves_(upperHalves && tracksUpperHalves()),
          rows_(case_.arguments.size())
    {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            const Argument &argument = case_.arguments[i];
            if (!isRow(argument))
                continue;
            std::int64_t most = 1;
            std::size_t largest = sizeOf(spanOf(argument, largestCount, 1));
            if (argument.items) {
                for (const Bits value : case_.arguments[*argument.items].values) {
                    const std::int64_t items = itemsIn(value, *argument.items);
                    most = std::max(most, items);
                    if (argument.kind != Argument::Kind::sourceRows)
                        largest = std::max(largest, sizeOf(spanOf(argument, largestCount, items)));
                }
            }
            const bool isArray = argument.kind == Argument::Kind::sourceRows;
            for (std::int64_t row = 0; row < (isArray ? most : 1); ++row)
                rows_[i].rows.push_back(std::make_unique<Row>(largest));
            if (isArray)
                rows_[i].pointers = std::make_unique<Row>(static_cast<std::size_t>(most) * sizeof(void *));
        }
    }

    std::optional<Finding> run(const Trial &trial)
    {
        Random random(trial.seed);
        std::vector<Bits> mine(case_.arguments.size());
        for (std::size_t i = 0; i < mine.size(); ++i) {
            const Argument &argument = case_.arguments[i];
            if (argument.kind == Argument::Kind::count)
                mine[i] = toBits(trial.count);
            else if (argument.kind == Argument::Kind::number)
                mine[i] = argument.values[random.below(argument.values.size())];
        }
        std::vector<Bits> theirs = mine;
        for (std::size_t i = 0; i < mine.size(); ++i)
            if (isRow(case_.arguments[i]))
                placeRows(i, trial, mine, theirs, random);

        const std::vector<InPlace> inPlace = shareRows(*trial.shared, mine, theirs, random);

        Bits mineReturned = 0;
        Bits theirsReturned = 0;
        {
            const PopcntSetting setting(trial.popcnt);
            bool leftUpperHalves = false;
            if (upperHalves_)
                clearUpperHalves();
            if (!runsWithoutFault([&] {
                    mineReturned = case_.invoke(kernel_, mine.data());
                    leftUpperHalves = upperHalves_ && upperHalvesInUse();
                }))
                return Finding{Fault::crash, describe(trial, mine)};
            if (leftUpperHalves)
                return Finding{Fault::leftRegisters, describe(trial, mine)};
            theirsReturned = case_.invoke(oracle_, theirs.data());
        }
        if (case_.result.kind == Parameter::Kind::row) {
            mineReturned -= mine[0];
            theirsReturned -= theirs[0];
        }
        if (!sameResult(case_.result, mineReturned, theirsReturned))
            return Finding{Fault::wrongReturn, describe(trial, mine) + ": returned " +
                                                   valueText(mineReturned, case_.result) + ", expected " +
                                                   valueText(theirsReturned, case_.result)};
        for (const auto &[destination, source] : inPlace) {
            // Put the oracle's result where the kernel's is expected: in the source.
            Row &own = *rows_[destination].rows[0];
            std::memcpy(source->copyStart(), own.copyStart(), own.bytes());
            std::memcpy(own.copyStart(), own.start(), own.bytes());
        }
        return compare(trial, mine, inPlace);
    }

private:
    // The rows of an argument: one, or those of an array of pointers, of which a trial uses some.
    struct Rows {
        std::vector<std::unique_ptr<Row>> rows;
        std::unique_ptr<Row> pointers;
        std::size_t used = 0;
        std::vector<std::uint8_t *> oraclePointers;
    };

    // A destination that lies in a source's row.
    struct InPlace {
        std::size_t destination;
        Row *source;
    };

    // The kernel's destination may be its source; the oracle keeps them apart and its result must be the same. Rows of
    // one direction that coincide do so for both.
    std::vector<InPlace> shareRows(const SharedRows &shared, std::vector<Bits> &mine, std::vector<Bits> &theirs,
                                   Random &random)
    {
        const auto sameDirection = [this](std::size_t one, std::size_t other) {
            return (case_.arguments[one].kind == Argument::Kind::destination) ==
                   (case_.arguments[other].kind == Argument::Kind::destination);
        };
        std::vector<InPlace> inPlace;
        for (const auto &[one, other] : shared) {
            if (sameDirection(one, other) || !rows_[other].used)
                continue;
            Row &source = *rows_[other].rows[random.below(rows_[other].used)];
            mine[one] = toBits(source.start());
            std::memcpy(rows_[one].rows[0]->copyStart(), source.start(), source.bytes());
            inPlace.push_back({one, &source});
        }
        for (const auto &[one, other] : shared) {
            if (!sameDirection(one, other))
                continue;
            mine[one] = mine[other];
            theirs[one] = theirs[other];
            rows_[one].used = 0;
        }
        return inPlace;
    }

    static std::size_t sizeOf(const Span &span)
    {
        return static_cast<std::size_t>(span.before + span.bytes + span.after);
    }

    std::int64_t itemsIn(Bits value, std::size_t argument) const
    {
        return integerOf(value, case_.parameters[argument]);
    }

    void placeRows(std::size_t i, const Trial &trial, std::vector<Bits> &mine, std::vector<Bits> &theirs,
                   Random &random)
    {
        const Argument &argument = case_.arguments[i];
        const Parameter &type = case_.parameters[i];
        const std::int64_t items = argument.items ? itemsIn(mine[*argument.items], *argument.items) : 1;
        Rows &rows = rows_[i];
        if (argument.kind != Argument::Kind::sourceRows) {
            rows.used = 1;
            rows.rows[0]->place(argument, type, spanOf(argument, trial.count, items), trial, random);
            mine[i] = toBits(rows.rows[0]->start());
            theirs[i] = toBits(rows.rows[0]->copyStart());
            return;
        }
        rows.used = trial.count > 0 ? static_cast<std::size_t>(std::max<std::int64_t>(items, 0)) : 0;
        rows.oraclePointers.clear();
        std::vector<const std::uint8_t *> pointers;
        for (std::size_t row = 0; row < rows.used; ++row) {
            rows.rows[row]->place(argument, type, spanOf(argument, trial.count, 1), trial, random);
            pointers.push_back(rows.rows[row]->start());
            rows.oraclePointers.push_back(rows.rows[row]->copyStart());
        }
        rows.pointers->place(pointers, trial.side);
        mine[i] = toBits(rows.pointers->start());
        theirs[i] = toBits(rows.oraclePointers.data());
    }

    std::optional<Finding> compare(const Trial &trial, const std::vector<Bits> &arguments,
                                   const std::vector<InPlace> &inPlace)
    {
        constexpr Parameter exact{.kind = Parameter::Kind::row, .element = Element::integer, .size = 1};
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            for (std::size_t row = 0; row < rows_[i].used; ++row) {
                Row &place = *rows_[i].rows[row];
                const auto writer = std::find_if(inPlace.begin(), inPlace.end(),
                                                 [&](const InPlace &pair) { return pair.source == &place; });
                const bool isSource = case_.arguments[i].kind != Argument::Kind::destination;
                const bool written = !isSource || writer != inPlace.end();
                const Parameter &type = !written   ? exact
                                        : isSource ? case_.parameters[writer->destination]
                                                   : case_.parameters[i];
                const auto at = place.difference(type);
                if (!at)
                    continue;
                Fault fault = written ? Fault::wrongResult : Fault::changedSource;
                if (*at < 0 || *at >= static_cast<std::ptrdiff_t>(place.bytes()))
                    fault = Fault::wroteOutside;
                std::ostringstream text;
                text << describe(trial, arguments) << ": argument " << i;
                if (rows_[i].pointers)
                    text << ", row " << row;
                text << ", byte " << *at << ": got 0x" << std::hex << int{place.start()[*at]} << ", expected 0x"
                     << int{place.copyStart()[*at]};
                return Finding{fault, text.str()};
            }
            if (rows_[i].pointers && rows_[i].pointers->difference(exact))
                return Finding{Fault::changedSource, describe(trial, arguments) + ": changed a row pointer"};
        }
        return std::nullopt;
    }

    std::string describe(const Trial &trial, const std::vector<Bits> &arguments) const
    {
        std::ostringstream text;
        text << "count " << trial.count << ", rows " << (trial.side == Side::after ? "end" : "start")
             << " at a guard page" << (trial.skewed ? ", skewed" : "") << ", fill "
             << fillNames[static_cast<int>(trial.fill)];
        for (const auto &[one, other] : *trial.shared)
            text << ", argument " << one << " = argument " << other;
        if (case_.asksForPopcnt)
            text << (trial.popcnt ? ", with POPCNT" : ", without POPCNT");
        for (std::size_t i = 0; i < arguments.size(); ++i)
            if (case_.arguments[i].kind == Argument::Kind::number)
                text << ", argument " << i << " = " << valueText(arguments[i], case_.parameters[i]);
        text << ", seed " << trial.seed;
        return text.str();
    }

    const KernelCase &case_;
    VcbKernel kernel_;
    VcbKernel oracle_;
    bool upperHalves_;
    std::vector<Rows> rows_;
};

// Longer than the byte-wide counters of a reduction last.
constexpr std::int64_t overflowingCount = 40009;

// Counts of which each gets few trials.
std::vector<std::int64_t> longCounts(Random &random)
{
    // Around whole blocks, unrolled ones too.
    std::vector<std::int64_t> counts = {255,  256,  257,  383,  384,  385,  511,  512,  513,  639,
                                        719,  767,  769,  1023, 1024, 1025, 1279, 1919, 1920, 1921,
                                        2047, 2048, 2049, 4095, 4099, 8191, 8192, 9001};
    for (int i = 0; i < 16; ++i)
        counts.push_back(141 + static_cast<std::int64_t>(random.below(1100)));
    return counts;
}

std::vector<std::int64_t> negativeCounts(const KernelCase &kernelCase)
{
    std::vector<std::int64_t> counts;
    for (std::size_t i = 0; i < kernelCase.arguments.size(); ++i) {
        const Parameter &parameter = kernelCase.parameters[i];
        if (kernelCase.arguments[i].kind != Argument::Kind::count || !parameter.isSigned)
            continue;
        counts.insert(counts.end(), {-1, -2, -17, -1920, INT32_MIN});
        if (parameter.size == 8) // negative, though the low half is not
            counts.insert(counts.end(), {INT64_MIN, INT64_MIN + 33, -0x100000000 + 7});
    }
    return counts;
}

// Large tables are worth few trials each.
bool isHeavy(const KernelCase &kernelCase)
{
    return std::any_of(kernelCase.arguments.begin(), kernelCase.arguments.end(),
                       [](const Argument &argument) { return argument.bytes && argument.bytes(1) > 16384; });
}

bool detectedPopcnt()
{
    VCB_GetCPUInsHigh(); // the first call detects
    return g_CPUID.popcnt;
}

} // namespace

bool tracksUpperHalves()
{
    static const bool tracks = findsOutUpperHalves();
    return tracks;
}

void fillUpperHalf()
{
    __asm__ volatile("vpcmpeqd %%xmm0, %%xmm0, %%xmm0\n\tvinsertf128 $1, %%xmm0, %%ymm0, %%ymm0" ::: "xmm0");
}

CheckResult checkKernel(const KernelCase &kernelCase, VcbKernel kernel, VcbKernel oracle, const CheckPlan &plan)
{
    if (const auto wrong = contradiction(kernelCase))
        throw std::invalid_argument(*wrong);
    CheckResult result;
    Random random(plan.seed);
    const std::vector<std::int64_t> longer = longCounts(random);
    const bool returns = kernelCase.result.size != 0 && kernelCase.result.kind == Parameter::Kind::value;
    Checker checker(kernelCase, kernel, oracle,
                    returns ? overflowingCount : *std::max_element(longer.begin(), longer.end()), plan.upperHalves);

    std::vector<SharedRows> places{{}};
    places.insert(places.end(), kernelCase.shared.begin(), kernelCase.shared.end());
    const bool popcnt = detectedPopcnt();

    const auto passes = [&](std::int64_t count, const SharedRows &shared, Side side, bool skewed, Fill fill) {
        const bool says = popcnt && !(kernelCase.asksForPopcnt && random.below(2));
        ++result.runs;
        result.finding = checker.run({count, side, fill, skewed, &shared, says, random.next()});
        return !result.finding;
    };
    // Every fill, anywhere.
    const auto passesInShort = [&](std::int64_t count, bool quick) {
        return std::all_of(std::begin(fills), std::end(fills), [&](Fill fill) {
            if (quick && fill != Fill::random && random.below(4))
                return true;
            const SharedRows &shared = places[random.below(places.size())];
            const Side side = random.below(2) ? Side::after : Side::before;
            return passes(count, shared, side, random.below(2), fill);
        });
    };
    // Every fill, everywhere.
    const auto passesAtLength = [&](std::int64_t count) {
        for (const SharedRows &shared : places)
            for (const Side side : {Side::after, Side::before})
                for (const bool skewed : {false, true})
                    for (const Fill fill : fills)
                        if (!plan.quick || random.below(4) == 0 || (fill == Fill::random && !skewed))
                            if (!passes(count, shared, side, skewed, fill))
                                return false;
        return true;
    };

    const bool heavy = isHeavy(kernelCase);
    for (std::int64_t n = 0; n <= plan.everyCountUpTo; ++n)
        if (!(heavy ? passesInShort(n, plan.quick) : passesAtLength(n)))
            return result;
    for (const std::int64_t n : longer)
        if (!passesInShort(n, plan.quick))
            return result;
    for (const std::int64_t n : negativeCounts(kernelCase))
        if (!passesAtLength(n))
            return result;
    for (int round = 0; returns && round < 3; ++round)
        if (!passesInShort(overflowingCount, false))
            return result;
    return result;
}

const char *faultName(Fault fault)
{
    switch (fault) {
    case Fault::crash:
        return "touched memory outside its rows, or ran an unknown instruction";
    case Fault::wrongResult:
        return "wrong result";
    case Fault::wroteOutside:
        return "wrote outside its row";
    case Fault::changedSource:
        return "changed a source";
    case Fault::wrongReturn:
        return "wrong return value";
    case Fault::leftRegisters:
        return "left the upper halves of vector registers in use";
    }
    return "unknown fault";
}

} // namespace vela::test
