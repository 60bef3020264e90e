#include "support/guarded_buffer.hpp"

#include <csetjmp>
#include <csignal>
#include <initializer_list>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace vela::test {
namespace {

sigjmp_buf recovery;
volatile std::sig_atomic_t armed = 0;

void onFault(int signal)
{
    if (armed)
        siglongjmp(recovery, 1);
    std::signal(signal, SIG_DFL); // a fault of the tests' own: die of it
    raise(signal);
}

} // namespace

GuardedBuffer::GuardedBuffer(std::size_t atLeast)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    size_ = (atLeast + page - 1) / page * page;
    void *pages = mmap(nullptr, size_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        throw std::bad_alloc();
    begin_ = static_cast<std::uint8_t *>(pages) + page;
    if (mprotect(begin_, size_, PROT_READ | PROT_WRITE) != 0)
        throw std::bad_alloc();
}

GuardedBuffer::~GuardedBuffer()
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    munmap(begin_ - page, size_ + 2 * page);
}

bool runsWithoutFault(void (*work)(void *), void *context)
{
    static const bool installed = [] {
        struct sigaction action = {};
        action.sa_handler = onFault;
        action.sa_flags = SA_NODEFER;
        for (int signal : {SIGSEGV, SIGBUS, SIGILL})
            sigaction(signal, &action, nullptr);
        return true;
    }();
    (void)installed;
    if (sigsetjmp(recovery, 1) != 0) {
        armed = 0;
        return false;
    }
    armed = 1;
    work(context);
    armed = 0;
    return true;
}

} // namespace vela::test
