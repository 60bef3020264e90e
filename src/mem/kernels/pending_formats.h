// Empty kernels in place of those that are still to be written; a line goes when its text arrives.
#pragma once

namespace {

// VcbMemArithOps
void MemScaleS16(int16_t *, const int16_t *, double, uint64_t) {}
void MemScaleS32(int32_t *, const int32_t *, double, uint64_t) {}
void MemScaleOp51(int16_t *, const int16_t *, double, uint64_t) {}
void MemScaleClampS32(int32_t *, const int32_t *, double, int32_t, int32_t, uint64_t) {}

// VcbSampleFormatOps
void ConvertU8ToF32(float *, const uint8_t *, uint64_t) {}
void ConvertS32ToF32Gain(float *, const int32_t *, float, uint64_t) {}
void ConvertF64ToF32(float *, const double *, uint64_t) {}
void ConvertF32ToF64(double *, const float *, uint64_t) {}
void ConvertS8ToS16(int16_t *, const int8_t *, uint64_t) {}
void ConvertS8ToS24(uint8_t *, const int8_t *, uint64_t) {}
void ConvertS8ToS32(int32_t *, const int8_t *, uint64_t) {}
void ConvertS16ToS24(uint8_t *, const int16_t *, uint64_t) {}
void ConvertS16ToS32(int32_t *, const int16_t *, uint64_t) {}
void ConvertS24ToS32(int32_t *, const uint8_t *, uint64_t) {}
void ConvertS8ToF32(float *, const int8_t *, uint64_t) {}
void ConvertS16ToF32(float *, const int16_t *, uint64_t) {}
void ConvertS24ToF32(float *, const uint8_t *, uint64_t) {}
void ConvertS32ToF32Scaled(float *, const int32_t *, uint64_t) {}
void ConvertS8ToF64(double *, const int8_t *, uint64_t) {}
void ConvertS16ToF64(double *, const int16_t *, uint64_t) {}
void ConvertS24ToF64(double *, const uint8_t *, uint64_t) {}
void ConvertS32ToF64(double *, const int32_t *, uint64_t) {}
void ConvertF32ToS8(int8_t *, const float *, uint64_t) {}
void ConvertF32ToS16(int16_t *, const float *, uint64_t) {}
void ConvertF32ToS24(uint8_t *, const float *, uint64_t) {}
void ConvertF32ToS32(int32_t *, const float *, uint64_t) {}
void ConvertF64ToS8(int8_t *, const double *, uint64_t) {}
void ConvertF64ToS16(int16_t *, const double *, uint64_t) {}
void ConvertF64ToS24(uint8_t *, const double *, uint64_t) {}
void ConvertF64ToS32(int32_t *, const double *, uint64_t) {}
void ConvertUnitF32ToU8(uint8_t *, const float *, uint64_t) {}
void ConvertF32ToU8(uint8_t *, const float *, uint64_t) {}

// VcbMemMiscOps
void MemScaleU16(uint16_t *, const uint16_t *, double, uint64_t) {}
void MemScaleOp39(uint8_t *, const uint8_t *, float, uint64_t) {}
void MemScaleOp40(uint8_t *, const int32_t *, double, uint64_t) {}
void MemScaleOp41(int16_t *, const int32_t *, double, uint64_t) {}

} // namespace
