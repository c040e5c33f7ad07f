/// A picture of a grab: interval and latencies of its frames over time.
#pragma once

#include <string>

#include "grab_statistics.h"

struct PlotSize {
    int width = 1280;
    int height = 860;
};

/// Replaces the PNG file. A ToolError names the file when it cannot be written.
void write_plot(const GrabStatistics& statistics, const std::string& title, PlotSize size, const std::string& file);
