// Magnitudes of pairs.
#pragma once

namespace {

double MagnitudeF64(double *out, const double *a, const double *b, int32_t count)
{
    f64s most = zero<f64s>(); // zeros that fill up a short row do not matter to it
    forBlocks<f64s::lanes>(
        count,
        [&most](uint8_t *to, const uint8_t *fromA, const uint8_t *fromB) {
            const f64s x = load<f64s>(fromA);
            const f64s y = load<f64s>(fromB);
            const f64s v = squareRoot(x * x + y * y);
            store(to, v);
            most = larger(v, most);
        },
        Out<sizeof(double)>{out}, In<sizeof(double)>{a}, In<sizeof(double)>{b});
    return largest(most);
}

} // namespace
