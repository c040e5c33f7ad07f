/// One view: an image, how it is shown, and where. Its place is in a window or in another view.
///
/// Everything here belongs to the window thread, but for what stands under "any thread".
#pragma once

#include <VL.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "convert/adjust.h"
#include "core/handle_table.h"
#include "format/raw_view.h"
#include "view/viewport.h"

namespace kiv::vl {

/// Within the parent, or on the desktop.
struct Place {
    int x = 0;
    int y = 0;
    int width = 1;
    int height = 1;
    bool Contains(int px, int py) const { return px >= x && py >= y && px < x + width && py < y + height; }
};

class View : public std::enable_shared_from_this<View> {
public:
    // Any thread.

    /// Converts on the calling thread; the view shows it when it comes to it.
    void Show(const RawView& raw, const Gains& gains);
    void Show(const Image& image, const Gains& gains);
    std::atomic<std::int32_t> demosaic{VL_DEMOSAIC_BILINEAR};

    // The window thread.

    /// Takes the newest image that has been shown; answers whether there was one.
    bool TakeShown();
    const Image* Current() const { return current_.get(); }
    void Resize(int width, int height);
    /// Draws the view and its children. `canvas` has the view's size.
    void Draw(cv::Mat canvas);
    /// The topmost view at a place of this one, and that place as it counts it.
    std::shared_ptr<View> At(int& x, int& y);
    /// Calls the callback, if there is one.
    void Report(VL_VIEW_EVENT event);

    VL_VIEW_HANDLE handle = nullptr;
    std::string title;
    Place place;
    Viewport viewport;
    bool smooth = false;
    bool mouse = true;
    bool visible = true;
    bool on_top = false;
    std::uint32_t background = 0x202020;
    std::int32_t drawn = 0;
    bool closed = false;
    bool takes_size_of_image = false;
    VL_VIEW_CALLBACK callback = nullptr;
    void* context = nullptr;
    std::weak_ptr<View> parent;
    std::vector<std::shared_ptr<View>> children;  ///< the last one on top

private:
    std::shared_ptr<Image> Spare(std::uint32_t width, std::uint32_t height, std::uint64_t type);
    void Hand(std::shared_ptr<Image> image);

    std::mutex lock_;
    std::shared_ptr<Image> shown_;  ///< waits to be taken
    std::shared_ptr<Image> spare_;  ///< memory for the next one
    std::shared_ptr<Image> current_;
    bool not_drawn_yet_ = false;
};

HandleTable<VL_VIEW_HANDLE, View>& views();

}  // namespace kiv::vl
