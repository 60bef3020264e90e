#include "frame/lifecycle.hpp"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH)
        vela::frame::attach();
    else if (reason == DLL_PROCESS_DETACH)
        vela::frame::detach(reserved != nullptr); // set when the process ends
    return TRUE;                                  // the library works without its log
}
