// The processor's estimates, to 12 bits or so: what it says decides the last unit of a result, so it is the definition,
// and nothing else can stand here.
#pragma once

#include <xmmintrin.h>

namespace {

inline float estimatedReciprocal(float x) { return _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(x))); }
inline float estimatedReciprocalRoot(float x) { return _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(x))); }

} // namespace
