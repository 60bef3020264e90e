#include "platform/ini.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using vela::platform::iniReadInt;
using vela::platform::iniWithKey;

struct Name {
    std::string_view section;
    std::string_view key;
};

constexpr Name names[] = {
    {"Log", "OutputLog"}, {"MultithreadedOptimization", "Resampling"}, {"s", "k"}, {"s", "j"}, {"t", "k"}, {"", "k"}};

// Missing keys answer with a number that few files hold.
int32_t read(std::string_view file, const Name &name) { return iniReadInt(file, name.section, name.key, -31415926); }

void require(bool truth)
{
    if (!truth)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const std::string_view file(reinterpret_cast<const char *>(data), size);
    for (const Name &written : names) {
        const std::string changed = iniWithKey(file, written.section, written.key, "-123");
        require(read(changed, written) == -123);
        require(iniWithKey(changed, written.section, written.key, "-123") == changed);
        for (const Name &other : names)
            require(&other == &written || read(changed, other) == read(file, other));
    }
    return 0;
}
