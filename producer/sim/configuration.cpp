#include "configuration.h"

#include <algorithm>
#include <set>

#include "configuration_section.h"
#include "fault_configuration.h"
#include "flavour.h"
#include "kiv/platform/environment.h"
#include "kiv/platform/paths.h"

namespace kivsim {
namespace {

namespace platform = kiv::platform;
constexpr uint64_t largest_file = 1 << 20;
constexpr std::string_view built_in = "built-in";  ///< instead of a file

CameraConfig::Url url_kind(const std::string& word, const std::string& place) {
    if (word == "zip") return CameraConfig::Url::Zip;
    if (word == "plain") return CameraConfig::Url::Plain;
    if (word == "file") return CameraConfig::Url::File;
    refuse(place + ".url is neither zip, plain nor file");
}

// Serial numbers become file names.
bool is_serial(const std::string& text) {
    return !text.empty() && text.size() <= 32 && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
    });
}

bool is_id(const std::string& text) {
    return !text.empty() && text.size() <= 128 && std::none_of(text.begin(), text.end(), [](unsigned char c) { return c < ' '; });
}

std::string beside(const std::string& file, const std::string& path) {
    if (path.empty()) return path;
    return platform::utf8_from_path(platform::path_from_utf8(file).parent_path() / platform::path_from_utf8(path));
}

void check_camera(const CameraEntry& entry, const std::string& place) {
    const CameraConfig& camera = entry.camera;
    const auto is_edge = [](uint32_t pixels) { return pixels >= 64 && pixels <= 8192 && pixels % 8 == 0; };
    if (!is_serial(camera.serial)) refuse(place + ".serial is no text of 1 to 32 letters and digits");
    if (!is_id(entry.id)) refuse(place + ".id is no text of 1 to 128 characters");
    if (camera.model.empty() || camera.model.size() > 63) refuse(place + ".model is no text of 1 to 63 characters");
    if (camera.user_id.size() > 63) refuse(place + ".user_id has more than 63 characters");
    if (!is_edge(camera.sensor_width) || !is_edge(camera.sensor_height))
        refuse(place + ": width and height are multiples of 8 from 64 to 8192");
    if (!(camera.max_frame_rate > 0 && camera.max_frame_rate <= 10000)) refuse(place + ".frame_rate is not within 0 and 10000");
    if (!(entry.megabytes_per_second >= 0)) refuse(place + ".link_megabytes_per_second is negative");
}

/// The value of a key, taken apart by `parse`; the present value when the key is not there.
template <typename T>
void get_address(const Section& section, const char* key, std::optional<T> (*parse)(std::string_view), T& value) {
    if (!section.Find(key)) return;
    std::string text;
    section.Get(key, text);
    const auto parsed = parse(text);
    if (!parsed) refuse(section.Place() + "." + key + ": " + text + " is no such address");
    value = *parsed;
}

/// Locally administered addresses, the same in every session: 02:4B:53, interface, camera.
uint64_t default_mac(size_t interface, size_t camera) { return 0x024B53000000 | (interface & 0xFF) << 16 | (camera & 0xFFFF); }

NetworkPort default_network(size_t interface) {
    return {0xC0A80001U | static_cast<uint32_t>((57 + interface) & 0xFF) << 8, 0xFFFFFF00U, 0, default_mac(interface, 0)};
}

/// Where the camera stands on the network of its interface, unless the file says otherwise.
void place_on_network(CameraEntry& entry, const InterfaceEntry& interface) {
    const auto number = static_cast<uint32_t>(interface.cameras.size());
    entry.network = interface.network;
    entry.network.ip = (interface.network.ip & interface.network.subnet_mask) + 100 + number;
    entry.network.mac = interface.network.mac + 1 + number;
}

std::string default_id(const CameraEntry& entry, const InterfaceEntry& interface) {
    return (flavour.gige ? mac_text(entry.network.mac) : interface.id) + "_" + entry.camera.serial;
}

CameraEntry read_camera(const json& object, const std::string& place, const InterfaceEntry& interface, const std::string& file) {
    const Section section(object, place,
                          {"id", "model", "serial", "user_id", "url", "width", "height", "color", "frame_rate", "images", "seed",
                           "unplug_file", "link_megabytes_per_second", "ip", "mac", "faults"});
    CameraEntry entry;
    CameraConfig& camera = entry.camera;
    camera.gige = flavour.gige;
    std::string url = "zip";
    section.Get("serial", camera.serial);
    if (flavour.gige) {
        place_on_network(entry, interface);
        get_address(section, "ip", ip_of, entry.network.ip);
        get_address(section, "mac", mac_of, entry.network.mac);
    }
    entry.id = default_id(entry, interface);
    section.Get("id", entry.id);
    section.Get("color", camera.color);
    camera.model = camera.color ? "KivSim-5MC" : "KivSim-5MM";
    section.Get("model", camera.model);
    section.Get("user_id", camera.user_id);
    section.Get("url", url);
    camera.url = url_kind(url, place);
    camera.sensor_width = section.Unsigned("width", camera.sensor_width);
    camera.sensor_height = section.Unsigned("height", camera.sensor_height);
    section.Get("frame_rate", camera.max_frame_rate);
    section.Get("images", camera.image_folder);
    camera.image_folder = beside(file, camera.image_folder);
    camera.seed = section.Unsigned("seed", camera.seed);
    section.Get("unplug_file", entry.unplug_file);
    entry.unplug_file = beside(file, entry.unplug_file);
    section.Get("link_megabytes_per_second", entry.megabytes_per_second);
    check_camera(entry, place);
    entry.state = std::make_shared<CameraState>(entry.unplug_file, entry.network.ip);
    if (const json* faults = section.Find("faults"))
        read_faults(*faults, place + ".faults", &entry.simulation, entry.state->Faults());
    return entry;
}

const std::set<std::string> tl_types = {"Custom", "GEV", "GigEVision", "CL", "CLHS", "CXP", "U3V"};

void check_unique(const Configuration& configuration) {
    std::set<std::string> interfaces, serials;
    for (const InterfaceEntry& interface : configuration.interfaces) {
        std::set<std::string> devices;
        if (!interfaces.insert(interface.id).second) refuse("interface " + interface.id + " exists twice");
        for (const CameraEntry& entry : interface.cameras) {
            if (!devices.insert(entry.id).second) refuse("device " + entry.id + " exists twice");
            if (!serials.insert(entry.camera.serial).second) refuse("serial number " + entry.camera.serial + " exists twice");
        }
    }
}

InterfaceEntry new_interface(size_t index) {
    InterfaceEntry interface;
    interface.id = (flavour.gige ? "GEV" : "SIM") + std::to_string(index);
    if (flavour.gige) interface.network = default_network(index);
    return interface;
}

Configuration read_configuration(const json& root, const std::string& file) {
    const Section section(root, "the file", {"tl_type", "interfaces", "faults"});
    Configuration configuration;
    configuration.tl_type = flavour.tl_type;
    section.Get("tl_type", configuration.tl_type);
    if (!tl_types.contains(configuration.tl_type))
        refuse("tl_type " + configuration.tl_type + " is none of Custom, GEV, GigEVision, CL, CLHS, CXP, U3V");
    if (const json* faults = section.Find("faults")) read_faults(*faults, "faults", nullptr, *configuration.faults);
    for (const json& item : section.List("interfaces")) {
        const std::string place = "interfaces[" + std::to_string(configuration.interfaces.size()) + "]";
        const Section part(item, place, {"id", "cameras", "ip", "subnet_mask", "mac"});
        InterfaceEntry interface = new_interface(configuration.interfaces.size());
        part.Get("id", interface.id);
        if (!is_id(interface.id)) refuse(place + ".id is no text of 1 to 128 characters");
        get_address(part, "ip", ip_of, interface.network.ip);
        get_address(part, "subnet_mask", ip_of, interface.network.subnet_mask);
        get_address(part, "mac", mac_of, interface.network.mac);
        for (const json& camera : part.List("cameras"))
            interface.cameras.push_back(
                read_camera(camera, place + ".cameras[" + std::to_string(interface.cameras.size()) + "]", interface, file));
        configuration.interfaces.push_back(std::move(interface));
    }
    check_unique(configuration);
    return configuration;
}

CameraEntry built_in_camera(bool color, const char* serial) {
    CameraEntry entry;
    entry.camera.gige = flavour.gige;
    entry.camera.serial = serial;
    entry.camera.color = color;
    entry.camera.model = std::string(flavour.model) + (color ? "-5MC" : "-2MM");
    if (color) return entry;
    entry.camera.sensor_width = 1600;
    entry.camera.sensor_height = 1200;
    entry.camera.max_frame_rate = 60;
    entry.camera.seed = 2;
    entry.camera.url = CameraConfig::Url::Plain;
    return entry;
}

void add_built_in(InterfaceEntry& interface, CameraEntry entry) {
    if (flavour.gige) place_on_network(entry, interface);
    entry.id = default_id(entry, interface);
    entry.state = std::make_shared<CameraState>("", entry.network.ip);
    interface.cameras.push_back(std::move(entry));
}

Configuration default_configuration(bool with_cameras) {
    Configuration configuration;
    configuration.tl_type = flavour.tl_type;
    configuration.interfaces = {new_interface(0)};
    if (!flavour.gige) configuration.interfaces.push_back(new_interface(1));
    if (!with_cameras) return configuration;
    add_built_in(configuration.interfaces.front(), built_in_camera(true, flavour.gige ? "6E0001" : "4F0001"));
    add_built_in(configuration.interfaces.back(), built_in_camera(false, flavour.gige ? "6E0002" : "4F0002"));
    return configuration;
}

std::filesystem::path state_folder() {
    const auto chosen = platform::get_environment("KIV_SIM_STATE");
    const auto folder = chosen && !chosen->empty() ? *chosen : platform::join_path(platform::user_runtime_folder(), "kiv-sim");
    return platform::path_from_utf8(folder) / flavour.state_folder;
}

}  // namespace

Configuration load_configuration() {
    const auto file = platform::get_environment(flavour.config_variable);
    const bool none = !file || file->empty();
    Configuration configuration;
    if (none || *file == built_in) {
        // The GigE Vision producer stands beside the plain one in the registry file; its cameras shall not crowd the list
        // unasked.
        configuration = default_configuration(!none || !flavour.gige);
    } else {
        const std::string text = platform::read_file(*file, largest_file);
        try {
            configuration = read_configuration(json::parse(text, nullptr, true, true), *file);
        } catch (const std::exception& error) {
            refuse("Configuration " + *file + ": " + error.what());
        }
    }
    configuration.state_folder = state_folder();
    platform::create_folders(platform::utf8_from_path(configuration.state_folder));
    for (InterfaceEntry& interface : configuration.interfaces)
        for (CameraEntry& entry : interface.cameras)
            entry.camera.state_file = configuration.state_folder / (entry.camera.serial + ".camera");
    return configuration;
}

}  // namespace kivsim
