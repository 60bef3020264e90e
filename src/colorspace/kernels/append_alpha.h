// Three-byte pixels to four-byte pixels.
#pragma once

namespace {

void AppendAlpha24To32(uint8_t *dst, const uint8_t *src, uint32_t width, uint8_t alpha)
{
    const u32s opaque = splat32((uint32_t)alpha << 24);
    constexpr int lanes = u32s::lanes;
    forBlocks<2 * lanes>((ptrdiff_t)width,
                         [opaque](uint8_t *out, const uint8_t *in) {
                             store(out, loadPixels24(in) | opaque);
                             store(out + sizeof(u32s), loadPixels24(in + 3 * lanes) | opaque);
                         },
                         Out<4>{dst}, In<3>{src});
}

} // namespace
