// Tests of whole domains.
#pragma once

#include <cstdlib>

namespace vela::test {

// Whether they take samples: where each step is many times slower, on an emulated processor or under sanitizers, which
// look for other faults.
inline bool samplesDomains()
{
#if defined(__SANITIZE_ADDRESS__)
    return true;
#else
    return std::getenv("VELA_CHECK_QUICK") != nullptr;
#endif
}

} // namespace vela::test
