// A number as the lowest lane of a register, for instructions that look at no other.
#pragma once

namespace {

// Nothing happens: it is there already. _mm_set_ss() would clear the other lanes, with GCC 12 by way of an integer
// register.
inline __m128 inLane0(float x)
{
    __m128 lanes;
    __asm__("" : "=x"(lanes) : "0"(x));
    return lanes;
}
inline __m128d inLane0(double x)
{
    __m128d lanes;
    __asm__("" : "=x"(lanes) : "0"(x));
    return lanes;
}

} // namespace
