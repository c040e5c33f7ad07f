#include "configuration.h"

#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

#include "kiv/platform/environment.h"
#include "kiv/platform/paths.h"

namespace kivsim {
namespace {

namespace platform = kiv::platform;
using nlohmann::json;

constexpr uint64_t largest_file = 1 << 20;

[[noreturn]] void refuse(const std::string& what) { throw std::runtime_error(what); }

/// A JSON object that knows its place in the file, for messages, and what may stand in it.
class Section {
public:
    Section(const json& object, std::string place, std::initializer_list<std::string_view> keys)
        : object_(object), place_(std::move(place)) {
        if (!object.is_object()) refuse(place_ + " is no object");
        for (const auto& [key, value] : object.items())
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) refuse(place_ + " has an unknown key \"" + key + "\"");
    }

    template <typename T>
    void Get(const char* key, T& value) const {
        const auto found = object_.find(key);
        if (found == object_.end()) return;
        try {
            if constexpr (std::is_same_v<T, std::string>)
                value = found->template get_ref<const std::string&>();
            else if (std::is_same_v<T, bool> ? !found->is_boolean() : !found->is_number())
                refuse(place_ + "." + key + " has the wrong type");
            else
                value = found->template get<T>();
        } catch (const json::exception&) {
            refuse(place_ + "." + key + " has the wrong type");
        }
    }
    uint32_t Unsigned(const char* key, uint32_t value) const {
        const auto found = object_.find(key);
        if (found == object_.end()) return value;
        if (!found->is_number_unsigned() || found->get<uint64_t>() > UINT32_MAX)
            refuse(place_ + "." + key + " is no whole number");
        return found->get<uint32_t>();
    }
    const json& List(const char* key) const {
        static const json none = json::array();
        const auto found = object_.find(key);
        if (found == object_.end()) return none;
        if (!found->is_array()) refuse(place_ + "." + key + " is no list");
        return *found;
    }

private:
    const json& object_;
    std::string place_;
};

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

CameraEntry read_camera(const json& object, const std::string& place, const InterfaceEntry& interface, const std::string& file) {
    const Section section(object, place,
                          {"id", "model", "serial", "user_id", "url", "width", "height", "color", "frame_rate", "images", "seed",
                           "unplug_file", "link_megabytes_per_second"});
    CameraEntry entry;
    CameraConfig& camera = entry.camera;
    std::string url = "zip";
    section.Get("serial", camera.serial);
    entry.id = interface.id + "_" + camera.serial;
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
    return entry;
}

const std::set<std::string> tl_types = {"Custom", "GEV", "CL", "CLHS", "CXP", "U3V"};

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

Configuration read_configuration(const json& root, const std::string& file) {
    const Section section(root, "the file", {"tl_type", "interfaces"});
    Configuration configuration;
    section.Get("tl_type", configuration.tl_type);
    if (!tl_types.contains(configuration.tl_type))
        refuse("tl_type " + configuration.tl_type + " is none of Custom, GEV, CL, CLHS, CXP, U3V");
    for (const json& item : section.List("interfaces")) {
        const std::string place = "interfaces[" + std::to_string(configuration.interfaces.size()) + "]";
        const Section part(item, place, {"id", "cameras"});
        InterfaceEntry interface;
        interface.id = "SIM" + std::to_string(configuration.interfaces.size());
        part.Get("id", interface.id);
        if (!is_id(interface.id)) refuse(place + ".id is no text of 1 to 128 characters");
        for (const json& camera : part.List("cameras"))
            interface.cameras.push_back(
                read_camera(camera, place + ".cameras[" + std::to_string(interface.cameras.size()) + "]", interface, file));
        configuration.interfaces.push_back(std::move(interface));
    }
    check_unique(configuration);
    return configuration;
}

Configuration default_configuration() {
    Configuration configuration;
    CameraEntry color, mono;
    color.id = "SIM0_4F0001";
    color.camera.model = "KivSim-5MC";
    color.camera.serial = "4F0001";
    color.camera.color = true;
    mono.id = "SIM1_4F0002";
    mono.camera.model = "KivSim-2MM";
    mono.camera.serial = "4F0002";
    mono.camera.sensor_width = 1600;
    mono.camera.sensor_height = 1200;
    mono.camera.max_frame_rate = 60;
    mono.camera.seed = 2;
    mono.camera.url = CameraConfig::Url::Plain;
    configuration.interfaces = {{"SIM0", {color}}, {"SIM1", {mono}}};
    return configuration;
}

std::filesystem::path state_folder() {
    if (const auto chosen = platform::get_environment("KIV_SIM_STATE"); chosen && !chosen->empty())
        return platform::path_from_utf8(*chosen);
    return platform::path_from_utf8(platform::join_path(platform::user_runtime_folder(), "kiv-sim"));
}

}  // namespace

Configuration load_configuration() {
    const auto file = platform::get_environment("KIV_SIM_CONFIG");
    Configuration configuration;
    if (!file || file->empty()) {
        configuration = default_configuration();
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
