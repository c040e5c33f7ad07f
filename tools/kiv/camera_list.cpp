#include "camera_list.h"

#include <algorithm>
#include <array>

#include "text.h"

namespace {

enum CameraInfoCommand : uint32_t { kVendor = 1, kModel = 2, kUserName = 6, kSerial = 7, kDeviceId = 1003 };

/// GenTL's DEVICE_ACCESS_STATUS in words.
constexpr std::array kStates{"unknown", "free", "read only", "unreachable", "busy", "open", "open"};

std::string state_of(const Factory& factory, const std::string& id) {
    const std::optional<int32_t> access = factory.CameraAccess(id);
    const bool is_known = access && *access >= 0 && static_cast<std::size_t>(*access) < kStates.size();
    return is_known ? kStates[static_cast<std::size_t>(*access)] : kStates[0];
}

/// One way to name a camera.
struct Naming {
    const char* prefix;
    const char* what;
    bool (*fits)(const CameraEntry& camera, const std::string& word);
};

constexpr std::array<Naming, 4> kNamings{{
    {"index:", "index", [](const CameraEntry& camera, const std::string& word) { return word == std::to_string(camera.index); }},
    {"id:", "identifier",
     [](const CameraEntry& camera, const std::string& word) { return word == camera.id || word == camera.device_id; }},
    {"serial:", "serial number", [](const CameraEntry& camera, const std::string& word) { return word == camera.serial; }},
    {"name:", "user name", [](const CameraEntry& camera, const std::string& word) { return word == camera.user_name; }},
}};

struct Match {
    const CameraEntry* camera;
    const Naming* naming;
};

bool starts_with(const std::string& text, const std::string& prefix) { return text.compare(0, prefix.size(), prefix) == 0; }

/// Every camera that fits, with the first naming by which it does.
std::vector<Match> matches(const std::vector<CameraEntry>& cameras, const std::string& word) {
    const auto* forced =
        std::find_if(kNamings.begin(), kNamings.end(), [&](const Naming& naming) { return starts_with(word, naming.prefix); });
    const std::string bare = forced != kNamings.end() ? word.substr(std::string(forced->prefix).size()) : word;
    std::vector<Match> found;
    for (const CameraEntry& camera : cameras) {
        const auto fits = [&](const Naming& naming) {
            return (forced == kNamings.end() || &naming == forced) && !bare.empty() && naming.fits(camera, bare);
        };
        const auto* naming = std::find_if(kNamings.begin(), kNamings.end(), fits);
        if (naming != kNamings.end()) found.push_back({&camera, naming});
    }
    return found;
}

std::string describe(const CameraEntry& camera) {
    return "\n  " + std::to_string(camera.index) + "  " + printable(camera.model) + "  SN " + printable(camera.serial) + "  " +
           printable(camera.id);
}

}  // namespace

nlohmann::json to_json(const CameraEntry& camera) {
    return {{"index", camera.index}, {"id", camera.id},         {"device_id", camera.device_id}, {"vendor", camera.vendor},
            {"model", camera.model}, {"serial", camera.serial}, {"user_name", camera.user_name}, {"state", camera.state}};
}

std::vector<CameraEntry> list_cameras(Factory& factory) {
    std::vector<CameraEntry> cameras;
    for (const std::string& id : factory.FindCameras()) {
        CameraEntry camera{cameras.size(), id, {}, {}, {}, {}, {}, state_of(factory, id)};
        camera.device_id = factory.CameraInfo(id, kDeviceId);
        camera.vendor = factory.CameraInfo(id, kVendor);
        camera.model = factory.CameraInfo(id, kModel);
        camera.user_name = factory.CameraInfo(id, kUserName);
        camera.serial = factory.CameraInfo(id, kSerial);
        cameras.push_back(camera);
    }
    return cameras;
}

CameraEntry find_camera(Factory& factory, const std::string& word) {
    const std::vector<CameraEntry> cameras = list_cameras(factory);
    if (cameras.empty())
        throw ToolError(ExitCode::kNothingFound, "no camera found; \"kiv producers\" shows what became of each producer");
    const std::vector<Match> found = matches(cameras, word);
    if (found.size() == 1) return *found.front().camera;
    std::string message = found.empty()
                              ? "no camera is called \"" + printable(word) + "\". There " + (cameras.size() == 1 ? "is:" : "are:")
                              : "\"" + printable(word) + "\" could be " + counted(found.size(), "camera") + ":";
    if (found.empty())
        for (const CameraEntry& camera : cameras) message += describe(camera);
    for (const Match& match : found) message += describe(*match.camera) + "  (by its " + match.naming->what + ")";
    if (!found.empty()) message += "\n  Say which with index:, serial:, name: or id: before it, or give the identifier.";
    throw ToolError(ExitCode::kNoSuchCamera, message);
}
