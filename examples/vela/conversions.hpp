// The direct conversions between layouts: which slot makes them and how it is called. And ways over several of them.
#pragma once

#include "layouts.hpp"

#include <vela/vela.hpp>

#include <span>
#include <string>
#include <vector>

namespace host {

// What one call of a kernel gets. Kernels take the pointers from the front, in the order of planes and lines.
struct CallArguments {
    std::array<std::byte *, 6> targets;
    std::array<const std::byte *, 6> sources;
    int width;
    const CscYuvToRgb *toRgb;
    const CscRgbToYuv *toYuv;
    int alpha; // 0..255
};

// What one call converts: a line, two lines (where one side is 4:2:0), or a row of one plane.
enum class CallShape { line, linePair, planeRow };

struct Conversion {
    const Layout *from;
    const Layout *to;
    int slot;
    CallShape shape;
    int widthStep; // kernels convert whole steps of pixels
    bool takesAlpha;
    bool takesYuvToRgb;
    bool takesRgbToYuv;
    void (*call)(VcbKernel kernel, const CallArguments &arguments);
};

std::span<const Conversion> allConversions();

// The conversions that lead from a layout to another with the least loss, in their order; the fewest of them, and as
// few bytes between them as can be. Grey is full range, so luma passes for it only if `fullRangeYuv`. Empty if there is
// no way.
std::vector<const Conversion *> findWay(const Layout &from, const Layout &to, bool fullRangeYuv);

} // namespace host
