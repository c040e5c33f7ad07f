// Gains and white balance of an image stream, and the imaging library under this library's names.
#include "api/image_stream_fixture.h"

namespace kiv_test {
namespace {

class ImageDisplayTest : public ImageStream {
protected:
    K_STATUS_CODES OpenWithoutContext() {
        return K_Image_OpenStream(camera, 0, nullptr, reinterpret_cast<AnyFunction>(on_image), &stream, buffer_size, 0);
    }
    /// A colour filter image of one colour.
    static scripted::Frame Coloured(std::uint64_t id, char red, char green, char blue) {
        auto frame = image_frame(id, 64, 48, 0x01080009);
        for (std::size_t y = 0; y < 48; ++y)
            for (std::size_t x = 0; x < 64; ++x) frame.data[y * 64 + x] = y % 2 ? (x % 2 ? blue : green) : (x % 2 ? green : red);
        return frame;
    }
    std::vector<std::uint32_t> Gains() {
        std::vector<std::uint32_t> gains(3);
        EXPECT_STATUS(K_ST_SUCCESS, K_Image_GetGain(stream, &gains[0], &gains[1], &gains[2]));
        return gains;
    }
};

using ::testing::ElementsAre;

TEST_F(ImageDisplayTest, BalancesWhiteOnTheNextImage) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenWithoutContext());
    EXPECT_THAT(Gains(), ElementsAre(4096, 4096, 4096));
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_SetGain(stream, 1, 5000, 3));
    Deliver(Coloured(1, 50, 100, 25));
    images.Next();
    EXPECT_THAT(Gains(), ElementsAre(1, 5000, 3)) << "nobody asked";
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_ExecuteWhiteBalance(stream));
    Deliver(Coloured(2, 50, 100, 25));
    images.Next();
    EXPECT_THAT(Gains(), ElementsAre(8192, 5000, 16384)) << "green stays as it was set";
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_ExecuteWhiteBalance(stream));
    Deliver(Coloured(3, 0, 100, 25));
    images.Next();
    EXPECT_THAT(Gains(), ElementsAre(8192, 5000, 16384)) << "an image without red says nothing";
    Deliver(Coloured(4, 100, 100, 100));
    images.Next();
    EXPECT_THAT(Gains(), ElementsAre(8192, 5000, 16384)) << "the wish is used up";
}

TEST_F(ImageDisplayTest, LeavesCallbacksWithAContextAlone) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_ExecuteWhiteBalance(stream));
    Deliver(Coloured(1, 50, 100, 25));
    images.Next();
    EXPECT_THAT(Gains(), ElementsAre(4096, 4096, 4096));
}

TEST_F(ImageDisplayTest, ChecksHandlesAndResults) {
    std::uint32_t gain = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_SetGain(nullptr, 1, 1, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_GetGain(nullptr, nullptr, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_ExecuteWhiteBalance(nullptr));
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Image_GetGain(stream, &gain, nullptr, &gain));
    EXPECT_EQ(0u, gain);
}

TEST(ImagingLibrary, IsReachedThroughThisLibrary) {
    for (std::int32_t enable : {0, 1, 7}) EXPECT_STATUS(K_ST_SUCCESS, K_Image_EnableParallelProcessing(enable));
    VL_IMAGE_HANDLE image = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_MallocEx(8, 4, VL_IMAGE_BGR8, nullptr, 0, &image));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_SetPixel(image, 7, 3, 65535, 0, 257));
    std::uint16_t red = 0, green = 1, blue = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_GetPixel(image, 7, 3, &red, &green, &blue));
    EXPECT_EQ(65535, red);
    EXPECT_EQ(0, green);
    EXPECT_EQ(257, blue);
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Free(image));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_Free(image)) << "its own answer comes back";
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_CloseViewWindow(nullptr));
}

}  // namespace
}  // namespace kiv_test
