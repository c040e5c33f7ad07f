#include "view/view.h"

#include <optional>
#include <utility>

#include "convert/convert.h"

namespace kiv::vl {

std::shared_ptr<Image> View::Spare(std::uint32_t width, std::uint32_t height, std::uint64_t type) {
    std::shared_ptr<Image> image;
    {
        const std::lock_guard hold(lock_);
        image = std::exchange(spare_, nullptr);
    }
    if (image && image->Width() == width && image->Height() == height && image->Type() == type) return image;
    return std::make_shared<Image>(width, height, type);
}

void View::Hand(std::shared_ptr<Image> image) {
    const std::lock_guard hold(lock_);
    if (shown_) spare_ = std::move(shown_);
    shown_ = std::move(image);
}

void View::Show(const RawView& raw, const Gains& gains) {
    auto image = Spare(raw.Width(), raw.Height(), raw.Format().IsColour() ? VL_IMAGE_BGR8 : VL_IMAGE_MONO8);
    convert_raw(raw, *image, {demosaic, {gains}, 0});
    Hand(std::move(image));
}

void View::Show(const Image& source, const Gains& gains) {
    auto image = Spare(source.Width(), source.Height(), source.IsColour() ? VL_IMAGE_BGR8 : VL_IMAGE_MONO8);
    convert_image(source, *image);
    adjust(*image, {gains});
    Hand(std::move(image));
}

bool View::TakeShown() {
    const std::lock_guard hold(lock_);
    if (!shown_) return false;
    spare_ = std::exchange(current_, std::exchange(shown_, nullptr));
    viewport.SetImageSize(static_cast<int>(current_->Width()), static_cast<int>(current_->Height()));
    not_drawn_yet_ = true;
    return true;
}

void View::Resize(int width, int height) {
    if (place.width == width && place.height == height) return;
    place.width = width;
    place.height = height;
    viewport.SetViewSize(width, height);
    VL_VIEW_EVENT event{};
    event.type = VL_EVENT_RESIZED;
    Report(event);
}

void View::Draw(cv::Mat canvas) {
    draw(current_.get(), viewport, smooth, background, canvas);
    if (std::exchange(not_drawn_yet_, false)) ++drawn;
    for (const auto& child : children) {
        if (!child->visible) continue;
        // A child may reach beyond its parent: it is drawn whole and copied as far as there is room.
        const cv::Rect all(child->place.x, child->place.y, child->place.width, child->place.height);
        const cv::Rect seen = all & cv::Rect(0, 0, canvas.cols, canvas.rows);
        if (seen.empty()) continue;
        cv::Mat own(child->place.height, child->place.width, CV_8UC4);
        child->Draw(own);
        own(seen - all.tl()).copyTo(canvas(seen));
    }
}

std::shared_ptr<View> View::At(int& x, int& y) {
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (!(*child)->visible || !(*child)->place.Contains(x, y)) continue;
        x -= (*child)->place.x;
        y -= (*child)->place.y;
        return (*child)->At(x, y);
    }
    return shared_from_this();
}

void View::Report(VL_VIEW_EVENT event) {
    if (callback == nullptr) return;
    event.width = static_cast<std::uint32_t>(place.width);
    event.height = static_cast<std::uint32_t>(place.height);
    event.image_x = viewport.X() + event.x / viewport.Zoom();
    event.image_y = viewport.Y() + event.y / viewport.Zoom();
    callback(context, handle, &event);
}

HandleTable<VL_VIEW_HANDLE, View>& views() {
    static auto& table = make_table<VL_VIEW_HANDLE, View>("view");
    return table;
}

}  // namespace kiv::vl
