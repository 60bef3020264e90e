// The unsharp combine in 16-bit sums, for instruction sets that multiply and add byte pairs in one step.
#pragma once

namespace {

// a + ((5*(a - b) + 8) >> 4) = (42*a - 10*b + 16) >> 5: the whole expression over one shift, -2550..10710 in
// 16 bits.
void SharpenU8(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    map<u8s>(
        dst, count, [](u8s x, u8s y) { return narrow(shiftRightRounded<5>(weightedSum<42, -10>(x, y))); }, a, b);
}

} // namespace
