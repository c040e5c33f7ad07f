// Walking the module tree of the simulated producer by hand: interfaces, devices, ports, and the modules' own node maps.
#include <GenTL/GenTL.h>

#include <cstring>

#include "support/sim_camera.h"

namespace kiv_test {
namespace {

class GenTLWalk : public SimCamera {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OpenFactory());
        std::uint32_t cameras = 0;
        ASSERT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &cameras));
        ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, nullptr, 0));
        ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetInterfaceLayerByIndex(layer, 0, &opened));
    }

    // The first device of the first interface that has one.
    void FindDevice(char (&id)[128]) {
        std::uint32_t devices = 0;
        for (std::uint32_t i = 0; K_GenTL_GetInterfaceLayerByIndex(layer, i, &opened) == K_ST_SUCCESS; ++i) {
            ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_IFGetNumDevices(opened, &devices));
            if (devices > 0) break;
        }
        ASSERT_GT(devices, 0u);
        std::uint32_t size = sizeof id;
        ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_IFGetDeviceName(opened, 0, id, &size));
        EXPECT_EQ(std::strlen(id) + 1, size);
    }

    std::string ModuleText(void* module, const char* feature) {
        NODE_HANDLE node = nullptr;
        EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNodeByName(module, feature, &node));
        char text[256] = {};
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueString(node, false, text, &size));
        return text;
    }

    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE opened = nullptr;
};

TEST_F(GenTLWalk, ListsAreTheProducers) {
    bool changed = true;
    std::uint32_t count = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLUpdateInterfaceList(layer, &changed, 200));
    EXPECT_FALSE(changed);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetNumInterfaces(layer, &count));
    ASSERT_GE(count, 1u);
    char id[64];
    std::uint32_t size = sizeof id;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetInterfaceID(layer, 0, id, &size));
    EXPECT_STATUS(GenTL::GC_ERR_INVALID_INDEX, K_GenTL_TLGetInterfaceID(layer, count, id, &size));
    INTERFACE_HANDLE again = nullptr;
    EXPECT_STATUS(K_ST_RESOURCE_IN_USE, K_GenTL_TLOpenInterface(layer, id, &again)) << "the camera list has it open";
    EXPECT_EQ(nullptr, again);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GetInterfaceLayerByIndex(layer, count, &again));
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_IFUpdateDeviceList(opened, &changed, 200));

    TRANSPORT_LAYER_HANDLE named = nullptr;
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetTransportLayerByName(factory, "NOBODY", &named));
}

TEST_F(GenTLWalk, ADeviceOpenedByHandBecomesACamera) {
    char id[128];
    ASSERT_NO_FATAL_FAILURE(FindDevice(id));
    char vendor[64];
    std::uint32_t size = sizeof vendor;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_IFGetDeviceInfoString(layer, opened, id, GenTL::DEVICE_INFO_VENDOR, vendor, &size));

    void* device = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_IFOpenDevice(opened, id, GenTL::DEVICE_ACCESS_EXCLUSIVE, &device));
    CAM_HANDLE port = nullptr, second = nullptr;
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_DevGetPort(device, &port));
    EXPECT_STATUS(K_ST_NO_DATA, K_Camera_GetNumOfNodes(port, &count)) << "no node map before its description was read";
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNumPortURLs(port, &count));
    EXPECT_GE(count, 1u);
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetPortURLInfo(port, 0));
    std::int64_t width = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(port, "Width", &width));
    EXPECT_EQ(128, width);

    // Two objects on one device: closing either closes the device and both.
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_DevGetPort(device, &second));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(second));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetValueInt64(port, "Width", &width));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_DevGetPort(device, &second)) << "the device is closed";
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_IFOpenDevice(opened, id, GenTL::DEVICE_ACCESS_EXCLUSIVE, &device)) << "and free again";
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_DevGetPort(device, &port));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(port));
}

TEST_F(GenTLWalk, EveryModuleHasItsOwnNodeMap) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    void* device = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetLocalDeviceHandle(camera, &device));
    INTERFACE_HANDLE its_interface = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetInterfaceHandle(camera, &its_interface));

    EXPECT_EQ("KivSim", ModuleText(layer, "TLModelName"));
    EXPECT_FALSE(ModuleText(its_interface, "InterfaceID").empty());
    EXPECT_THAT(ModuleText(device, "DeviceID"), ::testing::HasSubstr("T0001"));
    EXPECT_EQ("128", ModuleText(camera, "Width"));

    NODE_HANDLE node = nullptr;
    std::uint32_t count = 0;
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetNodeByName(layer, "NoSuchNode", &node));
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetNodeByName(layer, nullptr, &node));
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNumOfSubFeatures(layer, "Root", &count));
    ASSERT_GE(count, 1u);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetSubFeatureByIndex(layer, "Root", 0, &node));
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetSubFeatureByIndex(layer, "Root", count, &node));
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetNumOfSubFeatures(layer, "TLModelName", &count)) << "no category";
}

TEST_F(GenTLWalk, ClosingAnInterfaceClosesItsCameras) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    INTERFACE_HANDLE its_interface = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetInterfaceHandle(camera, &its_interface));
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_IFClose(its_interface));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_IFClose(its_interface));
    std::int64_t width = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetValueInt64(camera, "Width", &width));
    camera = nullptr;
    // The next update opens it again.
    bool changed = false;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
    EXPECT_NO_FATAL_FAILURE(OpenCamera());
}

}  // namespace
}  // namespace kiv_test
