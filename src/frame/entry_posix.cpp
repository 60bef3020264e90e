#include "frame/lifecycle.hpp"

namespace {

[[gnu::constructor]] void loaded() { vela::frame::attach(); }

[[gnu::destructor]] void unloaded() { vela::frame::detach(false); }

} // namespace
