// What the rows of a trial hold.
#pragma once

#include "support/kernel_case.hpp"

#include <cstddef>
#include <cstdint>

namespace vela::test {

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

// For rows of floats: a mixture of magnitudes, zeros of both signs, full scale and its neighbours, specials among
// ordinary values, audio, finite specials or one kind alone.
enum class Fill { random, zeros, ones, alternating, nearlyEqual, extremes };
constexpr Fill fills[] = {Fill::random, Fill::zeros, Fill::ones, Fill::alternating, Fill::nearlyEqual, Fill::extremes};
constexpr const char *fillNames[] = {"random", "zeros", "ones", "alternating", "nearly equal", "extremes"};

// Bytes of no particular type; extremes are those of a byte.
void fillBytes(std::uint8_t *bytes, std::size_t size, Fill fill, Random &random);

// A row of such elements.
void fillRow(std::uint8_t *bytes, std::size_t size, const Parameter &type, Fill fill, Random &random);

} // namespace vela::test
