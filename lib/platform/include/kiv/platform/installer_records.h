/// What the system's software installer remembers: keys below the machine's hive with named values.
///
/// A system without such records reads them from a text file in .reg form that KIV_INSTALLER_REGISTRY names; without that
/// variable, or when the file cannot be read, there are no records. Key names have "\" between their parts and are compared
/// without regard to letter case.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kiv::platform {

bool installer_key_exists(const std::string& key);

/// The name of the first value of the key; nothing when the key does not exist or has no value. The unnamed default value has
/// an empty name.
std::optional<std::string> first_installer_value_name(const std::string& key);

/// A 32-bit number; nothing when key or value do not exist or the value is of another type.
std::optional<std::uint32_t> installer_number(const std::string& key, const std::string& value);

/// A text; nothing when key or value do not exist or the value is of another type.
std::optional<std::string> installer_text(const std::string& key, const std::string& value);

}  // namespace kiv::platform
