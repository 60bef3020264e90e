// All kernel texts of the memory family, for every tier alike: a tier's table names those that it ships.
#pragma once

#include "mem/kernels/fixed_point.h"

#include "mem/kernels/byte_arithmetic.h"
#include "mem/kernels/byte_counts.h"
#include "mem/kernels/byte_mixes.h"
#include "mem/kernels/byte_rows.h"
#include "mem/kernels/byte_statistics.h"

#include "mem/kernels/float_arithmetic.h"
#include "mem/kernels/float_sums.h"
#include "mem/kernels/look_ups.h"
#include "mem/kernels/peaks.h"
#include "mem/kernels/sample_sums.h"

#include "mem/kernels/sample_formats.h"

#include "mem/kernels/convert_samples.h"

#include "mem/kernels/scale_samples.h"

#include "mem/kernels/copy.h"
#include "mem/kernels/copy_runs.h"
#include "mem/kernels/fill.h"
#include "mem/kernels/order_in_elements.h"
#include "mem/kernels/reverse.h"
#include "mem/kernels/split_join.h"
