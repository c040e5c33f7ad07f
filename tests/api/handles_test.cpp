// The order in which the exported functions find fault: handles, then arguments, and no handle is ever believed.
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class Handles : public ScriptedFactory {
protected:
    /// A live object of another kind, as a handle of this kind.
    template <class Handle>
    Handle OfAnotherKind() {
        if constexpr (std::is_same_v<Handle, FACTORY_HANDLE>)
            return reinterpret_cast<Handle>(camera);
        else
            return reinterpret_cast<Handle>(factory);
    }

    /// A handle that is null or of another kind is refused whatever the other arguments are.
    template <class Handle, class Call>
    void ExpectHandleRefused(const char* function, Call call) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, call(Handle(nullptr))) << function;
        EXPECT_STATUS(K_ST_INVALID_HANDLE, call(OfAnotherKind<Handle>())) << function;
    }
};

#define EXPECT_HANDLE_REFUSED(Handle, function, ...) \
    ExpectHandleRefused<Handle>(#function, [](Handle handle) { return function(handle __VA_OPT__(, ) __VA_ARGS__); })

TEST_F(Handles, FactoryHandleIsLookedAtBeforeAnyOtherArgument) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_Close);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_UpdateCameraList, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_GetNumOfCameras, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_GetCameraIDByIndex, 0, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_GetCameraInfo, nullptr, 1, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_GetCameraAccess, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Factory_GetProducerReport, 0, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Camera_OpenEx, nullptr, nullptr, 3, 0, 0);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Camera_Open, nullptr, nullptr, 0);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Camera_OpenMc, nullptr, nullptr, 3, 0);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_Camera_Open_Proxy, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_GenTL_GetNumberOfTransportLayers, nullptr);
    EXPECT_HANDLE_REFUSED(FACTORY_HANDLE, K_GenTL_GetTransportLayerByIndex, 0, nullptr, nullptr, 0);
}

TEST_F(Handles, CameraHandleIsLookedAtBeforeAnyOtherArgument) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_Close);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_ReadData, 0, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_WriteData, 0, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetNumOfNodes, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetNodeByIndex, 0, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetNodeByName, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetFeatureByName, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetNumOfSubFeatures, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetSubFeatureByIndex, nullptr, 0, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetValueInt64, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_SetValueInt64, nullptr, 1);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetValueDouble, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_SetValueDouble, nullptr, 1.0);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetValueString, nullptr, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_SetValueString, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_ExecuteCommand, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetConfigInfo, 99, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_InvalidateNodes);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetTLHandle, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetInterfaceHandle, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Camera_GetLocalDeviceHandle, nullptr);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Image_OpenStream, 0, nullptr, nullptr, nullptr, 0, 0);
    EXPECT_HANDLE_REFUSED(CAM_HANDLE, K_Image_OpenStreamLight, 0, nullptr);
}

TEST_F(Handles, OtherHandlesAreLookedAtBeforeAnyOtherArgument) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    EXPECT_HANDLE_REFUSED(TRANSPORT_LAYER_HANDLE, K_GenTL_TLGetInfo, 0, nullptr, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(TRANSPORT_LAYER_HANDLE, K_Is_GigE_Transport_Layer, nullptr);
    EXPECT_HANDLE_REFUSED(TRANSPORT_LAYER_HANDLE, K_GenTL_Module_GetXmlString, nullptr, nullptr, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(TRANSPORT_LAYER_HANDLE, K_Camera_IFOpenDeviceMc, nullptr, nullptr, 3, nullptr, 0);
    EXPECT_HANDLE_REFUSED(THRD_HANDLE, K_Image_CloseStream);
    EXPECT_HANDLE_REFUSED(THRD_HANDLE, K_Image_GetStreamInfo, 0, nullptr, nullptr);
    EXPECT_HANDLE_REFUSED(THRD_HANDLE, K_Image_GetStreamHandle, nullptr);
}

TEST_F(Handles, ResultPointersAreLookedAtAfterTheHandle) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    NODE_HANDLE node = nullptr;
    std::uint32_t size = 1;
    char text[8];
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));

    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_Open("", nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_UpdateCameraList(factory, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetNumOfCameras(factory, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetCameraAccess(factory, camera_id.c_str(), nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetCameraIDByIndex(factory, 0, text, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetGenICamErrorInfo(nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetProducerReport(factory, 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_Open_Proxy(factory, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_ReadData(camera, 0, text, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_WriteData(camera, 0, text, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNumOfNodes(camera, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNodeByIndex(camera, 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNodeByName(camera, nullptr, &node));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNodeByName(camera, "Width", nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetFeatureByName(camera, "", &node));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNumOfSubFeatures(camera, "Root", nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNumOfSubFeatures(camera, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetSubFeatureByIndex(camera, "Root", 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetValueInt64(camera, "Width", nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetValueDouble(camera, "Gain", nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetValueString(camera, "Width", nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_SetValueString(camera, "Width", nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetConfigInfo(camera, 0, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetConfigInfo(camera, 0, text, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GetNumberOfTransportLayers(factory, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GetTransportLayerByIndex(factory, 0, nullptr, text, sizeof text));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GetTransportLayerByIndex(factory, 1, &layer, text, sizeof text));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Is_GigE_Transport_Layer(layer, nullptr));
    // These three have always counted a missing result pointer as a bad handle.
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetTLHandle(camera, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetInterfaceHandle(camera, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetLocalDeviceHandle(camera, nullptr));
}

TEST_F(Handles, TheProducersEntryIsLookedForBeforeTheArguments) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE interface = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetInterfaceHandle(camera, &interface));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_IFOpenDeviceMc(layer, nullptr, nullptr, 3, nullptr, 0));
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_Camera_IFOpenDeviceMc(layer, interface, nullptr, 3, nullptr, 0));
}

TEST_F(Handles, AClosedHandleIsRefusedEverywhere) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    auto stale_camera = camera;
    auto stale_factory = factory;
    CloseCamera();
    std::uint32_t count = 7;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetNumOfNodes(stale_camera, &count));
    CloseFactory();
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_GetNumOfCameras(stale_factory, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_Close(stale_factory));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_TLGetInfo(layer, 0, nullptr, nullptr, &count));
    EXPECT_EQ(7u, count);
}

// ---- nodes ----

template <class Result>
struct NodeRead {
    const char* name;
    K_STATUS_CODES (*call)(NODE_HANDLE, Result*);
};
#define NODE_READ(function) \
    { #function, function }

template <class Result>
void expect_null_checks(NODE_HANDLE node, std::initializer_list<NodeRead<Result>> functions) {
    Result result{};
    for (auto& function : functions) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, function.call(nullptr, nullptr)) << function.name;
        EXPECT_STATUS(K_ST_INVALID_HANDLE, function.call(nullptr, &result)) << function.name;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, function.call(node, nullptr)) << function.name;
    }
}

TEST_F(Handles, NodeFunctionsCheckTheNodeThenTheResult) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    auto node = Node("Width");
    expect_null_checks<std::uint32_t>(
        node, {NODE_READ(K_Node_GetNameSpace), NODE_READ(K_Node_GetType), NODE_READ(K_Node_GetAccessMode),
               NODE_READ(K_Node_GetVisibility), NODE_READ(K_Node_GetIsCachable), NODE_READ(K_Node_GetCachingMode),
               NODE_READ(K_Node_GetIsStreamable), NODE_READ(K_Node_GetIsDeprecated), NODE_READ(K_Node_GetRepresentation),
               NODE_READ(K_Node_GetDisplayNotation), NODE_READ(K_Node_GetNumOfProperties), NODE_READ(K_Node_GetIsSelector),
               NODE_READ(K_Node_GetNumOfSelectedFeatures), NODE_READ(K_Node_GetNumOfSelectingFeatures),
               NODE_READ(K_Node_GetFloatHasInc), NODE_READ(K_Node_GetCommandIsDone), NODE_READ(K_Node_GetNumOfEnumEntries)});
    expect_null_checks<std::int64_t>(
        node, {NODE_READ(K_Node_GetPollingTime), NODE_READ(K_Node_GetDisplayPrecision), NODE_READ(K_Node_GetMinInt64),
               NODE_READ(K_Node_GetMaxInt64), NODE_READ(K_Node_GetInc), NODE_READ(K_Node_GetEnumEntryValue),
               NODE_READ(K_Node_GetRegisterLength), NODE_READ(K_Node_GetRegisterAddress)});
    expect_null_checks<double>(node,
                               {NODE_READ(K_Node_GetMinDouble), NODE_READ(K_Node_GetMaxDouble), NODE_READ(K_Node_GetFloatInc)});
    expect_null_checks<NODE_HANDLE>(node, {NODE_READ(K_Node_GetAlias), NODE_READ(K_Node_GetIntAlias),
                                           NODE_READ(K_Node_GetEnumAlias), NODE_READ(K_Node_GetFloatAlias)});
}

TEST_F(Handles, NodeTextFunctionsCheckTheNodeThenBufferAndSize) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    auto node = Node("Width");
    struct {
        const char* name;
        K_STATUS_CODES (*call)(NODE_HANDLE, char*, std::uint32_t*);
    } functions[] = {NODE_READ(K_Node_GetToolTip), NODE_READ(K_Node_GetDescription), NODE_READ(K_Node_GetDisplayName),
                     NODE_READ(K_Node_GetEventID), NODE_READ(K_Node_GetDocuURL),     NODE_READ(K_Node_GetUnit)};
    char text[64];
    std::uint32_t size = sizeof text;
    for (auto& function : functions) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, function.call(nullptr, nullptr, nullptr)) << function.name;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, function.call(node, nullptr, &size)) << function.name;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, function.call(node, text, nullptr)) << function.name;
    }
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetName(nullptr, nullptr, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetName(node, nullptr, &size, 0));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetPropertyNameByIndex(nullptr, 0, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetPropertyNameByIndex(node, 0, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetPropertyByName(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetPropertyByName(node, nullptr, text, &size, text, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetPropertyByName(node, "Value", text, &size, nullptr, &size));
}

TEST_F(Handles, NodeValueFunctionsCheckTheNodeFirst) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    auto node = Node("Width");
    NODE_HANDLE other = nullptr;
    std::uint8_t byte = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetValueInt64(nullptr, true, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetValueInt64(node, true, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_SetValueInt64(nullptr, true, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetValueDouble(nullptr, true, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetValueDouble(Node("Gain"), true, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_SetValueDouble(nullptr, true, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetValueString(nullptr, true, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetValueString(node, true, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_SetValueString(nullptr, true, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_SetValueString(node, true, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_ExecuteCommand(nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_Invalidate(nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_ImposeAccessMode(nullptr, 3));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_ImposeVisibility(nullptr, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetEnumEntryByIndex(nullptr, 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetEnumEntryByIndex(Node("Pattern"), 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetSelectedFeatureByIndex(nullptr, 0, &other));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetSelectingFeatureByIndex(nullptr, 0, &other));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_GetValueRegister(nullptr, &byte, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_SetValueRegister(nullptr, &byte, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Node_RegisterCallback(nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_RegisterCallback(node, nullptr));
}

}  // namespace
}  // namespace kiv_test
