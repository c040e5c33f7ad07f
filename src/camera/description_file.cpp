#include "camera/description_file.h"

#include <GenICam/exceptions.h>
#include <kiv/archive/first_xml.h>
#include <kiv/platform/paths.h>

#include <span>

#include "camera/description.h"

namespace kiv {

std::string read_description_file(const std::string& path) {
    try {
        auto bytes = platform::read_file(path, longest_description);
        const auto view = std::as_bytes(std::span(bytes));
        return archive::is_zip(view) ? archive::first_xml_of_zip(view, path, longest_description).content : bytes;
    } catch (const std::runtime_error& error) {
        throw GenICam::RuntimeException(error.what(), "DescriptionFile", __LINE__);
    }
}

}  // namespace kiv
