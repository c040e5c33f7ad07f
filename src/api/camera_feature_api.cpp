// K_Camera_*: features by name, by index, by category; the description's identity.
#include <kiv/camera.h>
#include <kiv/node.h>

#include "api/checks.h"
#include "api/error_record.h"
#include "api/text_out.h"
#include "features/config_info.h"
#include "features/feature_walk.h"

using namespace kiv;
using namespace kiv::api;

K_API K_STATUS_CODES K_CALL K_Camera_GetNumOfNodes(CAM_HANDLE hCamera, uint32_t* pCount) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto& count = out(pCount);
        count = static_cast<uint32_t>(node_map(opened).GetNumNodes());
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetNodeByIndex(CAM_HANDLE hCamera, uint32_t index, NODE_HANDLE* phNode) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto& result = out(phNode);
        auto* found = node_map(opened).GetNodeByIndex(index);
        result = handle_to<NODE_HANDLE>(found);
        require(found != nullptr);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetNodeByName(CAM_HANDLE hCamera, const char* name, NODE_HANDLE* phNode) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& opened = camera(hCamera);
        out(name);
        auto& result = out(phNode);
        require(*name != '\0');
        auto& map = node_map(opened);
        try {
            auto* found = map.GetNode(name);
            result = handle_to<NODE_HANDLE>(found);
            return found ? K_ST_SUCCESS : K_ST_INVALID_PARAMETER;
        } catch (const GenICam::GenericException& error) {
            record_genicam_error(error.GetDescription(), "");
            return K_ST_GC_ERROR;
        }
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetFeatureByName(CAM_HANDLE hCamera, const char* name, NODE_HANDLE* phNode) {
    return K_Camera_GetNodeByName(hCamera, name, phNode);
}

K_API K_STATUS_CODES K_CALL K_Camera_GetNumOfSubFeatures(CAM_HANDLE hCamera, const char* category, uint32_t* pCount) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        out(category);
        auto& count = out(pCount);
        require(*category != '\0');
        GenApi::FeatureList_t features;
        bool found = sub_features(node_map(opened), category, features);
        count = static_cast<uint32_t>(features.size());
        require(found);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetSubFeatureByIndex(CAM_HANDLE hCamera, const char* category, uint32_t index,
                                                          NODE_HANDLE* phNode) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        out(category);
        auto& result = out(phNode);
        require(*category != '\0');
        GenApi::FeatureList_t features;
        require(sub_features(node_map(opened), category, features) && index < features.size());
        result = handle_to<NODE_HANDLE>(features[index]);
        require(result != nullptr);
        return K_ST_SUCCESS;
    });
}

// Looks the feature up and hands it to the function of node.h; the look-up's status wins.
template <class Operation>
static K_STATUS_CODES by_name(CAM_HANDLE hCamera, const char* name, Operation operation) {
    NODE_HANDLE found = nullptr;
    auto status = K_Camera_GetNodeByName(hCamera, name, &found);
    return status == K_ST_SUCCESS ? operation(found) : status;
}

K_API K_STATUS_CODES K_CALL K_Camera_GetValueInt64(CAM_HANDLE hCamera, const char* name, int64_t* pValue) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_GetValueInt64(n, true, pValue); });
}

K_API K_STATUS_CODES K_CALL K_Camera_SetValueInt64(CAM_HANDLE hCamera, const char* name, int64_t value) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_SetValueInt64(n, true, value); });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetValueDouble(CAM_HANDLE hCamera, const char* name, double* pValue) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_GetValueDouble(n, true, pValue); });
}

K_API K_STATUS_CODES K_CALL K_Camera_SetValueDouble(CAM_HANDLE hCamera, const char* name, double value) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_SetValueDouble(n, true, value); });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetValueString(CAM_HANDLE hCamera, const char* name, char* buffer, uint32_t* pSize) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_GetValueString(n, true, buffer, pSize); });
}

K_API K_STATUS_CODES K_CALL K_Camera_SetValueString(CAM_HANDLE hCamera, const char* name, const char* text) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_SetValueString(n, true, text); });
}

K_API K_STATUS_CODES K_CALL K_Camera_ExecuteCommand(CAM_HANDLE hCamera, const char* name) {
    return by_name(hCamera, name, [&](NODE_HANDLE n) { return K_Node_ExecuteCommand(n); });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetConfigInfo(CAM_HANDLE hCamera, uint32_t info, char* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        require(info <= K_CONFIG_INFO_VERSION_GUID);
        out(buffer), out(pSize);
        auto& device = out(node_map(opened).GetDeviceInfo());
        return put_node_text(config_info(device, info), buffer, *pSize);
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_InvalidateNodes(CAM_HANDLE hCamera) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        node_map(opened).InvalidateNodes();
        return K_ST_SUCCESS;
    });
}
