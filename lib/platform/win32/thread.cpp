#include "kiv/platform/thread.h"

#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {

bool raise_thread_priority() noexcept { return SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_ABOVE_NORMAL) != 0; }

void set_thread_name(std::string_view name) noexcept try {
    // Newer than the oldest system that the library runs on.
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    const auto set = reinterpret_cast<SetDescription>(reinterpret_cast<void*>(GetProcAddress(kernel, "SetThreadDescription")));
    if (set) set(GetCurrentThread(), wide_from_utf8(name).c_str());
} catch (...) {  // no memory: the thread stays nameless
}

}  // namespace kiv::platform
