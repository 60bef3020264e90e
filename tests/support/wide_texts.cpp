#include "simd/avx2.h"

#include "simd/loops.h"

#include "audio/kernels/biquad.h"
#include "audio/kernels/effects.h"
#include "audio/kernels/mix.h"
#include "audio/kernels/upsample.h"
#include "colorspace/kernels/bt2020.h"
#include "colorspace/kernels/conversions.h"
#include "colorspace/kernels/hsv_planes.h"
#include "colorspace/kernels/no_op.h"
#include "math3d/kernels/arrays.h"
#include "math3d/kernels/identity.h"
#include "math3d/kernels/sums.h"
#include "math3d/kernels/vectors.h"
#include "matrix/kernels/matrices.h"
#include "matrix/kernels/products.h"
#include "matrix/kernels/vectors.h"
#include "mem/kernels.h"
#include "signal/kernels/magnitude.h"
#include "signal/kernels/sharpen_luma.h"
#include "signal/kernels/sliding_dot.h"
#include "video/kernels/sharpen_bytes.h"
#include "video/kernels/smooth.h"

#include "support/wide_texts.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/audio_procs.def"
extern constinit const VcbAudioProcs vela::test::audioProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/audio_effects.def"
extern constinit const VcbAudioEffects vela::test::audioEffectsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/color_space_procs.def"
extern constinit const VcbColorSpaceProcs vela::test::colorSpaceProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_order_ops.def"
extern constinit const VcbMemOrderOps vela::test::memOrderOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_in_place_order_ops.def"
extern constinit const VcbMemInPlaceOrderOps vela::test::memInPlaceOrderOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_fill_ops.def"
extern constinit const VcbMemFillOps vela::test::memFillOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_arith_ops.def"
extern constinit const VcbMemArithOps vela::test::memArithOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/sample_format_ops.def"
extern constinit const VcbSampleFormatOps vela::test::sampleFormatOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_compare_ops.def"
extern constinit const VcbMemCompareOps vela::test::memCompareOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_misc_ops.def"
extern constinit const VcbMemMiscOps vela::test::memMiscOpsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/signal_procs.def"
extern constinit const VcbSignalProcs vela::test::signalProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/video_procs.def"
extern constinit const VcbVideoProcs vela::test::videoProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/matrix_procs.def"
extern constinit const VcbMatrixProcs vela::test::matrixProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/vector_procs.def"
extern constinit const VcbVectorProcs vela::test::vectorProcsWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_arrays.def"
extern constinit const Vcb3DMathArrays vela::test::math3dArraysWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_identity.def"
extern constinit const Vcb3DMathIdentity vela::test::math3dIdentityWide = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_cross.def"
extern constinit const Vcb3DMathCross vela::test::math3dCrossWide = {
#include "frame/every_slot.h"
};
