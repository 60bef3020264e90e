// The 4x4 identity at any address.
#pragma once

namespace {

float *Mat4SetIdentity(float *m)
{
    _mm_storeu_ps(m, _mm_setr_ps(1, 0, 0, 0));
    _mm_storeu_ps(m + 4, _mm_setr_ps(0, 1, 0, 0));
    _mm_storeu_ps(m + 8, _mm_setr_ps(0, 0, 1, 0));
    _mm_storeu_ps(m + 12, _mm_setr_ps(0, 0, 0, 1));
    return m;
}

int32_t Mat4IsIdentity(const float *m)
{
    const __m128 upper = _mm_and_ps(_mm_cmpeq_ps(_mm_loadu_ps(m), _mm_setr_ps(1, 0, 0, 0)),
                                    _mm_cmpeq_ps(_mm_loadu_ps(m + 4), _mm_setr_ps(0, 1, 0, 0)));
    const __m128 lower = _mm_and_ps(_mm_cmpeq_ps(_mm_loadu_ps(m + 8), _mm_setr_ps(0, 0, 1, 0)),
                                    _mm_cmpeq_ps(_mm_loadu_ps(m + 12), _mm_setr_ps(0, 0, 0, 1)));
    return _mm_movemask_ps(_mm_and_ps(upper, lower)) == 15;
}

} // namespace
