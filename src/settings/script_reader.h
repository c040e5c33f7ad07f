/// Settings out of a script file.
#pragma once

#include <optional>
#include <string>

#include "settings/setting.h"

namespace kiv {

/// Pairs of FeatureName and FeatureValue in the order of the document; an empty value leaves its pair out. Any encoding that the
/// XML library reads; nothing outside the file is ever loaded, and entities cannot make it grow. `file`: UTF-8. Nothing when the
/// file cannot be read or is no XML: what is wrong goes to the standard error stream.
std::optional<Settings> read_script(const std::string& file);

}  // namespace kiv
