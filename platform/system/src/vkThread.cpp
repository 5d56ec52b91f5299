#include <vkSystem/vkThread.h>

#include <sys/syscall.h>
#include <unistd.h>

namespace vk {

uint64_t vkThread::CurrentThreadId()
{
    // Cached per thread: the system call is cheap but the log asks often.
    thread_local const uint64_t id = static_cast<uint64_t>(::syscall(SYS_gettid));
    return id;
}

} // namespace vk
