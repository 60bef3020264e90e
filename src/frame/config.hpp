// The configuration file beside the library.
#pragma once

#include <string>

#include <vela/frame.h>

namespace vela::frame {

// Reads the five values, writing the keys that the file lacks.
VcbTesselConf loadConfig(const std::wstring &path);

} // namespace vela::frame
