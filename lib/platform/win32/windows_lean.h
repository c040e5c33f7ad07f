/// The system's header without what nobody here needs, and the few helpers that all files of this folder share.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

namespace kiv::platform {

struct CloseHandleOf {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
/// One kernel handle and its owner; null when there is none.
using OwnedHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf>;

/// CreateFile says "none" in a way of its own.
inline OwnedHandle owned_file(HANDLE file) noexcept { return OwnedHandle(file == INVALID_HANDLE_VALUE ? nullptr : file); }

/// The system's text for an error number, UTF-8, without a line end.
std::string error_text(DWORD error);

}  // namespace kiv::platform
