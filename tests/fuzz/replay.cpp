// Runs a fuzz target where there is no fuzzer: over its seeds, all their beginnings, and each with one byte changed.
//
//     <program> <folder of seeds>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_target.h"

namespace {

using Bytes = std::vector<uint8_t>;

// In memory of exactly its size, so that reading past the end is seen.
void run(const Bytes& bytes) {
    const Bytes exact(bytes);
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

// Of a large seed only every so many bytes: a test has a few seconds.
void run_around(Bytes seed) {
    constexpr size_t mostPlaces = 400;
    const size_t step = 1 + seed.size() / mostPlaces;
    for (size_t length = 0; length < seed.size(); length += step)
        run(Bytes(seed.begin(), seed.begin() + static_cast<ptrdiff_t>(length)));
    run(seed);
    for (size_t i = 0; i < seed.size(); i += step) {
        uint8_t& byte = seed[i];
        const uint8_t original = byte;
        for (uint8_t other : {0x00, 0x01, 0x7F, 0x80, 0xFF, static_cast<int>(original ^ 0x10)}) {
            byte = other;
            run(seed);
        }
        byte = original;
    }
}

}  // namespace

int main(int argc, char** argv) {
    int seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
        std::ifstream file(entry.path(), std::ios::binary);
        run_around(Bytes(std::istreambuf_iterator<char>(file), {}));
        ++seeds;
    }
    std::printf("%d seeds\n", seeds);
    return seeds > 0 ? 0 : 1;
}
