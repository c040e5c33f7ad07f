#include "image/image_handles.h"

#include <deque>
#include <mutex>
#include <utility>

#include "core/handle_table.h"

namespace kiv::vl {
namespace {

struct HeldImage {
    Image image;
    std::unique_ptr<VL_IMAGE> record;
};

auto& held() {
    static auto& table = make_table<VL_IMAGE_HANDLE, HeldImage>("image");
    return table;
}

/// Records of freed images are kept a while, so that a handle that is used too late does not meet a new image at its address.
class Graveyard {
public:
    void Bury(std::unique_ptr<VL_IMAGE> record) {
        *record = {};
        const std::lock_guard hold(lock_);
        records_.push_back(std::move(record));
        if (records_.size() > most) records_.pop_front();
    }

private:
    static constexpr std::size_t most = 4096;
    std::mutex lock_;
    std::deque<std::unique_ptr<VL_IMAGE>> records_;
};

Graveyard& graveyard() {
    static Graveyard& all = *std::make_unique<Graveyard>().release();
    return all;
}

}  // namespace

VL_IMAGE_HANDLE give_image(Image image) {
    const VL_IMAGE record = image.Record();
    auto object = std::make_shared<HeldImage>(HeldImage{std::move(image), std::make_unique<VL_IMAGE>(record)});
    VL_IMAGE_HANDLE handle = object->record.get();
    held().GiveAs(handle, std::move(object));
    return handle;
}

std::shared_ptr<Image> image_of(VL_IMAGE_HANDLE handle) {
    auto object = held().Of(handle);
    Image* image = &object->image;
    return {std::move(object), image};
}

void free_image(VL_IMAGE_HANDLE handle) { graveyard().Bury(std::move(held().Take(handle)->record)); }

}  // namespace kiv::vl
