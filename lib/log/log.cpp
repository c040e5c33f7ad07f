#include "kiv/log/log.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/environment.h>
#include <log4cpp/Appender.hh>
#include <log4cpp/BasicLayout.hh>
#include <log4cpp/Category.hh>
#include <log4cpp/HierarchyMaintainer.hh>
#include <log4cpp/LayoutAppender.hh>
#include <log4cpp/PatternLayout.hh>
#include <log4cpp/PropertyConfigurator.hh>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <sstream>

#include "debug_appenders.h"
#include "temporary_file.h"

namespace kiv::log {

namespace detail {
std::array<std::atomic<Level>, category_count> wanted_levels{};
}

namespace {

constexpr std::array<const char*, category_count> category_names{"GenApi", "GenTL", "CLProtocol"};

struct LevelNumber {
    Level level;
    int priority;
};
constexpr std::array<LevelNumber, 4> level_numbers{
    {{Level::error, 300}, {Level::warn, 400}, {Level::info, 600}, {Level::debug, 700}}};

// Writers share it; configuring excludes them.
std::shared_mutex configuration_lock;

/// What debugger appenders made of the line that this thread is writing. It is printed after the lock is given back: whoever
/// listens may configure the log in turn.
thread_local std::string* debug_text = nullptr;

class DebugOutputAppender final : public log4cpp::LayoutAppender {
public:
    using log4cpp::LayoutAppender::LayoutAppender;
    void close() override {}

protected:
    void _append(const log4cpp::LoggingEvent& event) override {
        if (debug_text) *debug_text += _getLayout().format(event);
    }
};

void attach(const DebugAppender& each) {
    for (auto& category : each.categories) {
        auto appender = std::make_unique<DebugOutputAppender>(each.name);
        // Both setters take what they are given into their ownership.
        if (each.pattern.empty()) {
            appender->setLayout(std::make_unique<log4cpp::BasicLayout>().release());
        } else {
            auto layout = std::make_unique<log4cpp::PatternLayout>();
            layout->setConversionPattern(each.pattern);
            appender->setLayout(layout.release());
        }
        auto& target = category.empty() ? log4cpp::Category::getRoot() : log4cpp::Category::getInstance(category);
        target.addAppender(appender.release());
    }
}

/// log4cpp makes appenders out of properties and leaves them to nobody: one that a later configuration does not use would stay,
/// and its file open.
class Appenders {
public:
    void Adopt(const std::vector<std::string>& names) {
        for (auto& name : names) {
            auto* made = log4cpp::Appender::getAppender(name);
            if (made && std::ranges::find(ours_, made, &Ours::get) == ours_.end()) ours_.emplace_back(made);
        }
    }
    /// A category that the last configuration does not name goes on with what it has.
    void DropUnused() {
        std::set<log4cpp::Appender*> used;
        ForEachCategory([&](log4cpp::Category& category) { used.merge(category.getAllAppenders()); });
        std::erase_if(ours_, [&](auto& each) { return !used.contains(each.get()); });
    }
    void DropAll() {
        ForEachCategory([](log4cpp::Category& category) { category.removeAllAppenders(); });
        ours_.clear();
    }

private:
    using Ours = std::unique_ptr<log4cpp::Appender>;

    template <class Use>
    static void ForEachCategory(Use use) {
        const std::unique_ptr<std::vector<log4cpp::Category*>> all(log4cpp::Category::getCurrentCategories());
        for (auto* category : *all) use(*category);
    }
    std::vector<Ours> ours_;
};

Appenders& appenders() {
    // Never destroyed: log4cpp's own objects, which appenders know, may have gone before.
    static Appenders& only = *std::make_unique<Appenders>().release();
    return only;
}

void forget_levels() noexcept {
    for (auto& level : detail::wanted_levels) level = Level::off;
}

void read_levels() {
    for (std::size_t i = 0; i < category_count; ++i) {
        auto priority = log4cpp::Category::getInstance(category_names[i]).getChainedPriority();
        auto level = Level::off;
        for (auto& each : level_numbers)
            if (each.priority <= priority) level = each.level;
        detail::wanted_levels[i] = level;
    }
}

/// log4cpp's own objects go when the process ends, maybe before the last line of ours.
void forget_levels_at_exit() {
    static const bool once = [] {
        log4cpp::HierarchyMaintainer::getDefaultMaintainer().register_shutdown_handler([] { forget_levels(); });
        return true;
    }();
    static_cast<void>(once);
}

/// log4cpp opens files silently, and drops every line when it cannot.
void require_writable(const std::string& file) {
    if (!std::ofstream(file, std::ios::app)) throw ConfigurationError("the log file " + file + " cannot be written");
}

std::string read_file(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    if (std::filesystem::is_directory(file) || !in || !(text << in.rdbuf()))
        throw ConfigurationError("the log configuration " + file + " cannot be read");
    return text.str();
}

void configure(const std::string& properties) try {
    auto split = split_properties(properties);
    for (auto& file : split.files) require_writable(file);
    std::lock_guard guard(configuration_lock);
    forget_levels();
    forget_levels_at_exit();
    TemporaryFile file(split.rest);
    try {
        log4cpp::PropertyConfigurator::configure(file.Path());
    } catch (...) {
        appenders().Adopt(split.appenders);
        throw;
    }
    appenders().Adopt(split.appenders);
    for (auto& appender : split.debug_appenders) attach(appender);
    appenders().DropUnused();
    read_levels();
} catch (const ConfigurationError&) {
    throw;
} catch (const std::exception& error) {
    throw ConfigurationError(error.what());
}

int priority_of(Level level) {
    for (auto& each : level_numbers)
        if (each.level == level) return each.priority;
    return log4cpp::Priority::NOTSET;
}

}  // namespace

void write(Category category, Level level, std::string_view text) noexcept try {
    std::string for_debugger;
    {
        std::shared_lock guard(configuration_lock);
        if (!wanted(category, level)) return;
        debug_text = &for_debugger;
        log4cpp::Category::getInstance(category_names[static_cast<std::size_t>(category)])
            .log(priority_of(level), std::string(text));
        debug_text = nullptr;
    }
    if (!for_debugger.empty()) platform::debug_print(for_debugger);
} catch (...) {  // no memory, or an appender that fails: the line is lost
    debug_text = nullptr;
}

void configure_default() {
    if (auto file = platform::get_environment("GENICAM_LOG_CONFIG"); file && !file->empty()) return configure_from_file(*file);
    configure(
        "log4j.rootCategory=ERROR, debugger\n"
        "log4j.appender.debugger=org.apache.log4j.Win32DebugAppender\n"
        "log4j.appender.debugger.layout=org.apache.log4j.PatternLayout\n"
        "log4j.appender.debugger.layout.ConversionPattern=%d %p %c: %m%n\n");
}

void configure_from_string(const std::string& properties) { configure(properties); }

void configure_from_file(const std::string& file) { configure(read_file(file)); }

void shut_down() noexcept try {
    std::lock_guard guard(configuration_lock);
    forget_levels();
    log4cpp::Category::shutdown();
    appenders().DropAll();
} catch (...) {  // whatever an appender says while it is closed
}

}  // namespace kiv::log
