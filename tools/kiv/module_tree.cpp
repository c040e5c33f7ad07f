#include "module_tree.h"

#include <algorithm>
#include <array>

#include "description.h"

namespace {

struct Fact {
    const char* key;
    int32_t command;
};

// GenTL's TL_INFO_CMD and DEVICE_INFO_CMD, those that are texts.
constexpr std::array kLayerFacts{Fact{"vendor", 1}, Fact{"model", 2}, Fact{"version", 3}, Fact{"type", 4}, Fact{"path", 6}};
constexpr std::array kDeviceFacts{Fact{"vendor", 1}, Fact{"model", 2}, Fact{"type", 3}, Fact{"user_name", 6}, Fact{"serial", 7}};

/// Facts are optional in the standard: those that a producer does not tell are left out.
template <std::size_t Count, class Read>
std::map<std::string, std::string> facts_of(const std::array<Fact, Count>& wanted, const Read& read) {
    std::map<std::string, std::string> facts;
    for (const Fact& fact : wanted) {
        try {
            facts[fact.key] = read_text([&](char* buffer, uint32_t* size) { return read(fact.command, buffer, size); }, "");
        } catch (const ApiError&) {
        }
    }
    return facts;
}

/// A step that may fail without an end to the walk.
template <class Step>
void attempt(Module& module, const Step& step) {
    try {
        step();
    } catch (const ApiError& failure) {
        module.errors.emplace_back(failure.what());
    }
}

/// Null when the module has no node map.
NODE_HANDLE root_of(void* handle) {
    NODE_HANDLE root = nullptr;
    const K_STATUS_CODES status = K_GenTL_GetNodeByName(handle, "Root", &root);
    if (status != K_ST_NO_DATA) check(status, "K_GenTL_GetNodeByName", "Root");
    return status == K_ST_SUCCESS ? root : nullptr;
}

void read_features(Module& module, void* handle, const FeatureFilter& filter) {
    NODE_HANDLE root = root_of(handle);
    module.has_features = root != nullptr;
    if (root == nullptr) return;
    walk_features(
        Node(root), filter, [handle](const Node& category) { return category.ModuleSubFeatures(handle); },
        [&module](const Feature& feature, const Path& path) { module.features.emplace_back(feature, path); });
}

class TreeReader {
public:
    TreeReader(Factory& factory, const TreeWishes& wishes)
        : factory_(factory), wishes_(wishes), cameras_(list_cameras(factory)) {}

    std::vector<Module> Layers() const {
        uint32_t count = 0;
        check(K_GenTL_GetNumberOfTransportLayers(factory_.Get(), &count), "K_GenTL_GetNumberOfTransportLayers");
        std::vector<Module> layers;
        for (uint32_t i = 0; i < count; ++i) layers.push_back(Layer(i));
        return layers;
    }

private:
    Module Layer(uint32_t index) const {
        std::array<char, 1024> key{};
        TRANSPORT_LAYER_HANDLE layer = nullptr;
        check(K_GenTL_GetTransportLayerByIndex(factory_.Get(), index, &layer, key.data(), static_cast<uint32_t>(key.size())),
              "K_GenTL_GetTransportLayerByIndex", std::to_string(index));
        Module module;
        module.id = key.data();
        module.facts = facts_of(kLayerFacts, [layer](int32_t command, char* buffer, uint32_t* size) {
            int32_t type = 0;
            return K_GenTL_TLGetInfo(layer, command, &type, buffer, size);
        });
        if (wishes_.features) attempt(module, [&] { read_features(module, layer, wishes_.filter); });
        if (wishes_.descriptions) attempt(module, [&] { module.description = description_of(layer, layer); });
        attempt(module, [&] { AddInterfaces(module, layer); });
        return module;
    }

    static std::vector<std::string> InterfaceIds(TRANSPORT_LAYER_HANDLE layer) {
        uint32_t count = 0;
        check(K_GenTL_TLGetNumInterfaces(layer, &count), "K_GenTL_TLGetNumInterfaces");
        std::vector<std::string> ids;
        for (uint32_t i = 0; i < count; ++i) {
            const auto read = [&](char* buffer, uint32_t* size) { return K_GenTL_TLGetInterfaceID(layer, i, buffer, size); };
            ids.push_back(read_text(read, "K_GenTL_TLGetInterfaceID", std::to_string(i)));
        }
        std::sort(ids.begin(), ids.end());
        return ids;
    }

    static std::vector<INTERFACE_HANDLE> OpenInterfaces(TRANSPORT_LAYER_HANDLE layer) {
        std::vector<INTERFACE_HANDLE> opened;
        INTERFACE_HANDLE handle = nullptr;
        while (K_GenTL_GetInterfaceLayerByIndex(layer, static_cast<uint32_t>(opened.size()), &handle) == K_ST_SUCCESS)
            opened.push_back(handle);
        return opened;
    }

    /// What an interface calls itself; empty when its node map does not tell.
    static std::string IdByFeature(INTERFACE_HANDLE handle) {
        NODE_HANDLE node = nullptr;
        if (K_GenTL_GetNodeByName(handle, "InterfaceID", &node) != K_ST_SUCCESS) return {};
        return read_feature(Node(node)).text;
    }

    void AddInterfaces(Module& layer_module, TRANSPORT_LAYER_HANDLE layer) const {
        std::vector<std::string> ids = InterfaceIds(layer);
        const std::vector<INTERFACE_HANDLE> opened = OpenInterfaces(layer);
        // Handles come in the order of the identifiers. That tells which is which as long as every interface could be opened.
        const bool all_open = ids.size() == opened.size();
        for (std::size_t i = 0; i < opened.size(); ++i) {
            const std::string id = all_open ? ids[i] : IdByFeature(opened[i]);
            layer_module.below.push_back(Interface(layer_module.id, id, layer, opened[i]));
        }
        if (all_open) return;
        for (const Module& module : layer_module.below) ids.erase(std::remove(ids.begin(), ids.end(), module.id), ids.end());
        for (const std::string& id : ids) {
            Module module;
            module.kind = ModuleKind::kInterface;
            module.id = id;
            module.state = "not open";
            layer_module.below.push_back(std::move(module));
        }
    }

    Module Interface(const std::string& key, const std::string& id, TRANSPORT_LAYER_HANDLE layer, INTERFACE_HANDLE handle) const {
        Module module;
        module.kind = ModuleKind::kInterface;
        module.id = id;
        module.state = "open";
        if (wishes_.features) attempt(module, [&] { read_features(module, handle, wishes_.filter); });
        if (wishes_.descriptions) attempt(module, [&] { module.description = description_of(layer, handle); });
        attempt(module, [&] {
            uint32_t count = 0;
            check(K_GenTL_IFGetNumDevices(handle, &count), "K_GenTL_IFGetNumDevices", id);
            for (uint32_t i = 0; i < count; ++i) module.below.push_back(Device(key, id, layer, handle, i));
        });
        return module;
    }

    Module Device(const std::string& key, const std::string& interface_id, TRANSPORT_LAYER_HANDLE layer, INTERFACE_HANDLE handle,
                  uint32_t index) const {
        Module module;
        module.kind = ModuleKind::kDevice;
        const auto read_id = [&](char* buffer, uint32_t* size) { return K_GenTL_IFGetDeviceName(handle, index, buffer, size); };
        module.id = read_text(read_id, "K_GenTL_IFGetDeviceName", std::to_string(index));
        module.facts = facts_of(kDeviceFacts, [&](int32_t command, char* buffer, uint32_t* size) {
            return K_GenTL_IFGetDeviceInfoString(layer, handle, module.id.c_str(), command, buffer, size);
        });
        const std::string camera_id = "TL=>" + key + " , INT=>" + interface_id + " , DEV=>" + module.id;
        const auto camera =
            std::find_if(cameras_.begin(), cameras_.end(), [&](const auto& entry) { return entry.id == camera_id; });
        module.state = camera != cameras_.end() ? camera->state : "unknown";
        if (camera == cameras_.end()) return module;
        module.camera_id = camera_id;
        if (wishes_.open && module.state == "free") attempt(module, [&] { ReadOpenDevice(module, layer); });
        return module;
    }

    void ReadOpenDevice(Module& module, TRANSPORT_LAYER_HANDLE layer) const {
        const Camera camera(factory_, module.camera_id);
        void* device = nullptr;
        check(K_Camera_GetLocalDeviceHandle(camera.Get(), &device), "K_Camera_GetLocalDeviceHandle", module.camera_id);
        if (wishes_.features) attempt(module, [&] { read_features(module, device, wishes_.filter); });
        if (wishes_.descriptions) attempt(module, [&] { module.description = description_of(layer, device); });
    }

    Factory& factory_;
    const TreeWishes& wishes_;
    const std::vector<CameraEntry> cameras_;
};

}  // namespace

std::vector<Module> read_modules(Factory& factory, const TreeWishes& wishes) { return TreeReader(factory, wishes).Layers(); }
