#include "kiv/platform/keep_awake.h"

#include <poll.h>
#include <unistd.h>

#include <fcntl.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>

#include "kiv/platform/dynamic_library.h"
#include "posix/file_descriptor.h"

namespace kiv::platform {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

struct Bus;
struct Message;

/// The few calls of libsystemd that ask the login manager. Looked up at run time: a system without it works as well.
struct BusLibrary {
    DynamicLibrary library{"libsystemd.so.0"};
    int (*open_system)(Bus**) = Find<int(Bus**)>("sd_bus_open_system");
    Bus* (*close_bus)(Bus*) = Find<Bus*(Bus*)>("sd_bus_close_unref");
    int (*process)(Bus*, Message**) = Find<int(Bus*, Message**)>("sd_bus_process");
    int (*is_ready)(Bus*) = Find<int(Bus*)>("sd_bus_is_ready");
    int (*get_fd)(Bus*) = Find<int(Bus*)>("sd_bus_get_fd");
    int (*get_events)(Bus*) = Find<int(Bus*)>("sd_bus_get_events");
    int (*new_call)(Bus*, Message**, const char*, const char*, const char*, const char*) =
        Find<int(Bus*, Message**, const char*, const char*, const char*, const char*)>("sd_bus_message_new_method_call");
    int (*append)(Message*, const char*, ...) = Find<int(Message*, const char*, ...)>("sd_bus_message_append");
    int (*call)(Bus*, Message*, std::uint64_t, void*,
                Message**) = Find<int(Bus*, Message*, std::uint64_t, void*, Message**)>("sd_bus_call");
    int (*read)(Message*, const char*, ...) = Find<int(Message*, const char*, ...)>("sd_bus_message_read");
    Message* (*unref)(Message*) = Find<Message*(Message*)>("sd_bus_message_unref");

    template <typename Signature>
    Signature* Find(const char* name) const {
        if (Signature* found = library.Function<Signature>(name)) return found;
        throw LoadError(library.Path() + " lacks " + name);
    }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Object* (*)(Object*)>;

microseconds left_until(Clock::time_point deadline) {
    return std::max(std::chrono::duration_cast<microseconds>(deadline - Clock::now()), microseconds::zero());
}

/// The greeting between us and the bus, in steps: the library itself would wait for it without limit.
bool greet(const BusLibrary& bus_library, Bus* bus, Clock::time_point deadline) {
    for (;;) {
        const int processed = bus_library.process(bus, nullptr);
        if (processed < 0) return false;
        if (bus_library.is_ready(bus) > 0) return true;
        if (processed > 0) continue;
        pollfd socket{bus_library.get_fd(bus), static_cast<short>(bus_library.get_events(bus)), 0};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(left_until(deadline));
        if (left.count() == 0) return false;
        if (poll(&socket, 1, static_cast<int>(left.count())) < 0 && errno != EINTR) return false;
    }
}

/// The inhibitor lock of the login manager: it holds as long as the descriptor is open.
FileDescriptor take_inhibitor(microseconds patience) {
    const auto deadline = Clock::now() + patience;
    const BusLibrary bus_library;
    Bus* opened = nullptr;
    if (bus_library.open_system(&opened) < 0) return {};
    const Owned<Bus> bus(opened, bus_library.close_bus);
    if (!greet(bus_library, bus.get(), deadline)) return {};

    Message* made = nullptr;
    if (bus_library.new_call(bus.get(), &made, "org.freedesktop.login1", "/org/freedesktop/login1",
                             "org.freedesktop.login1.Manager", "Inhibit") < 0)
        return {};
    const Owned<Message> request(made, bus_library.unref);
    if (bus_library.append(request.get(), "ssss", "sleep:idle", "Kiv_Factory", "Cameras are in use", "block") < 0) return {};
    const auto left = left_until(deadline);
    if (left.count() == 0) return {};  // to the bus, 0 would mean its own long time-out
    Message* answered = nullptr;
    if (bus_library.call(bus.get(), request.get(), static_cast<std::uint64_t>(left.count()), nullptr, &answered) < 0) return {};
    const Owned<Message> answer(answered, bus_library.unref);
    int descriptor = -1;
    if (bus_library.read(answer.get(), "h", &descriptor) < 0) return {};
    return FileDescriptor(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));  // the answer closes its own
}

struct Inhibitor {
    std::mutex lock;
    FileDescriptor held;
};

Inhibitor& inhibitor() {
    // Never destroyed: a program's own statics may still call while the process exits.
    static Inhibitor& only = *std::make_unique<Inhibitor>().release();
    return only;
}

}  // namespace

void keep_system_awake() noexcept try {
    Inhibitor& only = inhibitor();
    std::lock_guard guard(only.lock);
    if (!only.held) only.held = take_inhibitor(std::chrono::milliseconds(150));
} catch (...) {  // no such library, or an old one: nothing to ask
}

void let_system_sleep() noexcept {
    Inhibitor& only = inhibitor();
    std::lock_guard guard(only.lock);
    const FileDescriptor released = std::move(only.held);
}

}  // namespace kiv::platform
