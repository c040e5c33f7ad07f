// The installer's records in the system's registry: written by the test, read by the library.
#include "kiv/platform/installer_records.h"

#include <gtest/gtest.h>

#include "support/system/process.h"
#include "win32/windows_lean.h"

using namespace kiv::platform;

namespace {

class InstallerRecords : public testing::Test {
protected:
    void SetUp() override {
        if (Key("")) return;
        GTEST_SKIP() << "only administrators may write the installer's records";
    }
    void TearDown() override { RegDeleteTreeA(HKEY_LOCAL_MACHINE, root_.c_str()); }

    struct CloseKey {
        void operator()(HKEY key) const noexcept { RegCloseKey(key); }
    };
    using OwnedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;
    OwnedKey Key(const std::string& name) const {
        HKEY made = nullptr;
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, (root_ + name).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &made, nullptr);
        return OwnedKey(made);
    }
    void Text(const std::string& key, const wchar_t* name, const wchar_t* text) const {
        RegSetValueExW(Key(key).get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                       static_cast<DWORD>((std::wstring_view(text).size() + 1) * sizeof(wchar_t)));
    }
    void Number(const std::string& key, const wchar_t* name, DWORD number) const {
        RegSetValueExW(Key(key).get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    }

    const std::string root_ = "SOFTWARE\\KivTest" + std::to_string(kiv_test::own_process_number()) + "\\";
};

TEST_F(InstallerRecords, KeysAndValuesAreFound) {
    Text("Codes", L"PRODUCT \u00E4", L"");
    Key("Empty");
    Number("Product", L"Version", 0x01020304);
    Text("Product", L"Text", L"dword:5 \u20AC");
    EXPECT_EQ("PRODUCT \xC3\xA4", first_installer_value_name(root_ + "Codes"));
    EXPECT_EQ("PRODUCT \xC3\xA4", first_installer_value_name(root_ + "CODES")) << "names have no case";
    EXPECT_TRUE(installer_key_exists(root_ + "Empty"));
    EXPECT_EQ(std::nullopt, first_installer_value_name(root_ + "Empty"));
    EXPECT_FALSE(installer_key_exists(root_ + "Missing"));
    EXPECT_EQ(0x01020304u, installer_number(root_ + "Product", "version"));
    EXPECT_EQ("dword:5 \xE2\x82\xAC", installer_text(root_ + "Product", "text"));
    for (const char* none : {"Text", "Missing"}) EXPECT_EQ(std::nullopt, installer_number(root_ + "Product", none)) << none;
    EXPECT_EQ(std::nullopt, installer_text(root_ + "Product", "Version"));
    EXPECT_EQ(std::nullopt, installer_number(root_ + "Missing", "Version"));
}

TEST_F(InstallerRecords, ALongTextComesWhole) {
    const std::wstring text(40'000, L'x');
    Text("Product", L"Text", text.c_str());
    const auto read = installer_text(root_ + "Product", "Text");
    ASSERT_TRUE(read);
    EXPECT_EQ(text.size(), read->size());
}

}  // namespace
