// Every argument of every function of these families is missing once, alone and with each of the others.
#include "argument_order.h"

#include <GenApi/i_base.h>

namespace kiv_test {
namespace {

constexpr K_STATUS_CODES ok = K_ST_SUCCESS;

class ArgumentsOfNodes : public ArgumentOrder {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenCamera()); }
};

TEST_F(ArgumentsOfNodes, Identity) {
    const auto width = Node("Width"), gain = Node("Gain"), raw = Node("GainRaw");
    std::uint32_t number = 0;
    std::int64_t integer = 0;
    double value = 0;
    NODE_HANDLE other = nullptr;
    EXPECT_ORDER("H0 P1 P2", K_Node_GetName, ok, width, text, &size, 1);
    EXPECT_ORDER("H0 P1 P2", K_Node_GetToolTip, ok, width, text, &size);
    EXPECT_ORDER("H0 P1 P2", K_Node_GetDescription, ok, width, text, &size);
    EXPECT_ORDER("H0 P1 P2", K_Node_GetDisplayName, ok, width, text, &size);
    EXPECT_ORDER("H0 P1 P2", K_Node_GetEventID, ok, width, text, &size);
    EXPECT_ORDER("H0 P1 P2", K_Node_GetDocuURL, ok, width, text, &size);
    EXPECT_ORDER("H0 P1 P2", K_Node_GetUnit, ok, width, text, &size);
    EXPECT_ORDER("H0 P2 P3", K_Node_GetPropertyNameByIndex, ok, width, 0u, text, &size);
    char attribute[64];
    std::uint32_t attribute_size = sizeof attribute;
    EXPECT_ORDER("H0 P1 P2 P3 P4 P5", K_Node_GetPropertyByName, ok, width, "Unit", text, &size, attribute, &attribute_size);
    EXPECT_ORDER("H0 P1", K_Node_GetNameSpace, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetVisibility, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetAccessMode, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetIsCachable, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetCachingMode, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetPollingTime, ok, width, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetIsStreamable, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetIsDeprecated, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetType, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetIsSelector, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetRepresentation, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetNumOfProperties, ok, width, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetDisplayNotation, ok, gain, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetDisplayPrecision, ok, gain, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetFloatHasInc, ok, gain, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetFloatInc, ok, gain, &value);
    EXPECT_ORDER("H0 P1", K_Node_GetAlias, ok, width, &other);
    EXPECT_ORDER("H0 P1", K_Node_GetIntAlias, ok, gain, &other);
    EXPECT_ORDER("H0 P1 P", K_Node_GetEnumAlias, ok, gain, &other);
    EXPECT_ORDER("H0 P1", K_Node_GetFloatAlias, ok, raw, &other);
    EXPECT_ORDER("H0", K_Node_ImposeAccessMode, ok, width, 4u);
    EXPECT_ORDER("H0", K_Node_ImposeVisibility, ok, width, 0u);
}

void ignore(void*) {}

TEST_F(ArgumentsOfNodes, Values) {
    const auto width = Node("Width"), gain = Node("Gain"), pattern = Node("Pattern"), trigger = Node("Trigger");
    const auto selector = Node("LevelSelector"), selected = Node("Level"), blob = Node("Blob");
    std::uint32_t number = 0;
    std::int64_t integer = 0;
    double value = 0;
    std::uint8_t bytes[16] = {};
    NODE_HANDLE other = nullptr, entry = nullptr;
    ASSERT_STATUS(ok, K_Node_GetEnumEntryByIndex(pattern, 0, &entry));
    EXPECT_ORDER("H0 P2", K_Node_GetValueInt64, ok, width, true, &integer);
    EXPECT_ORDER("H0", K_Node_SetValueInt64, ok, width, true, 64);
    EXPECT_ORDER("H0 P2", K_Node_GetValueDouble, ok, gain, true, &value);
    EXPECT_ORDER("H0", K_Node_SetValueDouble, ok, gain, true, 2.0);
    EXPECT_ORDER("H0 P2 P3", K_Node_GetValueString, ok, width, true, text, &size);
    EXPECT_ORDER("H0 P2", K_Node_SetValueString, ok, width, true, "64");
    EXPECT_ORDER("H0 P1", K_Node_GetMinInt64, ok, width, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetMaxInt64, ok, width, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetInc, ok, width, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetMinDouble, ok, gain, &value);
    EXPECT_ORDER("H0 P1", K_Node_GetMaxDouble, ok, gain, &value);
    EXPECT_ORDER("H0", K_Node_ExecuteCommand, ok, trigger);
    EXPECT_ORDER("H0 P1", K_Node_GetCommandIsDone, ok, trigger, &number);
    EXPECT_ORDER("H0", K_Node_Invalidate, ok, width);
    EXPECT_ORDER("H0 P1", K_Node_GetNumOfEnumEntries, ok, pattern, &number);
    EXPECT_ORDER("H0 P2", K_Node_GetEnumEntryByIndex, ok, pattern, 0u, &other);
    EXPECT_ORDER("H0 P1", K_Node_GetEnumEntryValue, ok, entry, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetNumOfSelectedFeatures, ok, selector, &number);
    EXPECT_ORDER("H0 P1", K_Node_GetNumOfSelectingFeatures, ok, selected, &number);
    EXPECT_ORDER("H0 P2", K_Node_GetSelectedFeatureByIndex, ok, selector, 0u, &other);
    EXPECT_ORDER("H0 P2", K_Node_GetSelectingFeatureByIndex, ok, selected, 0u, &other);
    EXPECT_ORDER("H0", K_Node_GetValueRegister, ok, blob, bytes, 16);
    EXPECT_ORDER("H0", K_Node_SetValueRegister, ok, blob, bytes, 16);
    EXPECT_ORDER("H0 P1", K_Node_GetRegisterLength, ok, blob, &integer);
    EXPECT_ORDER("H0 P1", K_Node_GetRegisterAddress, ok, blob, &integer);
    EXPECT_ORDER("H0 P1", K_Node_RegisterCallback, ok, width, ignore);
}

// A node that offers none of the interfaces is found out after the arguments; so is what is no node at all.
TEST_F(ArgumentsOfNodes, OfTheWrongKind) {
    struct NoNode final : GenApi::IBase {
        GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
        GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }
    } no_node;
    std::uint32_t number = 0;
    std::int64_t integer = 0;
    double value = 0;
    NODE_HANDLE other = nullptr;
    for (auto node : {reinterpret_cast<NODE_HANDLE>(static_cast<GenApi::IBase*>(&no_node)), Node("Device")}) {
        EXPECT_ORDER("H0 P2 P", K_Node_GetValueInt64, ok, node, true, &integer);
        EXPECT_ORDER("H0 P", K_Node_SetValueInt64, ok, node, true, 1);
        EXPECT_ORDER("H0 P2 P", K_Node_GetValueDouble, ok, node, true, &value);
        EXPECT_ORDER("H0 P2 P3 P", K_Node_GetValueString, ok, node, true, text, &size);
        EXPECT_ORDER("H0 P2 P", K_Node_SetValueString, ok, node, true, "1");
        EXPECT_ORDER("H0 P1 P2 P", K_Node_GetUnit, ok, node, text, &size);
        EXPECT_ORDER("H0 P1 P", K_Node_GetRepresentation, ok, node, &number);
        EXPECT_ORDER("H0 P", K_Node_ExecuteCommand, ok, node);
        EXPECT_ORDER("H0 P1 P", K_Node_GetNumOfEnumEntries, ok, node, &number);
        EXPECT_ORDER("H0 P2 P", K_Node_GetEnumEntryByIndex, ok, node, 0u, &other);
        EXPECT_ORDER("H0 P1 P", K_Node_GetRegisterLength, ok, node, &integer);
    }
    const auto node = reinterpret_cast<NODE_HANDLE>(static_cast<GenApi::IBase*>(&no_node));
    EXPECT_ORDER("H0 P1 P2 P", K_Node_GetName, ok, node, text, &size, 0);
    EXPECT_ORDER("H0 P1 P", K_Node_GetType, ok, node, &number);
    EXPECT_ORDER("H0 P1 P", K_Node_GetIsSelector, ok, node, &number);
    EXPECT_ORDER("H0 P", K_Node_Invalidate, ok, node);
    EXPECT_ORDER("H0 P1 P", K_Node_RegisterCallback, ok, node, ignore);
}

class ArgumentsOfCameras : public ArgumentOrder {
protected:
    /// `no_map` is " D" for a camera without a node map: found out after the arguments of its own, before those that the
    /// node functions check.
    void ExpectFeatureOrders(CAM_HANDLE opened, bool has_map) {
        const auto order = [has_map](const char* before, const char* after = "") {
            return std::string(before) + (has_map ? " " : " D ") + after;
        };
        std::uint32_t number = 0;
        std::int64_t integer = 0;
        double value = 0;
        NODE_HANDLE node = nullptr;
        EXPECT_ORDER(order("H0 P1").c_str(), K_Camera_GetNumOfNodes, ok, opened, &number);
        EXPECT_ORDER(order("H0 P2").c_str(), K_Camera_GetNodeByIndex, ok, opened, 0u, &node);
        EXPECT_ORDER(order("H0 P1 P2").c_str(), K_Camera_GetNodeByName, ok, opened, "Width", &node);
        EXPECT_ORDER(order("H0 P1 P2").c_str(), K_Camera_GetFeatureByName, ok, opened, "Width", &node);
        EXPECT_ORDER(order("H0 P1 P2").c_str(), K_Camera_GetNumOfSubFeatures, ok, opened, "Root", &number);
        EXPECT_ORDER(order("H0 P1 P3").c_str(), K_Camera_GetSubFeatureByIndex, ok, opened, "Root", 0u, &node);
        EXPECT_ORDER(order("H0 P1", "P2").c_str(), K_Camera_GetValueInt64, ok, opened, "Width", &integer);
        EXPECT_ORDER(order("H0 P1").c_str(), K_Camera_SetValueInt64, ok, opened, "Width", 64);
        EXPECT_ORDER(order("H0 P1", "P2").c_str(), K_Camera_GetValueDouble, ok, opened, "Gain", &value);
        EXPECT_ORDER(order("H0 P1").c_str(), K_Camera_SetValueDouble, ok, opened, "Gain", 2.0);
        EXPECT_ORDER(order("H0 P1", "P2 P3").c_str(), K_Camera_GetValueString, ok, opened, "Width", text, &size);
        EXPECT_ORDER(order("H0 P1", "P2").c_str(), K_Camera_SetValueString, ok, opened, "Width", "64");
        EXPECT_ORDER(order("H0 P1").c_str(), K_Camera_ExecuteCommand, ok, opened, "Trigger");
        EXPECT_ORDER(order("H0 P2 P3").c_str(), K_Camera_GetConfigInfo, ok, opened, 0u, text, &size);
        EXPECT_ORDER("H0 P", K_Camera_GetConfigInfo, ok, opened, 9u, text, &size);
        EXPECT_ORDER(order("H0").c_str(), K_Camera_InvalidateNodes, ok, opened);
        // Empty names count among the arguments: no node map is asked for them.
        EXPECT_ORDER("H0 P", K_Camera_GetNodeByName, ok, opened, "", &node);
        EXPECT_ORDER("H0 P", K_Camera_GetNumOfSubFeatures, ok, opened, "", &number);
        EXPECT_ORDER("H0 P", K_Camera_GetSubFeatureByIndex, ok, opened, "", 0u, &node);
    }
};

TEST_F(ArgumentsOfCameras, Features) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    ExpectFeatureOrders(camera, true);
}

TEST_F(ArgumentsOfCameras, FeaturesWithoutANodeMap) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE opened = nullptr;
    void* device = nullptr;
    ASSERT_STATUS(ok, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, nullptr, 0));
    ASSERT_STATUS(ok, K_GenTL_GetInterfaceLayerByIndex(layer, 0, &opened));
    ASSERT_STATUS(ok, K_GenTL_IFOpenDevice(opened, "CAM0", GenTL::DEVICE_ACCESS_EXCLUSIVE, &device));
    ASSERT_STATUS(ok, K_GenTL_DevGetPort(device, &camera));
    ExpectFeatureOrders(camera, false);
}

TEST_F(ArgumentsOfCameras, OpeningClosingAndPlaces) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    CAM_HANDLE other = nullptr;
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE opened = nullptr;
    void* device = nullptr;
    const char* id = camera_id.c_str();
    EXPECT_ORDER("H0 P2 I1", K_Camera_OpenEx, K_ST_RESOURCE_IN_USE, factory, id, &other, 3u, 0u, 0u);
    EXPECT_ORDER("H0 P2 I1", K_Camera_Open, K_ST_RESOURCE_IN_USE, factory, id, &other, 0u);
    EXPECT_ORDER("H0 P2 I1", K_Camera_OpenMc, K_ST_RESOURCE_IN_USE, factory, id, &other, 3u, 0u);
    EXPECT_ORDER("H0 P2 I1", K_Camera_Open_Proxy, K_ST_RESOURCE_IN_USE, factory, id, &other);
    EXPECT_ORDER("H0", K_Camera_Close, never, camera);
    EXPECT_ORDER("H0 P3 P2", K_Camera_ReadData, ok, camera, 0u, text, &size);
    EXPECT_ORDER("H0 P3 P2", K_Camera_WriteData, K_ST_INVALID_ADDRESS, camera, 0x9000u, text, &size);
    // A missing result counts as a bad handle where a handle is asked for.
    EXPECT_ORDER("H0 H1", K_Camera_GetTLHandle, ok, camera, &layer);
    EXPECT_ORDER("H0 H1", K_Camera_GetInterfaceHandle, ok, camera, &opened);
    EXPECT_ORDER("H0 H1", K_Camera_GetLocalDeviceHandle, ok, camera, &device);
    EXPECT_ORDER("P0 P2", K_Camera_GetTransportLayerName, ok, camera, text, &size);
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetTransportLayerName(reinterpret_cast<CAM_HANDLE>(factory), text, &size));
    // This producer has no multicast extension: that is found out before the other arguments are looked at.
    EXPECT_ORDER("H0 H1 E P2 P4", K_Camera_IFOpenDeviceMc, ok, layer, opened, "CAM0", 3u, &device, 0u);
}

TEST_F(ArgumentsOfCameras, Factory) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    FACTORY_HANDLE other = nullptr;
    K_GC_ERROR_INFO error;
    K_PRODUCER_REPORT report;
    bool8_kiv changed = false;
    std::uint32_t number = 0;
    std::int32_t access = 0;
    const char* id = camera_id.c_str();
    EXPECT_ORDER("P1", K_Factory_Open, never, "", &other);
    EXPECT_ORDER("H0", K_Factory_Close, never, factory);
    EXPECT_ORDER("H0 P1", K_Factory_UpdateCameraList, ok, factory, &changed);
    EXPECT_ORDER("H0 P1", K_Factory_GetNumOfCameras, ok, factory, &number);
    EXPECT_ORDER("H0 P3 B2", K_Factory_GetCameraIDByIndex, ok, factory, 0u, text, &size);
    EXPECT_ORDER("H0 P3 P", K_Factory_GetCameraIDByIndex, ok, factory, 1u, text, &size);
    EXPECT_ORDER("H0 P4 I1", K_Factory_GetCameraInfo, ok, factory, id, 1u, text, &size);
    EXPECT_ORDER("H0 P2 I1", K_Factory_GetCameraAccess, ok, factory, id, &access);
    EXPECT_ORDER("H0 P2", K_Factory_GetProducerReport, ok, factory, 0u, &report);
    EXPECT_ORDER("P0", K_Factory_GetGenICamErrorInfo, ok, &error);
    EXPECT_ORDER("H0", K_Factory_EnableForceIp, ok, factory, 1u);
    EXPECT_ORDER("H0", K_Factory_SendActionCommand, ok, factory, 1u, 2u, 3u, nullptr, nullptr);
}

TEST_F(ArgumentsOfCameras, ModuleTree) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE opened = nullptr;
    CAM_HANDLE port = nullptr;
    void* device = nullptr;
    void* module = nullptr;
    bool8_kiv flag = false;
    std::uint32_t number = 0;
    std::int32_t type = 0;
    NODE_HANDLE node = nullptr;
    ASSERT_STATUS(ok, K_Camera_GetTLHandle(camera, &layer));
    ASSERT_STATUS(ok, K_Camera_GetInterfaceHandle(camera, &opened));
    module = layer;
    EXPECT_ORDER("H0 P1", K_GenTL_GetNumberOfTransportLayers, ok, factory, &number);
    EXPECT_ORDER("H0 P2", K_GenTL_GetTransportLayerByIndex, ok, factory, 0u, &layer, text, size);
    EXPECT_ORDER("H0 P2 P", K_GenTL_GetTransportLayerByIndex, ok, factory, 1u, &layer, text, size);
    EXPECT_ORDER("H0 P1 P2", K_GenTL_GetTransportLayerByName, ok, factory, key, &layer);
    EXPECT_ORDER("H0", K_GenTL_TLUpdateInterfaceList, ok, layer, nullptr, 0u);
    EXPECT_ORDER("H0 P1", K_GenTL_TLGetNumInterfaces, ok, layer, &number);
    EXPECT_ORDER("H0 P3", K_GenTL_TLGetInterfaceID, ok, layer, 0u, text, &size);
    EXPECT_ORDER("H0 P4", K_GenTL_TLGetInfo, ok, layer, GenTL::TL_INFO_VENDOR, &type, text, &size);
    EXPECT_ORDER("H0 P4", K_GenTL_TLGetInfo, ok, layer, GenTL::TL_INFO_VENDOR, nullptr, nullptr, &size);
    EXPECT_ORDER("H0 P1 P2", K_GenTL_TLOpenInterface, K_ST_RESOURCE_IN_USE, layer, "IF0", &opened);
    EXPECT_ORDER("H0 P2", K_GenTL_GetInterfaceLayerByIndex, ok, layer, 0u, &opened);
    EXPECT_ORDER("H0", K_GenTL_IFClose, never, opened);
    EXPECT_ORDER("P1 H0", K_GenTL_IFGetNumDevices, ok, opened, &number);
    EXPECT_ORDER("H0 P3", K_GenTL_IFGetDeviceName, ok, opened, 0u, text, &size);
    EXPECT_ORDER("H0", K_GenTL_IFUpdateDeviceList, ok, opened, &flag, 0u);
    EXPECT_ORDER("H0 H1 P2 P5", K_GenTL_IFGetDeviceInfoString, ok, layer, opened, "CAM0", 1, text, &size);
    EXPECT_ORDER("H0 P1 P3", K_GenTL_IFOpenDevice, K_ST_RESOURCE_IN_USE, opened, "CAM0", 4u, &device);
    EXPECT_ORDER("H0", K_GenTL_GetPortURLInfo, ok, camera, 0u);
    EXPECT_ORDER("H0 P1", K_GenTL_GetNumPortURLs, ok, camera, &number);
    EXPECT_ORDER("H0 P1", K_Is_GigE_Transport_Layer, ok, layer, &flag);
    ASSERT_STATUS(ok, K_Camera_GetLocalDeviceHandle(camera, &device));
    EXPECT_ORDER("H0 P1", K_GenTL_DevGetPort, never, device, &port);
    EXPECT_ORDER("H0 H2 P4", K_GenTL_Module_GetXmlString, ok, layer, module, module, nullptr, &size);
    // Names and results are not looked at here before the node map is; a null name is a name that is not found.
    EXPECT_ORDER("H0 P1", K_GenTL_GetNumOfNodes, ok, module, &number);
    EXPECT_ORDER("H0 D1 P2", K_GenTL_GetNodeByName, ok, module, "Root", &node);
    EXPECT_ORDER("H0 P2 D1", K_GenTL_GetNumOfSubFeatures, ok, module, "Root", &number);
    EXPECT_ORDER("H0 D1 P3", K_GenTL_GetSubFeatureByIndex, ok, module, "Root", 0u, &node);
}

}  // namespace
}  // namespace kiv_test
