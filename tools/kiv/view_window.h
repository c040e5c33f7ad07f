/// The window of kiv view, made of views of the imaging library: the image, a bar below it, and panels over it.
#pragma once

#include <VL.h>

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <opencv2/core/mat.hpp>
#include <string>
#include <vector>

#include "session.h"
#include "view_bell.h"

struct Gains {
    uint32_t red = VL_GAIN_ONE, green = VL_GAIN_ONE, blue = VL_GAIN_ONE;
    bool IsOne() const { return red == VL_GAIN_ONE && green == VL_GAIN_ONE && blue == VL_GAIN_ONE; }
};

/// Which part of the image is seen: the image's coordinates of the upper left corner, screen pixels per pixel.
struct Sight {
    double x = 0, y = 0, zoom = 1;
};

enum class Panel { kBar, kHistogram, kHelp };

class ViewWindow {
public:
    /// The inner part has room for a picture of this size and the bar. Throws ExitCode::kNoDisplay without a display. The bell
    /// rings whenever the user does something.
    ViewWindow(const std::string& title, cv::Size picture, Bell& bell);
    ViewWindow(const ViewWindow&) = delete;
    ViewWindow& operator=(const ViewWindow&) = delete;

    /// Keys and the closing of the window, since the last call.
    std::vector<VL_VIEW_EVENT> TakeEvents();
    /// Where the mouse was last seen over the image, in pixels of the view; negative before that.
    cv::Point Mouse() const;
    /// Places the parts anew when the window has another size than at the last call.
    void FollowSize();
    cv::Size Size() const { return size_; }

    void SetDemosaic(VL_DEMOSAIC demosaic) const { SetOption(image_, VL_VIEW_DEMOSAIC, demosaic); }
    /// Empty, or why it cannot be shown.
    std::string Show(const K_IMAGE_INFO& raw, const Gains& gains) const;
    /// How many of the images that were shown have come to the screen; it waits for the one that is just being drawn.
    int32_t Drawn() const;
    Sight WhatIsSeen() const;
    void Fit() const { SetOption(image_, VL_VIEW_ZOOM, VL_ZOOM_FIT); }
    void OneToOne() const { SetOption(image_, VL_VIEW_ZOOM, VL_ZOOM_ONE_TO_ONE); }
    /// The middle of the view stays where it is.
    void Zoom(double zoom) const;
    void SetSmooth(bool smooth) const { SetOption(image_, VL_VIEW_SMOOTH, smooth ? 1 : 0); }

    /// A picture of 8 bits, blue, green and red; the bar's as wide as the window.
    void ShowPanel(Panel panel, const cv::Mat& picture);
    void HidePanel(Panel panel);

    /// Stores what the window shows, by the file's extension.
    void Capture(const std::string& file, int jpeg_quality) const;

    static constexpr int kBarHeight = 26;

private:
    static void VL_CALL OnEvent(void* context, VL_VIEW_HANDLE view, const VL_VIEW_EVENT* event);
    void Remember(VL_VIEW_HANDLE view, const VL_VIEW_EVENT& event);
    static void SetOption(VL_VIEW_HANDLE view, VL_VIEW_OPTION option, int32_t value);
    VL_VIEW_HANDLE OpenPart(const cv::Rect& place);
    cv::Rect PlaceOf(Panel panel) const;
    void Place();

    struct Part {
        VL_VIEW_HANDLE view = nullptr;
        cv::Size size{1, 1};
        bool visible = false;
    };

    Bell& bell_;
    VL_VIEW_HANDLE image_ = nullptr;
    std::array<Part, 3> panels_;  // in the order of Panel
    cv::Size size_;
    mutable std::mutex mutex_;
    std::vector<VL_VIEW_EVENT> events_;
    cv::Point mouse_{-1, -1};
    cv::Size wanted_size_;
    // The parts are closed with it. Last, so that no event comes when the rest is gone.
    std::unique_ptr<K_VIEW, Closer<vlCloseViewWindow>> frame_;
};
