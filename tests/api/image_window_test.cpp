// Which view window a stream without a callback shows its images in, and how: looked at on a screen of the test's own.
#include <kiv/imaging.h>

#include "api/image_stream_fixture.h"
#include "support/x_display.h"

// SDL leaves what libdbus keeps for the process: other users of libdbus in it may need it.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { return "leak:libdbus-1.so"; }

namespace kiv_test {
namespace {

using Colour = std::array<int, 3>;

constexpr std::uint32_t width = 160, height = 120;
constexpr Colour background{0x20, 0x20, 0x20};

class ImageWindowTest : public ImageStream {
protected:
    VL_VIEW_HANDLE OpenWindow(const char* title, int x) const {
        VL_VIEW_HANDLE view = nullptr;
        EXPECT_STATUS(K_ST_SUCCESS, K_Image_OpenViewWindowEx(title, x, 0, width, height, nullptr, nullptr, &view));
        EXPECT_TRUE(Becomes(x, background)) << title;
        return view;
    }
    void OpenStreamWithoutCallback() {
        ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, nullptr, nullptr, &stream, buffer_size, 0));
    }
    /// A colour filter image of one colour.
    void DeliverColour(std::uint64_t id, char red, char green, char blue) {
        auto frame = image_frame(id, 64, 48, 0x01080009);
        for (std::size_t y = 0; y < 48; ++y)
            for (std::size_t x = 0; x < 64; ++x) frame.data[y * 64 + x] = y % 2 ? (x % 2 ? blue : green) : (x % 2 ? green : red);
        Deliver(frame);
    }
    /// Whether the whole window at this place has this colour, or gets it within half a minute.
    bool Becomes(int left, Colour colour) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!Is(left, colour)) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            std::this_thread::yield();
        }
        return true;
    }
    bool Is(int left, Colour colour) const {
        for (int y = 1; y < static_cast<int>(height); y += 29)
            for (int x = 1; x < static_cast<int>(width); x += 39)
                if (screen.Pixel(left + x, y) != colour) return false;
        return true;
    }

    const VirtualScreen screen;
};

TEST_F(ImageWindowTest, IsTheOneThatWasOpenedLast) {
    constexpr int first_at = 0, second_at = 200, third_at = 400;
    const VL_VIEW_HANDLE first = OpenWindow("first", first_at);
    const VL_VIEW_HANDLE second = OpenWindow("second", second_at);
    OpenStreamWithoutCallback();
    DeliverColour(1, 50, 100, 25);
    EXPECT_TRUE(Becomes(second_at, {50, 100, 25}));
    EXPECT_TRUE(Is(first_at, background));

    ASSERT_STATUS(K_ST_SUCCESS, K_Image_SetGain(stream, 8192, 2048, 4096));
    DeliverColour(2, 50, 100, 25);
    EXPECT_TRUE(Becomes(second_at, {100, 50, 25}));
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_SetGain(stream, 4096, 4096, 4096));
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_ExecuteWhiteBalance(stream));
    DeliverColour(3, 50, 100, 25);
    EXPECT_TRUE(Becomes(second_at, {100, 100, 100}));

    // A closed window stays the last one: nobody shows the images, the stream goes on.
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_CloseViewWindow(second));
    producer->ForgetCalls();
    DeliverColour(4, 10, 10, 10);
    EXPECT_TRUE(WaitForRequeue(1));
    EXPECT_TRUE(Is(first_at, background));
    const VL_VIEW_HANDLE third = OpenWindow("third", third_at);
    DeliverColour(5, 60, 70, 80);
    EXPECT_TRUE(Becomes(third_at, {120, 70, 255})) << "with the gains of the white balance";
    CloseStream();
    for (const VL_VIEW_HANDLE view : {first, third}) EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseViewWindow(view));
}

}  // namespace
}  // namespace kiv_test
