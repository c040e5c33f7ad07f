#include "kiv/platform/thread.h"

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace kiv::platform {

bool raise_thread_priority() noexcept {
    const auto thread = static_cast<id_t>(gettid());  // Linux keeps a nice value for each thread
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, thread);
    if (nice == -1 && errno != 0) return false;
    return setpriority(PRIO_PROCESS, thread, nice - 1) == 0;
}

void set_thread_name(std::string_view name) noexcept {
    char kept[16] = {};  // the kernel's limit, terminator included
    std::memcpy(kept, name.data(), name.size() < sizeof kept ? name.size() : sizeof kept - 1);
    pthread_setname_np(pthread_self(), kept);
}

}  // namespace kiv::platform
