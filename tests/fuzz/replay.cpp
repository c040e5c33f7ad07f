// Runs a fuzz target where there is no fuzzer: over its seeds, their beginnings, and each with one byte changed, for some
// seconds.
//
//     <program> <folder of seeds>

#include <algorithm>
#include <bit>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_target.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Clock = std::chrono::steady_clock;

// In memory of exactly its size, so that reading past the end is seen.
void run(const Bytes& bytes) {
    const Bytes exact(bytes);
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

// Beginnings and changes take turns, from the front to the back in ever smaller steps, until the time is over: what a slow target
// leaves out of a large seed lies between what it has seen. The number of places that it got to.
size_t run_around(const Bytes& seed, Clock::time_point end) {
    std::vector<bool> done(seed.size());
    size_t places = 0;
    for (size_t step = std::max<size_t>(1, std::bit_ceil(seed.size()) / 2); step > 0; step /= 2) {
        for (size_t i = 0; i < seed.size(); i += step) {
            if (done[i]) continue;
            done[i] = true;
            if (Clock::now() > end) return places;
            ++places;
            run(Bytes(seed.begin(), seed.begin() + static_cast<ptrdiff_t>(i)));
            auto changed = seed;
            for (const int other : {0x00, 0x01, 0x7F, 0x80, 0xFF, seed[i] ^ 0x10}) {
                changed[i] = static_cast<uint8_t>(other);
                run(changed);
            }
        }
    }
    return places;
}

}  // namespace

int main(int argc, char** argv) {
    constexpr auto longest = std::chrono::seconds(10);
    std::vector<Bytes> seeds;
    for (const auto& entry : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
        std::ifstream file(entry.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    for (const auto& seed : seeds) run(seed);
    const auto start = Clock::now();
    size_t places = 0;
    for (size_t i = 0; i < seeds.size(); ++i) places += run_around(seeds[i], start + longest * (i + 1) / seeds.size());
    std::printf("%zu seeds, changed at %zu places\n", seeds.size(), places);
    return seeds.empty() ? 1 : 0;
}
