// Pixel formats of a camera that numbers and spells some of them in its own way.
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class PixelFormats : public ScriptedFactory {
protected:
    void SetUp() override {
        std::string text = scripted::camera_description;
        const std::string mono16 = R"(<EnumEntry Name="Mono16" NameSpace="Standard"><Value>0x01100007</Value></EnumEntry>)";
        auto at = text.find(mono16);
        ASSERT_NE(std::string::npos, at);
        text.replace(at, mono16.size(),
                     R"(<EnumEntry Name="GVSP_PIX_MONO12_PACKED"><Value>0x11</Value></EnumEntry>)"
                     R"(<EnumEntry Name="Secret"><Value>0x10</Value></EnumEntry>)");
        producer->FirstDevice().remote.Describe("Formats.xml", text);
    }
};

TEST_F(PixelFormats, AreTranslatedBothWays) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    std::uint64_t code = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_PixelFormat(camera, 0x11, &code)) << "the table fills when it is first needed";
    EXPECT_EQ(0x810C0006u, code);
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_TranslatePixelFormats(camera));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_Compatible_PixelFormat(camera, 0x11, &code));
    EXPECT_EQ(0x010C0006u, code);
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_Remote_PixelFormat(camera, 0x810C0006, &code));
    EXPECT_EQ(0x11u, code);
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_PixelFormat(camera, 0x10, &code));
    EXPECT_EQ(0x10u, code) << "nobody knows it: it keeps its code";
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_PixelFormatFromName(camera, "RGB8Packed", &code));
    EXPECT_EQ(0x02180014u, code);
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_RemotePixelFormatFromName(camera, "Secret", &code));
    EXPECT_EQ(0x10u, code);

    char name[64] = "";
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_PixelFormatName(camera, 0x01080009, name, sizeof name));
    EXPECT_STREQ("BayerRG8", name);
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_Remote_PixelFormatName(camera, 0x11, name, 31));
    EXPECT_STREQ("EnumEntry_PixelFormat_GVSP_PIX", name) << "a name with underscores keeps its prefix; cut and terminated";
    EXPECT_STATUS(K_ST_NO_DATA, K_Image_Get_PixelFormatFromName(camera, "Secret", &code));
    EXPECT_STATUS(K_ST_NO_DATA, K_Image_Get_PixelFormatName(camera, 0x12, name, sizeof name));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_Get_PixelFormatName(camera, ~std::uint64_t{0}, name, sizeof name));
}

TEST_F(PixelFormats, CheckTheirArgumentsAndNeedAFactory) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    std::uint64_t code = 0;
    char name[64] = "kept";
    struct {
        const char* what;
        K_STATUS_CODES null_camera, null_result;
    } rows[] = {
        {"Get_PixelFormat", K_Image_Get_PixelFormat(nullptr, 0x11, nullptr), K_Image_Get_PixelFormat(camera, 0x11, nullptr)},
        {"Get_Remote", K_Image_Get_Remote_PixelFormat(nullptr, 1, nullptr), K_Image_Get_Remote_PixelFormat(camera, 1, nullptr)},
        {"Compatible", K_Image_Get_Compatible_PixelFormat(nullptr, 1, nullptr),
         K_Image_Get_Compatible_PixelFormat(camera, 1, nullptr)},
        {"Name", K_Image_Get_PixelFormatName(nullptr, 1, nullptr, 0), K_Image_Get_PixelFormatName(camera, 1, nullptr, 0)},
        {"RemoteName", K_Image_Get_Remote_PixelFormatName(nullptr, 1, nullptr, 0),
         K_Image_Get_Remote_PixelFormatName(camera, 1, nullptr, 0)},
        {"FromName", K_Image_Get_PixelFormatFromName(nullptr, nullptr, nullptr),
         K_Image_Get_PixelFormatFromName(camera, "Mono8", nullptr)},
        {"RemoteFromName", K_Image_Get_RemotePixelFormatFromName(nullptr, nullptr, nullptr),
         K_Image_Get_RemotePixelFormatFromName(camera, "Mono8", nullptr)},
    };
    for (auto& row : rows) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, row.null_camera) << row.what;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, row.null_result) << row.what;
    }
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Image_Get_PixelFormatFromName(camera, nullptr, &code));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Image_Get_RemotePixelFormatFromName(camera, nullptr, &code));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_TranslatePixelFormats(nullptr));

    auto stale = camera;
    CloseCamera();
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_Get_PixelFormat(stale, 0x11, &code));
    CloseFactory();
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_PixelFormat(stale, 0x11, &code)) << "without a factory nothing is asked";
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_Get_PixelFormatName(nullptr, 1, name, sizeof name));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_TranslatePixelFormats(nullptr));
    EXPECT_EQ(0u, code);
    EXPECT_STREQ("kept", name);
}

}  // namespace
}  // namespace kiv_test
