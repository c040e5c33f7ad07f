#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "text.h"

namespace {

constexpr std::size_t kBarWidth = 24;

std::string bar(uint64_t done, uint64_t wanted) {
    const std::size_t filled = std::min(kBarWidth, static_cast<std::size_t>(done * kBarWidth / wanted));
    return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " + std::to_string(done) + "/" +
           std::to_string(wanted);
}

}  // namespace

Progress::Progress(uint64_t wanted) : wanted_(wanted), on_terminal_(isatty(fileno(stderr)) != 0) {}

Progress::~Progress() {
    if (shown_ != 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(shown_), "");
}

void Progress::Show(const Reception& state, std::size_t queued, std::size_t capacity) {
    if (!on_terminal_) return;
    const std::string head = wanted_ != 0 ? bar(state.frames, wanted_) : counted(state.frames, "frame");
    const std::string line = head + "  " + fixed_number(frame_rate(state), 1) + " fps  " +
                             fixed_number(megabytes_per_second(state), 1) + " MB/s  missing " + std::to_string(state.missing) +
                             "  queue " + std::to_string(queued) + "/" + std::to_string(capacity);
    // Blanks overwrite what a longer line left behind.
    std::fprintf(stderr, "\r%s", padded(line, shown_).c_str());
    std::fflush(stderr);
    shown_ = std::max(shown_, line.size());
}

double frame_rate(const Reception& state) {
    if (state.frames < 2 || !state.first || !state.last) return 0;
    const double seconds = std::chrono::duration<double>(*state.last - *state.first).count();
    return seconds > 0 ? static_cast<double>(state.frames - 1) / seconds : 0;
}

double megabytes_per_second(const Reception& state) {
    return state.frames == 0 ? 0 : frame_rate(state) * static_cast<double>(state.bytes) / static_cast<double>(state.frames) / 1e6;
}
