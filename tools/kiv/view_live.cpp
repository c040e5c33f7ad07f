#include "view_live.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "files.h"
#include "interrupt.h"
#include "text.h"

namespace {

constexpr std::chrono::milliseconds kShowInterval{15};  ///< faster than screens are
constexpr std::chrono::milliseconds kPanelInterval{100};
constexpr std::chrono::milliseconds kIdle{50};
constexpr std::chrono::milliseconds kHiddenAfter{500};  ///< a window that is not drawn for so long is not seen
constexpr std::chrono::seconds kMessageTime{3};
constexpr std::chrono::seconds kQuietAfter{2};
constexpr int kLeastWidth = 640, kLeastHeight = 360;
constexpr double kZoomStep = 1.25;
constexpr int32_t kEscape = 27;

cv::Size picture_size(const Camera& camera, cv::Size largest) {
    const double width = static_cast<double>(camera.Integer("Width").value_or(kLeastWidth));
    const double height = static_cast<double>(camera.Integer("Height").value_or(kLeastHeight));
    if (width < 1 || height < 1) return {kLeastWidth, kLeastHeight};
    const double scale = std::min({1.0, largest.width / width, largest.height / height});
    const int least_width = std::min(kLeastWidth, largest.width), least_height = std::min(kLeastHeight, largest.height);
    return {std::max(cvRound(width * scale), least_width), std::max(cvRound(height * scale), least_height)};
}

uint32_t payload_size(const Camera& camera, uint32_t given) {
    if (given != 0) return given;
    const std::optional<int64_t> payload = camera.Integer("PayloadSize");
    if (payload && *payload > 0 && *payload <= INT64_C(0xFFFFFFFF)) return static_cast<uint32_t>(*payload);
    throw ToolError(ExitCode::kFailed, "the camera tells no usable PayloadSize; say how large its images are with --buffer-size");
}

/// A name that no file has yet; `number` is the one to try first.
std::string free_file(const std::string& folder, const char* extension, unsigned& number) {
    for (;; ++number) {
        const std::string digits = std::to_string(number);
        const std::string name = "view_" + std::string(6 - std::min<std::size_t>(digits.size(), 6), '0') + digits + extension;
        const std::filesystem::path path = path_of(folder) / name;
        std::error_code error;
        if (!std::filesystem::exists(path, error)) return path.string();
    }
}

void save(LiveFrame frame, const std::string& file, const FileStyle& style, const Gains& gains) {
    frame.info.image_data = frame.data.data();
    if (style.kind == FileKind::kRaw) return write_image_file(frame.info, file, style);
    VL_IMAGE_HANDLE handle = nullptr;
    check_vl(vlMalloc(&frame.info, &handle), "vlMalloc", file);
    const Image image(handle);
    check_vl(vlFromRAWtoImageEx(&frame.info, handle, style.demosaic, gains.red, gains.green, gains.blue, 0, nullptr),
             "vlFromRAWtoImageEx", file);
    write_image_file(handle, file, style);
}

}  // namespace

LiveView::LiveView(const Camera& camera, const CameraEntry& entry, const ViewSettings& settings)
    : camera_(camera),
      settings_(settings),
      pixel_format_(camera.Text("PixelFormat").value_or("unknown")),
      frames_(bell_),
      window_(printable(entry.model + " " + entry.serial) + " - kiv", picture_size(camera, settings.largest), bell_),
      stream_(camera, payload_size(camera, settings.buffer_size), &frames_, NewestFrame::OnImage),
      wishes_balance_(settings.balance_white),
      histogram_(settings.histogram) {
    window_.SetDemosaic(settings.style.demosaic);
}

const std::vector<LiveView::Key>& LiveView::Keys() {
    static const std::vector<Key> keys{
        {{'f'}, "F", "all of the image", &LiveView::Fit},
        {{'1'}, "1", "one to one", &LiveView::OneToOne},
        {{'+', '='}, "+", "nearer (also with the wheel; the left button drags)", &LiveView::ZoomIn},
        {{'-'}, "-", "further away", &LiveView::ZoomOut},
        {{'b'}, "B", "blend enlarged pixels, or show them", &LiveView::ToggleSmooth},
        {{'h'}, "H", "histogram", &LiveView::ToggleHistogram},
        {{' ', 'p'}, "Space", "pause, and go on", &LiveView::TogglePause},
        {{'n'}, "N", "pause at the next image", &LiveView::NextImage},
        {{'w'}, "W", "make the middle of the image white", &LiveView::WishWhiteBalance},
        {{'o'}, "O", "original colours", &LiveView::OriginalColours},
        {{'s'}, "S", "save the image", &LiveView::SaveImage},
        {{'c'}, "C", "save what the window shows", &LiveView::SaveWindow},
        {{VL_KEY_F1, '?', '/'}, "F1", "this help", &LiveView::ToggleHelp},
        {{'q', kEscape}, "Q", "quit", &LiveView::Quit},
    };
    return keys;
}

ViewReport LiveView::Run() {
    ViewReport report;
    const Clock::time_point start = Clock::now();
    camera_.Execute("AcquisitionStart");
    while (Step(report)) bell_.Wait(Pause());
    report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    report.frames = frames_.Counts();
    report.lost = Lost();
    report.shown = shown_;
    report.skipped = skipped_;
    try {
        camera_.Execute("AcquisitionStop");
    } catch (const ToolError& failure) {
        std::fprintf(stderr, "kiv: warning: %s\n", failure.what());  // an unplugged camera cannot be stopped
    }
    stream_.Close();
    TakeSaved(true);
    if (!settings_.screenshot.empty()) window_.Capture(settings_.screenshot, settings_.style.jpeg_quality);
    return report;
}

bool LiveView::Step(ViewReport& report) {
    report.ending = ViewEnding::kInterrupted;
    if (is_interrupted()) return false;
    window_.FollowSize();
    HandleEvents();
    report.ending = ViewEnding::kClosed;
    if (quits_) return false;
    ShowNewest();
    TakeSaved(false);
    UpdatePanels();
    report.ending = ViewEnding::kComplete;
    if (settings_.count != 0 && shown_ >= settings_.count) return false;
    report.ending = ViewEnding::kTimeout;
    return settings_.count == 0 || paused_ || Clock::now() - last_image_ <= std::chrono::duration<double>(settings_.timeout_s);
}

std::chrono::milliseconds LiveView::Pause() const { return postponed_ ? std::chrono::milliseconds{3} : kIdle; }

void LiveView::HandleEvents() {
    for (const VL_VIEW_EVENT& event : window_.TakeEvents()) {
        stale_ = true;
        if (event.type == VL_EVENT_CLOSED) quits_ = true;
        if (event.type != VL_EVENT_KEY_DOWN) continue;
        for (const Key& key : Keys())
            if (std::find(key.keys.begin(), key.keys.end(), event.key) != key.keys.end()) (this->*key.act)();
    }
}

/// Images that the screen has no time for are not even converted.
bool LiveView::IsScreenReady(Clock::time_point now) const {
    if (now - last_shown_ < kShowInterval) return false;
    return shown_ == 0 || now - last_shown_ > kHiddenAfter || window_.Drawn() > drawn_before_;
}

void LiveView::ShowNewest() {
    if (paused_ && !step_) {
        resumed_ = true;
        return;
    }
    const Clock::time_point now = Clock::now();
    postponed_ = !IsScreenReady(now);
    if (postponed_ || !frames_.Take(frame_)) return;
    if (!resumed_) skipped_ += frame_.number - last_number_ - 1;
    resumed_ = step_ = false;
    last_number_ = frame_.number;
    last_image_ = last_shown_ = now;
    if (std::exchange(wishes_balance_, false)) BalanceWhite();
    drawn_before_ = window_.Drawn();
    trouble_ = window_.Show(frame_.info, gains_);
    if (++shown_ == 1 && settings_.zoom > 0) window_.Zoom(settings_.zoom);
}

void LiveView::UpdatePanels() {
    const Clock::time_point now = Clock::now();
    if (!stale_ && now - last_panels_ < kPanelInterval) return;
    stale_ = false;
    last_panels_ = now;
    if (histogram_ && Analysed() != nullptr) window_.ShowPanel(Panel::kHistogram, draw_histogram(tones_of(analysed_.get())));
    window_.ShowPanel(Panel::kBar, draw_bar(Bar(), {window_.Size().width, ViewWindow::kBarHeight}));
}

BarTexts LiveView::Bar() {
    BarTexts bar;
    if (paused_) bar.badge = "PAUSED";
    const FrameCounts counts = frames_.Counts();
    bar.facts.push_back(fixed_number(counts.rate, 1) + " fps");
    if (frame_.number != 0) {
        const Sight sight = window_.WhatIsSeen();
        bar.facts.push_back(std::to_string(frame_.info.width) + " x " + std::to_string(frame_.info.height) + " " +
                            printable(pixel_format_));
        bar.facts.push_back(short_number(std::round(sight.zoom * 1000) / 10) + " %");
        const std::string pixel = PixelText(sight);
        if (!pixel.empty()) bar.facts.push_back(pixel);
    }
    const Clock::time_point now = Clock::now();
    const auto quiet = std::chrono::duration_cast<std::chrono::seconds>(now - last_image_);
    if (now < message_until_) {
        bar.message = message_;
    } else if (!trouble_.empty()) {
        bar.message = printable(trouble_);
    } else if (!paused_ && quiet >= kQuietAfter) {
        bar.message = (shown_ == 0 ? "no image yet, for " : "no image for ") + std::to_string(quiet.count()) + " s";
    }
    bar.right = std::to_string(skipped_) + " skipped  " + std::to_string(Lost()) + " lost  F1 help";
    return bar;
}

std::string LiveView::PixelText(const Sight& sight) {
    const cv::Point mouse = window_.Mouse();
    const double x = std::floor(sight.x + mouse.x / sight.zoom), y = std::floor(sight.y + mouse.y / sight.zoom);
    if (mouse.x < 0 || x < 0 || y < 0 || x >= frame_.info.width || y >= frame_.info.height) return "";
    const auto column = static_cast<uint32_t>(x), line = static_cast<uint32_t>(y);
    std::string text = "(" + std::to_string(column) + ", " + std::to_string(line) + ")";
    uint16_t values[4] = {};
    uint32_t count = 0;
    if (vlGetPixelEx(&frame_.info, column, line, values, &count) != VL_ST_SUCCESS) return text;
    for (uint32_t i = 0; i < count; ++i) text += " " + std::to_string(values[i]);
    uint64_t type = 0;
    if (vlGetImageType(frame_.info.pixel_type, &type) != VL_ST_SUCCESS || type == VL_IMAGE_MONO8 || type == VL_IMAGE_MONO16)
        return text;
    uint16_t red = 0, green = 0, blue = 0;
    if (Analysed() == nullptr || vlGetPixel(analysed_.get(), column, line, &red, &green, &blue) != VL_ST_SUCCESS) return text;
    return text + "  RGB " + std::to_string(red / 257) + " " + std::to_string(green / 257) + " " + std::to_string(blue / 257);
}

/// Null when it cannot be converted.
VL_IMAGE_HANDLE LiveView::Analysed() {
    if (frame_.number == 0) return nullptr;
    if (analysed_ && analysed_number_ == frame_.number) return analysed_.get();
    uint64_t type = 0;
    if (vlGetImageType(frame_.info.pixel_type, &type) != VL_ST_SUCCESS) return nullptr;
    type = type == VL_IMAGE_MONO8 || type == VL_IMAGE_MONO16 ? VL_IMAGE_MONO8 : VL_IMAGE_BGR8;
    const bool fits =
        analysed_ && analysed_->type == type && analysed_->width == frame_.info.width && analysed_->height == frame_.info.height;
    if (!fits) {
        VL_IMAGE_HANDLE handle = nullptr;
        if (vlMallocEx(frame_.info.width, frame_.info.height, type, nullptr, 0, &handle) != VL_ST_SUCCESS) return nullptr;
        analysed_.reset(handle);
    }
    analysed_number_ = 0;
    if (vlFromRAWtoImage(&frame_.info, analysed_.get(), gains_.red, gains_.green, gains_.blue) != VL_ST_SUCCESS) return nullptr;
    analysed_number_ = frame_.number;
    return analysed_.get();
}

/// With the gains that make the mean of the image's middle ninth grey.
void LiveView::BalanceWhite() {
    gains_ = {};
    analysed_number_ = 0;
    const VL_IMAGE_HANDLE image = Analysed();
    if (image == nullptr || image->type == VL_IMAGE_MONO8) return Tell("white balance is for colour images");
    uint16_t red = 0, green = 0, blue = 0;
    const VL_STATUS status = vlGetAverage(image, image->width / 3, image->height / 3, 2 * image->width / 3, 2 * image->height / 3,
                                          &red, &green, &blue);
    if (status != VL_ST_SUCCESS || red == 0 || green == 0 || blue == 0) return Tell("the middle is too dark for a white balance");
    gains_.red = green * VL_GAIN_ONE / red;
    gains_.blue = green * VL_GAIN_ONE / blue;
    analysed_number_ = 0;
    Tell("white balance: red x " + fixed_number(gains_.red / 4096.0, 2) + ", blue x " + fixed_number(gains_.blue / 4096.0, 2));
}

uint64_t LiveView::Lost() const {
    const std::optional<K_STREAM_STATISTICS> statistics = stream_.Statistics();
    // A frame that the producer lost leaves a gap in the ids as well; some producers tell of one of the two only.
    return statistics ? std::max(statistics->lost, statistics->missing_ids) : 0;
}

void LiveView::Tell(const std::string& message) {
    message_ = message;
    message_until_ = Clock::now() + kMessageTime;
    stale_ = true;
}

void LiveView::TakeSaved(bool wait) {
    if (!saving_.valid() || (!wait && saving_.wait_for(std::chrono::seconds(0)) != std::future_status::ready)) return;
    try {
        Tell("saved " + saving_.get());
    } catch (const std::exception& failure) {
        Tell("not saved");
        std::fprintf(stderr, "kiv: %s\n", failure.what());
    }
}

void LiveView::Fit() { window_.Fit(); }
void LiveView::OneToOne() { window_.OneToOne(); }
void LiveView::ZoomIn() { window_.Zoom(window_.WhatIsSeen().zoom * kZoomStep); }
void LiveView::ZoomOut() { window_.Zoom(window_.WhatIsSeen().zoom / kZoomStep); }
void LiveView::ToggleSmooth() { window_.SetSmooth(smooth_ = !smooth_); }
void LiveView::TogglePause() { paused_ = !paused_; }
void LiveView::NextImage() { paused_ = step_ = true; }
void LiveView::Quit() { quits_ = true; }

void LiveView::ToggleHistogram() {
    histogram_ = !histogram_;
    if (!histogram_) window_.HidePanel(Panel::kHistogram);
}

void LiveView::ToggleHelp() {
    help_ = !help_;
    if (!help_) return window_.HidePanel(Panel::kHelp);
    std::vector<std::pair<std::string, std::string>> rows;
    for (const Key& key : Keys()) rows.emplace_back(key.name, key.help);
    window_.ShowPanel(Panel::kHelp, draw_help(rows));
}

/// At once while it stands still, else on the next image.
void LiveView::WishWhiteBalance() {
    wishes_balance_ = !paused_ || frame_.number == 0;
    if (wishes_balance_) return;
    BalanceWhite();
    window_.Show(frame_.info, gains_);
}

void LiveView::OriginalColours() {
    gains_ = {};
    wishes_balance_ = false;
    analysed_number_ = 0;
    if (paused_ && frame_.number != 0) window_.Show(frame_.info, gains_);
}

void LiveView::SaveImage() {
    if (frame_.number == 0) return Tell("there is no image yet");
    if (saving_.valid()) return Tell("the image before is still being saved");
    const std::string file = free_file(settings_.folder, file_extension(settings_.style.kind), next_file_);
    saving_ = std::async(std::launch::async, [frame = frame_, file, style = settings_.style, gains = gains_] {
        save(frame, file, style, gains);
        return file;
    });
}

void LiveView::SaveWindow() {
    const std::string file = free_file(settings_.folder, ".png", next_file_);
    window_.Capture(file, settings_.style.jpeg_quality);
    Tell("saved " + file);
}
