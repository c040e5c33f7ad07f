// A long run with faults at random: at the end every frame is accounted for, and no memory has gone.
#include <cinttypes>
#include <cstdio>
#include <random>
#include <thread>

#include "stub_session.h"

namespace kiv::bench {

namespace {

constexpr std::uint32_t seed = 20261121;
constexpr std::uint32_t buffer_size = 4096;

/// What the faults that were played should have come to.
struct Expected {
    std::uint64_t skipped = 0, incomplete = 0, requeue_failures = 0, missing_ids = 0;
};

struct Script {
    std::minstd_rand random{seed};
    Expected expected;
    std::uint64_t layout = 7;
    std::uint64_t last_layout = 0;  // that the consumer was told

    bool OneIn(unsigned chances) { return random() % chances == 0; }

    void Play(StubFrame& frame) {
        readable = true;
        if (OneIn(500)) {
            const GenTL::GC_ERROR faults[] = {GenTL::GC_ERR_ABORT, GenTL::GC_ERR_IO, GenTL::GC_ERR_TIMEOUT, GenTL::GC_ERR_ERROR};
            frame.event = faults[random() % 4];
            return;
        }
        if (OneIn(700)) {
            frame.without_buffer = true;
            ++expected.skipped;
            ++without_buffer;
            return;
        }
        if (OneIn(100)) frame.queue = GenTL::GC_ERR_BUSY, ++expected.requeue_failures;
        if (OneIn(60)) {
            BreakDescription(frame);
            ++expected.skipped;
            return;
        }
        if (OneIn(80)) {
            auto gap = random() % 5 + 1;
            frame.id += gap;
            expected.missing_ids += gap;
        }
        if (OneIn(50)) frame.incomplete = true, ++expected.incomplete;
        if (OneIn(40)) ++layout;
        frame.layout = layout;
        BreakChunks(frame);
        if (!(frame.refused >> GenTL::BUFFER_INFO_CHUNKLAYOUTID & 1)) last_layout = frame.layout;
    }

    void BreakDescription(StubFrame& frame) {
        switch (random() % 6) {
            case 0:
                frame.refused = 1u << GenTL::BUFFER_INFO_BASE;
                break;
            case 1:
                frame.refused = 1u << GenTL::BUFFER_INFO_SIZE;
                break;
            case 2:
                frame.refused = 1u << GenTL::BUFFER_INFO_WIDTH;
                break;
            case 3:
                frame.refused = 1u << GenTL::BUFFER_INFO_HEIGHT;
                break;
            case 4:
                frame.size_surplus = std::size_t{1} << (random() % 40);
                break;
            default:
                frame.base_offset = -1 - static_cast<std::ptrdiff_t>(random() % 100000);
                break;
        }
        if (frame.base_offset) frame.size_surplus = 1u << 30;  // wherever it points, it is not within one buffer
    }

    void BreakChunks(StubFrame& frame) {
        if (!OneIn(30)) return;
        const auto fault = random() % 5;
        // Two layouts of number 0 in a row are no new ones; the stub does not tell whether chunks are there.
        readable = fault == 4 && last_layout != 0;
        switch (fault) {
            case 0:
                frame.refused |= 1u << GenTL::BUFFER_INFO_CHUNKLAYOUTID;
                break;
            case 1:
                frame.chunks = GenTL::GC_ERR_NO_DATA;
                break;
            case 2:
                frame.chunk_offset = buffer_size - 10;
                break;
            case 3:
                frame.chunk_offset = -1;
                break;
            default:
                frame.layout = 0;
                break;
        }
        if (frame.layout != 0) frame.layout = ++layout;
    }

    std::uint64_t without_buffer = 0;
    bool readable = true;  // the chunks of the frame that is on its way
};

Script* playing = nullptr;

std::uint64_t resident_kilobytes() {
    std::uint64_t pages = 0;
    if (auto* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*u %" SCNu64, &pages) != 1) pages = 0;
        std::fclose(file);
    }
    return pages * 4;
}

bool agrees(const char* what, std::uint64_t expected, std::uint64_t seen) {
    std::printf("  %-18s %12" PRIu64 "%s\n", what, seen, expected == seen ? "" : "   WRONG");
    if (expected != seen) std::printf("  %-18s %12" PRIu64 " were to be expected\n", "", expected);
    return expected == seen;
}

}  // namespace

int soak(std::uint64_t frames) {
    StubSession session;
    auto& control = session.Control();
    Script script;
    playing = &script;
    control.script = [](StubFrame& frame) { playing->Play(frame); };
    control.delivered = 0;
    control.frames = frames;

    std::atomic<std::uint64_t> seen{0}, looks{0}, wrong_looks{0};
    std::atomic<std::uint64_t> sum{0};
    const double began = wall_time();
    K_STREAM_STATISTICS at_the_end{};
    std::uint64_t warm = 0;
    {
        OpenStream stream(session.Camera(), buffer_size, [&](const K_IMAGE_INFO& image) {
            ++seen;
            auto* bytes = static_cast<const unsigned char*>(image.image_data);
            sum += bytes[0] + bytes[image.image_size - 1];
            std::int64_t counter = 0;
            if (seen % 16 != 0 && script.readable) return;
            ++looks;
            bool read = K_Camera_GetValueInt64(session.Camera(), "ChunkCounter", &counter) == K_ST_SUCCESS;
            if (read != script.readable) ++wrong_looks;
        });
        auto left = [&] { return control.frames.load(); };
        while (left() > frames - frames / 10) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        warm = resident_kilobytes();
        while (left() > 0) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        // The last one is counted when it is given back.
        auto taken = [&] {
            return at_the_end = stream.Statistics(), at_the_end.delivered + at_the_end.skipped + at_the_end.discarded;
        };
        for (int i = 0; i < 2000 && taken() < control.delivered; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const double seconds = wall_time() - began;
    control.script = nullptr;

    std::printf("soak: %" PRIu64 " frames in %.1f s, seed %" PRIu32 "\n", frames, seconds, seed);
    bool good = agrees("delivered", seen, at_the_end.delivered);
    good &= agrees("skipped", script.expected.skipped, at_the_end.skipped);
    good &= agrees("accounted for", control.delivered + script.without_buffer,
                   at_the_end.delivered + at_the_end.skipped + at_the_end.discarded);
    good &= agrees("incomplete", script.expected.incomplete, at_the_end.incomplete);
    good &= agrees("requeue failures", script.expected.requeue_failures, at_the_end.requeue_failures);
    good &= agrees("missing ids", script.expected.missing_ids, at_the_end.missing_ids);
    std::printf("  chunk features were looked at %" PRIu64 " times\n", looks.load());
    good &= agrees("wrong chunk looks", 0, wrong_looks);
    const auto resident = resident_kilobytes();
    std::printf("  resident %" PRIu64 " KiB after a tenth, %" PRIu64 " KiB at the end\n", warm, resident);
    if (resident > warm + 1024) good = false, std::printf("  memory has GROWN\n");
    return good ? 0 : 1;
}

}  // namespace kiv::bench
