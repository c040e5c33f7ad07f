#include "imaging/view_display.h"

#include <VL.h>

#include <memory>

#include "imaging/last_view.h"

namespace kiv {

namespace {

struct FreeImage {
    void operator()(VL_IMAGE_HANDLE image) const { vlFree(image); }
};

VL_IMAGE_HANDLE converted(const K_IMAGE_INFO& raw) {
    VL_IMAGE_HANDLE image = nullptr;
    if (vlMalloc(&raw, &image) != VL_ST_SUCCESS) return nullptr;
    if (vlFromRAWtoImage(&raw, image, DisplayGains::unit, DisplayGains::unit, DisplayGains::unit) == VL_ST_SUCCESS) return image;
    vlFree(image);
    return nullptr;
}

class ViewDisplay final : public ImageDisplay {
public:
    bool HasWindow() const noexcept override { return last_view() != nullptr; }

    // A window that is closed by now, or a format that cannot be shown: the stream goes on.
    void Show(const K_IMAGE_INFO& image, const DisplayGains& gains) override {
        vlShowImage(last_view(), &image, gains.red, gains.green, gains.blue);
    }

    void BalanceWhite(const K_IMAGE_INFO& raw, DisplayGains& gains) override {
        std::unique_ptr<VL_IMAGE, FreeImage> image(converted(raw));
        if (!image) return;
        std::uint16_t red = 0, green = 0, blue = 0;
        auto status =
            vlGetAverage(image.get(), raw.width / 3, raw.height / 3, 2 * raw.width / 3, 2 * raw.height / 3, &red, &green, &blue);
        if (status != VL_ST_SUCCESS || red == 0 || green == 0 || blue == 0) return;
        gains.red = green * DisplayGains::unit / red;
        gains.blue = green * DisplayGains::unit / blue;
    }
};

ViewDisplay view_display;

}  // namespace

void provide_view_display() noexcept {
    ImageDisplay* none = nullptr;
    image_display.compare_exchange_strong(none, &view_display);
}

}  // namespace kiv
