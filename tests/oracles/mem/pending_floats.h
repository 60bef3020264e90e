// Empty oracles in place of those that are still to be written; a line goes when its text arrives.
#pragma once

namespace {

// VcbMemArithOps
void MemScaleF32(float *, const float *, float, uint64_t) {}
void MemScaleF64(double *, const double *, double, uint64_t) {}
void MemSubF32(float *, const float *, const float *, uint64_t) {}
void MemSubF64(double *, const double *, const double *, uint64_t) {}
void MemAddF32(float *, const float *, const float *, uint64_t) {}
void MemAddF64(double *, const double *, const double *, uint64_t) {}
void MemNegateF32(float *, const float *, uint64_t) {}
void MemNegateF64(double *, const double *, uint64_t) {}
float MemSumSquaresF32(const float *, int32_t) { return 0; }
double MemSumSquaresF64(const double *, uint64_t) { return 0; }
float MemReduceF32(const float *, uint64_t) { return 0; }
double MemMaxAbsF64(const double *, uint64_t) { return 0; }
void MemMulF32(float *, const float *, const float *, uint64_t) {}
void MemMulF32InPlace(float *, const float *, uint64_t) {}
float MemSumF32(const float *, uint64_t) { return 0; }
double MemSumF64(const double *, uint64_t) { return 0; }
void MemDivF32(float *, const float *, const float *, uint64_t) {}

// VcbMemCompareOps
float MemSumF32Scalar(const float *, uint64_t) { return 0; }
void MemLookup8To32(uint32_t *, const uint8_t *, const uint32_t *, int32_t) {}
void MemLookup16To32(uint32_t *, const uint16_t *, const uint32_t *, int32_t) {}

// VcbMemMiscOps
int32_t MemMaxAbsS16(const int16_t *, int32_t) { return 0; }
int32_t MemMaxAbsS16OfAvx2(const int16_t *, int32_t) { return 0; }
uint32_t MemMaxAbsS32(const int32_t *, int32_t) { return 0; }
void MemGainF32(float *, const float *, float, uint64_t) {}
void MemGainAddF32(float *, const float *, float, uint64_t) {}
float MemReduceF32Pair(const float *, const float *, uint64_t) { return 0; }
float MemSsimSumF32(const float *, const float *, const float *, const float *, const float *, const float *, float,
                    float, uint64_t)
{
    return 0;
}
float MemSsimSumF32B(float *, const float *, const float *, const float *, const float *, const float *, const float *,
                     float, float, uint64_t)
{
    return 0;
}
double MemSumF32B(const float *, uint64_t) { return 0; }
float MemDeviationSumsF32(float *, const float *, const float *, float, float, uint64_t) { return 0; }
double MemDeviationSumsF64(double *, const double *, const double *, double, double, uint64_t) { return 0; }
float MemSumS16F32(const int16_t *, uint64_t) { return 0; }
float MemSumS24F32(const uint8_t *, uint64_t) { return 0; }
float MemSumS32F32(const int32_t *, uint64_t) { return 0; }
void MemScaleF32ToF32(float *, const float *, double, uint64_t) {}
void MemScaleF64ToF64(double *, const double *, double, uint64_t) {}
void MemScaleAddF32(float *, const float *, double, uint64_t) {}
void MemScaleAddF64(double *, const double *, double, uint64_t) {}
uint32_t MemAbsDiffSumS16(const int16_t *, const int16_t *, uint64_t) { return 0; }
int32_t MemMulAddS16(const int16_t *, const int16_t *, uint64_t) { return 0; }
double MemSquaredDiffSumU16(const uint16_t *, const uint16_t *, uint64_t) { return 0; }

} // namespace
