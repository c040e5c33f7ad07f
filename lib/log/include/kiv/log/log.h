/// The logging of the GenICam modules: three categories, configured by log4j-style properties.
///
/// Nothing is logged until somebody configures it. A line that nobody wants costs one relaxed load and a branch; build its text
/// only after asking wanted(). Any thread may log, and any thread may configure at the same time.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kiv::log {

enum class Category : std::uint8_t { gen_api, gen_tl, cl_protocol };
inline constexpr std::size_t category_count = 3;

/// In ascending order of detail.
enum class Level : std::uint8_t { off, error, warn, info, debug };

/// A configuration that cannot be read or used, or whose file cannot be written; the text says why.
class ConfigurationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace detail {
/// What each category wants at most; off while nothing is configured.
extern std::array<std::atomic<Level>, category_count> wanted_levels;
}  // namespace detail

inline bool wanted(Category category, Level level) noexcept {
    return level <= detail::wanted_levels[static_cast<std::size_t>(category)].load(std::memory_order_relaxed);
}

/// Logs one line; never throws. A line that nobody wants is dropped.
void write(Category category, Level level, std::string_view text) noexcept;

/// The file that GENICAM_LOG_CONFIG names; without it errors of all categories go to the debugger output.
void configure_default();
/// Properties, a line each. Appenders are log4cpp's, and one for the debugger output (Win32DebugAppender) on every system. Throws
/// ConfigurationError; what was configured before may be in place only in part then.
void configure_from_string(const std::string& properties);
void configure_from_file(const std::string& file);
/// Closes all appenders. Lines that come later are dropped.
void shut_down() noexcept;

}  // namespace kiv::log
