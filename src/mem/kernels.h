// All kernel texts of the memory family, for every tier alike: a tier's table names those that it ships.
#pragma once

#include "mem/kernels/pending_bytes.h"

#include "mem/kernels/pending_floats.h"

#include "mem/kernels/pending_formats.h"

#include "mem/kernels/copy.h"
#include "mem/kernels/copy_runs.h"
#include "mem/kernels/fill.h"
#include "mem/kernels/order_in_elements.h"
#include "mem/kernels/reverse.h"
#include "mem/kernels/split_join.h"
