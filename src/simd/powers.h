// Logarithms and powers of float lanes: logarithms in double precision, since an exponent multiplies their error, the
// way back in single.
#pragma once

namespace {

// A logarithm for every lane of an f32s.
using Logarithms = Pair<f64s>;

inline Logarithms operator*(Logarithms x, f64s factor) { return {x.low * factor, x.high * factor}; }

// a + b x + ... f x^5, in pairs: what is long is the wait for one result after another.
template <class Vector> inline Vector sumOfPowers(Vector x, Vector a, Vector b, Vector c, Vector d, Vector e, Vector f)
{
    const Vector x2 = x * x;
    return (a + b * x) + x2 * ((c + d * x) + x2 * (e + f * x));
}

// log2(1 + f) for |f| below 0.42: with z = f / (2 + f), 2 / ln 2 (z + z^3/3 + z^5/5 ...), here to z^11/11, which
// leaves 5e-11 of it.
inline f64s log2OfOnePlus(f64s f)
{
    const double unit = 2.885390081777926815;
    const f64s z = f / (splatF64(2) + f);
    const f64s sum = sumOfPowers(z * z, splatF64(unit), splatF64(unit / 3), splatF64(unit / 5), splatF64(unit / 7),
                                 splatF64(unit / 9), splatF64(unit / 11));
    return sum * z;
}
inline Logarithms log2OfOnePlus(f32s f)
{
    const Pair<f64s> wide = toDouble(f);
    return {log2OfOnePlus(wide.low), log2OfOnePlus(wide.high)};
}

// log2(x). What is below the least normal number, and a NaN, counts as that number; infinity as 2^128.
inline Logarithms log2Of(f32s x)
{
    const i32s bits = as<i32s>(larger(x, splatF32(1.17549435e-38f)));
    // x = 2^e m with m from sqrt(1/2), whose bits these are, to sqrt(2): m - 1 is exact.
    const i32s e = shiftRight<23>(bits - splatI32(0x3F3504F3));
    const f32s m = as<f32s>(bits - shiftLeft<23>(e));
    const Logarithms ofM = log2OfOnePlus(m - splatF32(1));
    const Pair<f64s> exponents = toDouble(e);
    return {exponents.low + ofM.low, exponents.high + ofM.high};
}

// 2^r - 1 for |r| up to 0.5, within 3e-9 of 2^r: the polynomial of least relative error.
inline f32s exp2LessOne(f32s r)
{
    const f32s sum = sumOfPowers(r, splatF32(0.693147215f), splatF32(0.2402265278f), splatF32(0.05550310551f),
                                 splatF32(0.009617692973f), splatF32(0.00134066439f), splatF32(0.0001559467816f));
    return sum * r;
}

// 2^p. p is limited to -126..128, a NaN to -126; from 128 on the result is infinite.
inline f32s exp2Of(Logarithms p)
{
    const f64s least = splatF64(-126);
    const f64s most = splatF64(128);
    const f64s low = smaller(larger(p.low, least), most);
    const f64s high = smaller(larger(p.high, least), most);
    // Adding 1.5 * 2^52 rounds to a whole number, which then is the sum's lower half.
    const f64s rounder = splatF64(6755399441055744.0);
    const f64s wholeLow = low + rounder;
    const f64s wholeHigh = high + rounder;
    const i32s n = as<i32s>(evens(as<u32s>(wholeLow), as<u32s>(wholeHigh)));
    const f32s r = toFloat(low - (wholeLow - rounder), high - (wholeHigh - rounder));
    return as<f32s>(as<i32s>(splatF32(1) + exp2LessOne(r)) + shiftLeft<23>(n));
}

// x to the power of an exponent, within 2 ulp for normal x and results.
inline f32s power(f32s x, f64s exponent) { return exp2Of(log2Of(x) * exponent); }

} // namespace
