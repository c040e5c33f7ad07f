/// File names and titles of callers, as UTF-8.
#pragma once

#include <string>

namespace kiv::vl {

/// Throws an Error for a null or empty name.
std::string name_of(const char* file);
std::string name_of(const wchar_t* file);

/// A null title is an empty one.
std::string title_of(const char* title);
std::string title_of(const wchar_t* title);

}  // namespace kiv::vl
