// Empty oracles in place of those that are still to be written; a line goes when its text arrives.
#pragma once

namespace {

// VcbMemArithOps
void MemAddSat8(uint8_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemBlend8(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemSubSat8(uint8_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemAbsDiff8(uint8_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemAverage8(uint8_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemMax8(uint8_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemMin8(uint8_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemMax16(int16_t *, const int16_t *, const int16_t *, uint64_t) {}
void MemMin16(int16_t *, const int16_t *, const int16_t *, uint64_t) {}
void MemScale8(uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp13(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp15(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp17(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp19(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp21(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp23(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
uint64_t MemCountBelow8(const uint8_t *, uint32_t, uint64_t) { return 0; }
uint64_t MemCountBelow8Pair(const uint8_t *, const uint8_t *, uint32_t, int64_t) { return 0; }
uint64_t MemCountAtMost8(const uint8_t *, uint32_t, uint64_t) { return 0; }
uint64_t MemCountAtMost8Pair(const uint8_t *, const uint8_t *, uint32_t, uint64_t) { return 0; }
uint64_t MemCountEqual8(const uint8_t *, uint32_t, uint64_t) { return 0; }
uint64_t MemCountEqual8Pair(const uint8_t *, const uint8_t *, uint32_t, uint64_t) { return 0; }

// VcbMemCompareOps
uint64_t MemCompare8(const uint8_t *, const uint8_t *, uint64_t) { return 0; }

// VcbMemMiscOps
double MemMean8(const uint8_t *, uint64_t) { return 0; }
double MemMeanOp3(const uint8_t *, int32_t, int32_t, uint64_t) { return 0; }
void MemMixOp4(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemMixOp6(uint8_t *, const uint8_t *const *, const float *, int32_t, uint64_t) {}
void MemAverage16(uint16_t *, const uint16_t *, const uint16_t *, uint64_t) {}
double MemStatOp24(const uint8_t *, uint64_t) { return 0; }
float MemSumU8ToF32(const uint8_t *, uint64_t) { return 0; }
void MemMixOp37(uint8_t *, const uint8_t *, const uint8_t *, int16_t, int16_t, uint64_t) {}
float MemStatOp38(const uint8_t *, uint64_t) { return 0; }
void MemMixOp47(uint8_t *, const uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t) {}
void MemRowFilter8(uint8_t *, const uint8_t *, int64_t, uint64_t) {}
void MemThresholdOp50(uint8_t *, const uint8_t *, int32_t, int32_t, uint64_t) {}
void MemDiffOp57(uint16_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemDiffOp58(int16_t *, const uint8_t *, const uint8_t *, uint64_t) {}
void MemCompareMask8(uint8_t *, const uint8_t *, uint64_t) {}
void MemMixOp61(uint16_t *, const uint16_t *, const uint16_t *, double, uint16_t, uint16_t, uint64_t) {}

} // namespace
