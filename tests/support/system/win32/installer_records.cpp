#include "support/system/installer_records.h"

#include <windows.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace kiv_test {
namespace {

constexpr std::string_view root = "[HKEY_LOCAL_MACHINE\\";

std::string unescaped(std::string text) {
    for (std::size_t at = text.find('\\'); at != text.npos; at = text.find('\\', at + 1)) text.erase(at, 1);
    return text;
}

/// "name"="text" or "name"=dword:number
void write_value(const std::string& key, const std::string& line) {
    const auto middle = line.find("\"=");
    const std::string name = line.substr(1, middle - 1), value = line.substr(middle + 2);
    LSTATUS status = ERROR_SUCCESS;
    if (value.starts_with("dword:")) {
        const auto number = static_cast<DWORD>(std::stoul(value.substr(6), nullptr, 16));
        status = RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), REG_DWORD, &number, sizeof number);
    } else {
        const std::string text = unescaped(value.substr(1, value.size() - 2));
        status = RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), REG_SZ, text.c_str(),
                                 static_cast<DWORD>(text.size() + 1));
    }
    if (status != ERROR_SUCCESS) throw std::runtime_error("cannot write into " + key);
}

}  // namespace

InstallerRecords::InstallerRecords(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(root)) {
            made_.push_back(line.substr(root.size(), line.size() - root.size() - 1));
            HKEY key = nullptr;
            if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, made_.back().c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
                ERROR_SUCCESS)
                throw std::runtime_error("cannot make " + made_.back());
            RegCloseKey(key);
        } else if (line.starts_with('"')) {
            write_value(made_.back(), line);
        }
    }
}

InstallerRecords::~InstallerRecords() {
    for (const std::string& key : made_) RegDeleteKeyA(HKEY_LOCAL_MACHINE, key.c_str());
}

}  // namespace kiv_test
