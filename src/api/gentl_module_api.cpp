// K_GenTL_*: descriptions and node maps of modules.
#include <kiv/gentl.h>

#include <algorithm>
#include <cstring>

#include "api/checks.h"
#include "api/text_out.h"
#include "camera/description.h"
#include "features/feature_walk.h"
#include "features/module_maps.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CCameraClass;
using GenICam::Factory::CInterfaceClass;
using GenICam::Factory::CTLWrapper;

// The producer's port behind a module handle: our own objects stand for theirs. What belongs to another producer is not shown to
// this one.
static GenTL::PORT_HANDLE module_port(const CTLWrapper& producer, void* module) {
    const auto port_of = [&producer](const CTLWrapper& owner, GenTL::PORT_HANDLE port) {
        if (&owner != &producer || !port) fail(K_ST_INVALID_HANDLE);
        return port;
    };
    if (is_live(module, HandleKind::transport_layer)) {
        auto& layer = object_of<CTLWrapper>(module);
        return port_of(layer, layer.TL());
    }
    if (is_live(module, HandleKind::interface)) {
        auto& opened = object_of<CInterfaceClass>(module);
        return port_of(opened.Producer(), opened.Handle());
    }
    if (is_live(module, HandleKind::camera)) {
        auto& opened = object_of<CCameraClass>(module);
        return port_of(opened.Producer(), opened.RemoteDevice().Port());
    }
    if (is_live(module, HandleKind::thread)) {
        auto& stream = object_of<ImageLib::CImageStream>(module);
        return port_of(stream.Producer(), stream.Stream());
    }
    if (is_live(module, HandleKind::stream)) {
        auto stream = data_stream(static_cast<STREAM_HANDLE>(module));
        return port_of(stream->Producer(), stream->Handle());
    }
    return module;
}

K_API K_STATUS_CODES K_CALL K_GenTL_Module_GetXmlString(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hModule, void* hOther,
                                                        char* buffer, uint32_t* pSize) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& producer = transport_layer(hTransportLayer);
        handle(hOther);
        auto& size = out(pSize);
        auto port = module_port(producer, hModule);
        auto description = fetch_description(producer, port, description_url(producer, port));
        // Producers round lengths up and fill with NULs, which are no part of the text.
        description.resize(std::min(description.size(), std::strlen(description.c_str())));
        if (description.empty()) return K_ST_NO_DATA;
        if (buffer) return put_node_text(description, buffer, size);
        size = static_cast<uint32_t>(description.size());
        return K_ST_SUCCESS;
    });
}

// The node map of whatever module a handle names.
static GenApi::INodeMap& module_map(void* hModule) {
    handle(hModule);
    GenApi::INodeMap* map = nullptr;
    bool known = true;
    if (is_live(hModule, HandleKind::transport_layer))
        map = system_node_map(object_of<CTLWrapper>(hModule));
    else if (is_live(hModule, HandleKind::interface))
        map = interface_node_map(object_of<CInterfaceClass>(hModule));
    else if (is_live(hModule, HandleKind::camera))
        map = object_of<CCameraClass>(hModule).GetNodeMap();
    else if (is_live(hModule, HandleKind::thread))
        map = object_of<ImageLib::CImageStream>(hModule).GetNodeMap();
    else if (is_live(hModule, HandleKind::stream))
        map = data_stream(static_cast<STREAM_HANDLE>(hModule))->GetNodeMap();
    else
        map = device_node_map(hModule, known);
    if (!known) fail(K_ST_INVALID_HANDLE);
    if (!map) fail(K_ST_NO_DATA);
    return *map;
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetNumOfNodes(void* hModule, uint32_t* pCount) {
    return guarded([&] {
        handle(hModule);
        auto& count = out(pCount);
        count = static_cast<uint32_t>(module_map(hModule).GetNumNodes());
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetNodeByName(void* hModule, const char* name, NODE_HANDLE* phNode) {
    return guarded([&]() -> K_STATUS_CODES {
        auto* found = module_map(hModule).GetNode(name ? name : "");
        if (!found) return K_ST_NO_DATA;
        out(phNode) = handle_to<NODE_HANDLE>(found);
        return K_ST_SUCCESS;
    });
}

// The features of a category; a missing one is "no data" here.
static GenApi::FeatureList_t features_of(void* hModule, const char* category) {
    GenApi::FeatureList_t features;
    if (!sub_features(module_map(hModule), category ? category : "", features)) fail(K_ST_NO_DATA);
    return features;
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetNumOfSubFeatures(void* hModule, const char* category, uint32_t* pCount) {
    return guarded([&] {
        handle(hModule);
        auto& count = out(pCount);
        count = static_cast<uint32_t>(features_of(hModule, category).size());
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetSubFeatureByIndex(void* hModule, const char* category, uint32_t index,
                                                         NODE_HANDLE* phNode) {
    return guarded([&]() -> K_STATUS_CODES {
        auto features = features_of(hModule, category);
        auto* node = index < features.size() ? features[index]->GetNode() : nullptr;
        if (!node) return K_ST_NO_DATA;
        out(phNode) = handle_to<NODE_HANDLE>(node);
        return K_ST_SUCCESS;
    });
}
