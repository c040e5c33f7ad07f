/// A description in a file that a person names, zipped or not.
#pragma once

#include <string>

namespace kiv {

/// The bytes of the file; of a zip archive, those of the first XML file in it. `path` is UTF-8. Throws RuntimeException with the
/// reason.
std::string read_description_file(const std::string& path);

}  // namespace kiv
