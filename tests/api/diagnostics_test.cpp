// Logging switches and what they leave in the environment, "$(NAME)" expansion, installed versions.
#include <Kiv_Factory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/environment.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include "support/debug_recorder.h"
#include "support/expect_status.h"
#include "support/patterns.h"
#include "support/sim_camera.h"
#include "support/system/installer_records.h"
#include "support/temp_folder.h"

namespace kiv_test {
namespace {

class Logging : public ::testing::Test {
protected:
    ~Logging() override { K_DisableLogging(); }
    /// The three variables, "-" for one that is not set.
    std::string Environment() {
        std::string text;
        for (auto* name : {"KIV_GENTL_LOGGING", "KIV_LIBUSB_LOGGING", "KIV_LOG_LEVEL"})
            text += kiv::platform::get_environment(name).value_or("-") + " ";
        return text;
    }
    TempFolder folder;
    DebugRecorder debug;
};

constexpr const char* pattern = "%p %c: %m%n";

TEST_F(Logging, AsksProducersByTheEnvironment) {
    const struct {
        const char* level;
        const char* number;
    } rows[] = {{"EMERG", "1"},  {"FATAL", "1"}, {"ALERT", "1"}, {"CRIT", "1"},   {"ERROR", "2"},  {"WARN", "3"},
                {"NOTICE", "3"}, {"INFO", "4"},  {"DEBUG", "6"}, {"NOTSET", "6"}, {"notice", "1"}, {"", "1"}};
    for (auto& row : rows) {
        EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(false, false, false, true, nullptr, row.level, pattern)) << row.level;
        EXPECT_EQ(std::string("TRUE TRUE ") + row.number + " ", Environment()) << row.level;
    }
    EXPECT_STATUS(K_ST_SUCCESS, K_EnableLoggingFromFile(nullptr));
    EXPECT_EQ("TRUE TRUE 1 ", Environment()) << "a file leaves the environment alone";
    EXPECT_STATUS(K_ST_IO, K_EnableLogging(true, false, false, false, "", "LOUD", pattern));
    EXPECT_EQ("TRUE TRUE 1 ", Environment()) << "and so does a failure";
    EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(false, false, false, false, nullptr, nullptr, nullptr));
    EXPECT_EQ("- - - ", Environment());
    EXPECT_STATUS(K_ST_SUCCESS, K_DisableLogging());
}

TEST_F(Logging, ConfiguresTheCategories) {
    ScopedEnvironment logs("KIV_TEST_LOGS", folder.Path());
    EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(true, true, true, false, "$(KIV_TEST_LOGS)/all.log", "DEBUG", pattern));
    EXPECT_TRUE(std::ifstream(folder.In("all.log")).good()) << "the file is there at once";
    EXPECT_STATUS(K_ST_IO, K_EnableLogging(true, false, false, false, "$(KIV_TEST_LOGS)/none/all.log", "DEBUG", pattern));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_EnableLogging(true, false, false, false, "", nullptr, pattern));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_EnableLogging(true, false, false, false, "", "INFO", nullptr));
    EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(true, false, false, false, "", "NOTSET", pattern));
    EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(true, false, false, false, nullptr, "INFO", pattern));
    EXPECT_STATUS(K_ST_IO, K_EnableLoggingFromFile("$(KIV_TEST_LOGS)/none.properties"));
    std::ofstream(folder.In("log.properties")) << "log4j.rootCategory=ERROR\n";
    EXPECT_STATUS(K_ST_SUCCESS, K_EnableLoggingFromFile("$(KIV_TEST_LOGS)/log.properties"));
}

class SessionLog : public SimCamera {
protected:
    ~SessionLog() override { K_DisableLogging(); }
    /// What is logged of a session with a success and a failure.
    std::string Log(const char* level) {
        const auto file = folder.In(std::string(level) + ".log");
        EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(true, true, true, false, file.c_str(), level, pattern));
        OpenCamera();
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "Height", 64));
        EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(camera, "Width", 100000));
        for (int i = 0; i < 3; ++i) Integer("Width");
        CloseCamera();
        CloseFactory();
        EXPECT_STATUS(K_ST_SUCCESS, K_DisableLogging());
        auto text = read_file(file);
        std::erase(text, '\r');  // of lines as some systems end them
        return text;
    }
};

TEST_F(SessionLog, TellsAsMuchAsTheLevelAsksFor) {
    using ::testing::AllOf, ::testing::HasSubstr, ::testing::Not;
    EXPECT_EQ("", Log("ERROR"));
    const auto warn = Log("WARN");
    EXPECT_THAT(warn, AllOf(HasSubstr("WARN GenApi: KivSim_5MC Width: SetValue failed: Value = 100000 must be"),
                            Not(HasSubstr("TLOpen"))));
    EXPECT_EQ(1, std::count(warn.begin(), warn.end(), '\n')) << warn;
    const auto info = Log("INFO");
    EXPECT_THAT(info, AllOf(HasSubstr("INFO GenTL: producer "),
                            HasLike("INFO GenTL: IFOpenDevice\\(0x[0-9a-f]+, \"SIM0_T0001\", "
                                    "[0-9]+, -> 0x[0-9a-f]+\\) = SUCCESS \\(0\\) in [0-9]+ us\n"),
                            HasSubstr("INFO GenTL: DevClose("), HasLike("INFO GenApi: KivSim_5MC: [0-9]+ nodes"),
                            Not(HasSubstr("GCReadPort"))));
    const auto debug = Log("DEBUG");
    EXPECT_THAT(debug, HasSubstr("DEBUG GenApi: KivSim_5MC Height: SetValue\n"));
    EXPECT_THAT(
        debug,
        HasLike("DEBUG GenApi: KivSim_5MC Device: write 4 bytes at 0x[0-9a-f]+ \\(HeightReg\\) in SetValue: 40 00 00 00\n"));
    EXPECT_THAT(
        debug,
        HasLike("DEBUG GenTL: GCWritePort\\(0x[0-9a-f]+, 0x[0-9a-f]+, 4 bytes\\) = SUCCESS \\(0\\) in [0-9]+ us: 40 00 00 00\n"));
    std::size_t reads = 0;
    for (auto at = debug.find("(WidthReg"); at != debug.npos; at = debug.find("(WidthReg", at + 1)) ++reads;
    EXPECT_EQ(1u, reads) << "what the cache answers is not told";
}

TEST(ReplaceEnvironmentVariables, ExpandsInPlaceOrNotAtAll) {
    ScopedEnvironment value("KIV_TEST_VALUE", "0123456789");
    const struct {
        const char* text;
        std::uint32_t size;
        K_STATUS_CODES status;
        const char* result;
    } rows[] = {{"plain $ ( text", 64, K_ST_SUCCESS, "plain $ ( text"},
                {"a $(KIV_TEST_VALUE) b", 64, K_ST_SUCCESS, "a 0123456789 b"},
                {"$(KIV_TEST_VALUE)", 18, K_ST_SUCCESS, "0123456789"},
                {"$(KIV_TEST_VALUE)$(KIV_TEST_VALUE)", 35, K_ST_SUCCESS, "01234567890123456789"},
                {"unterminated", 12, K_ST_INVALID_PARAMETER, "unterminated"},
                {"", 1, K_ST_SUCCESS, ""}};
    for (auto& row : rows) {
        char text[64] = "";
        std::strcpy(text, row.text);
        EXPECT_STATUS(row.status, K_ReplaceEnvironmentVariables(text, row.size)) << row.text;
        EXPECT_STREQ(row.result, text);
    }
    ScopedEnvironment longer("KIV_TEST_LONGER", "much longer than its own name");
    char text[24] = "$(KIV_TEST_LONGER)";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_ReplaceEnvironmentVariables(text, sizeof text));
    EXPECT_STREQ("$(KIV_TEST_LONGER)", text);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_ReplaceEnvironmentVariables(text, 0));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_ReplaceEnvironmentVariables(nullptr, 8));
}

TEST(GetSdkInstallerVersion, ReadsTheFirstInstalledPackage) {
    const std::string codes = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\Installer\\UpgradeCodes\\",
                      products = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\Installer\\Products\\";
    std::ostringstream text;
    text << "Windows Registry Editor Version 5.00\n\n"
         << codes << "EMPTY]\n\n"
         << codes << "FULL]\n\"P1\"=\"\"\n\n"
         << codes << "DANGLING]\n\"P2\"=\"\"\n\n"
         << codes << "SILENT]\n\"P3\"=\"\"\n\n"
         << products << "P1]\n\"Version\"=dword:01020304\n\n"
         << products << "P3]\n\"Name\"=\"x\"\n\n";
    const InstallerRecords records(text.str());
    struct {
        std::vector<K_INSTALLER_ENTRY> entries;
        K_STATUS_CODES status;
        const char* version;
    } rows[] = {{{{"EMPTY", 32}, {"FULL", 64}, {nullptr, 0}}, K_ST_SUCCESS, "1.2.3.4 (x64)"},
                {{{"FULL", 32}, {"FULL", 64}, {nullptr, 0}}, K_ST_SUCCESS, "1.2.3.4 (i32)"},
                {{{"DANGLING", 64}, {"FULL", 64}, {nullptr, 0}}, K_ST_NO_DATA, "kept"},
                {{{"SILENT", 64}, {nullptr, 0}}, K_ST_SUCCESS, "kept"},
                {{{"UNKNOWN", 64}, {nullptr, 32}, {nullptr, 0}}, K_ST_NO_DATA, "kept"},
                {{{nullptr, 0}}, K_ST_NO_DATA, "kept"}};
    for (auto& row : rows) {
        char version[32] = "kept";
        EXPECT_STATUS(row.status, K_GetSdkInstallerVersion(row.entries.data(), version, sizeof version));
        EXPECT_STREQ(row.version, version);
    }
    char version[14] = "";
    EXPECT_STATUS(K_ST_SUCCESS, K_GetSdkInstallerVersion(rows[0].entries.data(), version, 14));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GetSdkInstallerVersion(rows[0].entries.data(), version, 13));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GetSdkInstallerVersion(nullptr, version, 14));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GetSdkInstallerVersion(rows[0].entries.data(), nullptr, 14));
}

}  // namespace
}  // namespace kiv_test
