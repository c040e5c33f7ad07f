/// What the tests of the exported functions share: an image that frees itself, a folder that removes itself.
#pragma once

#include <VL.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace kiv::vl::test {

using Bytes = std::vector<std::uint8_t>;

class OwnedImage {
public:
    OwnedImage() = default;
    OwnedImage(std::uint32_t width, std::uint32_t height, std::uint64_t type) {
        EXPECT_EQ(vlMallocEx(width, height, type, nullptr, 0, &handle_), VL_ST_SUCCESS);
    }
    ~OwnedImage() {
        if (handle_ != nullptr) vlFree(handle_);
    }
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;

    operator VL_IMAGE_HANDLE() const { return handle_; }
    VL_IMAGE_HANDLE* Out() { return &handle_; }
    K_IMAGE_INFO Info() const {
        K_IMAGE_INFO info{};
        EXPECT_EQ(vlGetImageInfo(handle_, &info), VL_ST_SUCCESS);
        return info;
    }
    Bytes Data() const {
        const auto info = Info();
        const auto* first = static_cast<const std::uint8_t*>(info.image_data);
        return {first, first + info.image_size};
    }
    void Fill(const Bytes& bytes) {
        const auto info = Info();
        ASSERT_EQ(info.image_size, bytes.size());
        std::memcpy(info.image_data, bytes.data(), bytes.size());
    }

private:
    VL_IMAGE_HANDLE handle_ = nullptr;
};

inline K_IMAGE_INFO record(std::uint64_t code, std::uint32_t width, std::uint32_t height, Bytes& data) {
    K_IMAGE_INFO raw{};
    raw.pixel_type = code;
    raw.width = width;
    raw.height = height;
    raw.image_size = static_cast<std::uint32_t>(data.size());
    raw.image_data = data.data();
    return raw;
}

class ScratchFolder {
public:
    ScratchFolder() {
        static std::random_device random;
        do path_ = std::filesystem::temp_directory_path() / ("vl_test_" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    ~ScratchFolder() { std::filesystem::remove_all(path_); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Names and paths are UTF-8.
    std::string operator/(const std::string& name) const {
        const auto whole = (path_ / std::u8string(name.begin(), name.end())).u8string();
        return {whole.begin(), whole.end()};
    }
    std::size_t Entries() const {
        const std::filesystem::directory_iterator all(path_);
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

private:
    std::filesystem::path path_;
};

inline Bytes file_bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void write_file(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace kiv::vl::test
