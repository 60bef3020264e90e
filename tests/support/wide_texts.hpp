// All kernel texts on the AVX2 vocabulary.
#pragma once

#include <vela/colorspace.h>
#include <vela/video.h>

namespace vela::test {
extern const VcbColorSpaceProcs colorSpaceProcsWide;
extern const VcbVideoProcs videoProcsWide;
} // namespace vela::test
