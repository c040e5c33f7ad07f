#include <VL.h>
#include <kiv/platform/paths.h>

#include <span>

#include "api/names.h"
#include "core/error.h"
#include "files/image_file.h"
#include "files/raw_file.h"
#include "image/image_handles.h"

using namespace kiv::vl;
namespace platform = kiv::platform;

namespace {

template <class Character>
VL_STATUS store(const char* function, VL_IMAGE_HANDLE hImage, const Character* file, VL_FILE_FORMAT format, int32_t setting) {
    return guarded(function, [&] {
        const auto image = image_of(hImage);
        store_image(*image, name_of(file), format, setting);
    });
}

template <class Character>
VL_STATUS store_raw(const char* function, const K_IMAGE_INFO* raw, const Character* file) {
    return guarded(function, [&] {
        const auto& record = required(raw, "raw");
        const std::string name = name_of(file);
        const EncodedFile bytes = encode_raw(record);
        platform::write_file_atomically(name, std::span<const std::byte>(bytes));
    });
}

template <class Character>
VL_STATUS load(const char* function, const Character* file, K_IMAGE_INFO* pRaw) {
    return guarded(function, [&] {
        const std::string name = name_of(file);
        load_raw(name, required(pRaw, "pRaw"));
    });
}

}  // namespace

VL_STATUS VL_CALL vlStoreToFileA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format) {
    return store(__func__, hImage, file, format, usual_setting);
}

VL_STATUS VL_CALL vlStoreToFileW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format) {
    return store(__func__, hImage, file, format, usual_setting);
}

VL_STATUS VL_CALL vlStoreToFileExA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format, int32_t setting) {
    return store(__func__, hImage, file, format, setting);
}

VL_STATUS VL_CALL vlStoreToFileExW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format, int32_t setting) {
    return store(__func__, hImage, file, format, setting);
}

VL_STATUS VL_CALL vlStoreToFileRAWA(const K_IMAGE_INFO* raw, const char* file) { return store_raw(__func__, raw, file); }
VL_STATUS VL_CALL vlStoreToFileRAWW(const K_IMAGE_INFO* raw, const wchar_t* file) { return store_raw(__func__, raw, file); }
VL_STATUS VL_CALL vlLoadFromFileRAWA(const char* file, K_IMAGE_INFO* pRaw) { return load(__func__, file, pRaw); }
VL_STATUS VL_CALL vlLoadFromFileRAWW(const wchar_t* file, K_IMAGE_INFO* pRaw) { return load(__func__, file, pRaw); }
