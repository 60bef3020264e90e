// Dot products, norms, means, variances: sums in a fixed number of lanes, those of a 128-bit register on every tier. A
// lane waits for one addition a block; wider registers would change the order, and with it the bits.
#pragma once

namespace {

template <class Real> struct Register;
template <> struct Register<float> {
    using Vector = __m128;
    static constexpr ptrdiff_t lanes = 4;
    static Vector load(const float *from) { return _mm_loadu_ps(from); }
    static float sumOfLanes(Vector x)
    {
        const Vector two = _mm_add_ps(x, _mm_movehl_ps(x, x));
        return _mm_cvtss_f32(_mm_add_ss(two, _mm_shuffle_ps(two, two, 1)));
    }
    static float squareRoot(float x) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set1_ps(x))); }
};
template <> struct Register<double> {
    using Vector = __m128d;
    static constexpr ptrdiff_t lanes = 2;
    static Vector load(const double *from) { return _mm_loadu_pd(from); }
    static double sumOfLanes(Vector x) { return _mm_cvtsd_f64(_mm_add_sd(x, _mm_unpackhi_pd(x, x))); }
    static double squareRoot(double x) { return _mm_cvtsd_f64(_mm_sqrt_pd(_mm_set1_pd(x))); }
};

// The sum of term(rows[i]...) over a block of vectors, by halves. term takes vectors and single elements.
template <ptrdiff_t vectors, class Real, class Term, class... Rows>
__attribute__((always_inline)) inline auto sumOfBlock(ptrdiff_t i, Term term, const Rows *...rows)
{
    using R = Register<Real>;
    if constexpr (vectors == 1)
        return term(R::load(rows + i)...);
    else
        return sumOfBlock<vectors / 2, Real>(i, term, rows...) +
               sumOfBlock<vectors / 2, Real>(i + vectors / 2 * R::lanes, term, rows...);
}

// Adds what is left, fewer than two blocks, to the lanes, in ever smaller blocks; then the lanes up; then, to their
// sum, one by one, fewer elements than a vector has.
template <ptrdiff_t vectors, class Real, class Term, class... Rows>
__attribute__((always_inline)) inline Real finishSum(typename Register<Real>::Vector lanes, ptrdiff_t i, ptrdiff_t n,
                                                     Term term, const Rows *...rows)
{
    using R = Register<Real>;
    if constexpr (vectors > 0) {
        if (n - i >= vectors * R::lanes) {
            lanes += sumOfBlock<vectors, Real>(i, term, rows...);
            i += vectors * R::lanes;
        }
        return finishSum<vectors / 2, Real>(lanes, i, n, term, rows...);
    } else {
        Real total = R::sumOfLanes(lanes);
        forConstants<R::lanes - 1>([&](auto) {
            if (i == n)
                return false;
            total += term(loadPiece<Rows>((const uint8_t *)(rows + i))...);
            ++i;
            return true;
        });
        return total;
    }
}

template <ptrdiff_t vectors, class Real, class Term, class... Rows>
__attribute__((always_inline)) inline Real sumInBlocks(ptrdiff_t n, Term term, const Rows *...rows)
{
    constexpr ptrdiff_t size = vectors * Register<Real>::lanes;
    typename Register<Real>::Vector lanes = {};
    ptrdiff_t i = 0;
    for (; n - i >= size; i += size)
        lanes += sumOfBlock<vectors, Real>(i, term, rows...);
    return finishSum<vectors / 2, Real>(lanes, i, n, term, rows...);
}

template <class Real, class Term, class... Rows>
__attribute__((always_inline)) inline Real sum2(ptrdiff_t n, Term term, const Rows *...rows)
{
    return sumInBlocks<2, Real>(n, term, rows...);
}

template <class Real, class Term, class... Rows>
__attribute__((always_inline)) inline Real sum4(ptrdiff_t n, Term term, const Rows *...rows)
{
    return sumInBlocks<4, Real>(n, term, rows...);
}

// --- Products and distances ----------------------------------------------------------------------------------

template <class Real> __attribute__((always_inline)) inline Real dot(const Real *a, const Real *b, ptrdiff_t n)
{
    return sum2<Real>(
        n, [](auto x, auto y) { return x * y; }, a, b);
}
float DotF32(const float *a, const float *b, uint32_t n) { return dot(a, b, n); }
double DotF64(const double *a, const double *b, uint32_t n) { return dot(a, b, n); }

template <class Real> __attribute__((always_inline)) inline Real norm(const Real *a, ptrdiff_t n)
{
    return Register<Real>::squareRoot(sum2<Real>(
        n, [](auto x) { return x * x; }, a));
}
float NormF32(const float *a, uint32_t n) { return norm(a, n); }
double NormF64(const double *a, uint32_t n) { return norm(a, n); }

template <class Real>
__attribute__((always_inline)) inline Real normOfDifference(const Real *a, const Real *b, ptrdiff_t n)
{
    const auto squared = [](auto x, auto y) {
        const auto d = x - y;
        return d * d;
    };
    return Register<Real>::squareRoot(sum2<Real>(n, squared, a, b));
}
float ArrayOp7(const float *a, const float *b, uint32_t n) { return normOfDifference(a, b, n); }
double ArrayOp8(const double *a, const double *b, uint32_t n) { return normOfDifference(a, b, n); }

// --- Statistics ----------------------------------------------------------------------------------------------

template <class Real> __attribute__((always_inline)) inline Real mean(const Real *a, int32_t n)
{
    if (n < 1 || !a)
        return 0;
    return sum4<Real>(
               n, [](auto x) { return x; }, a) /
           (Real)n;
}
float MeanF32(const float *a, int32_t n) { return mean(a, n); }
double MeanF64(const double *a, int32_t n) { return mean(a, n); }

template <class Real> __attribute__((always_inline)) inline Real variance(const Real *a, int32_t n, Real meanA)
{
    if (n < 1 || !a)
        return 0;
    const auto squared = [meanA](auto x) {
        const auto d = x - meanA;
        return d * d;
    };
    return sum2<Real>(n, squared, a) / (Real)n;
}
float VarianceF32(const float *a, int32_t n, float mean) { return variance(a, n, mean); }
double VarianceF64(const double *a, int32_t n, double mean) { return variance(a, n, mean); }

template <class Real>
__attribute__((always_inline)) inline Real covariance(const Real *a, Real meanA, const Real *b, Real meanB, int32_t n)
{
    if (n < 1 || !a || !b)
        return 0;
    return sum2<Real>(
               n, [=](auto x, auto y) { return (x - meanA) * (y - meanB); }, a, b) /
           (Real)n;
}
float CovarianceF32(const float *a, float meanA, const float *b, float meanB, int32_t n)
{
    return covariance(a, meanA, b, meanB, n);
}
double CovarianceF64(const double *a, double meanA, const double *b, double meanB, int32_t n)
{
    return covariance(a, meanA, b, meanB, n);
}

} // namespace
