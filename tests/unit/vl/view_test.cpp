// Windows, on an X server of the test's own: what is on the screen, what the user does, and calls from many threads. Each case
// runs in a process of its own, since a process has one display.
#include <VL.h>
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

#include "scratch.h"
#include "support/x_display.h"

// SDL leaves what libdbus keeps for the process: other users of libdbus in it may need it.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { return "leak:libdbus-1.so"; }

namespace kiv::vl::test {
namespace {

using kiv_test::VirtualScreen;
using testing::ElementsAre;
using testing::HasSubstr;

/// Looks again and again until it is so, or a deadline has passed.
bool eventually(const std::function<bool()>& so) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!so()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

class OpenView {
public:
    OpenView(const char* title, int x, int y, std::uint32_t width, std::uint32_t height, VL_VIEW_HANDLE parent = nullptr,
             void* native = nullptr) {
        EXPECT_EQ(vlOpenViewWindowA(title, x, y, width, height, parent, native, &handle_), VL_ST_SUCCESS) << vlGetLastErrorText();
    }
    OpenView(const wchar_t* title) { EXPECT_EQ(vlOpenViewWindowAutoW(title, &handle_), VL_ST_SUCCESS) << vlGetLastErrorText(); }
    ~OpenView() { Close(); }
    OpenView(const OpenView&) = delete;
    OpenView& operator=(const OpenView&) = delete;

    operator VL_VIEW_HANDLE() const { return handle_; }
    void Close() {
        if (handle_ != nullptr) vlCloseViewWindow(handle_);
        handle_ = nullptr;
    }
    /// Shows an image of one colour.
    void Show(std::uint32_t width, std::uint32_t height, std::array<std::uint8_t, 3> rgb) const {
        OwnedImage image(width, height, VL_IMAGE_BGR8);
        Bytes bytes;
        for (std::size_t i = 0; i < std::size_t{width} * height; ++i) bytes.insert(bytes.end(), {rgb[2], rgb[1], rgb[0]});
        image.Fill(bytes);
        EXPECT_EQ(vlShowImageEx(handle_, image, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE), VL_ST_SUCCESS) << vlGetLastErrorText();
    }
    std::int32_t Option(VL_VIEW_OPTION option) const {
        std::int32_t value = -1;
        EXPECT_EQ(vlGetViewWindowOption(handle_, option, &value), VL_ST_SUCCESS) << vlGetLastErrorText();
        return value;
    }
    void Set(VL_VIEW_OPTION option, std::int32_t value) const {
        EXPECT_EQ(vlSetViewWindowOption(handle_, option, value), VL_ST_SUCCESS) << vlGetLastErrorText();
    }
    std::array<double, 3> Offset() const {
        std::array<double, 3> at{};
        EXPECT_EQ(vlGetImageOffsetEx(handle_, &at[0], &at[1], &at[2]), VL_ST_SUCCESS) << vlGetLastErrorText();
        return at;
    }
    std::array<std::int64_t, 4> Rect() const {
        std::int32_t x = 0, y = 0;
        std::uint32_t width = 0, height = 0;
        EXPECT_EQ(vlGetViewWindowRect(handle_, &x, &y, &width, &height), VL_ST_SUCCESS) << vlGetLastErrorText();
        return {x, y, width, height};
    }
    Bytes Captured(std::uint32_t x, std::uint32_t y) const {
        OwnedImage image;
        EXPECT_EQ(vlCaptureViewWindow(handle_, image.Out()), VL_ST_SUCCESS) << vlGetLastErrorText();
        const auto* pixel = static_cast<VL_IMAGE_HANDLE>(image)->data + 3 * (y * image.Info().width + x);
        return {pixel[2], pixel[1], pixel[0]};
    }

private:
    VL_VIEW_HANDLE handle_ = nullptr;
};

TEST(Views, SayThatThereIsNoDisplayAndNothingElseSuffers) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("SDL_VIDEODRIVER");
    VL_VIEW_HANDLE view = nullptr;
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(vlOpenViewWindowAutoA("none", &view), VL_ST_NOT_AVAILABLE);
        EXPECT_THAT(vlGetLastErrorText(), HasSubstr("there is no display"));
    }
    EXPECT_EQ(view, nullptr);
    const OwnedImage image(4, 4, VL_IMAGE_BGR8);
    EXPECT_EQ(vlShowImageEx(view, image, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE), VL_ST_INVALID_HANDLE);
    EXPECT_EQ(vlImageProcessing(image, "invert", image), VL_ST_SUCCESS);
    const VirtualScreen screen;  // and when there is one, it works
    const OpenView late("late", 0, 0, 100, 100);
    EXPECT_EQ(late.Rect()[2], 100);
}

TEST(Views, ShowImagesOnTheScreen) {
    const VirtualScreen screen;
    const OpenView view("first", 100, 50, 200, 100);
    // A raw image, 2 x 2, grey above white: it fits as 100 x 100 in the middle, with gains on colour only.
    Bytes raw_data = {0x40, 0x40, 0x40, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const auto raw = record(0x02180014, 2, 2, raw_data);
    ASSERT_EQ(vlShowImage(view, &raw, 8192, VL_GAIN_ONE, 2048), VL_ST_SUCCESS) << vlGetLastErrorText();
    EXPECT_TRUE(eventually([&] { return screen.Pixel(160, 60) == std::array{0x80, 0x40, 0x20}; }));
    EXPECT_EQ(screen.Pixel(240, 60), (std::array{255, 255, 128}));
    EXPECT_EQ(screen.Pixel(110, 60), (std::array{0x20, 0x20, 0x20}));
    EXPECT_EQ(screen.Pixel(10, 10), (std::array{0, 0, 0}));
    EXPECT_EQ(view.Captured(60, 10), (Bytes{0x80, 0x40, 0x20}));
    EXPECT_EQ(view.Option(VL_VIEW_DRAWN), 1);

    view.Set(VL_VIEW_BACKGROUND, 0x102030);
    EXPECT_TRUE(eventually([&] { return screen.Pixel(110, 60) == std::array{0x10, 0x20, 0x30}; }));
    view.Set(VL_VIEW_ZOOM, VL_ZOOM_ONE_TO_ONE);
    EXPECT_EQ(view.Captured(99, 49), (Bytes{0x80, 0x40, 0x20}));
    EXPECT_EQ(view.Captured(98, 49), (Bytes{0x10, 0x20, 0x30}));
    EXPECT_THAT(view.Offset(), ElementsAre(-99, -49, 1));
    ASSERT_EQ(vlSetImageOffsetEx(view, 1, 1, 64), VL_ST_SUCCESS);
    EXPECT_EQ(view.Option(VL_VIEW_ZOOM), VL_ZOOM_FREE);
    view.Set(VL_VIEW_VISIBLE, 0);
    EXPECT_TRUE(eventually([&] { return screen.Pixel(160, 60) == std::array{0, 0, 0}; }));
    view.Set(VL_VIEW_VISIBLE, 1);
    EXPECT_TRUE(eventually([&] { return screen.Pixel(260, 145) == std::array{255, 255, 128}; }));
}

TEST(Views, AreMovedResizedNamedAndClosed) {
    const VirtualScreen screen;
    OpenView automatic(L"\u00dcberblick \u6e2c");
    EXPECT_NE(screen.Find("Überblick 測"), Window{None});
    automatic.Show(300, 200, {1, 2, 3});
    EXPECT_TRUE(eventually([&] { return automatic.Rect()[2] == 300 && automatic.Rect()[3] == 200; })) << "size of the image";
    automatic.Show(100, 100, {1, 2, 3});
    EXPECT_EQ(automatic.Captured(150, 100), (Bytes{1, 2, 3}));
    EXPECT_EQ(automatic.Rect()[2], 300) << "of the first image only";

    const OpenView view("old", 10, 20, 50, 60);
    ASSERT_EQ(vlSetViewWindowTitleA(view, "new"), VL_ST_SUCCESS);
    EXPECT_TRUE(eventually([&] { return screen.Find("new") != None; }));
    ASSERT_EQ(vlMoveViewWindow(view, 400, 300, 80, 70), VL_ST_SUCCESS);
    view.Show(8, 7, {200, 100, 50});
    EXPECT_TRUE(eventually([&] { return screen.Pixel(479, 369) == std::array{200, 100, 50}; }));
    EXPECT_EQ(screen.Pixel(480, 369), (std::array{0, 0, 0}));
    EXPECT_THAT(view.Rect(), ElementsAre(400, 300, 80, 70));
    ASSERT_EQ(vlResizeChildWindow(view, 20, 20), VL_ST_SUCCESS);
    EXPECT_TRUE(eventually([&] { return screen.Pixel(470, 360) == std::array{0, 0, 0}; }));
    std::int32_t x = 0, y = 0;
    std::uint32_t width = 0, height = 0;
    ASSERT_EQ(vlGetFrameWindowRect(view, &x, &y, &width, &height), VL_ST_SUCCESS);
    EXPECT_GE(width, 20u);

    const VL_VIEW_HANDLE closed = automatic;
    automatic.Close();
    EXPECT_TRUE(eventually([&] { return screen.Find("Überblick 測") == None; }));
    const OwnedImage image(2, 2, VL_IMAGE_MONO8);
    std::int32_t value = 0;
    double at = 0;
    VL_IMAGE_HANDLE none = nullptr;
    VL_VIEW_HANDLE no_view = nullptr;
    const VL_STATUS refused[] = {
        vlCloseViewWindow(closed),
        vlShowImageEx(closed, image, 1, 1, 1),
        vlSetImageOffset(closed, 0, 0),
        vlGetImageOffsetEx(closed, &at, &at, &at),
        vlSetViewWindowOption(closed, VL_VIEW_SMOOTH, 1),
        vlGetViewWindowOption(closed, VL_VIEW_SMOOTH, &value),
        vlSetViewWindowCallback(closed, nullptr, nullptr),
        vlMoveViewWindow(closed, 0, 0, 1, 1),
        vlResizeChildWindow(closed, 1, 1),
        vlGetViewWindowRect(closed, &x, &y, &width, &height),
        vlSetViewWindowTitleA(closed, ""),
        vlCaptureViewWindow(closed, &none),
    };
    for (std::size_t i = 0; i < std::size(refused); ++i) EXPECT_EQ(refused[i], VL_ST_INVALID_HANDLE) << "case " << i;
    const VL_STATUS wrong[] = {
        vlSetViewWindowOption(view, 99, 0),
        vlSetViewWindowOption(view, VL_VIEW_ZOOM, 3),
        vlSetViewWindowOption(view, VL_VIEW_DRAWN, 0),
        vlSetImageOffsetEx(view, 0, 0, 0),
        vlMoveViewWindow(view, 0, 0, 0, 1),
        vlResizeChildWindow(view, 1, 16385),
        vlOpenViewWindowA("", 0, 0, 0, 10, nullptr, nullptr, &no_view),
    };
    for (std::size_t i = 0; i < std::size(wrong); ++i) EXPECT_EQ(wrong[i], VL_ST_INVALID_PARAMETER) << "case " << i;
}

TEST(Views, StandInOtherViewsAndInWindowsOfTheProgram) {
    const VirtualScreen screen;
    const Window own = XCreateSimpleWindow(screen.Connection(), screen.Root(), 600, 400, 120, 90, 0, 0, 0);
    XMapWindow(screen.Connection(), own);
    XSync(screen.Connection(), False);
    {
        OpenView parent("parent", 0, 0, 200, 100);
        parent.Show(200, 100, {10, 10, 10});
        const OpenView child("", 150, 20, 100, 50, parent);
        child.Show(100, 50, {0, 0, 200});
        EXPECT_TRUE(eventually([&] { return screen.Pixel(199, 30) == std::array{0, 0, 200}; })) << "cut at the parent's end";
        EXPECT_EQ(screen.Pixel(149, 30), (std::array{10, 10, 10}));
        EXPECT_THAT(child.Rect(), ElementsAre(150, 20, 100, 50));
        ASSERT_EQ(vlResizeChildWindow(child, 10, 10), VL_ST_SUCCESS);
        EXPECT_EQ(parent.Captured(170, 30), (Bytes{10, 10, 10}));
        const OpenView native("", 0, 0, 1, 1, nullptr, reinterpret_cast<void*>(own));
        native.Show(12, 9, {0, 150, 0});
        EXPECT_TRUE(eventually([&] { return screen.Pixel(719, 489) == std::array{0, 150, 0}; }));
        EXPECT_EQ(native.Rect()[2], 120);
        parent.Close();
        std::int32_t value = 0;
        EXPECT_EQ(vlGetViewWindowOption(child, VL_VIEW_SMOOTH, &value), VL_ST_INVALID_HANDLE) << "closed with its parent";
        VL_VIEW_HANDLE none = nullptr;
        EXPECT_EQ(vlOpenViewWindowA("", 0, 0, 9, 9, native, reinterpret_cast<void*>(own), &none), VL_ST_INVALID_PARAMETER);
    }
    XWindowAttributes attributes;
    EXPECT_NE(XGetWindowAttributes(screen.Connection(), own, &attributes), 0) << "the program's window is still there";
}

struct Seen {
    std::mutex lock;
    std::vector<VL_VIEW_EVENT> events;
    VL_VIEW_HANDLE close_at_key = nullptr;

    std::vector<VL_VIEW_EVENT> Of(std::int32_t type) {
        const std::lock_guard hold(lock);
        std::vector<VL_VIEW_EVENT> found;
        for (const auto& event : events)
            if (event.type == type) found.push_back(event);
        return found;
    }
};

void VL_CALL remember(void* context, VL_VIEW_HANDLE view, const VL_VIEW_EVENT* event) {
    auto& seen = *static_cast<Seen*>(context);
    const bool close = event->type == VL_EVENT_KEY_DOWN && seen.close_at_key == view;
    if (close) {
        EXPECT_EQ(vlCloseViewWindow(view), VL_ST_SUCCESS);
    }
    const std::lock_guard hold(seen.lock);
    seen.events.push_back(*event);
}

TEST(Views, TellWhatTheUserDoes) {
    const VirtualScreen screen;
    Seen seen;
    const OpenView view("mouse", 100, 100, 400, 200);
    view.Show(400, 200, {50, 60, 70});
    ASSERT_EQ(vlSetViewWindowCallback(view, remember, &seen), VL_ST_SUCCESS);
    ASSERT_TRUE(eventually([&] { return screen.Pixel(110, 110) == std::array{50, 60, 70}; }));
    const Window window = screen.Find("mouse");
    ASSERT_NE(window, Window{None});

    screen.MoveMouse(300, 150);
    ASSERT_TRUE(eventually([&] { return !seen.Of(VL_EVENT_MOUSE_MOVE).empty(); }));
    EXPECT_EQ(seen.Of(VL_EVENT_MOUSE_MOVE).back().x, 200);
    EXPECT_EQ(seen.Of(VL_EVENT_MOUSE_MOVE).back().image_y, 50);
    screen.Button(window, 200, 50, 4, true);  // the wheel, away from the user
    ASSERT_TRUE(eventually([&] { return !seen.Of(VL_EVENT_WHEEL).empty(); }));
    EXPECT_EQ(seen.Of(VL_EVENT_WHEEL)[0].wheel, 1);
    const auto zoomed = view.Offset();
    EXPECT_DOUBLE_EQ(zoomed[2], 1.25);
    EXPECT_DOUBLE_EQ(zoomed[0] + 200 / 1.25, 200) << "what is under the mouse stays there";
    screen.Button(window, 200, 50, 3, true);
    screen.Button(window, 200, 50, 3, false);
    ASSERT_TRUE(eventually([&] { return !seen.Of(VL_EVENT_MOUSE_UP).empty(); }));
    EXPECT_EQ(seen.Of(VL_EVENT_MOUSE_DOWN)[0].button, VL_BUTTON_RIGHT);
    screen.Key(window, XK_q, true);
    screen.Key(window, XK_F5, true);
    ASSERT_TRUE(eventually([&] { return seen.Of(VL_EVENT_KEY_DOWN).size() == 2; }));
    EXPECT_EQ(seen.Of(VL_EVENT_KEY_DOWN)[0].key, 'q');
    EXPECT_EQ(seen.Of(VL_EVENT_KEY_DOWN)[1].key, VL_KEY_F1 + 4);

    screen.AskToClose(window);
    ASSERT_TRUE(eventually([&] { return !seen.Of(VL_EVENT_CLOSED).empty(); }));
    EXPECT_EQ(view.Option(VL_VIEW_VISIBLE), 0);
    view.Show(10, 10, {1, 1, 1});  // hidden, not gone
    view.Set(VL_VIEW_VISIBLE, 1);
    EXPECT_TRUE(eventually([&] { return screen.Pixel(300, 200) == std::array{1, 1, 1}; }));

    OpenView other("other", 600, 100, 50, 50);
    seen.close_at_key = other;
    ASSERT_EQ(vlSetViewWindowCallback(other, remember, &seen), VL_ST_SUCCESS);
    ASSERT_TRUE(eventually([&] { return screen.Find("other") != None; }));
    screen.Key(screen.Find("other"), XK_x, true);
    EXPECT_TRUE(eventually([&] { return screen.Find("other") == None; })) << "closed from inside its own callback";
}

TEST(Views, ServeManyThreadsAtOnce) {
    const VirtualScreen screen;
    const OpenView shared("shared", 0, 0, 100, 100);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 8; ++i) {
                const OpenView mine("mine", 100 * t, 200, 64, 48);
                for (int frame = 0; frame < 5; ++frame) {
                    mine.Show(64, 48, {9, 9, 9});
                    shared.Show(50, 50, {static_cast<std::uint8_t>(t), 2, 3});
                }
                EXPECT_EQ(mine.Captured(5, 5), (Bytes{9, 9, 9}));
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(shared.Captured(50, 50)[2], 3);
    EXPECT_GE(shared.Option(VL_VIEW_DRAWN), 1);
}

}  // namespace
}  // namespace kiv::vl::test
