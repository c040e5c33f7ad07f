#include "grab_chunks.h"

#include <algorithm>
#include <set>

#include "feature.h"
#include "text.h"

namespace {

constexpr const char* kActive = "ChunkModeActive";
constexpr const char* kSelector = "ChunkSelector";
constexpr const char* kEnable = "ChunkEnable";
/// A register that is longer is the image itself, or a table.
constexpr int64_t kLongestRegister = 4096;
constexpr uint32_t kNotAvailable = 1;

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> words;
    for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(',', begin);
        words.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
    }
    return words;
}

std::vector<std::string> offered_chunks(const Camera& camera) {
    std::vector<std::string> names;
    const NODE_HANDLE selector = camera.FindNode(kSelector);
    if (selector == nullptr) return names;
    for (const Node& entry : Node(selector).Entries())
        if (entry.IsAvailable()) names.push_back(entry.Symbolic(kSelector));
    return names;
}

bool is_any_on(const Camera& camera, const std::vector<std::string>& names, const TemporarySettings& settings) {
    if (names.empty()) return camera.Integer(kEnable).value_or(1) != 0;
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        const std::string on = settings.Selected(kSelector, name, kEnable);
        // The image is a chunk like others to cameras that have it on at all times.
        return name != "Image" && on != "0" && on != "false";
    });
}

void require_known(const std::vector<std::string>& asked, const std::vector<std::string>& offered) {
    for (const std::string& name : asked) {
        if (std::find(offered.begin(), offered.end(), name) != offered.end()) continue;
        const std::vector<std::string> near = similar_names(name, offered);
        throw ToolError(ExitCode::kFailed, "the camera has no chunk \"" + printable(name) + "\"; it has " +
                                               printable(joined(offered, ", ")) +
                                               (near.empty() ? "" : ". Did you mean " + printable(joined(near, " or ")) + "?"));
    }
}

/// Every feature in the categories below one, categories themselves left out.
void collect(const Camera& camera, const Node& category, std::set<std::string>& seen, std::vector<Node>& features) {
    if (!seen.insert(category.Name()).second) return;
    for (const Node& node : category.SubFeatures(camera.Get())) {
        if (node.GetKind() == Kind::kCategory)
            collect(camera, node, seen, features);
        else
            features.push_back(node);
    }
}

bool has_value(Kind kind) {
    return kind != Kind::kCategory && kind != Kind::kCommand && kind != Kind::kEntry && kind != Kind::kOther;
}

bool is_in_chunks(const Node& node) { return has_value(node.GetKind()) && node.Access() == kNotAvailable; }

bool is_short(const Node& node) {
    int64_t length = 0;
    return K_Node_GetRegisterLength(node.Handle(), &length) == K_ST_SUCCESS && length <= kLongestRegister;
}

}  // namespace

void switch_chunks_on(const Camera& camera, const std::string& which, TemporarySettings& settings) {
    if (camera.FindNode(kActive) == nullptr)
        throw ToolError(ExitCode::kFailed, "the camera has no chunk data: there is no feature " + std::string(kActive));
    // Which chunks can be chosen, and whether they are on, some cameras tell only in chunk mode.
    if (camera.Integer(kActive) != 1) settings.Set(kActive, "1");
    const std::vector<std::string> offered = offered_chunks(camera);
    std::vector<std::string> wanted;
    if (which == "all" || (which.empty() && !is_any_on(camera, offered, settings))) wanted = offered;
    if (!which.empty() && which != "all") wanted = split(which);
    require_known(wanted, offered);
    for (const std::string& name : wanted) {
        const std::string on = settings.Selected(kSelector, name, kEnable);
        if (on == "0" || on == "false") settings.SetSelected(kSelector, name, kEnable, "1");
    }
}

ChunkFeatures::ChunkFeatures(const Camera& camera) {
    std::vector<Node> found;
    std::set<std::string> seen;
    collect(camera, Node(camera.NodeByName("Root")), seen, found);
    const NODE_HANDLE control = camera.FindNode("ChunkDataControl");
    std::set<std::string> in_control;
    if (control != nullptr) {
        std::vector<Node> features;
        std::set<std::string> below;
        collect(camera, Node(control), below, features);
        for (const Node& node : features) in_control.insert(node.Name());
    }
    for (const Node& node : found) {
        const std::string name = node.Name();
        if (name.rfind("Chunk", 0) != 0 && in_control.count(name) == 0) continue;
        std::vector<std::string> selects;
        for (const Node& selected : node.Selected())
            if (is_in_chunks(selected)) selects.push_back(selected.Name());
        if (is_in_chunks(node) || !selects.empty()) features_.push_back({name, node.GetKind(), node, selects});
    }
}

nlohmann::json ChunkFeatures::Read() const {
    nlohmann::json values = nlohmann::json::object();
    for (const One& feature : features_) {
        if (!feature.node.IsReadable()) continue;
        if (feature.kind == Kind::kRegister && !is_short(feature.node)) continue;
        try {
            values[feature.name] = node_value(feature.node, feature.kind);
        } catch (const ApiError& failure) {
            values[feature.name] = nullptr;
        }
    }
    // A selector that is not in the chunks itself says nothing where no value depends on it.
    for (const One& feature : features_) {
        const auto is_there = [&](const std::string& name) { return values.contains(name); };
        if (!feature.selects.empty() && std::none_of(feature.selects.begin(), feature.selects.end(), is_there))
            values.erase(feature.name);
    }
    return values;
}
