/// A line on the terminal that tells how far a grab is. Silent where there is no terminal.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame_receiver.h"

class Progress {
public:
    /// `wanted` 0: no end is known, only counts are shown.
    explicit Progress(uint64_t wanted);
    /// Clears the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(const Reception& state, std::size_t queued, std::size_t capacity);

private:
    const uint64_t wanted_;
    const bool on_terminal_;
    std::size_t shown_ = 0;
};

/// Images per second between the first and the last; 0 while there are less than two.
double frame_rate(const Reception& state);
/// Millions of bytes of image data per second, over the same time.
double megabytes_per_second(const Reception& state);
