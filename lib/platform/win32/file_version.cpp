#include "kiv/platform/file_version.h"

#include <vector>

#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {

std::optional<ProductVersion> product_version_of(std::string_view path) {
    const std::wstring file = wide_from_utf8(path);
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), &unused);
    if (size == 0) return std::nullopt;
    std::vector<std::byte> resource(size);
    if (!GetFileVersionInfoW(file.c_str(), 0, size, resource.data())) return std::nullopt;
    void* found = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(resource.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO)) return std::nullopt;
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return ProductVersion{HIWORD(info.dwProductVersionMS), LOWORD(info.dwProductVersionMS), HIWORD(info.dwProductVersionLS)};
}

}  // namespace kiv::platform
