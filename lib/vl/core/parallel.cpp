#include "core/parallel.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <opencv2/core/utility.hpp>

namespace kiv::vl {
namespace {

// Below this a thread costs more than it brings.
constexpr std::uint64_t least_pixels = 256 * 1024;

}  // namespace

void in_parallel(std::uint32_t lines, std::uint64_t pixels, const std::function<void(std::uint32_t, std::uint32_t)>& work) {
    const int threads = pixels < least_pixels ? 1 : cv::getNumThreads();
    if (threads <= 1) return work(0, lines);
    std::mutex lock;
    std::exception_ptr failure;
    // Even runs: the lines of a colour filter go in pairs.
    const std::uint32_t run = std::max<std::uint32_t>((lines / static_cast<std::uint32_t>(threads) + 1) / 2 * 2, 2);
    const int runs = static_cast<int>((lines + run - 1) / run);
    cv::parallel_for_(cv::Range(0, runs), [&](const cv::Range& range) {
        for (int i = range.start; i < range.end; ++i) {
            try {
                const std::uint32_t first = static_cast<std::uint32_t>(i) * run;
                work(first, std::min(first + run, lines));
            } catch (...) {
                const std::lock_guard hold(lock);
                if (!failure) failure = std::current_exception();
            }
        }
    });
    if (failure) std::rethrow_exception(failure);
}

void enable_parallel(bool enable) { cv::setNumThreads(enable ? -1 : 1); }

}  // namespace kiv::vl
