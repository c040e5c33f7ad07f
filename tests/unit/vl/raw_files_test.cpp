#include <VL.h>
#include <gmock/gmock.h>

#include "scratch.h"

namespace kiv::vl::test {
namespace {

using testing::HasSubstr;

K_IMAGE_INFO sample(Bytes& data) {
    auto raw = record(0x010C0059, 4, 2, data);  // BayerRG12p: 6 bytes a line
    raw.padding_x = 2;
    raw.offset_x = 16;
    raw.offset_y = 8;
    raw.frame_id = 0x1122334455667788;
    raw.timestamp = 0x99AABBCCDDEEFF01;
    return raw;
}

Bytes sample_data() { return {1, 2, 3, 4, 5, 6, 0xEE, 0xEE, 7, 8, 9, 10, 11, 12, 0xEE, 0xEE, 0xEE}; }

TEST(RawFiles, AreLaidOutAsDocumented) {
    const ScratchFolder folder;
    Bytes data = sample_data();
    const auto raw = sample(data);
    const std::string path = folder / "image.raw";
    ASSERT_EQ(vlStoreToFileRAWA(&raw, path.c_str()), VL_ST_SUCCESS) << vlGetLastErrorText();
    const Bytes wanted = {
        0x89, 'K',  'I',  'V',  'R',  '\r', '\n', 0x1A, 1,    0,    0,    0,    80,   0,    0,    0,     // magic, version, header
        0x59, 0x00, 0x0C, 0x01, 0,    0,    0,    0,    4,    0,    0,    0,    2,    0,    0,    0,     // format, width, height
        2,    0,    0,    0,    0,    0,    0,    0,    16,   0,    0,    0,    8,    0,    0,    0,     // padding, -, offsets
        14,   0,    0,    0,    0,    0,    0,    0,    0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11,  // size, frame
        0x01, 0xFF, 0xEE, 0xDD, 0xCC, 0xBB, 0xAA, 0x99, 0,    0,    0,    0,    0,    0,    0,    0,     // time, -
        1,    2,    3,    4,    5,    6,    0xEE, 0xEE, 7,    8,    9,    10,   11,   12};
    EXPECT_EQ(file_bytes(path), wanted);
}

TEST(RawFiles, ComeBackAsTheyWere) {
    const ScratchFolder folder;
    Bytes data = sample_data();
    const auto raw = sample(data);
    const std::string path = folder / "image.raw";
    ASSERT_EQ(vlStoreToFileRAWA(&raw, path.c_str()), VL_ST_SUCCESS) << vlGetLastErrorText();

    K_IMAGE_INFO loaded{};
    ASSERT_EQ(vlLoadFromFileRAWA(path.c_str(), &loaded), VL_ST_SUCCESS) << vlGetLastErrorText();
    ASSERT_EQ(loaded.image_size, 14u);
    EXPECT_EQ(loaded.image_data, nullptr);
    Bytes buffer(loaded.image_size);
    loaded.image_data = buffer.data();
    ASSERT_EQ(vlLoadFromFileRAWA(path.c_str(), &loaded), VL_ST_SUCCESS) << vlGetLastErrorText();
    EXPECT_EQ(buffer, Bytes(data.begin(), data.begin() + 14));
    EXPECT_EQ(loaded.image_data, buffer.data());
    EXPECT_EQ(loaded.pixel_type, raw.pixel_type);
    EXPECT_EQ(loaded.padding_x, raw.padding_x);
    EXPECT_EQ(loaded.frame_id, raw.frame_id);
    EXPECT_EQ(loaded.timestamp, raw.timestamp);
    EXPECT_EQ(loaded.offset_x, raw.offset_x);
    EXPECT_EQ(loaded.offset_y, raw.offset_y);

    OwnedImage before, after;
    ASSERT_EQ(vlImageFromRaw(&raw, before.Out()), VL_ST_SUCCESS);
    ASSERT_EQ(vlImageFromRaw(&loaded, after.Out()), VL_ST_SUCCESS);
    EXPECT_EQ(before.Data(), after.Data());
}

TEST(RawFiles, KeepTheWholeBufferOfAnUnknownFormat) {
    const ScratchFolder folder;
    Bytes data = sample_data();
    auto raw = record(0x80FF0001, 1000, 1000, data);
    const std::string path = folder / "vendor.raw";
    ASSERT_EQ(vlStoreToFileRAWW(&raw, std::filesystem::path(path).wstring().c_str()), VL_ST_SUCCESS) << vlGetLastErrorText();
    Bytes buffer(data.size());
    auto loaded = record(0, 0, 0, buffer);
    ASSERT_EQ(vlLoadFromFileRAWW(std::filesystem::path(path).wstring().c_str(), &loaded), VL_ST_SUCCESS) << vlGetLastErrorText();
    EXPECT_EQ(buffer, data);
    EXPECT_EQ(loaded.pixel_type, 0x80FF0001u);
}

TEST(RawFiles, RefuseABufferThatIsTooSmallAndChangeNothing) {
    const ScratchFolder folder;
    Bytes data = sample_data();
    auto raw = sample(data);
    const std::string path = folder / "image.raw";
    ASSERT_EQ(vlStoreToFileRAWA(&raw, path.c_str()), VL_ST_SUCCESS) << vlGetLastErrorText();
    Bytes buffer(13, 0x55);
    auto loaded = record(1, 2, 3, buffer);
    EXPECT_EQ(vlLoadFromFileRAWA(path.c_str(), &loaded), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(buffer, Bytes(13, 0x55));
    EXPECT_EQ(loaded.pixel_type, 1u);
    EXPECT_EQ(loaded.image_size, 13u);

    raw.image_size = 13;  // and what claims more than its buffer holds is not stored at all
    EXPECT_EQ(vlStoreToFileRAWA(&raw, (folder / "short.raw").c_str()), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(folder.Entries(), 1u);
}

TEST(RawFiles, ThatAreDamagedAreRefused) {
    const ScratchFolder folder;
    Bytes data = sample_data();
    const auto raw = sample(data);
    const std::string path = folder / "image.raw";
    ASSERT_EQ(vlStoreToFileRAWA(&raw, path.c_str()), VL_ST_SUCCESS) << vlGetLastErrorText();
    const Bytes good = file_bytes(path);
    Bytes buffer(100);
    auto status_of = [&](const Bytes& bytes) {
        write_file(path, bytes);
        auto loaded = record(0, 0, 0, buffer);
        return vlLoadFromFileRAWA(path.c_str(), &loaded);
    };
    for (std::size_t length = 0; length < good.size(); ++length)
        ASSERT_EQ(status_of(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))), VL_ST_INVALID_DATA)
            << length;
    const struct {
        std::size_t at;
        std::uint8_t value;
    } damages[] = {{0, 'x'}, {5, '\n'}, {8, 2}, {12, 79}, {15, 0x80}, {48, 15}, {52, 1}, {55, 0xFF}};
    for (const auto& [at, value] : damages) {
        Bytes bytes = good;
        bytes[at] = value;
        EXPECT_EQ(status_of(bytes), VL_ST_INVALID_DATA) << "byte " << at;
    }
    EXPECT_THAT(vlGetLastErrorText(), HasSubstr("image.raw"));

    Bytes longer_header = good;  // of a later writer: what this reader does not know is skipped
    longer_header[12] = 84;
    longer_header.insert(longer_header.begin() + 80, 4, 0x77);
    EXPECT_EQ(status_of(longer_header), VL_ST_SUCCESS);
    EXPECT_EQ(buffer[0], 1);

    auto loaded = record(0, 0, 0, buffer);
    EXPECT_EQ(vlLoadFromFileRAWA((folder / "missing.raw").c_str(), &loaded), VL_ST_IO);
    EXPECT_NE(vlLoadFromFileRAWA((folder / "").c_str(), &loaded), VL_ST_SUCCESS);
}

}  // namespace
}  // namespace kiv::vl::test
