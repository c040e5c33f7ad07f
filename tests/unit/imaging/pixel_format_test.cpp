// Pixel formats by name: the catalogue's rows, what the words of other spellings add up to, and one camera's tables.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "imaging/pixel_format_catalogue.h"
#include "imaging/pixel_format_tables.h"
#include "imaging/pixel_format_words.h"

namespace kiv {
namespace {

TEST(PixelFormatCatalogue, IsWholeAndFoundByExactNameOnly) {
    std::set<std::string_view> names;
    std::set<std::uint32_t> codes;
    for (auto& row : pixel_format_catalogue()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        codes.insert(row.code);
        EXPECT_EQ(row.code, catalogue_code(row.name)) << row.name;
    }
    EXPECT_EQ(97u, names.size());
    EXPECT_EQ(79u, codes.size());
    EXPECT_EQ(0x01080002u, catalogue_code("Mono8Signed"));
    EXPECT_EQ(0x01080002u, catalogue_code("Mono8s"));
    EXPECT_EQ(0x02180014u, catalogue_code("RGB8"));
    EXPECT_EQ(0x020C0040u, catalogue_code("YUV420PNV12Packed"));
    for (auto* name : {"", "mono8", "Mono", "Mono8 ", "Zzz"}) EXPECT_EQ(std::nullopt, catalogue_code(name)) << name;
    EXPECT_EQ("RGB8Packed", catalogue_name(0x02180014));
    EXPECT_EQ("", catalogue_name(0x81080001));
}

// Spellings of GigE Vision, of older SFNC versions and of makers, with the code that the standards give to them.
TEST(PixelFormatWords, FindEverySpellingOfAListedLayout) {
    const struct {
        const char* name;
        std::uint32_t code;
    } spellings[] = {{"GVSP_PIX_MONO8", 0x81080001},
                     {"GVSP_PIX_MONO8S", 0x81080002},
                     {"GVSP_PIX_MONO8_SIGNED", 0x81080002},
                     {"GVSP_PIX_MONO10", 0x81100003},
                     {"GVSP_PIX_MONO10_PACKED", 0x810C0004},
                     {"GVSP_PIX_MONO12_PACKED", 0x810C0006},
                     {"GVSP_PIX_MONO14", 0x81100025},
                     {"GVSP_PIX_MONO16", 0x81100007},
                     {"MONO10P", 0x010A0046},
                     {"mono12p", 0x010C0047},
                     {"Mono8_HighSpeed", 0x81080001},
                     {"GVSP_PIX_BAYGR8", 0x81080008},
                     {"GVSP_PIX_BAYBG8", 0x8108000B},
                     {"GVSP_PIX_BAYRG10", 0x8110000D},
                     {"GVSP_PIX_BAYGB12", 0x81100012},
                     {"GVSP_PIX_BAYRG16", 0x8110002F},
                     {"BAYERBG16", 0x81100031},
                     {"GVSP_PIX_BAYGR10_PACKED", 0x810C0026},
                     {"GVSP_PIX_BAYBG12_PACKED", 0x810C002D},
                     {"GVSP_PIX_RGB8_PACKED", 0x82180014},
                     {"GVSP_PIX_BGR8", 0x82180015},
                     {"RGBA8Packed", 0x82200016},
                     {"BGRA8Packed", 0x82200017},
                     {"GVSP_PIX_RGB10_PACKED", 0x82300018},
                     {"GVSP_PIX_BGR10_PACKED", 0x82300019},
                     {"GVSP_PIX_RGB12", 0x8230001A},
                     {"GVSP_PIX_BGR12", 0x8230001B},
                     {"GVSP_PIX_RGB16_PACKED", 0x82300033},
                     {"GVSP_PIX_RGB8_PLANAR", 0x82180021},
                     {"GVSP_PIX_RGB10_PLANAR", 0x82300022},
                     {"GVSP_PIX_RGB12_PLANAR", 0x82300023},
                     {"GVSP_PIX_RGB16_PLANAR", 0x82300024},
                     {"BGR10V1Packed", 0x8220001C},
                     {"GVSP_PIX_RGB10V1_PACKED", 0x8220001C},
                     {"GVSP_PIX_RGB10P32", 0x8220001D},
                     {"GVSP_PIX_BGR10V2_PACKED", 0x8220001D},
                     {"GVSP_PIX_RGB12V1_PACKED", 0x82240034},
                     {"GVSP_PIX_YUV411_PACKED", 0x820C001E},
                     {"GVSP_PIX_YUV411_8_UYYVYY", 0x820C001E},
                     {"GVSP_PIX_YUV422_PACKED", 0x8210001F},
                     {"GVSP_PIX_YUV422_8_UYVY", 0x8210001F},
                     {"GVSP_PIX_YUV422_YUYV_PACKED", 0x82100032},
                     {"GVSP_PIX_YUV422_8", 0x82100032},
                     {"GVSP_PIX_YUV444_PACKED", 0x82180020},
                     {"GVSP_PIX_YUV8_UYV", 0x82180020},
                     {"YUV420P_NV12_Packed", 0x820C0040}};
    for (auto& spelling : spellings) EXPECT_EQ(spelling.code, code_by_words(spelling.name)) << spelling.name;
    // Taken for the unpacked format, as callers know it.
    EXPECT_EQ(0x81100025u, code_by_words("Mono14p"));
}

TEST(PixelFormatWords, FindNoneInANameOfAnotherLayout) {
    for (auto* name : {"",
                       "Mono1p",
                       "Mono2p",
                       "Mono4p",
                       "Mono32",
                       "Mono10pmsb",
                       "Mono12pmsb",
                       "Mono8float",
                       "BayerRG4p",
                       "BayerRG10p",
                       "BayerRG14",
                       "BayerRG14p",
                       "BayerRG10pmsb",
                       "BayerRG8a32",
                       "BayerXX8",
                       "RGB8a32",
                       "BGR8a32",
                       "RGB10p",
                       "BGR12p",
                       "RGB14",
                       "BGR14",
                       "BGR16",
                       "RGB565p",
                       "RGBa10",
                       "RGBa12p",
                       "BiColorRGBG8",
                       "BiColorBGRG8",
                       "YCbCr422_8",
                       "YCbCr8_CbYCr",
                       "YUV420_8",
                       "YUV444_10",
                       "YUV422_10",
                       "Coord3D_C16",
                       "Confidence8",
                       "R8",
                       "Data16",
                       "SCF1WBWG8",
                       "RGB16_Planar_4",
                       "Bayer",
                       "RGB",
                       "YUV",
                       "BAY"})
        EXPECT_EQ(std::nullopt, code_by_words(name)) << name;
}

TEST(PixelFormatTables, TranslateBothWaysAndSayWhatIsMissing) {
    PixelFormatTables tables;
    std::uint64_t code = 0;
    std::string name;
    EXPECT_EQ(K_ST_INVALID_HANDLE, tables.LocalName(1, name)) << "past the end of an empty table";
    for (auto& [remote, entry] :
         std::initializer_list<std::pair<std::uint64_t, const char*>>{{20, "EnumEntry_PixelFormat_BayerRG12p"},
                                                                      {10, "Mono8"},
                                                                      {30, "GVSP_PIX_MONO8"},
                                                                      {40, "Secret_"},
                                                                      {15, "Mono8"},
                                                                      {0x81080001, "Vendor8"}})
        tables.Insert(translate_pixel_format(remote, entry));

    EXPECT_EQ(K_ST_SUCCESS, tables.LocalCode(20, code));
    EXPECT_EQ(0x010C0059u, code);
    EXPECT_EQ(K_ST_SUCCESS, tables.LocalCode(0x010C0059, code)) << "local already";
    EXPECT_EQ(0x010C0059u, code);
    EXPECT_EQ(K_ST_SUCCESS, tables.LocalCode(40, code));
    EXPECT_EQ(40u, code) << "an unknown format keeps its code";
    EXPECT_EQ(K_ST_INVALID_HANDLE, tables.LocalCode(11, code));

    EXPECT_EQ(K_ST_SUCCESS, tables.RemoteCode(0x01080001, code));
    EXPECT_EQ(10u, code) << "the smallest of those that share it";
    EXPECT_EQ(K_ST_NO_DATA, tables.RemoteCode(0x01080002, code));
    EXPECT_EQ(K_ST_INVALID_HANDLE, tables.RemoteCode(0xFFFFFFFF, code));

    EXPECT_EQ(K_ST_SUCCESS, tables.LocalName(30, name));
    EXPECT_EQ("Mono8", name);
    EXPECT_EQ(K_ST_SUCCESS, tables.LocalName(40, name));
    EXPECT_EQ("", name);
    EXPECT_EQ(K_ST_SUCCESS, tables.RemoteName(20, name));
    EXPECT_EQ("BayerRG12p", name) << "without the enumeration's prefix";
    EXPECT_EQ(K_ST_SUCCESS, tables.RemoteName(0x010C0059, name));
    EXPECT_EQ("BayerRG12p", name);
    EXPECT_EQ(K_ST_SUCCESS, tables.RemoteName(40, name));
    EXPECT_EQ("Secret_", name);

    EXPECT_EQ(K_ST_SUCCESS, tables.CompatibleCode(30, code));
    EXPECT_EQ(0x01080001u, code) << "without the mark";
    EXPECT_EQ(K_ST_NO_DATA, tables.CompatibleCode(40, code));
    EXPECT_EQ(K_ST_SUCCESS, tables.RemoteCodeOf("Vendor8", code));
    EXPECT_EQ(0x81080001u, code);
    EXPECT_EQ(K_ST_NO_DATA, tables.RemoteCodeOf("Mono16", code));

    tables.Insert(translate_pixel_format(40, "Mono16"));
    EXPECT_EQ(K_ST_SUCCESS, tables.LocalCode(40, code));
    EXPECT_EQ(0x01100007u, code) << "an entry of the same code is replaced";
}

}  // namespace
}  // namespace kiv
