// Vector versions of the packings that cameras use at full rate. A shuffle brings the two bytes that hold a component
// together in one 16-bit lane, a few shifts put the value in place. Chosen at run time by what the processor can do.
#include "unpack/unpack.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

#define KIV_AVX2 __attribute__((target("avx2")))

namespace kiv::vl {
namespace {

// 16 components at a time from two 16-byte loads, one for each half of the register.
constexpr std::size_t step = 16;

KIV_AVX2 inline __m256i load_halves(const std::uint8_t* data, std::size_t half_bytes) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + half_bytes));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

KIV_AVX2 inline __m256i both_halves(char a0, char a1, char b0, char b1, char c0, char c1, char d0, char d1, char e0, char e1,
                                    char f0, char f1, char g0, char g1, char h0, char h1) {
    return _mm256_broadcastsi128_si256(_mm_setr_epi8(a0, a1, b0, b1, c0, c1, d0, d1, e0, e1, f0, f1, g0, g1, h0, h1));
}

// Lanes 0, 2, 4 ... take the first two bytes of a group of three (upper one first where `swapped`), lanes 1, 3, 5 ... the last
// two.
template <bool swapped>
KIV_AVX2 inline __m256i pair_lanes() {
    return swapped ? both_halves(1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11)
                   : both_halves(0, 1, 1, 2, 3, 4, 4, 5, 6, 7, 7, 8, 9, 10, 10, 11);
}

struct Stream12 {
    static constexpr int bits = 12;
    static constexpr std::size_t half_bytes = 12;
    KIV_AVX2 static __m256i Lanes() { return pair_lanes<false>(); }
    KIV_AVX2 static __m256i Values(__m256i words) {
        return _mm256_blend_epi16(_mm256_and_si256(words, _mm256_set1_epi16(0x0FFF)), _mm256_srli_epi16(words, 4), 0xAA);
    }
};

struct Pairs12 {
    static constexpr int bits = 12;
    static constexpr std::size_t half_bytes = 12;
    KIV_AVX2 static __m256i Lanes() { return pair_lanes<true>(); }
    KIV_AVX2 static __m256i Values(__m256i words) {
        const __m256i shifted = _mm256_srli_epi16(words, 4);
        const __m256i first = _mm256_or_si256(_mm256_and_si256(shifted, _mm256_set1_epi16(0x0FF0)),
                                              _mm256_and_si256(words, _mm256_set1_epi16(0x000F)));
        return _mm256_blend_epi16(first, shifted, 0xAA);
    }
};

struct Pairs10 {
    static constexpr int bits = 10;
    static constexpr std::size_t half_bytes = 12;
    KIV_AVX2 static __m256i Lanes() { return pair_lanes<true>(); }
    KIV_AVX2 static __m256i Values(__m256i words) {
        const __m256i high = _mm256_and_si256(_mm256_srli_epi16(words, 6), _mm256_set1_epi16(0x03FC));
        const __m256i low = _mm256_blend_epi16(words, _mm256_srli_epi16(words, 4), 0xAA);
        return _mm256_or_si256(high, _mm256_and_si256(low, _mm256_set1_epi16(3)));
    }
};

// There is no shift by a different count for each 16-bit lane: a multiplication brings all values to the top instead.
struct Stream10 {
    static constexpr int bits = 10;
    static constexpr std::size_t half_bytes = 10;
    KIV_AVX2 static __m256i Lanes() { return both_halves(0, 1, 1, 2, 2, 3, 3, 4, 5, 6, 6, 7, 7, 8, 8, 9); }
    KIV_AVX2 static __m256i Values(__m256i words) {
        const __m256i factors = _mm256_set1_epi64x(0x0001'0004'0010'0040);
        return _mm256_srli_epi16(_mm256_mullo_epi16(words, factors), 6);
    }
};

KIV_AVX2 inline void store(std::uint16_t* out, __m256i values, int) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), values);
}

KIV_AVX2 inline void store(std::uint8_t* out, __m256i values, int surplus_bits) {
    const __m256i upper = _mm256_srl_epi16(values, _mm_cvtsi32_si128(surplus_bits));
    const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(upper), _mm256_extracti128_si256(upper, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
}

template <class Kind, class Value>
KIV_AVX2 std::size_t unpack_avx2(const std::uint8_t* data, std::size_t count, Value* out) {
    // The second load reads 16 bytes of which fewer are used: stop while all of them belong to the run.
    constexpr std::size_t needed = (Kind::half_bytes + 16) * step / (2 * Kind::half_bytes) + 1;
    const __m256i lanes = Kind::Lanes();
    std::size_t done = 0;
    for (; done + needed <= count; done += step) {
        const __m256i words = _mm256_shuffle_epi8(load_halves(data, Kind::half_bytes), lanes);
        store(out + done, Kind::Values(words), Kind::bits - 8);
        data += 2 * Kind::half_bytes;
    }
    return done;
}

struct FastRow {
    Packing packing;
    unsigned bits;
    FastUnpackers run;
};

template <class Kind>
constexpr FastUnpackers both = {unpack_avx2<Kind, std::uint16_t>, unpack_avx2<Kind, std::uint8_t>};

constexpr FastRow rows[] = {
    {Packing::BitStream, 12, both<Stream12>},
    {Packing::Packed12, 12, both<Pairs12>},
    {Packing::BitStream, 10, both<Stream10>},
    {Packing::Packed10, 10, both<Pairs10>},
};

}  // namespace

FastUnpackers fast_unpackers(Packing packing, unsigned bits) noexcept {
    static const bool available = __builtin_cpu_supports("avx2");
    if (!available) return {};
    for (const auto& row : rows)
        if (row.packing == packing && row.bits == bits) return row.run;
    return {};
}

}  // namespace kiv::vl

#else

namespace kiv::vl {

FastUnpackers fast_unpackers(Packing, unsigned) noexcept { return {}; }

}  // namespace kiv::vl

#endif
