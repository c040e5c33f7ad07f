/// A live window on a camera: images from the stream, doings of the user, and what stands beside the image.
#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "camera_list.h"
#include "image_file.h"
#include "session.h"
#include "view_bell.h"
#include "view_frames.h"
#include "view_overlay.h"
#include "view_window.h"

struct ViewSettings {
    FileStyle style;           ///< of saved images; its demosaic also on the screen
    std::string folder = ".";  ///< of saved images
    std::string screenshot;    ///< file for what the window shows at the end; may be empty
    bool histogram = false;
    bool balance_white = false;
    double zoom = 0;  ///< screen pixels per pixel; 0: all of the image
    cv::Size largest{1200, 700};
    uint64_t count = 0;    ///< end after so many images were shown; 0: never
    double timeout_s = 5;  ///< without an image, where a count is wanted
    uint32_t buffer_size = 0;
};

enum class ViewEnding { kClosed, kComplete, kInterrupted, kTimeout };

struct ViewReport {
    ViewEnding ending = ViewEnding::kClosed;
    FrameCounts frames;
    uint64_t shown = 0;
    uint64_t skipped = 0;  ///< came faster than they could be shown
    uint64_t lost = 0;     ///< never came: the producer had no buffer, or the ids show a gap
    double seconds = 0;
};

class LiveView {
public:
    /// Opens the window and the stream.
    LiveView(const Camera& camera, const CameraEntry& entry, const ViewSettings& settings);

    /// Until the user has enough of it.
    ViewReport Run();

private:
    using Clock = std::chrono::steady_clock;
    using Act = void (LiveView::*)();
    struct Key {
        std::vector<int32_t> keys;
        const char* name;
        const char* help;
        Act act;
    };
    static const std::vector<Key>& Keys();

    bool Step(ViewReport& report);
    void HandleEvents();
    void ShowNewest();
    bool IsScreenReady(Clock::time_point now) const;
    std::chrono::milliseconds Pause() const;
    void UpdatePanels();
    BarTexts Bar();
    std::string PixelText(const Sight& sight);
    VL_IMAGE_HANDLE Analysed();
    void BalanceWhite();
    uint64_t Lost() const;
    void Tell(const std::string& message);
    void TakeSaved(bool wait);

    void ToggleHelp();
    void ToggleHistogram();
    void ToggleSmooth();
    void TogglePause();
    void NextImage();
    void Fit();
    void OneToOne();
    void ZoomIn();
    void ZoomOut();
    void WishWhiteBalance();
    void OriginalColours();
    void SaveImage();
    void SaveWindow();
    void Quit();

    const Camera& camera_;
    const ViewSettings settings_;
    const std::string pixel_format_;
    Bell bell_;
    NewestFrame frames_;
    ViewWindow window_;
    Stream stream_;

    LiveFrame frame_;  ///< on the screen; number 0 before the first
    Image analysed_;   ///< the same in 8 bits, as it is shown; made when it is asked for
    uint64_t analysed_number_ = 0;
    Gains gains_;
    bool wishes_balance_ = false;
    bool paused_ = false, step_ = false, smooth_ = false, help_ = false, quits_ = false;
    bool histogram_ = false;
    bool postponed_ = false;  ///< there is an image for which the screen has no time yet
    bool stale_ = true;       ///< the panels show what was before
    bool resumed_ = false;    ///< what came while it stood still is not counted as skipped
    uint64_t shown_ = 0, skipped_ = 0, last_number_ = 0;
    int32_t drawn_before_ = 0;
    Clock::time_point last_shown_, last_panels_, last_image_ = Clock::now();
    BarTexts bar_;
    std::string message_, trouble_;
    Clock::time_point message_until_;
    std::future<std::string> saving_;
    unsigned next_file_ = 1;
};
