// Sliding dot products. Lanes are neighbouring taps, the partial sums of an output; several outputs go side by side,
// which hides the latency of additions. Lanes of neighbouring outputs would need every tap spread over a register: a
// quarter slower (Zen 4). The partial sums are those of 128 bits at every tier.
#pragma once

namespace {

// Arrays need no alignment.
inline float element(const float *from) { return loadPiece<float>((const uint8_t *)from); }
inline double element(const double *from) { return loadPiece<double>((const uint8_t *)from); }
inline __m128 loadGroup(const float *from) { return _mm_loadu_ps(from); }
inline __m128d loadGroup(const double *from) { return _mm_loadu_pd(from); }
inline __m128 splatElement(const float *from) { return _mm_set1_ps(element(from)); }
inline __m128d splatElement(const double *from) { return _mm_set1_pd(element(from)); }
inline void storeGroup(float *to, __m128 x) { _mm_storeu_ps(to, x); }
inline void storeGroup(double *to, __m128d x) { _mm_storeu_pd(to, x); }

inline __m128 add(__m128 a, __m128 b) { return _mm_add_ps(a, b); }
inline __m128d add(__m128d a, __m128d b) { return _mm_add_pd(a, b); }
inline __m128 multiply(__m128 a, __m128 b) { return _mm_mul_ps(a, b); }
inline __m128d multiply(__m128d a, __m128d b) { return _mm_mul_pd(a, b); }

// The partial sums of as many outputs as there are lanes, joined output by output.
inline __m128 joinPartialSums(const __m128 *p)
{
    __m128 p0 = p[0], p1 = p[1], p2 = p[2], p3 = p[3];
    _MM_TRANSPOSE4_PS(p0, p1, p2, p3);
    return _mm_add_ps(_mm_add_ps(p0, p2), _mm_add_ps(p1, p3));
}
inline __m128d joinPartialSums(const __m128d *p)
{
    return _mm_add_pd(_mm_unpacklo_pd(p[0], p[1]), _mm_unpackhi_pd(p[0], p[1]));
}

// So many outputs, a multiple of the lanes.
template <int outputs, class Real> inline void slidingDots(Real *out, const Real *sig, const Real *h, ptrdiff_t taps)
{
    using Group = decltype(loadGroup(sig));
    constexpr int lanes = sizeof(Group) / sizeof(Real);
    constexpr int registers = outputs / lanes;
    Group p[outputs] = {};
    ptrdiff_t k = 0;
    for (; k <= taps - lanes; k += lanes) {
        const Group group = loadGroup(h + k);
        forConstants<outputs>([&](auto r) {
            p[r] = add(p[r], multiply(loadGroup(sig + k + r), group));
            return true;
        });
    }
    Group sums[registers];
    forConstants<registers>([&](auto v) {
        sums[v] = joinPartialSums(p + v * lanes);
        return true;
    });
    for (; k < taps; ++k) {
        const Group tap = splatElement(h + k);
        forConstants<registers>([&](auto v) {
            sums[v] = add(sums[v], multiply(loadGroup(sig + k + v * lanes), tap));
            return true;
        });
    }
    forConstants<registers>([&](auto v) {
        storeGroup(out + v * lanes, sums[v]);
        return true;
    });
}

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

// n outputs in blocks, of which the last may overlap the one before.
template <int outputs, class Real>
inline void slidingDotBlocks(Real *out, const Real *sig, const Real *h, ptrdiff_t taps, ptrdiff_t n)
{
    for (ptrdiff_t r = 0; r < n; r += outputs) {
        const ptrdiff_t at = r < n - outputs ? r : n - outputs;
        slidingDots<outputs>(out + at, sig + at, h, taps);
    }
}

// The end of a row goes in blocks that are not much longer than what is left; they reach back into the row.
template <class Real> inline void slidingDotRow(Real *out, const Real *sig, const Real *h, ptrdiff_t taps, ptrdiff_t n)
{
    constexpr int lanes = 16 / sizeof(Real);
    if (const ptrdiff_t left = n % 8; n >= 8 && left <= 4) {
        slidingDotBlocks<8>(out, sig, h, taps, n - left);
        if (left > 0)
            slidingDots<4>(out + n - 4, sig + n - 4, h, taps);
    } else if (n >= 8) {
        slidingDotBlocks<8>(out, sig, h, taps, n);
    } else if (n >= 4) {
        slidingDotBlocks<4>(out, sig, h, taps, n);
    } else if (n >= lanes) {
        slidingDotBlocks<lanes>(out, sig, h, taps, n);
    } else {
        for (ptrdiff_t r = 0; r < n; ++r) {
            const Real sum = slidingDot(sig + r, h, taps);
            memcpy(out + r, &sum, sizeof(sum));
        }
    }
}

void SlidingDotF32(float *out, const float *sig, const float *h, int32_t taps, int32_t count)
{
    slidingDotRow(out, sig, h, taps, count);
}

void SlidingDotF64(double *out, const double *sig, const double *h, int32_t taps, int32_t count)
{
    slidingDotRow(out, sig, h, taps, count);
}

} // namespace
