#include "view_window.h"

#include <algorithm>
#include <utility>

#include "error.h"
#include "image_file.h"
#include "text.h"

namespace {

constexpr int kMargin = 12;
constexpr int32_t kBackground = 0x181818;
constexpr int32_t kPanelBackground = 0x000000;

[[noreturn]] void cannot_open(VL_STATUS status) {
    const std::string reason = vlGetLastErrorText();
    if (status == VL_ST_NOT_AVAILABLE)
        throw ToolError(ExitCode::kNoDisplay,
                        reason + "\n  kiv view needs a screen (DISPLAY or WAYLAND_DISPLAY); kiv grab stores images without one.");
    throw ToolError(ExitCode::kFailed, "the window cannot be opened: " + reason);
}

}  // namespace

ViewWindow::ViewWindow(const std::string& title, cv::Size picture, Bell& bell)
    : bell_(bell), size_(picture.width, picture.height + kBarHeight), wanted_size_(size_) {
    VL_VIEW_HANDLE frame = nullptr;
    const VL_STATUS status = vlOpenViewWindowAutoA(title.c_str(), &frame);
    if (status != VL_ST_SUCCESS) cannot_open(status);
    frame_.reset(frame);
    SetOption(frame, VL_VIEW_BACKGROUND, kBackground);
    SetOption(frame, VL_VIEW_MOUSE, 0);
    vlResizeChildWindow(frame, static_cast<uint32_t>(size_.width), static_cast<uint32_t>(size_.height));
    image_ = OpenPart({0, 0, picture.width, picture.height});
    SetOption(image_, VL_VIEW_BACKGROUND, kBackground);
    for (Part& panel : panels_) {
        panel.view = OpenPart({0, 0, 1, 1});
        SetOption(panel.view, VL_VIEW_VISIBLE, 0);
        SetOption(panel.view, VL_VIEW_MOUSE, 0);
        SetOption(panel.view, VL_VIEW_BACKGROUND, kPanelBackground);
    }
    vlSetViewWindowCallback(frame, OnEvent, this);
    Place();
}

VL_VIEW_HANDLE ViewWindow::OpenPart(const cv::Rect& place) {
    VL_VIEW_HANDLE part = nullptr;
    const VL_STATUS status = vlOpenViewWindowA("", place.x, place.y, static_cast<uint32_t>(place.width),
                                               static_cast<uint32_t>(place.height), frame_.get(), nullptr, &part);
    if (status != VL_ST_SUCCESS) cannot_open(status);
    vlSetViewWindowCallback(part, OnEvent, this);
    return part;
}

void VL_CALL ViewWindow::OnEvent(void* context, VL_VIEW_HANDLE view, const VL_VIEW_EVENT* event) {
    static_cast<ViewWindow*>(context)->Remember(view, *event);
}

void ViewWindow::Remember(VL_VIEW_HANDLE view, const VL_VIEW_EVENT& event) {
    {
        const std::lock_guard lock(mutex_);
        if (event.type == VL_EVENT_KEY_DOWN || event.type == VL_EVENT_CLOSED) events_.push_back(event);
        if (event.type == VL_EVENT_MOUSE_MOVE && view == image_) mouse_ = {event.x, event.y};
        if (event.type == VL_EVENT_RESIZED && view == frame_.get())
            wanted_size_ = {static_cast<int>(event.width), static_cast<int>(event.height)};
    }
    bell_.Ring();
}

std::vector<VL_VIEW_EVENT> ViewWindow::TakeEvents() {
    const std::lock_guard lock(mutex_);
    return std::exchange(events_, {});
}

cv::Point ViewWindow::Mouse() const {
    const std::lock_guard lock(mutex_);
    return mouse_;
}

void ViewWindow::FollowSize() {
    {
        const std::lock_guard lock(mutex_);
        if (wanted_size_ == size_) return;
        size_ = wanted_size_;
    }
    Place();
}

void ViewWindow::SetOption(VL_VIEW_HANDLE view, VL_VIEW_OPTION option, int32_t value) {
    vlSetViewWindowOption(view, option, value);
}

std::string ViewWindow::Show(const K_IMAGE_INFO& raw, const Gains& gains) const {
    return vlShowImage(image_, &raw, gains.red, gains.green, gains.blue) == VL_ST_SUCCESS ? "" : vlGetLastErrorText();
}

int32_t ViewWindow::Drawn() const {
    int32_t drawn = 0;
    vlGetViewWindowOption(image_, VL_VIEW_DRAWN, &drawn);
    return drawn;
}

Sight ViewWindow::WhatIsSeen() const {
    Sight sight;
    vlGetImageOffsetEx(image_, &sight.x, &sight.y, &sight.zoom);
    return sight;
}

void ViewWindow::Zoom(double zoom) const {
    zoom = std::clamp(zoom, 1.0 / 64, 64.0);
    const Sight sight = WhatIsSeen();
    const double half_width = size_.width / 2.0, half_height = (size_.height - kBarHeight) / 2.0;
    vlSetImageOffsetEx(image_, sight.x + half_width / sight.zoom - half_width / zoom,
                       sight.y + half_height / sight.zoom - half_height / zoom, zoom);
}

void ViewWindow::ShowPanel(Panel panel, const cv::Mat& picture) {
    Part& part = panels_[static_cast<std::size_t>(panel)];
    if (part.size != picture.size()) {
        part.size = picture.size();
        const cv::Rect place = PlaceOf(panel);
        vlMoveViewWindow(part.view, place.x, place.y, static_cast<uint32_t>(place.width), static_cast<uint32_t>(place.height));
    }
    const uint64_t bytes = picture.total() * picture.elemSize();
    VL_IMAGE_HANDLE image = nullptr;
    if (vlMallocEx(static_cast<uint32_t>(picture.cols), static_cast<uint32_t>(picture.rows), VL_IMAGE_BGR8, picture.data, bytes,
                   &image) != VL_ST_SUCCESS)
        return;
    const Image owner(image);
    vlShowImageEx(part.view, image, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE);
    if (!std::exchange(part.visible, true)) SetOption(part.view, VL_VIEW_VISIBLE, 1);
}

void ViewWindow::HidePanel(Panel panel) {
    Part& part = panels_[static_cast<std::size_t>(panel)];
    if (std::exchange(part.visible, false)) SetOption(part.view, VL_VIEW_VISIBLE, 0);
}

cv::Rect ViewWindow::PlaceOf(Panel panel) const {
    const cv::Size size = panels_[static_cast<std::size_t>(panel)].size;
    switch (panel) {
        case Panel::kBar:
            return {{0, std::max(size_.height - kBarHeight, 0)}, size};
        case Panel::kHistogram:
            return {{std::max(size_.width - size.width - kMargin, 0), kMargin}, size};
        case Panel::kHelp:
            return {{std::max((size_.width - size.width) / 2, 0), std::max((size_.height - kBarHeight - size.height) / 2, 0)},
                    size};
    }
    return {};
}

void ViewWindow::Place() {
    vlMoveViewWindow(image_, 0, 0, static_cast<uint32_t>(size_.width),
                     static_cast<uint32_t>(std::max(size_.height - kBarHeight, 1)));
    for (const Panel panel : {Panel::kBar, Panel::kHistogram, Panel::kHelp}) {
        const cv::Rect place = PlaceOf(panel);
        vlMoveViewWindow(panels_[static_cast<std::size_t>(panel)].view, place.x, place.y, static_cast<uint32_t>(place.width),
                         static_cast<uint32_t>(place.height));
    }
}

void ViewWindow::Capture(const std::string& file, int jpeg_quality) const {
    VL_IMAGE_HANDLE image = nullptr;
    check_vl(vlCaptureViewWindow(frame_.get(), &image), "vlCaptureViewWindow", file);
    const Image owner(image);
    FileStyle style;
    style.kind = file_kind_of(file).value_or(FileKind::kPng);
    style.jpeg_quality = jpeg_quality;
    write_image_file(image, file, style);
}
