#include "log_option.h"

#include <Kiv_Factory.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "error.h"

namespace {

constexpr const char* kPattern = "%d{%Y-%m-%d %H:%M:%S.%l} %-5p %-10c %m%n";
constexpr std::array kLevels{"ERROR", "WARN", "INFO", "DEBUG"};

struct Wish {
    std::string level;
    std::string file = "kiv.log";
};

Wish wish_of(const std::string& text) {
    Wish wish;
    const std::size_t equals = text.find('=');
    wish.level = text.substr(0, equals);
    std::ranges::transform(wish.level, wish.level.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (equals != text.npos) wish.file = text.substr(equals + 1);
    return wish;
}

std::string fault_of(const std::string& text) {
    const Wish wish = wish_of(text);
    if (std::ranges::find(kLevels, wish.level) == kLevels.end()) return "the level must be one of error, warn, info, debug";
    return wish.file.empty() ? "the name of the file is missing" : "";
}

}  // namespace

void LogOption::AddTo(CLI::App& app) {
    app.add_option("--log", text_, "Log what the library does: error, warn, info or debug; to kiv.log, or to FILE")
        ->type_name("LEVEL[=FILE]")
        ->check(CLI::Validator(fault_of, ""));
    app.add_flag("--log-producers", producers_, "With --log: ask the producers to log too, wherever they do");
}

void LogOption::Begin() const {
    if (text_.empty()) return;
    const Wish wish = wish_of(text_);
    check(K_EnableLogging(true, true, true, producers_, wish.file.c_str(), wish.level.c_str(), kPattern), "K_EnableLogging",
          wish.file);
}

LogOption::~LogOption() {
    if (!text_.empty()) K_DisableLogging();
}
