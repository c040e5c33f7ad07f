#include "sensor.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace kivsim {
namespace {

constexpr double kFullWell = 10000;          // electrons that give the largest number without gain
constexpr double kNominalExposureUs = 5000;  // a white surface then nearly fills a pixel
constexpr double kWhite = 0.95;
constexpr double kReadNoise = 6;  // electrons
constexpr double kFilter[3] = {0.65, 1.0, 0.75};
constexpr double kVignetting = 0.30;  // in the corners
constexpr double kFactoryBlack = 32;
constexpr uint32_t kNoiseLength = 49152;  // longer than any row; rows begin at a random place in it

}  // namespace

Sensor::Sensor(uint32_t seed) : seed_(seed), noise_(kNoiseLength) {
    std::mt19937 random(seed);
    // made by hand: normal_distribution gives other numbers with other libraries
    for (size_t i = 0; i + 1 < noise_.size(); i += 2) {
        const double u = (static_cast<double>(random()) + 1) / 4294967297.0,
                     angle = static_cast<double>(random()) * 1.4629180792671596e-9;
        const double radius = std::sqrt(-2 * std::log(u));
        noise_[i] = static_cast<float>(radius * std::cos(angle));
        noise_[i + 1] = static_cast<float>(radius * std::sin(angle));
    }
}

void Sensor::Begin(const ImageSettings& settings, Scene& scene, uint64_t frame) {
    settings_ = &settings;
    scene_ = &scene;
    frame_ = frame;
    const bool recorded = scene.Recorded();
    channels_ = settings.color ? 3 : 1;
    binned_ = settings.binning_x * settings.binning_y;
    const double averaged = (settings.sum_x ? 1 : settings.binning_x) * (settings.sum_y ? 1 : settings.binning_y);
    black_ = static_cast<float>(settings.black_level - (recorded ? kFactoryBlack : 0));
    read_noise2_ = static_cast<float>(kReadNoise * kReadNoise * binned_);

    const double exposure = settings.exposure_us / kNominalExposureUs * (recorded ? 1 : settings.light);
    const double electrons = kFullWell / 65535.0 * exposure * (recorded ? 1 : kWhite);
    const double numbers = kFullScale / kFullWell / averaged;
    auto factor_of = [&](size_t c) { return electrons * (settings.color && !recorded ? kFilter[c] : 1); };
    auto gain_of = [&](size_t c) { return numbers * settings.gain[c] / (recorded ? settings.nominal[c] : 1); };

    const bool mosaic = settings.format->samples == Samples::Bayer;
    for (size_t k = 0; k < 3; ++k) {
        line_[k].resize(settings.sensor_width);
        light_[k].resize(settings.width);
        developed_[k].resize(settings.width);
        factor_[k].resize(settings.width);
        gain_[k].resize(settings.width);
        for (uint32_t x = 0; x < settings.width; ++x) {
            const size_t channel = mosaic ? std::min<size_t>(k, 1) + (x & 1) : k;
            factor_[k][x] = static_cast<float>(factor_of(channel));
            gain_[k][x] = static_cast<float>(gain_of(channel));
        }
    }
    mixed_.resize(settings.width);

    shade_x_.assign(settings.width, 0.0F);
    if (!settings.vignetting || recorded) return;
    const double half_x = settings.sensor_width / 2.0, half_y = settings.sensor_height / 2.0;
    for (uint32_t x = 0; x < settings.width; ++x) {
        const double column = (settings.offset_x + x + 0.5) * settings.binning_x - half_x;
        shade_x_[x] = static_cast<float>(kVignetting * column * column / (half_x * half_x + half_y * half_y));
    }
}

// the light of all pixels of the sensor that make up a row of the image
void Sensor::Collect(uint32_t y, unsigned channels) {
    const auto& s = *settings_;
    const uint32_t rows = s.sensor_height / s.binning_y & ~1U, columns = s.sensor_width / s.binning_x & ~3U;
    const uint32_t row = s.reverse_y ? rows - 1 - (s.offset_y + y) : s.offset_y + y;
    const uint32_t column = s.reverse_x ? columns - s.offset_x - s.width : s.offset_x;
    Scene::Rows lines{};
    for (size_t c = 0; c < 3; ++c)
        if (channels >> c & 1) lines[c] = line_[c].data();
    for (uint32_t sub = 0; sub < s.binning_y; ++sub) {
        scene_->Row(row * s.binning_y + sub, column * s.binning_x, s.width * s.binning_x, lines);
        for (size_t c = 0; c < 3; ++c) {
            if (!lines[c]) continue;
            float* light = light_[c].data();
            if (binned_ == 1) {
                const uint16_t* line = lines[c];
                for (uint32_t x = 0; x < s.width; ++x) light[x] = line[x];
                continue;
            }
            if (sub == 0) std::fill_n(light, s.width, 0.0F);
            for (uint32_t x = 0, in = 0; x < s.width; ++x)
                for (uint32_t k = 0; k < s.binning_x; ++k, ++in) light[x] += lines[c][in];
        }
    }
    if (!s.reverse_x) return;
    for (size_t c = 0; c < 3; ++c)
        if (lines[c]) std::reverse(light_[c].begin(), light_[c].end());
}

void Sensor::Develop(uint32_t y, unsigned stream, const float* light, const float* factor, const float* gain, uint16_t* out) {
    const auto& s = *settings_;
    const bool recorded = scene_->Recorded();
    float shade = 1;
    if (s.vignetting && !recorded) {
        const double half_x = s.sensor_width / 2.0, half_y = s.sensor_height / 2.0;
        const double row = (s.offset_y + y + 0.5) * s.binning_y - half_y;
        shade = static_cast<float>(1 - kVignetting * row * row / (half_x * half_x + half_y * half_y));
    }
    const float* loss = shade_x_.data();
    const float black = black_ + 0.5F, top = kFullScale;
    const uint32_t width = s.width;
    if (!s.noise || recorded) {
        for (uint32_t x = 0; x < width; ++x) {
            const float number = black + light[x] * (shade - loss[x]) * factor[x] * gain[x];
            const float low = number < 0 ? 0 : number;
            out[x] = static_cast<uint16_t>(static_cast<int>(low > top ? top : low));
        }
        return;
    }
    const uint32_t place = hash32(static_cast<uint32_t>(frame_) * 4 + stream, hash32(y, seed_)) % (kNoiseLength - width);
    const float* noise = noise_.data() + place;
    const float read_noise2 = read_noise2_;
    for (uint32_t x = 0; x < width; ++x) {
        const float electrons = light[x] * (shade - loss[x]) * factor[x];
        const float number = black + (electrons + std::sqrt(electrons + read_noise2) * noise[x]) * gain[x];
        const float low = number < 0 ? 0 : number;
        out[x] = static_cast<uint16_t>(static_cast<int>(low > top ? top : low));
    }
}

// a colour filter before each pixel: R G in even rows, G B in odd ones
void Sensor::Mosaic(uint32_t y, std::vector<uint16_t>& samples) {
    const uint32_t parity = y & 1, width = settings_->width;
    Collect(y, parity == 0 ? 0b011 : 0b110);
    const float *even = light_[parity].data(), *odd = light_[parity + 1].data();
    float* mixed = mixed_.data();
    for (uint32_t x = 0; x < width; x += 2) {
        mixed[x] = even[x];
        mixed[x + 1] = odd[x + 1];
    }
    samples.resize(width);
    Develop(y, 0, mixed, factor_[parity].data(), gain_[parity].data(), samples.data());
}

void Sensor::Full(uint32_t y, std::vector<uint16_t>& samples) {
    const uint32_t width = settings_->width;
    Collect(y, 0b111);
    for (unsigned c = 0; c < 3; ++c) Develop(y, c, light_[c].data(), factor_[c].data(), gain_[c].data(), developed_[c].data());
    const uint16_t *r = developed_[0].data(), *g = developed_[1].data(), *b = developed_[2].data();
    if (settings_->format->samples == Samples::Mono) {
        samples.resize(width);
        for (uint32_t x = 0; x < width; ++x) samples[x] = static_cast<uint16_t>((77U * r[x] + 150U * g[x] + 29U * b[x]) >> 8);
        return;
    }
    samples.resize(size_t{width} * 3);
    for (uint32_t x = 0; x < width; ++x) {
        samples[3 * x] = r[x];
        samples[3 * x + 1] = g[x];
        samples[3 * x + 2] = b[x];
    }
}

void Sensor::Row(uint32_t y, std::vector<uint16_t>& samples) {
    if (settings_->format->samples == Samples::Bayer) return Mosaic(y, samples);
    if (channels_ == 3) return Full(y, samples);
    Collect(y, 0b001);
    samples.resize(settings_->width);
    Develop(y, 0, light_[0].data(), factor_[0].data(), gain_[0].data(), samples.data());
}

}  // namespace kivsim
