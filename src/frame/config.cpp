#include "frame/config.hpp"

#include "platform/platform.hpp"

namespace vela::frame {
namespace {

struct Key {
    int32_t VcbTesselConf::*value;
    const char *section;
    const char *name;
    int32_t inForceIfMissing;
    const char *writtenIfMissing;
};

// Colours are converted on several threads from the second run on: the first run, which creates the file, does not.
constexpr Key keys[] = {
    {&VcbTesselConf::OutputLog, "Log", "OutputLog", 0, "0"},
    {&VcbTesselConf::NumberOfThreads, "MultithreadedOptimization", "NumberOfThreads", 4, "4"},
    {&VcbTesselConf::Resampling, "MultithreadedOptimization", "Resampling", 0, "0"},
    {&VcbTesselConf::Deinterlacing, "MultithreadedOptimization", "Deinterlacing", 0, "0"},
    {&VcbTesselConf::ColorSpaceMultiThread, "MultithreadedOptimization", "ColorSpaceMultiThread", 0, "1"},
};

constexpr int32_t missing = -1; // so a -1 in the file counts as missing, too

} // namespace

VcbTesselConf loadConfig(const std::wstring &path)
{
    VcbTesselConf conf = {};
    for (const Key &key : keys) {
        const int32_t value = platform::readConfigInt(path, key.section, key.name, missing);
        conf.*key.value = value == missing ? key.inForceIfMissing : value;
        if (value == missing)
            platform::writeConfigString(path, key.section, key.name, key.writtenIfMissing);
    }
    return conf;
}

} // namespace vela::frame
