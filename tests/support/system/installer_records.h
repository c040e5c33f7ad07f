/// Records of software installers, there until the end of the scope: a text in .reg form, of keys below HKEY_LOCAL_MACHINE with
/// texts and numbers. posix/ lets the library read the text, win32/ writes it into the registry (which only administrators may).
#pragma once

#include <string>
#include <vector>

namespace kiv_test {

class InstallerRecords {
public:
    explicit InstallerRecords(const std::string& text);
    ~InstallerRecords();
    InstallerRecords(const InstallerRecords&) = delete;
    InstallerRecords& operator=(const InstallerRecords&) = delete;

private:
    std::vector<std::string> made_;  // what goes at the end: files or keys
};

}  // namespace kiv_test
