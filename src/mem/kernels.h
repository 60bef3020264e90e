// All kernel texts of the memory family, for every tier alike: a tier's table names those that it ships.
#pragma once

#include "mem/kernels/byte_arithmetic.h"
#include "mem/kernels/byte_counts.h"
#include "mem/kernels/byte_mixes.h"
#include "mem/kernels/byte_rows.h"
#include "mem/kernels/byte_statistics.h"

#include "mem/kernels/pending_floats.h"

#include "mem/kernels/pending_formats.h"

#include "mem/kernels/pending_moves.h"
