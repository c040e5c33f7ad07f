/// Properties without the appenders that write to the debugger output, which log4cpp has on one system only: they are taken out
/// of the text and attached by us, so that one configuration means the same everywhere.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiv::log {

struct DebugAppender {
    std::string name;
    std::string pattern;                  ///< of its PatternLayout; empty: a basic layout
    std::vector<std::string> categories;  ///< that list it; "" is the root
};

struct SplitProperties {
    std::string rest;  ///< for log4cpp
    std::vector<DebugAppender> debug_appenders;
    std::vector<std::string> appenders;  ///< names of those of the rest
    std::vector<std::string> files;      ///< that they write to
};

SplitProperties split_properties(std::string_view properties);

}  // namespace kiv::log
