#include <fstream>
#include <span>
#include <sstream>
#include <utility>

#include "GenApi/description_check.h"
#include "GenICam/exceptions.h"
#include "kiv/archive/first_xml.h"

namespace GenApi {

gcstring ReadDescriptionFile(const gcstring& fileName) {
    std::ifstream file(fileName.c_str(), std::ios::binary);
    if (!file) throw GenICam::RuntimeException("The description file '" + fileName.str() + "' cannot be opened.");
    std::ostringstream content;
    content << file.rdbuf();  // a folder opens well, and fails here
    if (content.bad()) throw GenICam::RuntimeException("The description file '" + fileName.str() + "' cannot be read.");
    const auto bytes = std::move(content).str();
    const auto view = std::as_bytes(std::span(bytes));
    if (!kiv::archive::is_zip(view)) return bytes;
    try {
        return kiv::archive::first_xml_of_zip(view, fileName.str()).content;
    } catch (const kiv::archive::ArchiveError& error) {
        throw GenICam::RuntimeException(error.what());
    }
}

}  // namespace GenApi
