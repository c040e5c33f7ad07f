// 32 pixels at a time. A register of 32 bytes is seen as 16 words: the even pixels of each line stand in the low bytes, the odd
// ones in the high bytes, so that every sum of four has room, and a mask or a shift picks the pixels of one colour.
#include "convert/bayer_lines.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

#define KIV_AVX2 __attribute__((target("avx2")))

namespace kiv::vl {
namespace {

constexpr std::size_t step = 32;

KIV_AVX2 inline __m256i load(const std::uint8_t* from) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)); }
KIV_AVX2 inline __m256i low(__m256i bytes) { return _mm256_and_si256(bytes, _mm256_set1_epi16(0x00FF)); }
KIV_AVX2 inline __m256i high(__m256i bytes) { return _mm256_srli_epi16(bytes, 8); }

KIV_AVX2 inline __m256i mean_of_four(__m256i sum_of_two, __m256i sum_of_other_two) {
    const __m256i sum = _mm256_add_epi16(sum_of_two, sum_of_other_two);
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(2)), 2);
}

/// The value of the even bytes from one register, of the odd ones from the words of another.
KIV_AVX2 inline __m256i even_odd(__m256i even_words, __m256i odd_words) {
    return _mm256_or_si256(even_words, _mm256_slli_epi16(odd_words, 8));
}

KIV_AVX2 inline __m256i pattern(__m128i lane) { return _mm256_broadcastsi128_si256(lane); }

/// 32 pixels from three registers of one colour each.
KIV_AVX2 inline void store_pixels(__m256i first, __m256i second, __m256i third, std::uint8_t* to) {
    // In each half every third byte of the result comes from each colour; one shuffle puts all 16 values of a colour at their
    // places within three times 16 bytes, of which each output takes its third by blending.
    const __m256i a = _mm256_shuffle_epi8(first, pattern(_mm_setr_epi8(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5)));
    const __m256i b = _mm256_shuffle_epi8(second, pattern(_mm_setr_epi8(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10)));
    const __m256i c = _mm256_shuffle_epi8(third, pattern(_mm_setr_epi8(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15)));
    const __m256i at_0 = pattern(_mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1));
    const __m256i at_1 = pattern(_mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0));
    const __m256i p0 = _mm256_blendv_epi8(_mm256_blendv_epi8(c, b, at_1), a, at_0);
    const __m256i p1 = _mm256_blendv_epi8(_mm256_blendv_epi8(a, c, at_1), b, at_0);
    const __m256i p2 = _mm256_blendv_epi8(_mm256_blendv_epi8(b, a, at_1), c, at_0);
    auto* out = reinterpret_cast<__m256i*>(to);
    _mm256_storeu_si256(out, _mm256_permute2x128_si256(p0, p1, 0x20));
    _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(p2, p0, 0x30));
    _mm256_storeu_si256(out + 2, _mm256_permute2x128_si256(p1, p2, 0x31));
}

/// green_even: the first of the pixels that are done here is a green one.
template <bool green_even, bool red>
KIV_AVX2 std::size_t run(const std::uint8_t* above, const std::uint8_t* line, const std::uint8_t* below, std::size_t width,
                         std::uint8_t* bgr) {
    std::size_t x = 1;
    for (; x + step + 1 <= width; x += step) {
        const __m256i up = load(above + x);
        const __m256i mid = load(line + x);
        const __m256i down = load(below + x);
        const __m256i mid_left = load(line + x - 1);
        const __m256i mid_right = load(line + x + 1);
        const __m256i sides = _mm256_avg_epu8(mid_left, mid_right);
        const __m256i heights = _mm256_avg_epu8(up, down);

        const __m256i left_up = load(above + x - 1);
        const __m256i right_up = load(above + x + 1);
        const __m256i left_down = load(below + x - 1);
        const __m256i right_down = load(below + x + 1);

        __m256i green;
        __m256i other;
        const __m256i evens = _mm256_set1_epi16(0x00FF);
        if constexpr (green_even) {
            const __m256i cross =
                mean_of_four(_mm256_add_epi16(high(up), high(down)), _mm256_add_epi16(high(mid_left), high(mid_right)));
            const __m256i corners = mean_of_four(_mm256_add_epi16(high(left_up), high(right_up)),
                                                 _mm256_add_epi16(high(left_down), high(right_down)));
            green = even_odd(low(mid), cross);
            other = even_odd(low(heights), corners);
        } else {
            const __m256i cross =
                mean_of_four(_mm256_add_epi16(low(up), low(down)), _mm256_add_epi16(low(mid_left), low(mid_right)));
            const __m256i corners =
                mean_of_four(_mm256_add_epi16(low(left_up), low(right_up)), _mm256_add_epi16(low(left_down), low(right_down)));
            green = _mm256_blendv_epi8(mid, cross, evens);
            other = _mm256_blendv_epi8(heights, corners, evens);
        }
        const __m256i own = green_even ? _mm256_blendv_epi8(mid, sides, evens) : _mm256_blendv_epi8(sides, mid, evens);
        store_pixels(red ? other : own, green, red ? own : other, bgr + 3 * x);
    }
    return x - 1;
}

std::size_t demosaic_avx2(const std::uint8_t* above, const std::uint8_t* line, const std::uint8_t* below, std::size_t width,
                          BayerLine kind, std::uint8_t* bgr) {
    // The second pixel of the line comes first here.
    const bool green_even = !kind.green_first;
    if (kind.red)
        return green_even ? run<true, true>(above, line, below, width, bgr) : run<false, true>(above, line, below, width, bgr);
    return green_even ? run<true, false>(above, line, below, width, bgr) : run<false, false>(above, line, below, width, bgr);
}

}  // namespace

FastBayerLine fast_bayer_line() noexcept {
    static const bool available = __builtin_cpu_supports("avx2");
    return available ? demosaic_avx2 : nullptr;
}

}  // namespace kiv::vl

#else

namespace kiv::vl {

FastBayerLine fast_bayer_line() noexcept { return nullptr; }

}  // namespace kiv::vl

#endif
