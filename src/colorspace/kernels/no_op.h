// The kernel of the declared conversions that convert nothing.
#pragma once

namespace {

void CscNoOp() {}

} // namespace
