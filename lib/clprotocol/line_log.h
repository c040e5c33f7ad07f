/// What the log hears of Camera Link, in the category CLProtocol. Ask log_wanted() before a line is put together.
#pragma once

#include <kiv/log/log.h>

#include <string_view>

namespace CLProtocol {

using kiv::log::Level;

inline bool log_wanted(Level level) { return kiv::log::wanted(kiv::log::Category::cl_protocol, level); }
inline void log_line(Level level, std::string_view text) { kiv::log::write(kiv::log::Category::cl_protocol, level, text); }

}  // namespace CLProtocol
