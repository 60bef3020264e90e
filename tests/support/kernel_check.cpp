#include "support/kernel_check.hpp"

#include "support/guarded_buffer.hpp"

#include <algorithm>
#include <iomanip>
#include <memory>
#include <sstream>

namespace vela::test {
namespace {

// splitmix64: small, fast, and every seed is a good one.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next()
    {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }

private:
    std::uint64_t state_;
};

enum class Fill { random, zeros, ones, alternating, nearlyEqual };
constexpr Fill fills[] = {Fill::random, Fill::zeros, Fill::ones, Fill::alternating, Fill::nearlyEqual};
constexpr const char *fillNames[] = {"random", "zeros", "ones", "alternating", "nearly equal"};

enum class Side { after, before };

constexpr std::size_t margin = 128; // bytes watched on the open side of a row
constexpr std::size_t largestSkew = 63;

struct Trial {
    std::int64_t count;
    Side side;
    Fill fill;
    bool skewed;
    std::size_t inPlace; // index of the source that the destination is identical to; 0: none
    std::uint64_t seed;

    std::string describe() const
    {
        std::ostringstream text;
        text << "count " << count << ", rows " << (side == Side::after ? "end" : "start") << " at a guard page"
             << (skewed ? ", skewed" : "") << ", fill " << fillNames[static_cast<int>(fill)];
        if (inPlace)
            text << ", destination = argument " << inPlace;
        text << ", seed " << seed;
        return text.str();
    }
};

void fillBytes(std::uint8_t *bytes, std::size_t size, Fill fill, Random &random)
{
    const std::uint64_t base = (random.next() & 0x7F) * 0x0101010101010101;
    std::uint64_t piece = 0;
    for (std::size_t i = 0; i < size; i += sizeof(piece)) {
        switch (fill) {
        case Fill::random:
            piece = random.next();
            break;
        case Fill::zeros:
            piece = 0;
            break;
        case Fill::ones:
            piece = ~std::uint64_t{0};
            break;
        case Fill::alternating:
            piece = 0xFF00FF00FF00FF00;
            break;
        case Fill::nearlyEqual:
            piece = base + (random.next() & 0x0303030303030303);
            break;
        }
        std::memcpy(bytes + i, &piece, std::min(sizeof(piece), size - i));
    }
}

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

// One row argument: where the kernel sees it, and the oracle's aligned copy.
class Row {
public:
    explicit Row(std::size_t largest) : guarded_(largest + 2 * (margin + largestSkew + 1)) {}

    void place(const Argument &argument, const Trial &trial, Random &random)
    {
        const auto bytes = static_cast<std::size_t>(argument.bytes(trial.count));
        // A row of no units has no padding to read either.
        before_ = bytes ? static_cast<std::size_t>(argument.before) : 0;
        after_ = bytes ? static_cast<std::size_t>(argument.after) : 0;
        bytes_ = bytes;
        const std::size_t skew = trial.skewed ? random.below(largestSkew + 1) : 0;
        const std::size_t whole = before_ + bytes_ + after_;
        start_ = (trial.side == Side::after ? guarded_.end() - skew - whole : guarded_.begin() + skew) + before_;

        windowBegin_ = std::max(guarded_.begin(), start_ - before_ - margin);
        windowEnd_ = std::min(guarded_.end(), start_ + bytes_ + after_ + margin);
        fillBytes(windowBegin_, windowSize(), trial.fill, random);
        if (argument.kind == Argument::Kind::destination) // canaries, whatever the sources hold
            fillBytes(windowBegin_, windowSize(), Fill::random, random);
        if (argument.largest)
            limitWords(start_ - before_, whole, argument.largest);
        copyForOracle();
    }

    std::uint8_t *start() const { return start_; }
    std::uint8_t *copyStart() { return copyStart_; }
    std::size_t bytes() const { return bytes_; }

    // The first byte of the window that differs from the oracle's, relative to the row's start.
    std::optional<std::ptrdiff_t> difference()
    {
        const auto [mine, theirs] = std::mismatch(windowBegin_, windowEnd_, copyStart_ - lead());
        if (mine == windowEnd_)
            return std::nullopt;
        return mine - start_;
    }

private:
    static constexpr std::size_t copyAlignment = 64;

    std::size_t windowSize() const { return static_cast<std::size_t>(windowEnd_ - windowBegin_); }
    std::size_t lead() const { return static_cast<std::size_t>(start_ - windowBegin_); } // of the window before the row

    // The same bytes, with the row aligned for whatever type the oracle reads.
    void copyForOracle()
    {
        copy_.resize(windowSize() + copyAlignment);
        copyStart_ = copy_.data() + lead();
        copyStart_ += (copyAlignment - reinterpret_cast<std::uintptr_t>(copyStart_) % copyAlignment) % copyAlignment;
        std::memcpy(copyStart_ - lead(), windowBegin_, windowSize());
    }

    GuardedBuffer guarded_;
    std::uint8_t *start_ = nullptr;
    std::uint8_t *windowBegin_ = nullptr;
    std::uint8_t *windowEnd_ = nullptr;
    std::size_t before_ = 0;
    std::size_t bytes_ = 0;
    std::size_t after_ = 0;
    std::vector<std::uint8_t> copy_;
    std::uint8_t *copyStart_ = nullptr;
};

bool isRow(const Argument &argument)
{
    return argument.kind == Argument::Kind::destination || argument.kind == Argument::Kind::source;
}

class Checker {
public:
    Checker(const KernelCase &kernelCase, VcbKernel kernel, VcbKernel oracle, std::int64_t largestCount)
        : case_(kernelCase), kernel_(kernel), oracle_(oracle)
    {
        for (const Argument &argument : case_.arguments) {
            rows_.push_back(nullptr);
            if (isRow(argument))
                rows_.back() = std::make_unique<Row>(
                    static_cast<std::size_t>(argument.bytes(largestCount) + argument.before + argument.after));
        }
    }

    std::optional<Finding> run(const Trial &trial)
    {
        Random random(trial.seed);
        std::vector<Bits> mine(case_.arguments.size());
        std::vector<Bits> theirs(case_.arguments.size());
        for (std::size_t i = 0; i < case_.arguments.size(); ++i) {
            const Argument &argument = case_.arguments[i];
            switch (argument.kind) {
            case Argument::Kind::count:
                mine[i] = theirs[i] = toBits(trial.count);
                break;
            case Argument::Kind::number:
                mine[i] = theirs[i] = argument.values[random.below(argument.values.size())];
                break;
            default:
                rows_[i]->place(argument, trial, random);
                mine[i] = toBits(rows_[i]->start());
                theirs[i] = toBits(rows_[i]->copyStart());
            }
        }
        if (trial.inPlace) {
            // The kernel's destination is its source; the oracle keeps them apart and its result must be the same.
            mine[0] = mine[trial.inPlace];
            std::memcpy(rows_[0]->copyStart(), rows_[trial.inPlace]->start(), rows_[0]->bytes());
        }

        Bits mineReturned = 0;
        if (!runsWithoutFault([&] { mineReturned = case_.invoke(kernel_, mine.data()); }))
            return Finding{Fault::crash, trial.describe()};
        const Bits theirsReturned = case_.invoke(oracle_, theirs.data());
        if (mineReturned != theirsReturned)
            return Finding{Fault::wrongReturn, trial.describe() + ": returned " + std::to_string(mineReturned) +
                                                   ", expected " + std::to_string(theirsReturned)};
        return trial.inPlace ? compareInPlace(trial) : compare(trial);
    }

private:
    std::optional<Finding> compare(const Trial &trial)
    {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (!rows_[i])
                continue;
            if (const auto at = rows_[i]->difference())
                return finding(trial, i, *at, rows_[i]->start()[*at], rows_[i]->copyStart()[*at]);
        }
        return std::nullopt;
    }

    std::optional<Finding> compareInPlace(const Trial &trial)
    {
        // Put the oracle's result where the kernel's is expected: in the shared row.
        std::memcpy(rows_[trial.inPlace]->copyStart(), rows_[0]->copyStart(), rows_[0]->bytes());
        std::memcpy(rows_[0]->copyStart(), rows_[0]->start(), rows_[0]->bytes());
        return compare(trial);
    }

    Finding finding(const Trial &trial, std::size_t argument, std::ptrdiff_t at, int got, int expected) const
    {
        const bool outside = at < 0 || at >= static_cast<std::ptrdiff_t>(rows_[argument]->bytes());
        Fault fault = Fault::wrongResult;
        if (outside)
            fault = Fault::wroteOutside;
        else if (case_.arguments[argument].kind == Argument::Kind::source && argument != trial.inPlace)
            fault = Fault::changedSource;
        std::ostringstream text;
        text << trial.describe() << ": argument " << argument << ", byte " << at << ": got 0x" << std::hex << got
             << ", expected 0x" << expected;
        return {fault, text.str()};
    }

    const KernelCase &case_;
    VcbKernel kernel_;
    VcbKernel oracle_;
    std::vector<std::unique_ptr<Row>> rows_;
};

std::vector<std::int64_t> countsFor(const KernelCase &kernelCase, const CheckPlan &plan)
{
    std::vector<std::int64_t> counts;
    for (std::int64_t n = 0; n <= plan.everyCountUpTo; ++n)
        counts.push_back(n);
    for (std::int64_t n : {255, 256, 257, 719, 1919, 1920, 1921, 4099})
        counts.push_back(n);
    const bool isSigned = std::any_of(kernelCase.arguments.begin(), kernelCase.arguments.end(),
                                      [](const Argument &argument) { return argument.isSigned; });
    if (isSigned)
        for (std::int64_t n : {-1, -2, -17, -1920, static_cast<int>(INT32_MIN)})
            counts.push_back(n);
    return counts;
}

} // namespace

CheckResult checkKernel(const KernelCase &kernelCase, VcbKernel kernel, VcbKernel oracle, const CheckPlan &plan)
{
    CheckResult result;
    const std::vector<std::int64_t> counts = countsFor(kernelCase, plan);
    Checker checker(kernelCase, kernel, oracle, *std::max_element(counts.begin(), counts.end()));
    Random random(plan.seed);

    std::vector<std::size_t> places{0};
    places.insert(places.end(), kernelCase.inPlace.begin(), kernelCase.inPlace.end());

    for (const std::int64_t count : counts) {
        for (const std::size_t inPlace : places) {
            for (const Side side : {Side::after, Side::before}) {
                for (const bool skewed : {false, true}) {
                    for (const Fill fill : fills) {
                        if (plan.quick && fill != Fill::random && random.below(4) != 0)
                            continue;
                        const Trial trial{count, side, fill, skewed, inPlace, random.next()};
                        ++result.runs;
                        result.finding = checker.run(trial);
                        if (result.finding)
                            return result;
                    }
                }
            }
        }
    }
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
    }
    return "unknown fault";
}

} // namespace vela::test
