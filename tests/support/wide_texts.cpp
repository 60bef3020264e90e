#include "simd/avx2.h"

#include "simd/loops.h"

#include "colorspace/kernels/append_alpha.h"
#include "colorspace/kernels/packed_yuv.h"
#include "video/kernels/sharpen_bytes.h"
#include "video/kernels/smooth.h"

#include "support/wide_texts.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/color_space_procs.def"
extern constinit const VcbColorSpaceProcs vela::test::colorSpaceProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/video_procs.def"
extern constinit const VcbVideoProcs vela::test::videoProcsWide = {
#include "frame/every_slot.h"
};
