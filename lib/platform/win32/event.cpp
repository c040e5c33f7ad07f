#include "kiv/platform/event.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <system_error>

#include "common/live_events.h"
#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr Milliseconds longest_timeout = std::chrono::hours(24 * 365 * 100);  // more does not fit into the clock's unit
constexpr std::size_t longest_name = 180;

HANDLE native(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

[[noreturn]] void fail(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

std::wstring checked_name(const std::string& name) {
    if (name.empty()) throw std::invalid_argument("an event needs a name that is not empty");
    if (name.size() > longest_name) throw std::invalid_argument("the name of an event is longer than 180 bytes");
    return wide_from_utf8(name);
}

std::intptr_t make_event(const wchar_t* name, ResetMode mode, bool set) {
    const HANDLE made = CreateEventW(nullptr, mode == ResetMode::manual, set, name);
    if (!made) fail("cannot make an event");
    return reinterpret_cast<std::intptr_t>(made);
}

struct EventState {
    LONG kind;  // 0: manual reset
    LONG set;
};

constexpr LONG status_success = 0, status_access_denied = static_cast<LONG>(0xC0000022);

/// Looks at an event without consuming it, which only the system's inner interface can. Answers that interface's status.
LONG query(HANDLE event, EventState& state) noexcept {
    using QueryEvent = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    static const auto ask =
        reinterpret_cast<QueryEvent>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryEvent")));
    return ask ? ask(event, 0, &state, sizeof state, nullptr) : -1;
}

ResetMode mode_of(HANDLE event, ResetMode otherwise) noexcept {
    EventState state = {};
    if (query(event, state) != status_success) return otherwise;
    return state.kind == 0 ? ResetMode::manual : ResetMode::automatic;
}

}  // namespace

Event::Event(ResetMode mode, bool set) : Event(make_event(nullptr, mode, set), mode, std::string()) {}

Event::Event(std::intptr_t handle, ResetMode mode, std::string name_file)
    : handle_(handle), mode_(mode), name_file_(std::move(name_file)) {
    LiveEvents::Instance().Add(this);
}

Event::~Event() {
    LiveEvents::Instance().Remove(this);
    CloseHandle(native(handle_));
}

std::unique_ptr<Event> Event::CreateNamed(const std::string& name, ResetMode mode) {
    const std::intptr_t made = make_event(checked_name(name).c_str(), mode, false);
    return std::unique_ptr<Event>(new Event(made, mode_of(native(made), mode), std::string()));
}

std::unique_ptr<Event> Event::OpenNamed(const std::string& name) {
    const HANDLE found = OpenEventW(EVENT_ALL_ACCESS, FALSE, checked_name(name).c_str());
    // The second: a "\" elsewhere than in "Global\" and "Local\", which no event can have.
    if (!found && (GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND)) return nullptr;
    if (!found) fail("cannot open the named event");
    const ResetMode mode = mode_of(found, ResetMode::automatic);
    return std::unique_ptr<Event>(new Event(reinterpret_cast<std::intptr_t>(found), mode, std::string()));
}

void Event::Set() noexcept {
    signals_.fetch_add(1, std::memory_order_release);
    SetEvent(native(handle_));
}

void Event::Reset() noexcept { ResetEvent(native(handle_)); }

bool Event::IsSet() const noexcept {
    EventState state = {};
    if (query(native(handle_), state) != status_success || state.set == 0) return false;
    signals_.load(std::memory_order_acquire);
    return true;
}

bool Event::TryTake() noexcept {
    if (WaitForSingleObject(native(handle_), 0) != WAIT_OBJECT_0) return false;
    signals_.load(std::memory_order_acquire);
    return true;
}

std::optional<int> Event::FileDescriptor() const noexcept { return std::nullopt; }

bool Event::Wait(Milliseconds timeout) {
    Event* const only[] = {this};
    return wait_any(only, timeout).has_value();
}

std::optional<std::size_t> wait_any(std::span<Event* const> events, Milliseconds timeout) {
    if (events.empty() || events.size() > max_wait_events)
        throw std::invalid_argument("a wait needs 1 to 64 events, not " + std::to_string(events.size()));
    std::array<HANDLE, max_wait_events> handles;
    std::ranges::transform(events, handles.begin(), [](Event* event) { return native(event->NativeHandle()); });
    const bool forever = timeout < Milliseconds::zero() || timeout > longest_timeout;
    const auto deadline = forever ? Clock::time_point::max() : Clock::now() + timeout;
    constexpr std::int64_t longest_part = 24 * 3600 * 1000;  // the system counts in 32 bits
    for (;;) {
        const auto left = forever ? longest_part : std::chrono::ceil<Milliseconds>(deadline - Clock::now()).count();
        const auto part = static_cast<DWORD>(std::clamp<std::int64_t>(left, 0, longest_part));
        const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(events.size()), handles.data(), FALSE, part);
        if (result == WAIT_FAILED) fail("cannot wait for events");
        if (result != WAIT_TIMEOUT) {
            events[result - WAIT_OBJECT_0]->signals_.load(std::memory_order_acquire);
            return result - WAIT_OBJECT_0;
        }
        if (!forever && Clock::now() >= deadline) return std::nullopt;
    }
}

bool is_foreign_event(const void* target) noexcept {
    if (find_live_event(target)) return true;
    EventState state = {};
    const LONG status = target ? query(const_cast<HANDLE>(target), state) : -1;
    return status == status_success || status == status_access_denied;
}

bool set_foreign_event(void* target) noexcept {
    if (LiveEvents::Instance().Set(target)) return true;
    return is_foreign_event(target) && SetEvent(target) != 0;
}

}  // namespace kiv::platform
