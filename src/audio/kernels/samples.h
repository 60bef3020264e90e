// Integer and double samples one at a time, at any address, as exact doubles.
#pragma once

namespace {

struct SampleS16 {
    static constexpr int unit = 2;
    static constexpr double scale = 0x1p-15; // full scale becomes 1
    static double at(const uint8_t *from) { return loadPiece<int16_t>(from); }
};

struct SampleS24 {
    static constexpr int unit = 3;
    static constexpr double scale = 0x1p-23;
    static double at(const uint8_t *from) { return loadPiece<uint16_t>(from) | (int8_t)from[2] * 65536; }
};

struct SampleS32 {
    static constexpr int unit = 4;
    static constexpr double scale = 0x1p-31;
    static double at(const uint8_t *from) { return loadPiece<int32_t>(from); }
};

struct SampleF64 {
    static constexpr int unit = 8;
    static constexpr double scale = 1;
    static double at(const uint8_t *from) { return loadPiece<double>(from); }
};

// An element of an array that need not be aligned.
inline double element(const double *array, ptrdiff_t i) { return SampleF64::at((const uint8_t *)(array + i)); }
inline void setElement(double *array, ptrdiff_t i, double x) { memcpy(array + i, &x, sizeof(x)); }

} // namespace
