#include "image/image_handles.h"

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "core/error.h"

namespace kiv::vl {
namespace {

struct LiveImages {
    std::shared_mutex lock;
    std::unordered_map<VL_IMAGE_HANDLE, std::unique_ptr<Image>> images;
    std::uintptr_t given = 0;
};

LiveImages& live() {
    // Never destroyed: a program's own statics may still call while the process exits.
    static LiveImages& images = *std::make_unique<LiveImages>().release();
    return images;
}

Error unknown_handle(VL_IMAGE_HANDLE handle) {
    return {VL_ST_INVALID_HANDLE,
            handle == nullptr ? "the image handle is null" : "this is no image, or one that has been freed"};
}

}  // namespace

VL_IMAGE_HANDLE give_image(std::unique_ptr<Image> image) {
    const std::unique_lock hold(live().lock);
    const auto handle = reinterpret_cast<VL_IMAGE_HANDLE>(++live().given);  // NOLINT: a number in the shape of a pointer
    live().images.emplace(handle, std::move(image));
    return handle;
}

Image& image_of(VL_IMAGE_HANDLE handle) {
    const std::shared_lock hold(live().lock);
    const auto found = live().images.find(handle);
    if (found == live().images.end()) throw unknown_handle(handle);
    return *found->second;
}

std::unique_ptr<Image> take_image(VL_IMAGE_HANDLE handle) {
    const std::unique_lock hold(live().lock);
    auto node = live().images.extract(handle);
    if (node.empty()) throw unknown_handle(handle);
    return std::move(node.mapped());
}

}  // namespace kiv::vl
