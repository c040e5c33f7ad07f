#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/installer_records.h>

#include "../temporary_folder.h"

using namespace kiv::platform;

namespace {

const std::string upgrade_codes = "SOFTWARE\\Classes\\Installer\\UpgradeCodes\\";
const std::string products = "SOFTWARE\\Classes\\Installer\\Products\\";

constexpr const char* records = R"(Windows Registry Editor Version 5.00

; a comment
[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\Installer\UpgradeCodes\AAAA]
"PRODUCT \"one\" \\ B"=""
"SECOND"="x"

[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\Installer\UpgradeCodes\EMPTY]
[HKEY_CURRENT_USER\SOFTWARE\Classes\Installer\UpgradeCodes\USER]
"not ours"=""

[HKEY_LOCAL_MACHINE\Software\Classes\Installer\Products\ONE]
"Binary"=hex:01,02,\
  03,04
"Version"=dword:01020304
"Text"="dword:5"
"Wrong"=dword:123456789
[HKEY_LOCAL_MACHINE\Software\Classes\Installer\Products\DEFAULT]
@="default"
[HKEY_LOCAL_MACHINE\Software\Classes\Installer\Products\ONE]
"Later" = dword:0000000f
)";

class InstallerRecords : public testing::Test {
protected:
    ~InstallerRecords() override { unset_environment("KIV_INSTALLER_REGISTRY"); }
    void Use(const std::string& text) { set_environment("KIV_INSTALLER_REGISTRY", folder_.Write("records.reg", text)); }
    kiv::test::TemporaryFolder folder_;
};

TEST_F(InstallerRecords, KeysAndValuesAreFound) {
    Use(records);
    EXPECT_EQ("PRODUCT \"one\" \\ B", first_installer_value_name(upgrade_codes + "AAAA"));
    EXPECT_EQ("PRODUCT \"one\" \\ B", first_installer_value_name("software\\classes\\INSTALLER\\upgradecodes\\aaaa"));
    EXPECT_TRUE(installer_key_exists(upgrade_codes + "EMPTY"));
    EXPECT_EQ(std::nullopt, first_installer_value_name(upgrade_codes + "EMPTY"));
    EXPECT_FALSE(installer_key_exists(upgrade_codes + "USER")) << "another hive";
    EXPECT_EQ("", first_installer_value_name(products + "DEFAULT"));
    EXPECT_EQ(0x01020304u, installer_number(products + "ONE", "version"));
    EXPECT_EQ(15u, installer_number(products + "ONE", "Later")) << "a key in two parts";
    for (const char* none : {"Binary", "Text", "Wrong", "Missing"})
        EXPECT_EQ(std::nullopt, installer_number(products + "ONE", none)) << none;
    EXPECT_EQ("dword:5", installer_text(products + "ONE", "text"));
    EXPECT_EQ(std::nullopt, installer_text(products + "ONE", "Version"));
    EXPECT_EQ(std::nullopt, installer_number(products + "TWO", "Version"));
}

TEST_F(InstallerRecords, AFileOfTheSystemsEditorIsRead) {
    std::string wide = "\xFF\xFE";
    for (const char* c = records; *c; ++c) {
        if (*c == '\n') wide += std::string("\r\0", 2);
        wide += std::string{*c, '\0'};
    }
    Use(wide);
    EXPECT_EQ(0x01020304u, installer_number(products + "ONE", "Version"));
    EXPECT_EQ("PRODUCT \"one\" \\ B", first_installer_value_name(upgrade_codes + "AAAA"));
    Use("\xEF\xBB\xBF[HKEY_LOCAL_MACHINE\\A]");
    EXPECT_TRUE(installer_key_exists("a"));
}

TEST_F(InstallerRecords, WithoutAReadableFileThereAreNone) {
    EXPECT_FALSE(installer_key_exists(upgrade_codes + "AAAA"));
    set_environment("KIV_INSTALLER_REGISTRY", folder_ / "missing.reg");
    EXPECT_FALSE(installer_key_exists(upgrade_codes + "AAAA"));
    for (const char* garbage : {"", "[", "]", "\"", "\"a", "\"a\\", "=", "@", "[HKEY_LOCAL_MACHINE\\", "\xFF\xFE",
                                "\xFF\xFE"
                                "a",
                                "[]\n\"a\"=dword:1"}) {
        Use(garbage);
        EXPECT_FALSE(installer_key_exists("A")) << garbage;
    }
}

}  // namespace
