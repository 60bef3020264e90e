// A sub-table of one kernel.
#pragma once

struct Table {
    float (*kernel)(float);
};
