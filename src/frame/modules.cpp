// Kernel modules: no module format exists yet, so every request is answered as if the module were missing.
#include "frame/cpu.hpp"

extern "C" {

void *VCB_CALL VCB_AutoLoadDLL(const wchar_t * /*baseName*/, void * /*tables*/) noexcept
{
    vela::frame::cpuLevel(); // hosts rely on the detection that this call brings
    return nullptr;
}

void *VCB_CALL VCB_LoadAssignDLL(const wchar_t * /*baseName*/, void * /*tables*/, int32_t /*level*/) noexcept
{
    return nullptr;
}

int32_t VCB_CALL VCB_RegAPIFromDLL(void * /*tables*/, void * /*module*/) noexcept { return -1; }

int32_t VCB_CALL VCB_HasNullPointer(const void *const *pointers, int32_t count) noexcept
{
    if (!pointers)
        return 0;
    for (int32_t i = 0; i < count; ++i)
        if (!pointers[i])
            return 1;
    return 0;
}
}
