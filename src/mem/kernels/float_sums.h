// Sums over floats and doubles, in lanes: the order of additions does not depend on the width of a register.
#pragma once

namespace {

float MemSumF32(const float *src, uint64_t count)
{
    return sumInLanes<32>((ptrdiff_t)count, [](f32s x) { return x; }, Lanes<f32s>{src});
}

double MemSumF64(const double *src, uint64_t count)
{
    return sumInLanes<16>((ptrdiff_t)count, [](f64s x) { return x; }, Lanes<f64s>{src});
}

double MemSumF32B(const float *src, uint64_t count)
{
    return sumInLanes<16>((ptrdiff_t)count, [](f64s x) { return x; }, FloatsAsDoubles{src});
}

float MemSumSquaresF32(const float *src, int32_t count)
{
    return sumInLanes<32>(
        count, [](f32s x) { return x * x; }, Lanes<f32s>{src});
}

double MemSumSquaresF64(const double *src, uint64_t count)
{
    return sumInLanes<16>((ptrdiff_t)count, [](f64s x) { return x * x; }, Lanes<f64s>{src});
}

float MemReduceF32Pair(const float *a, const float *b, uint64_t count)
{
    const auto squaredError = [](f32s x, f32s y) {
        const f32s d = x - y;
        return d * d;
    };
    return sumInLanes<32>((ptrdiff_t)count, squaredError, Lanes<f32s>{a}, Lanes<f32s>{b});
}

// A float at any address.
typedef float FloatAnywhere __attribute__((aligned(1)));

// Each addition waits for the one before, and nothing else takes as long.
float MemSumF32Scalar(const float *src, uint64_t count)
{
    const FloatAnywhere *from = src;
    float sum = 0;
    for (uint64_t i = 0; i < count; ++i)
        sum = sum + from[i];
    return sum;
}

// --- Structural similarity -----------------------------------------------------------------------------------

inline f32s ssim(f32s p, f32s q, f32s a, f32s b, f32s d, f32s e, f32s c1, f32s c2)
{
    return (((p + p) + c1) * ((q + q) + c2)) / (((a + b) + c1) * ((d + e) + c2));
}

float MemSsimSumF32(const float *p, const float *q, const float *a, const float *b, const float *d, const float *e,
                    float c1, float c2, uint64_t count)
{
    const auto term = [k1 = splatF32(c1), k2 = splatF32(c2)](f32s x0, f32s x1, f32s x2, f32s x3, f32s x4, f32s x5) {
        return ssim(x0, x1, x2, x3, x4, x5, k1, k2);
    };
    return sumInLanes<32>((ptrdiff_t)count, term, Lanes<f32s>{p}, Lanes<f32s>{q}, Lanes<f32s>{a}, Lanes<f32s>{b},
                          Lanes<f32s>{d}, Lanes<f32s>{e});
}

// As a source of a reduction the row of a map hands out the places for the terms.
struct Places {
    float *row;

    struct Place {
        float *to;
        ptrdiff_t room;

        void take(f32s x) const
        {
            if (room >= f32s::lanes)
                store(to, x);
            else
                storeFirst(to, x, room * (ptrdiff_t)sizeof(float));
        }
    };
    Place at(ptrdiff_t i) const { return {row + i, f32s::lanes}; }
    Place first(ptrdiff_t i, ptrdiff_t k) const { return {row + i, k}; }
};

// A term is stored when its own elements have been read, and no others of the map: it may be any of the sources.
float MemSsimSumF32B(float *map, const float *p, const float *q, const float *a, const float *b, const float *d,
                     const float *e, float c1, float c2, uint64_t count)
{
    const auto term = [k1 = splatF32(c1), k2 = splatF32(c2)](f32s x0, f32s x1, f32s x2, f32s x3, f32s x4, f32s x5,
                                                             Places::Place place) {
        const f32s t = ssim(x0, x1, x2, x3, x4, x5, k1, k2);
        place.take(t);
        return t;
    };
    return sumInLanes<32>((ptrdiff_t)count, term, Lanes<f32s>{p}, Lanes<f32s>{q}, Lanes<f32s>{a}, Lanes<f32s>{b},
                          Lanes<f32s>{d}, Lanes<f32s>{e}, Places{map});
}

// --- Correlation ---------------------------------------------------------------------------------------------

// Three sums of one pass, side by side and in the order of the caller's: x * x, y * y, x * y.
template <class Value> struct Moments {
    Value xx, yy, xy;
};
template <class Value> inline Moments<Value> operator+(Moments<Value> s, Moments<Value> t)
{
    return {s.xx + t.xx, s.yy + t.yy, s.xy + t.xy};
}
template <class Vector> inline Moments<Vector> keepFirst(Moments<Vector> t, ptrdiff_t n)
{
    return {keepFirst(t.xx, n), keepFirst(t.yy, n), keepFirst(t.xy, n)};
}
template <class Vector> inline auto sumHalving(Moments<Vector> s)
{
    return Moments<decltype(sumHalving(s.xx))>{sumHalving(s.xx), sumHalving(s.yy), sumHalving(s.xy)};
}

inline float squareRoot(float x) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(x))); }
inline double squareRoot(double x) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(x))); }

// The lanes are few: on 256-bit registers each sum has one, and the latency of its additions bounds the loop. Inlined
// by force: GCC 12 does not clear the upper halves of registers behind a call that takes some.
template <int lanes, class Vector, class Value>
__attribute__((always_inline)) inline Value deviationSums(Value *sums, const Value *a, const Value *b, Vector meanA,
                                                          Vector meanB, uint64_t count)
{
    if (count == 0)
        return 0;
    const auto moments = [=](Vector u, Vector v) {
        const Vector x = u - meanA;
        const Vector y = v - meanB;
        return Moments<Vector>{x * x, y * y, x * y};
    };
    const Moments<Value> row = sumInLanes<lanes>((ptrdiff_t)count, moments, Lanes<Vector>{a}, Lanes<Vector>{b});
    const Moments<Value> total = loadPiece<Moments<Value>>((const uint8_t *)sums) + row;
    memcpy(sums, &total, sizeof(total));
    const Value product = squareRoot(total.xx) * squareRoot(total.yy);
    return product > 0 ? total.xy / product : 0;
}

float MemDeviationSumsF32(float *sums, const float *a, const float *b, float meanA, float meanB, uint64_t count)
{
    return deviationSums<8>(sums, a, b, splatF32(meanA), splatF32(meanB), count);
}

double MemDeviationSumsF64(double *sums, const double *a, const double *b, double meanA, double meanB, uint64_t count)
{
    return deviationSums<4>(sums, a, b, splatF64(meanA), splatF64(meanB), count);
}

} // namespace
