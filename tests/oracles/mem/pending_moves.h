// Empty oracles in place of those that are still to be written; a line goes when its text arrives.
#pragma once

namespace {

// VcbMemOrderOps
void MemCopy(void *, const void *, uint64_t) {}
void MemMove(void *, const void *, uint64_t) {}
void MemReverseBytes(uint8_t *, const uint8_t *, uint64_t) {}
void MemReverse16(uint16_t *, const uint16_t *, uint64_t) {}
void MemReverse32(uint32_t *, const uint32_t *, uint64_t) {}
void MemSwapBytes16(uint16_t *, const uint16_t *, uint64_t) {}
void MemSwapBytes32(uint32_t *, const uint32_t *, int32_t) {}
void MemSwapHalves32(uint32_t *, const uint32_t *, uint64_t) {}

// VcbMemInPlaceOrderOps
void MemReverseBytesInPlace(uint8_t *, uint64_t) {}
void MemReverse16InPlace(uint16_t *, uint64_t) {}
void MemReverse32InPlace(uint32_t *, uint64_t) {}
void MemExchange(uint8_t *, uint8_t *, uint64_t) {}

// VcbMemFillOps
void MemFill8(uint8_t *, uint8_t, uint64_t) {}
void MemFill16(uint16_t *, uint16_t, uint64_t) {}
void MemFill32(uint32_t *, uint32_t, uint64_t) {}
void MemFill24(uint8_t *, uint32_t, uint64_t) {}
void MemFill64(uint64_t *, uint64_t, uint64_t) {}
void MemFillTopByte32(uint32_t *, uint8_t, int32_t) {}

// VcbMemMiscOps
void MemNarrow16To8Low(uint8_t *, const uint16_t *, uint64_t) {}
void MemNarrow16To8High(uint8_t *, const uint16_t *, uint64_t) {}
void MemCopyStrided(uint8_t *, const uint8_t *, int64_t, int64_t, uint64_t, uint64_t) {}
void MemShuffle16A(uint16_t *, uint64_t) {}
void MemShuffle16B(uint16_t *, uint64_t) {}
void MemPack24(uint8_t *, const uint32_t *, uint64_t) {}
void MemUnpack24(uint32_t *, const uint8_t *, uint64_t) {}
void MemShuffle32A(uint32_t *, uint64_t) {}
void MemShuffle32B(uint32_t *, uint64_t) {}
void MemScatterStrided(uint8_t *, const uint8_t *, int64_t, int64_t, uint64_t, uint64_t) {}
void MemInsertLow8(uint16_t *, const uint8_t *, uint64_t) {}
void MemInsertHigh8(uint16_t *, const uint8_t *, uint64_t) {}
void MemInsertLow16(uint32_t *, const uint16_t *, uint64_t) {}
void MemInsertHigh16(uint32_t *, const uint16_t *, uint64_t) {}
void MemInsertLow32(uint64_t *, const uint32_t *, uint64_t) {}
void MemInsertHigh32(uint64_t *, const uint32_t *, uint64_t) {}
void MemPackOp25(uint32_t *, const uint32_t *, const uint32_t *, uint64_t) {}
void MemDeinterleave32(uint32_t *, uint32_t *, const uint32_t *, uint64_t) {}
void MemNarrow16To8Shift2(uint8_t *, const uint16_t *, uint64_t) {}

} // namespace
