/// The GenICam description of a camera: the texts of the folder description/, with the addresses that the list of registers
/// gives, under the name of the model.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "camera.h"

namespace kivsim {

/// Throws std::logic_error when a text names a register that does not exist.
std::string camera_description(const CameraConfig& config);

/// A zip archive with one file in it; the same text always gives the same bytes. Throws std::runtime_error.
std::vector<std::byte> zip_of(const std::string& file_name, std::string_view text);

/// The model as a name that descriptions and files may carry: letters, digits and "_".
std::string plain_name(std::string_view model);

/// "file:///..." for an absolute path.
std::string file_url(const std::filesystem::path& path);

}  // namespace kivsim
