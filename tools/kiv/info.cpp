// kiv info: who a camera is, where it hangs, and how it is set at present.

#include <array>
#include <cstdio>

#include "camera_list.h"
#include "feature.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "A camera that is in use elsewhere still tells its identity; the exit code is 4 then.\n"
    "\n"
    "Examples:\n"
    "  kiv info 0\n"
    "  kiv info serial:4F0001 --json";

struct DescriptionFact {
    const char* key;
    const char* label;
    uint32_t number;
};

/// What the camera's description says about itself.
constexpr std::array kDescriptionFacts{
    DescriptionFact{"vendor", "vendor", K_CONFIG_INFO_VENDOR_NAME},
    DescriptionFact{"model", "model", K_CONFIG_INFO_MODEL_NAME},
    DescriptionFact{"tool_tip", "about", K_CONFIG_INFO_TOOL_TIP},
    DescriptionFact{"name_space", "name space", K_CONFIG_INFO_STANDARD_NAME_SPACE},
    DescriptionFact{"device_version", "version", K_CONFIG_INFO_DEVICE_VERSION},
    DescriptionFact{"schema_version", "schema", K_CONFIG_INFO_SCHEMA_VERSION},
    DescriptionFact{"genapi_version", "GenApi", K_CONFIG_INFO_GENAPI_VERSION},
    DescriptionFact{"product_guid", "product id", K_CONFIG_INFO_PRODUCT_GUID},
    DescriptionFact{"version_guid", "version id", K_CONFIG_INFO_VERSION_GUID},
};

/// Standard features that tell most about a camera's state. A camera need not have them.
constexpr std::array kStateFeatures{"DeviceFirmwareVersion",
                                    "DeviceTemperature",
                                    "SensorWidth",
                                    "SensorHeight",
                                    "Width",
                                    "Height",
                                    "OffsetX",
                                    "OffsetY",
                                    "PixelFormat",
                                    "PayloadSize",
                                    "AcquisitionMode",
                                    "AcquisitionFrameRate",
                                    "ExposureTime",
                                    "Gain",
                                    "TriggerMode"};

nlohmann::json description(const Camera& camera) {
    nlohmann::json json = nlohmann::json::object();
    for (const DescriptionFact& fact : kDescriptionFacts) {
        const auto read = [&](char* buffer, uint32_t* size) {
            return K_Camera_GetConfigInfo(camera.Get(), fact.number, buffer, size);
        };
        json[fact.key] = read_text(read, "K_Camera_GetConfigInfo", fact.key);
    }
    uint32_t nodes = 0;
    check(K_Camera_GetNumOfNodes(camera.Get(), &nodes), "K_Camera_GetNumOfNodes");
    json["nodes"] = nodes;
    return json;
}

std::vector<Feature> state(const Camera& camera) {
    std::vector<Feature> features;
    for (const char* name : kStateFeatures) {
        NODE_HANDLE node = camera.FindNode(name);
        if (node != nullptr && Node(node).IsReadable()) features.push_back(read_feature(Node(node)));
    }
    return features;
}

void print_line(const std::string& label, const std::string& text) {
    if (!text.empty()) std::printf("  %s %s\n", padded(label, 22).c_str(), printable(text).c_str());
}

void print_identity(const CameraEntry& camera) {
    std::printf("Camera %zu\n", camera.index);
    print_line("identifier", camera.id);
    print_line("vendor", camera.vendor);
    print_line("model", camera.model);
    print_line("serial number", camera.serial);
    print_line("user name", camera.user_name);
    print_line("state", camera.state);
}

ExitCode info_as_json(const Factory& factory, const CameraEntry& entry) {
    nlohmann::json json = to_json(entry);
    ExitCode exit = ExitCode::kOk;
    try {
        const Camera camera(factory, entry.id);
        json["description"] = description(camera);
        for (const Feature& feature : state(camera)) json["features"].push_back(to_json(feature));
    } catch (const ApiError& failure) {
        json["error"] = failure.what();
        exit = failure.Exit();
    }
    std::fputs(json_text(json).c_str(), stdout);
    return exit;
}

ExitCode info(const Options& options, const std::string& word) {
    Factory factory(options.registry);
    const CameraEntry entry = find_camera(factory, word);
    if (options.json) return info_as_json(factory, entry);
    print_identity(entry);
    const Camera camera(factory, entry.id);
    const nlohmann::json facts = description(camera);
    std::printf("Description (%u nodes)\n", facts["nodes"].get<unsigned>());
    for (const DescriptionFact& fact : kDescriptionFacts) print_line(fact.label, facts[fact.key].get<std::string>());
    std::puts("State");
    for (const Feature& feature : state(camera)) print_line(feature.name, value_for_reading(feature));
    return ExitCode::kOk;
}

}  // namespace

void add_info_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("info", "Show a camera's identity and state");
    command->footer(kFooter);
    auto word = std::make_shared<std::string>();
    command->add_option("camera", *word, kCameraHelp)->required();
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation, word] { invocation.run = [&invocation, word] { return info(invocation.options, *word); }; });
}
