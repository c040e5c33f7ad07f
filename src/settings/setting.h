/// A camera's settings as a script has them: features with their values as text, in the order in which they are to be written. A
/// selector comes before what it selects.
#pragma once

#include <GenICam/exceptions.h>

#include <functional>
#include <string>
#include <vector>

namespace kiv {

struct Setting {
    std::string feature;
    std::string value;  ///< as the feature's ToString gives it

    bool operator==(const Setting&) const = default;
};
using Settings = std::vector<Setting>;

/// Keeps a GenICam error that does not end what goes on.
using RecordError = std::function<void(const GenICam::GenericException&)>;

}  // namespace kiv
