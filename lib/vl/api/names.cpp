#include "api/names.h"

#include <kiv/platform/text.h>

#include "core/error.h"

namespace kiv::vl {
namespace {

std::string utf8(const char* text) { return platform::utf8_from_local(text); }
std::string utf8(const wchar_t* text) { return platform::utf8_from_wide(text); }

template <class Character>
std::string required_name(const Character* file) {
    refuse_null(file, "file");
    std::string name = utf8(file);
    if (name.empty()) throw Error(VL_ST_INVALID_PARAMETER, "the file name is empty");
    return name;
}

}  // namespace

std::string name_of(const char* file) { return required_name(file); }
std::string name_of(const wchar_t* file) { return required_name(file); }
std::string title_of(const char* title) { return title == nullptr ? std::string() : utf8(title); }
std::string title_of(const wchar_t* title) { return title == nullptr ? std::string() : utf8(title); }

}  // namespace kiv::vl
