// K_Image_...PixelFormat...: a camera's pixel formats and the catalogue's.
#include <kiv/pixel_format.h>

#include <algorithm>
#include <cstring>

#include "api/checks.h"
#include "features/pixel_formats.h"
#include "imaging/pixel_format_catalogue.h"
#include "imaging/pixel_format_words.h"

using namespace kiv;
using namespace kiv::api;

namespace {

// Cuts what does not fit; the terminator always does.
void put_bounded(std::string_view text, char* buffer, uint32_t size) {
    if (size == 0) return;
    auto length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

/// `body` of a camera's tables. Without a factory there is nothing to ask, and callers do not want to hear of it.
template <class Body>
K_STATUS_CODES on_tables(CAM_HANDLE hCamera, const void* result, Body body) noexcept {
    if (!any_live(HandleKind::factory)) return K_ST_SUCCESS;
    return guarded_as(K_ST_INVALID_HANDLE, [&] {
        auto& opened = camera(hCamera);
        out(result);
        return body(pixel_formats(opened));
    });
}

template <class Find>
K_STATUS_CODES find_name(CAM_HANDLE hCamera, char* buffer, uint32_t size, Find find) noexcept {
    return on_tables(hCamera, buffer, [&](PixelFormatTables& tables) {
        std::string name;
        auto status = find(tables, name);
        if (status == K_ST_SUCCESS) put_bounded(name, buffer, size);
        return status;
    });
}

}  // namespace

K_API K_STATUS_CODES K_CALL K_Image_TranslatePixelFormats(CAM_HANDLE hCamera) {
    if (!any_live(HandleKind::factory)) return K_ST_SUCCESS;
    // A GenICam exception has its own status and goes to the error record; whatever else happens is the handle's fault.
    return guarded_as(K_ST_INVALID_HANDLE, [&] {
        auto& opened = camera(hCamera);
        return guarded([&] {
            translate_pixel_formats(opened);
            return K_ST_SUCCESS;
        });
    });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_PixelFormat(CAM_HANDLE hCamera, uint64_t remoteCode, uint64_t* pLocalCode) {
    return on_tables(hCamera, pLocalCode, [&](PixelFormatTables& tables) { return tables.LocalCode(remoteCode, *pLocalCode); });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_Remote_PixelFormat(CAM_HANDLE hCamera, uint64_t localCode, uint64_t* pRemoteCode) {
    return on_tables(hCamera, pRemoteCode, [&](PixelFormatTables& tables) { return tables.RemoteCode(localCode, *pRemoteCode); });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_PixelFormatName(CAM_HANDLE hCamera, uint64_t remoteCode, char* name, uint32_t size) {
    return find_name(hCamera, name, size, [&](auto& tables, auto& found) { return tables.LocalName(remoteCode, found); });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_Remote_PixelFormatName(CAM_HANDLE hCamera, uint64_t code, char* name, uint32_t size) {
    return find_name(hCamera, name, size, [&](auto& tables, auto& found) { return tables.RemoteName(code, found); });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_Compatible_PixelFormat(CAM_HANDLE hCamera, uint64_t code, uint64_t* pCompatibleCode) {
    return on_tables(hCamera, pCompatibleCode,
                     [&](PixelFormatTables& tables) { return tables.CompatibleCode(code, *pCompatibleCode); });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_PixelFormatFromName(CAM_HANDLE hCamera, const char* name, uint64_t* pLocalCode) {
    return on_tables(hCamera, pLocalCode, [&](PixelFormatTables&) -> K_STATUS_CODES {
        out(name);
        auto code = catalogue_code(name);
        if (!code) code = code_by_words(name);
        if (!code) return K_ST_NO_DATA;
        *pLocalCode = *code;
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_Get_RemotePixelFormatFromName(CAM_HANDLE hCamera, const char* name, uint64_t* pRemoteCode) {
    return on_tables(hCamera, pRemoteCode, [&](PixelFormatTables& tables) {
        out(name);
        return tables.RemoteCodeOf(name, *pRemoteCode);
    });
}
