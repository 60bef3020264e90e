#include "support/guarded_buffer.hpp"

#include <new>
#include <windows.h>

namespace vela::test {
namespace {

CONTEXT recovery;
volatile bool armed = false;
volatile bool faulted = false;

std::size_t pageSize()
{
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

// Continues behind RtlCaptureContext in runsWithoutFault.
LONG CALLBACK onFault(EXCEPTION_POINTERS *fault)
{
    const DWORD code = fault->ExceptionRecord->ExceptionCode;
    if (!armed || (code != EXCEPTION_ACCESS_VIOLATION && code != EXCEPTION_ILLEGAL_INSTRUCTION))
        return EXCEPTION_CONTINUE_SEARCH;
    armed = false;
    faulted = true;
    *fault->ContextRecord = recovery;
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

GuardedBuffer::GuardedBuffer(std::size_t atLeast)
{
    const std::size_t page = pageSize();
    size_ = (atLeast + page - 1) / page * page;
    auto *pages = static_cast<std::uint8_t *>(VirtualAlloc(nullptr, size_ + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
    if (!pages || !VirtualAlloc(pages + page, size_, MEM_COMMIT, PAGE_READWRITE))
        throw std::bad_alloc();
    begin_ = pages + page;
}

GuardedBuffer::~GuardedBuffer() { VirtualFree(begin_ - pageSize(), 0, MEM_RELEASE); }

bool runsWithoutFault(void (*work)(void *), void *context)
{
    static const void *const handler = AddVectoredExceptionHandler(1, onFault);
    (void)handler;
    faulted = false;
    RtlCaptureContext(&recovery);
    if (faulted)
        return false;
    armed = true;
    work(context);
    armed = false;
    return true;
}

} // namespace vela::test
