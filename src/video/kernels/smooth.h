// The 3x3 binomial blur in its passes, and the one-pass horizontal softening.
#pragma once

namespace {

void sumRows121(uint16_t *dst, const uint8_t *r0, const uint8_t *r1, const uint8_t *r2, ptrdiff_t bytes)
{
    forBlocks<2 * u8s::lanes>( // two registers a step: the loop's own instructions show in so short a kernel
        bytes,
        [](uint8_t *sums, const uint8_t *above, const uint8_t *row, const uint8_t *below) {
            for (int i = 0; i < 2 * u8s::lanes; i += u8s::lanes) {
                const u8s a = load<u8s>(above + i);
                const u8s b = load<u8s>(row + i);
                const u8s c = load<u8s>(below + i);
                store(sums + 2 * i, widenLow(a) + twice(widenLow(b)) + widenLow(c));
                store(sums + 2 * i + sizeof(u8s), widenHigh(a) + twice(widenHigh(b)) + widenHigh(c));
            }
        },
        Out<2>{dst}, In<1>{r0}, In<1>{r1}, In<1>{r2});
}

void SmoothRows121U8(uint16_t *dst, const uint8_t *r0, const uint8_t *r1, const uint8_t *r2, int32_t count)
{
    sumRows121(dst, r0, r1, r2, (ptrdiff_t)count * 4);
}

void SmoothRows121Rgb32(uint16_t *dst, const uint8_t *r0, const uint8_t *r1, const uint8_t *r2, int32_t width)
{
    sumRows121(dst, r0, r1, r2, (ptrdiff_t)width * 4);
}

// (neighbours + 2*centre + half) >> bits. Unsigned words: 4 * 16381 + 8 is below 65536.
template <int bits> inline u16s weigh121(u16s neighbours, u16s centre)
{
    return shiftRight<bits>(neighbours + twice(centre) + splat16(1 << (bits - 1)));
}

void SmoothCols121U16ToU8(uint8_t *dst, const uint16_t *sums, int32_t count)
{
    const auto weigh = [](const uint8_t *at) {
        return weigh121<4>(load<u16s>(at - 8) + load<u16s>(at + 8), load<u16s>(at));
    };
    forBlocks<u8s::lanes>(
        (ptrdiff_t)count * 4,
        [weigh](uint8_t *out, const uint8_t *in) { store(out, narrow(weigh(in), weigh(in + sizeof(u16s)))); },
        Out<1>{dst}, In<2, 8, 8>{sums});
}

// Packed 4:2:2: luma has its neighbours 2 words away, chroma 4 words away. lumaWords marks the luma word of every
// 32-bit group.
template <int bits> inline void smoothCols422(uint8_t *dst, const uint16_t *line, int32_t count, uint32_t lumaWords)
{
    const u16s luma = as<u16s>(splat32(lumaWords));
    const auto weigh = [luma](const uint8_t *at) {
        const u16s near = load<u16s>(at - 4) + load<u16s>(at + 4);
        const u16s far = load<u16s>(at - 8) + load<u16s>(at + 8);
        return weigh121<bits>(select(luma, near, far), load<u16s>(at));
    };
    forBlocks<u8s::lanes / 4>( // pairs of pixels
        (ptrdiff_t)(count >> 1),
        [weigh](uint8_t *out, const uint8_t *in) { store(out, narrow(weigh(in), weigh(in + sizeof(u16s)))); },
        Out<4>{dst}, In<8, 8, 8>{line});
}

constexpr uint32_t lumaFirst = 0x0000FFFF;  // order A
constexpr uint32_t lumaSecond = 0xFFFF0000; // order B

void SmoothCols121U16ToU8_A(uint8_t *dst, const uint16_t *sums, int32_t count)
{
    smoothCols422<4>(dst, sums, count, lumaFirst);
}

void SmoothCols121U16ToU8_B(uint8_t *dst, const uint16_t *sums, int32_t count)
{
    smoothCols422<4>(dst, sums, count, lumaSecond);
}

void SmoothCols121U16ToU8Q_A(uint8_t *dst, const uint16_t *line, int32_t count)
{
    smoothCols422<2>(dst, line, count, lumaFirst);
}

void SmoothCols121U16ToU8Q_B(uint8_t *dst, const uint16_t *line, int32_t count)
{
    smoothCols422<2>(dst, line, count, lumaSecond);
}

void SmoothHoriz121Rgb32(uint8_t *dst, const uint8_t *src, int32_t count)
{
    if (count < 1)
        return;
    // The edge pixel is its own neighbour there: avg(avg(x, y), x).
    const auto edge = [](uint8_t *out, const uint8_t *pixel, const uint8_t *neighbour) {
        for (int c = 0; c < 4; ++c) {
            const int mean = (pixel[c] + neighbour[c] + 1) >> 1;
            out[c] = (uint8_t)((mean + pixel[c] + 1) >> 1);
        }
    };
    const ptrdiff_t last = ((ptrdiff_t)count - 1) * 4;
    edge(dst, src, count > 1 ? src + 4 : src);
    forBlocks<u32s::lanes>((ptrdiff_t)count - 2,
                           [](uint8_t *out, const uint8_t *in) {
                               store(out, average(average(load<u8s>(in - 4), load<u8s>(in + 4)), load<u8s>(in)));
                           },
                           Out<4>{dst + 4}, In<4, 4, 4>{src + 4});
    if (last)
        edge(dst + last, src + last, src + last - 4);
}

} // namespace
