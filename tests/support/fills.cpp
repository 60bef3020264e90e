#include "support/fills.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace vela::test {
namespace {

constexpr double fromMinusOneToOne(std::uint64_t random)
{
    return static_cast<double>(static_cast<std::int64_t>(random) >> 11) * 0x1p-52;
}

template <class T> T uniform(Random &random) { return static_cast<T>(fromMinusOneToOne(random.next())); }
template <class T> T signedAtRandom(T value, Random &random) { return random.next() & 1 ? -value : value; }

template <class T> T anyMagnitude(Random &random)
{
    // A power of two as a factor: its exponent in the bits of a double.
    const auto power = [&random](int first, std::size_t count) {
        const auto exponent = static_cast<std::uint64_t>(first + 1023) + random.below(count);
        return std::bit_cast<double>(exponent << 52);
    };
    const auto whole = [&random](std::size_t below) {
        return signedAtRandom(static_cast<double>(random.below(below)), random);
    };
    switch (random.below(16)) {
    case 0:
        return static_cast<T>(uniform<double>(random) * power(1, 30)); // to 1e9
    case 1:
        return static_cast<T>(uniform<double>(random) * power(-50, 40));
    case 2:
        return static_cast<T>(whole(300) + 0.5);
    case 3:
        return static_cast<T>((whole(300) + 0.5) * 0x1p-7); // ties of 8-bit samples, and of 16-bit ones
    case 4:
        return static_cast<T>((whole(40000) + 0.5) * 0x1p-15);
    case 5:
        return static_cast<T>(whole(300));
    case 6:
        return static_cast<T>(whole(40000));
    default:
        return 2 * uniform<T>(random);
    }
}

template <class T> T fullScale(Random &random)
{
    constexpr T below = T{1} - std::numeric_limits<T>::epsilon() / 2;
    constexpr T above = T{1} + std::numeric_limits<T>::epsilon();
    constexpr T values[] = {1, 1, 1, below, above, T(1 - 0x1p-7), T(1 - 0x1p-15), T(1 + 0x1p-15)};
    return signedAtRandom(values[random.below(std::size(values))], random);
}

// Ordered: those from `firstInfinite` on spread through sums and hide what else is there.
template <class T> struct Specials {
    using Limits = std::numeric_limits<T>;
    static constexpr T largestDenormal = Limits::min() - Limits::denorm_min();
    static constexpr T values[] = {
        T(0),
        Limits::denorm_min(),
        Limits::denorm_min() * 77777,
        largestDenormal,
        Limits::min(),
        Limits::epsilon(),
        T(0.5) - Limits::epsilon() / 4, // plus 0.5 it rounds to 1
        T(0.5),
        T(1.5),
        T(2.5),
        T(127.5),
        T(254.5),
        T(255.5),
        T(32767.5),
        T(65535.5),
        T(0x1p22 + 0.5),
        T(0x1p23 - 0.5),
        T(0x1p23),
        T(0x1p23 + 1),
        T(0x1p23 + 0.5), // a tie for float, exact for double
        T(0x1p31) * (T(1) - Limits::epsilon() / 2),
        T(0x1p31 - 1),
        T(0x1p31),
        T(0x1p32),
        T(0x1p63),
        T(1) / Limits::epsilon() - T(0.5),
        T(1 + 0x1p-24), // a tie on the way from double to float
        T(1 + 0x1.8p-23),
        T(0x1p-127), // a float denormal
        T(0x1.8p-149),
        Limits::max(),
        Limits::max() / 2,
        T(sizeof(T) == sizeof(float) ? 1e38 : 3.4028235677973366e38), // for double: half a unit above the largest float
        T(sizeof(T) == sizeof(float) ? 1e19 : 1e300),
        Limits::infinity(),
        Limits::quiet_NaN(),
        Limits::signaling_NaN(),
    };
    static constexpr std::size_t size = std::size(values);
    static constexpr std::size_t firstInfinite = size - 7;
};

// Signalling NaNs survive as bits only.
template <class T> void putSpecial(T &place, std::size_t index, Random &random)
{
    std::memcpy(&place, &Specials<T>::values[index], sizeof(T));
    if (random.next() & 1)
        reinterpret_cast<std::uint8_t *>(&place)[sizeof(T) - 1] ^= 0x80;
}

// The ends of an integer's range, signed and unsigned, and the middle.
template <class T> void fillExtremes(std::uint8_t *bytes, std::size_t size, Random &random)
{
    constexpr T middle = static_cast<T>(T{1} << (8 * sizeof(T) - 1));
    constexpr T values[] = {
        0, 1, static_cast<T>(middle - 1), middle, static_cast<T>(middle + 1), static_cast<T>(-2), static_cast<T>(-1)};
    for (std::size_t i = 0; i < size; i += sizeof(T)) {
        const T value = values[random.below(std::size(values))];
        std::memcpy(bytes + i, &value, std::min(sizeof(T), size - i));
    }
}

// Which specials, how many of them, and what else a row has.
struct Palette {
    std::size_t first;
    std::size_t count;
    std::size_t every;
    bool amongZeros;
};

template <class T> Palette paletteFor(Fill fill, Random &random)
{
    constexpr std::size_t any = Specials<T>::size;
    const bool often = random.next() & 1;
    if (fill == Fill::alternating)
        return {0, any, often ? 2u : 48u, false};
    if (often)
        return {0, Specials<T>::firstInfinite, 2, false};
    return {random.below(any), 1, 4, random.below(2) == 0}; // alone, or a denormal drowns in a sum
}

template <class T> void fillFloats(std::uint8_t *bytes, std::size_t size, Fill fill, Random &random)
{
    const Palette palette = paletteFor<T>(fill, random);
    for (std::size_t i = 0; i < size; i += sizeof(T)) {
        T value{};
        switch (fill) {
        case Fill::random:
            value = anyMagnitude<T>(random);
            break;
        case Fill::zeros:
            value = random.below(8) ? T{0} : -T{0};
            break;
        case Fill::ones:
            value = fullScale<T>(random);
            break;
        case Fill::alternating:
        case Fill::extremes:
            if (random.below(palette.every) == 0)
                putSpecial(value, palette.first + random.below(palette.count), random);
            else if (!palette.amongZeros)
                value = anyMagnitude<T>(random);
            break;
        case Fill::nearlyEqual:
            value = uniform<T>(random);
            break;
        }
        std::memcpy(bytes + i, &value, std::min(sizeof(T), size - i));
    }
}

} // namespace

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
        case Fill::extremes:
            return fillExtremes<std::uint8_t>(bytes, size, random);
        }
        std::memcpy(bytes + i, &piece, std::min(sizeof(piece), size - i));
    }
}

void fillRow(std::uint8_t *bytes, std::size_t size, const Parameter &type, Fill fill, Random &random)
{
    if (type.element == Element::float32)
        fillFloats<float>(bytes, size, fill, random);
    else if (type.element == Element::float64)
        fillFloats<double>(bytes, size, fill, random);
    else if (fill == Fill::extremes && type.size == 2)
        fillExtremes<std::uint16_t>(bytes, size, random);
    else if (fill == Fill::extremes && type.size == 4)
        fillExtremes<std::uint32_t>(bytes, size, random);
    else if (fill == Fill::extremes && type.size == 8)
        fillExtremes<std::uint64_t>(bytes, size, random);
    else
        fillBytes(bytes, size, fill, random);
}

} // namespace vela::test
