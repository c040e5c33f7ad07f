// The imaging library on images of 5 megapixels, one thread, beside what the same machine does at the same time without it: a
// memcpy of the same output, or bare OpenCV.
#include <VL.h>
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <stdexcept>
#include <vector>

#include "files/png_file.h"
#include "files/tiff_file.h"
#include "format/pixel_format.h"
#include "unpack/unpack.h"

namespace {

constexpr std::uint32_t width = 2448;
constexpr std::uint32_t height = 2048;
constexpr std::size_t pixels = std::size_t{width} * height;

constexpr std::uint32_t mono8 = 0x01080001;
constexpr std::uint32_t mono12p = 0x010C0047;
constexpr std::uint32_t mono12packed = 0x010C0006;
constexpr std::uint32_t mono10p = 0x010A0046;
constexpr std::uint32_t bayer_rg8 = 0x01080009;
constexpr std::uint32_t bayer_rg12p = 0x010C0059;

std::vector<std::uint8_t> noise(std::size_t size) {
    std::mt19937_64 random(1);
    std::vector<std::uint8_t> bytes(size);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

std::vector<std::uint8_t> raw_noise(std::uint32_t code) { return noise(pixels * kiv::vl::pixel_format(code).BitsPerPixel() / 8); }

void count_pixels(benchmark::State& state) {
    state.counters["Mpx/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * pixels / 1e6, benchmark::Counter::kIsRate);
}

struct FreeImage {
    void operator()(VL_IMAGE* image) const { vlFree(image); }
};
using Image = std::unique_ptr<VL_IMAGE, FreeImage>;

/// The memory of all results: who is compared writes to the same place.
std::vector<std::uint8_t>& result_memory() {
    static std::vector<std::uint8_t> memory(pixels * 6);
    return memory;
}

Image make_image(std::uint64_t type) {
    auto& memory = result_memory();
    VL_IMAGE_HANDLE handle = nullptr;
    if (vlMallocEx(width, height, type, memory.data(), memory.size(), &handle) != VL_ST_SUCCESS)
        throw std::runtime_error(vlGetLastErrorText());
    return Image(handle);
}

/// The same eight-bit source for who is compared.
std::vector<std::uint8_t>& eight_bit_noise() {
    static std::vector<std::uint8_t> bytes = noise(pixels);
    return bytes;
}

void memcpy_of_16_bit_output(benchmark::State& state) {
    const std::vector<std::uint16_t> from(pixels, 1);
    std::vector<std::uint16_t> to(pixels);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), pixels * sizeof(std::uint16_t));
        benchmark::ClobberMemory();
    }
    count_pixels(state);
}

void unpack(benchmark::State& state, std::uint32_t code, bool scalar) {
    const auto& format = kiv::vl::pixel_format(code);
    const auto raw = raw_noise(code);
    std::vector<std::uint16_t> values(pixels);
    for (auto _ : state) {
        (scalar ? kiv::vl::unpack_scalar : kiv::vl::unpack)(format, raw.data(), 0, pixels, values.data());
        benchmark::ClobberMemory();
    }
    count_pixels(state);
}

void convert(benchmark::State& state, std::uint32_t code, std::uint64_t type) {
    const bool is_eight_bit = kiv::vl::pixel_format(code).BitsPerPixel() == 8;
    auto other = is_eight_bit ? std::vector<std::uint8_t>() : raw_noise(code);
    auto& raw = is_eight_bit ? eight_bit_noise() : other;
    K_IMAGE_INFO record{};
    record.pixel_type = code;
    record.width = width;
    record.height = height;
    record.image_size = static_cast<std::uint32_t>(raw.size());
    record.image_data = raw.data();
    const Image image = make_image(type);
    for (auto _ : state)
        if (vlFromRAWtoImage(&record, image.get(), VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE) != VL_ST_SUCCESS)
            state.SkipWithError(vlGetLastErrorText());
    count_pixels(state);
}

/// With a choice of demosaicing and the gains of a white balance, as a program shows a camera's pictures.
void convert_with(benchmark::State& state, std::uint32_t code, VL_DEMOSAIC demosaic, std::uint32_t gain_red,
                  std::uint32_t gain_blue) {
    auto raw = raw_noise(code);
    K_IMAGE_INFO record{};
    record.pixel_type = code;
    record.width = width;
    record.height = height;
    record.image_size = static_cast<std::uint32_t>(raw.size());
    record.image_data = raw.data();
    const Image image = make_image(VL_IMAGE_BGR8);
    for (auto _ : state)
        if (vlFromRAWtoImageEx(&record, image.get(), demosaic, gain_red, VL_GAIN_ONE, gain_blue, 0, nullptr) != VL_ST_SUCCESS)
            state.SkipWithError(vlGetLastErrorText());
    count_pixels(state);
}

void bare_opencv(benchmark::State& state, int code) {
    const cv::Mat source(height, width, CV_8UC1, eight_bit_noise().data());
    cv::Mat target(height, width, CV_8UC3, result_memory().data());
    for (auto _ : state) cv::cvtColor(source, target, code);
    count_pixels(state);
}

// What a program does that unpacks the whole image before it demosaics the whole image.
void unpack_then_demosaic(benchmark::State& state) {
    const auto& format = kiv::vl::pixel_format(bayer_rg12p);
    const auto raw = raw_noise(bayer_rg12p);
    cv::Mat values(height, width, CV_16UC1);
    cv::Mat bytes(height, width, CV_8UC1);
    cv::Mat target(height, width, CV_8UC3);
    for (auto _ : state) {
        kiv::vl::unpack(format, raw.data(), 0, pixels, values.ptr<std::uint16_t>());
        values.convertTo(bytes, CV_8U, 1.0 / 16.0);
        cv::cvtColor(bytes, target, cv::COLOR_BayerBG2BGR);
    }
    count_pixels(state);
}

// A slope with some noise, as a camera sees a wall: pure noise would not compress at all.
void encode(benchmark::State& state, kiv::vl::EncodedFile (*encoder)(const kiv::vl::Image&, int), std::uint64_t type,
            int compression) {
    kiv::vl::Image image(width, height, type);
    std::mt19937 random(1);
    for (std::uint32_t y = 0; y < height; ++y) {
        std::uint8_t* line = image.Line(y);
        for (std::size_t i = 0; i < image.LineBytes(); ++i)
            line[i] = static_cast<std::uint8_t>(i * 200 / image.LineBytes() + random() % 4);
    }
    std::size_t bytes = 0;
    for (auto _ : state) bytes = encoder(image, compression).size();
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
    count_pixels(state);
}

BENCHMARK(memcpy_of_16_bit_output);
BENCHMARK_CAPTURE(unpack, mono12p, mono12p, false);
BENCHMARK_CAPTURE(unpack, mono12packed, mono12packed, false);
BENCHMARK_CAPTURE(unpack, mono10p, mono10p, false);
BENCHMARK_CAPTURE(unpack, mono12p_scalar, mono12p, true);
BENCHMARK_CAPTURE(bare_opencv, mono8_to_bgr8, cv::COLOR_GRAY2BGR);
BENCHMARK_CAPTURE(convert, mono8_to_bgr8, mono8, VL_IMAGE_BGR8);
BENCHMARK_CAPTURE(bare_opencv, bayer_rg8_to_bgr8, cv::COLOR_BayerBG2BGR);
BENCHMARK_CAPTURE(convert, bayer_rg8_to_bgr8, bayer_rg8, VL_IMAGE_BGR8);
BENCHMARK(unpack_then_demosaic);
BENCHMARK_CAPTURE(convert, bayer_rg12p_to_bgr8, bayer_rg12p, VL_IMAGE_BGR8);
BENCHMARK_CAPTURE(convert_with, bayer_rg8_to_bgr8_gains, bayer_rg8, VL_DEMOSAIC_BILINEAR, 6000, 7000);
BENCHMARK_CAPTURE(convert_with, bayer_rg8_to_bgr8_edge_aware, bayer_rg8, VL_DEMOSAIC_EDGE_AWARE, VL_GAIN_ONE, VL_GAIN_ONE);
BENCHMARK_CAPTURE(convert_with, bayer_rg8_to_bgr8_best, bayer_rg8, VL_DEMOSAIC_BEST, VL_GAIN_ONE, VL_GAIN_ONE);
BENCHMARK_CAPTURE(convert, bayer_rg12p_to_bgr16, bayer_rg12p, VL_IMAGE_BGR16);
BENCHMARK_CAPTURE(convert, mono12p_to_mono16, mono12p, VL_IMAGE_MONO16);
BENCHMARK_CAPTURE(encode, png_mono8_fast, kiv::vl::encode_png, VL_IMAGE_MONO8, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, png_mono8_small, kiv::vl::encode_png, VL_IMAGE_MONO8, 9)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, png_bgr8_fast, kiv::vl::encode_png, VL_IMAGE_BGR8, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, tiff_bgr8, kiv::vl::encode_tiff, VL_IMAGE_BGR8, 0)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);  // also what vlEnableParallelProcessing(0) does
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
