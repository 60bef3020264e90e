// Sliding dot products. Lanes are neighbouring outputs, each with its partial sums: no sum runs across lanes, and one
// register of taps serves several registers of outputs.
#pragma once

namespace {

// t of all partial sums, in the order of a group of taps.
template <class Vector> inline Vector joinPartialSums(const Vector (&p)[4]) { return (p[0] + p[2]) + (p[1] + p[3]); }
template <class Vector> inline Vector joinPartialSums(const Vector (&p)[2]) { return p[0] + p[1]; }

// Arrays need no alignment.
inline float element(const float *from) { return loadPiece<float>((const uint8_t *)from); }
inline double element(const double *from) { return loadPiece<double>((const uint8_t *)from); }
inline f32s splatElement(const float *from) { return splatF32(element(from)); }
inline f64s splatElement(const double *from) { return splatF64(element(from)); }

// `registers` registers of outputs so far apart; taps in groups of `group`.
template <class Vector, int group, int registers, class Real>
inline void slidingDots(Real *out, const Real *sig, const Real *h, ptrdiff_t taps, ptrdiff_t apart = Vector::lanes)
{
    Vector p[registers][group] = {};
    const auto product = [=](auto v, ptrdiff_t k, Vector tap) { return load<Vector>(sig + k + v * apart) * tap; };
    ptrdiff_t k = 0;
    for (; k <= taps - group; k += group)
        forConstants<group>([&](auto j) {
            const Vector tap = splatElement(h + k + j);
            return forConstants<registers>([&](auto v) {
                p[v][j] = p[v][j] + product(v, k + j, tap);
                return true;
            });
        });
    Vector sums[registers];
    forConstants<registers>([&](auto v) {
        sums[v] = joinPartialSums(p[v]);
        return true;
    });
    for (; k < taps; ++k) {
        const Vector tap = splatElement(h + k);
        forConstants<registers>([&](auto v) {
            sums[v] = sums[v] + product(v, k, tap);
            return true;
        });
    }
    forConstants<registers>([&](auto v) {
        store(out + v * apart, sums[v]);
        return true;
    });
}

// One output, its partial sums in lanes.
inline float slidingDot(const float *sig, const float *h, ptrdiff_t taps)
{
    __m128 p = _mm_setzero_ps();
    ptrdiff_t k = 0;
    for (; k <= taps - 4; k += 4)
        p = _mm_add_ps(p, _mm_mul_ps(_mm_loadu_ps(sig + k), _mm_loadu_ps(h + k)));
    const __m128 two = _mm_add_ps(p, _mm_movehl_ps(p, p));
    float sum = _mm_cvtss_f32(_mm_add_ss(two, _mm_shuffle_ps(two, two, 1)));
    for (; k < taps; ++k)
        sum += element(sig + k) * element(h + k);
    return sum;
}
inline double slidingDot(const double *sig, const double *h, ptrdiff_t taps)
{
    __m128d p = _mm_setzero_pd();
    ptrdiff_t k = 0;
    for (; k <= taps - 2; k += 2)
        p = _mm_add_pd(p, _mm_mul_pd(_mm_loadu_pd(sig + k), _mm_loadu_pd(h + k)));
    double sum = _mm_cvtsd_f64(_mm_add_sd(p, _mm_unpackhi_pd(p, p)));
    if (k < taps)
        sum += element(sig + k) * element(h + k);
    return sum;
}

// The last block overlaps the one before: a whole one, or two registers where that is enough, which in short rows
// overlap each other. Fewer outputs than lanes go one by one.
template <class Vector, int group, class Real>
inline void slidingDotRow(Real *out, const Real *sig, const Real *h, ptrdiff_t taps, ptrdiff_t n)
{
    constexpr int lanes = Vector::lanes;
    constexpr int registers = 8 / group; // eight partial sums hide the latency of additions
    constexpr int size = registers * lanes;
    ptrdiff_t r = 0;
    if (n < lanes) {
        for (; r < n; ++r) {
            const Real sum = slidingDot(sig + r, h, taps);
            memcpy(out + r, &sum, sizeof(sum));
        }
        return;
    }
    if (n < 2 * lanes) {
        slidingDots<Vector, group, 2>(out, sig, h, taps, n - lanes);
        return;
    }
    for (; r <= n - size; r += size)
        slidingDots<Vector, group, registers>(out + r, sig + r, h, taps);
    if (n >= size && n - r > 2 * lanes) {
        slidingDots<Vector, group, registers>(out + n - size, sig + n - size, h, taps);
        return;
    }
    for (; r < n; r += 2 * lanes) {
        const ptrdiff_t at = r < n - 2 * lanes ? r : n - 2 * lanes;
        slidingDots<Vector, group, 2>(out + at, sig + at, h, taps);
    }
}

void SlidingDotF32(float *out, const float *sig, const float *h, int32_t taps, int32_t count)
{
    slidingDotRow<f32s, 4>(out, sig, h, taps, count);
}

void SlidingDotF64(double *out, const double *sig, const double *h, int32_t taps, int32_t count)
{
    slidingDotRow<f64s, 2>(out, sig, h, taps, count);
}

} // namespace
