// The log: what a configuration lets through, where it goes, and that it can change while others write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/log/log.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/environment.h>

#include <fstream>
#include <mutex>
#include <sstream>
#include <thread>

#include "debug_appenders.h"

namespace kiv::log {
namespace {

class Log : public ::testing::Test {
protected:
    Log() { platform::set_debug_sink(&Log::receive, this); }
    ~Log() override {
        platform::set_debug_sink(nullptr, nullptr);
        shut_down();
    }
    static void receive(const char* text, void* self) {
        auto& log = *static_cast<Log*>(self);
        std::lock_guard guard(log.lock);
        log.heard += text;
    }
    std::string InFolder(const std::string& name) { return ::testing::TempDir() + "kiv_log_test_" + name; }

    std::mutex lock;
    std::string heard;
};

std::string to_debugger(const std::string& level) {
    return "log4j.rootCategory=ERROR\nlog4j.category.GenApi=" + level +
           ", "
           "out\nlog4j.appender.out=org.apache.log4j.Win32DebugAppender\nlog4j.appender.out.layout=org.apache.log4j."
           "PatternLayout\n"
           "log4j.appender.out.layout.ConversionPattern=%p %c: %m%n\n";
}

TEST_F(Log, LetsThroughWhatTheCategoryWants) {
    EXPECT_FALSE(wanted(Category::gen_api, Level::error)) << "nothing is configured";
    configure_from_string(to_debugger("INFO"));
    EXPECT_TRUE(wanted(Category::gen_api, Level::info));
    EXPECT_FALSE(wanted(Category::gen_api, Level::debug));
    EXPECT_TRUE(wanted(Category::gen_tl, Level::error)) << "the root's level holds for it";
    EXPECT_FALSE(wanted(Category::gen_tl, Level::warn));
    write(Category::gen_api, Level::info, "seen");
    write(Category::gen_api, Level::debug, "too much");
    write(Category::gen_tl, Level::error, "nobody listens to this category");
    EXPECT_EQ("INFO GenApi: seen\n", heard);
    shut_down();
    EXPECT_FALSE(wanted(Category::gen_api, Level::error));
    write(Category::gen_api, Level::error, "closed");
    EXPECT_EQ("INFO GenApi: seen\n", heard);
}

TEST_F(Log, WritesToAFileAndFromAFile) {
    const auto file = InFolder("out.log"), properties = InFolder("out.properties");
    std::remove(file.c_str());
    std::ofstream(properties) << "log4j.rootCategory=DEBUG, F\nlog4j.appender.F=org.apache.log4j.FileAppender\n"
                                 "log4j.appender.F.fileName="
                              << file << "\nlog4j.appender.F.layout=org.apache.log4j.BasicLayout\n";
    configure_from_file(properties);
    write(Category::cl_protocol, Level::debug, "a line");
    shut_down();
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    EXPECT_THAT(text.str(), ::testing::HasSubstr("a line"));
}

TEST_F(Log, RefusesWhatItCannotUse) {
    EXPECT_THROW(configure_from_file(InFolder("nowhere/none.properties")), ConfigurationError);
    EXPECT_THROW(configure_from_file(::testing::TempDir()), ConfigurationError);
    EXPECT_THROW(configure_from_string(to_debugger("LOUD")), ConfigurationError);
    EXPECT_THROW(configure_from_string("log4j.rootCategory=ERROR, F\nlog4j.appender.F=org.apache.log4j.FileAppender\n"
                                       "log4j.appender.F.fileName=" +
                                       InFolder("nowhere/out.log") + "\n"),
                 ConfigurationError);
    EXPECT_THROW(configure_from_string("log4j.rootCategory=ERROR, missing\n"), ConfigurationError);
    EXPECT_FALSE(wanted(Category::gen_api, Level::error)) << "a configuration that failed logs nothing";
}

TEST_F(Log, TakesDebugAppendersOutOfTheProperties) {
    auto split = split_properties(
        "# note\nlog4cpp.rootCategory=WARN, File , dbg\n log4j.category.GenTL = INFO,dbg\nlog4j.appender.dbg=Win32DebugAppender\n"
        "log4j.appender.dbg.layout.ConversionPattern = %m = %n\nlog4j.appender.File=org.apache.log4j.FileAppender\n"
        "log4j.appender.File.fileName=/x.log\n");
    ASSERT_EQ(1u, split.debug_appenders.size());
    EXPECT_EQ("%m = %n", split.debug_appenders[0].pattern);
    EXPECT_THAT(split.debug_appenders[0].categories, ::testing::ElementsAre("", "GenTL"));
    EXPECT_THAT(split.files, ::testing::ElementsAre("/x.log"));
    EXPECT_EQ(
        "# note\nlog4j.rootCategory=WARN, File\nlog4j.category.GenTL=INFO\nlog4j.appender.File=org.apache.log4j.FileAppender\n"
        "log4j.appender.File.fileName=/x.log\n",
        split.rest);
}

TEST_F(Log, IsConfiguredWhileOthersWrite) {
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        while (!stop) write(Category::gen_api, Level::error, "line");
    });
    for (int i = 0; i < 50; ++i) {
        configure_from_string(to_debugger(i % 2 ? "DEBUG" : "ERROR"));
        if (i % 5 == 0) shut_down();
    }
    stop = true;
    writer.join();
}

}  // namespace
}  // namespace kiv::log
