// Handles are never believed: those that are closed or of another kind are refused by every function, whatever else it is given.
// (argument_order_test.cpp has the order of the checks.)
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class Handles : public ScriptedFactory {};

TEST_F(Handles, OfImageStreamsAreLookedAtFirst) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    for (auto stranger : {THRD_HANDLE(nullptr), reinterpret_cast<THRD_HANDLE>(factory)}) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_CloseStream(stranger));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_GetStreamInfo(stranger, 0, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_GetStreamHandle(stranger, nullptr));
    }
    for (auto stranger : {CAM_HANDLE(nullptr), reinterpret_cast<CAM_HANDLE>(factory)}) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_OpenStream(stranger, 0, nullptr, nullptr, nullptr, 0, 0));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_OpenStreamLight(stranger, 0, nullptr));
    }
}

TEST_F(Handles, AClosedHandleIsRefusedEverywhere) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE interface = nullptr;
    void* device = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetInterfaceHandle(camera, &interface));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetLocalDeviceHandle(camera, &device));
    auto stale_camera = camera;
    auto stale_factory = factory;
    CloseCamera();
    std::uint32_t count = 7;
    CAM_HANDLE port = nullptr;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetNumOfNodes(stale_camera, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_GetNumOfNodes(stale_camera, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_GetNumOfNodes(device, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_DevGetPort(device, &port));
    CloseFactory();
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_GetNumOfCameras(stale_factory, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_Close(stale_factory));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_TLGetInfo(layer, 0, nullptr, nullptr, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_IFGetNumDevices(interface, &count));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_GetNumOfNodes(interface, &count));
    EXPECT_EQ(7u, count);
}

}  // namespace
}  // namespace kiv_test
