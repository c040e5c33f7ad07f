#include "CLProtocol/port_directory.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/installer_records.h>
#include <kiv/platform/paths.h>

#include <algorithm>
#include <set>

#include "grabber_library.h"
#include "line_log.h"
#include "system_serial.h"

namespace CLProtocol {
namespace {

namespace fs = std::filesystem;
using kiv::platform::get_environment;
using kiv::platform::split_search_path;

/// What stands for a maker in the identifiers of the system's own ports.
constexpr const char* system_ports = "COM_Port";

std::vector<std::string> library_folders() {
    static const char inside = 0;
    std::vector<std::string> folders = split_search_path(get_environment("KIV_CAMERA_LINK_PATH").value_or(""));
    if (auto recorded = kiv::platform::installer_text("software\\cameralink", "CLSERIALPATH")) folders.push_back(*recorded);
    folders.push_back(kiv::platform::folder_of(kiv::platform::module_file(&inside)));
    return folders;
}

/// The libraries of all folders, each once, however many ways lead to it.
std::vector<std::string> library_files() {
    std::vector<std::string> files;
    std::set<fs::path> seen;
    for (const std::string& folder : library_folders()) {
        std::vector<fs::path> here;
        std::error_code failed;
        for (fs::directory_iterator entry(kiv::platform::path_from_utf8(folder), failed), end; !failed && entry != end;
             entry.increment(failed))
            if (is_grabber_library_name(kiv::platform::utf8_from_path(entry->path().filename()))) here.push_back(entry->path());
        std::ranges::sort(here);
        for (const fs::path& file : here) {
            std::error_code broken;
            const fs::path real = fs::canonical(file, broken);
            if (!broken && seen.insert(real).second) files.push_back(kiv::platform::utf8_from_path(file));
        }
    }
    return files;
}

std::vector<std::string> system_port_names() {
    std::vector<std::string> names;
    for (const std::string& piece : split_search_path(get_environment("KIV_CAMERA_LINK_PORTS").value_or("")))
        if (piece == "all")
            std::ranges::copy(kiv::platform::list_serial_ports(), std::back_inserter(names));
        else
            names.push_back(piece);
    return names;
}

}  // namespace

PortDirectory PortDirectory::Find() {
    PortDirectory found;
    for (const std::string& file : library_files()) try {
            found.AddLibrary(file);
        } catch (const std::exception& error) {
            kiv::platform::debug_print(std::string(error.what()) + "\n");
            log_line(Level::warn, error.what());
        }
    for (const std::string& name : system_port_names())
        found.Add(std::string(system_ports) + "#" + name, [name] { return std::make_unique<SystemSerial>(name); });
    return found;
}

void PortDirectory::AddLibrary(const std::string& path) {
    const auto library = GrabberLibrary::Load(path);
    const std::string manufacturer = library->Manufacturer();
    unsigned index = 0;
    for (const std::string& name : library->PortNames()) {
        Add(manufacturer + "#" + name, [library, index] { return library->Open(index); });
        ++index;
    }
}

void PortDirectory::Add(std::string id, std::function<std::unique_ptr<Serial>()> open) {
    if (ports_.size() == most_ports) return kiv::platform::debug_print("too many serial ports: '" + id + "' is left out\n");
    const auto taken = [this](const std::string& text) { return std::ranges::find(ports_, text, &Port::id) != ports_.end(); };
    // Two boards of a kind may name their ports alike.
    std::string distinct = id;
    for (int number = 2; taken(distinct); ++number) distinct = id + " (" + std::to_string(number) + ")";
    if (log_wanted(Level::info)) log_line(Level::info, distinct + ": a serial port");
    ports_.push_back({std::move(distinct), std::move(open)});
}

std::vector<std::string> PortDirectory::Ids() const {
    std::vector<std::string> ids;
    for (const Port& port : ports_) ids.push_back(port.id);
    return ids;
}

std::unique_ptr<Serial> PortDirectory::Open(const std::string& id) const {
    const auto port = std::ranges::find(ports_, id, &Port::id);
    if (port == ports_.end()) throw GenICam::InvalidArgumentException("there is no serial port '" + id + "'");
    return port->open();
}

}  // namespace CLProtocol
