/// The modules that producers consist of, read once: transport layers, their interfaces, the devices on these.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "camera_list.h"
#include "feature_tree.h"

enum class ModuleKind { kTransportLayer, kInterface, kDevice };

struct Module {
    ModuleKind kind = ModuleKind::kTransportLayer;
    std::string id;                            ///< a transport layer's key, otherwise the producer's identifier
    std::map<std::string, std::string> facts;  ///< what the producer tells without opening the module: "vendor", "model", ...
    std::string state;                         ///< of a device: as in CameraEntry; of an interface: "open" or "not open"
    std::string camera_id;                     ///< of a device that is in the list of cameras
    bool has_features = false;                 ///< it was asked for its own features and has a node map
    std::vector<std::pair<Feature, Path>> features;
    std::string description;          ///< empty unless asked for and there
    std::vector<std::string> errors;  ///< what was asked for and failed
    std::vector<Module> below;
};

struct TreeWishes {
    bool features = false;
    bool descriptions = false;
    bool open = false;  ///< devices tell features and description only while they are open
    FeatureFilter filter;
};

/// Looks for producers anew. A module that fails is told in its `errors` and does not hide the others.
std::vector<Module> read_modules(Factory& factory, const TreeWishes& wishes);
