// Opening and closing cameras: what is asked of the producer, what each failing step gives, and that nothing stays half open.
#include <thread>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class CameraOpen : public ScriptedFactory {
protected:
    using ScriptedFactory::ScriptedFactory;
    K_STATUS_CODES Open(const char* id) { return K_Camera_Open_Proxy(factory, id, &camera); }
    K_STATUS_CODES Open() { return Open(camera_id.c_str()); }
};

class CameraOpenGigE : public CameraOpen {
protected:
    CameraOpenGigE() : CameraOpen(scripted_gev()) {}
};

TEST_F(CameraOpen, OpensTheDeviceExclusivelyWhateverIsAsked) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    for (std::uint32_t mode : {2u, 3u, 4u}) {
        producer->ForgetCalls();
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_OpenMc(factory, camera_id.c_str(), &camera, mode, 0));
        auto calls = producer->CallsOf("IFOpenDevice");
        ASSERT_EQ(1u, calls.size());
        EXPECT_EQ("CAM0", calls[0].text);
        EXPECT_EQ(4u, calls[0].numbers[1]);
        CloseCamera();
        EXPECT_EQ(1u, producer->Count("DevClose"));
    }
}

TEST_F(CameraOpenGigE, OpensThroughTheMulticastExtensionWithTheCallersModes) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    struct {
        std::function<K_STATUS_CODES()> open;
        std::uint64_t mode, multicast;
    } ways[] = {
        {[&] { return K_Camera_Open(factory, camera_id.c_str(), &camera, 9); }, 3, 0},
        {[&] { return K_Camera_OpenMc(factory, camera_id.c_str(), &camera, 2, 5); }, 2, 5},
        {[&] { return K_Camera_OpenEx(factory, camera_id.c_str(), &camera, 4, 6, 1); }, 4, 6},
        {[&] { return K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera); }, 3, 0},
    };
    for (auto& way : ways) {
        producer->ForgetCalls();
        ASSERT_STATUS(K_ST_SUCCESS, way.open());
        auto calls = producer->CallsOf("TLOpenDeviceMc");
        ASSERT_EQ(1u, calls.size());
        EXPECT_EQ("CAM0", calls[0].text);
        EXPECT_EQ(way.mode, calls[0].numbers[1]);
        EXPECT_EQ(way.multicast, calls[0].numbers[2]);
        EXPECT_EQ(0u, producer->Count("IFOpenDevice"));
        std::vector<std::string> order{"TLSetForceIp", "TLOpenDeviceMc", "DevGetPort"};
        EXPECT_EQ(order, producer->Order(order));
        CloseCamera();
    }
}

TEST_F(CameraOpen, GigEProducersWithoutTheExtensionAreOpenedTheStandardsWay) {
    producer->tl_type = "GEV";
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_OpenMc(factory, camera_id.c_str(), &camera, 2, 7));
    auto calls = producer->CallsOf("IFOpenDevice");
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(2u, calls[0].numbers[1]) << "with the caller's mode";
}

TEST_F(CameraOpen, CamerasAreUsedFromManyThreadsAtOnce) {
    constexpr int cameras = 4;
    for (int i = 1; i < cameras; ++i) {
        auto& other = producer->FirstInterface().devices.emplace_back();
        other.id = "CAM" + std::to_string(i);
        other.remote = producer->FirstDevice().remote;
    }
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    std::vector<std::thread> users;
    for (int i = 0; i < cameras; ++i)
        users.emplace_back([this, id = "TL=>SCRIPTED , INT=>IF0 , DEV=>CAM" + std::to_string(i)] {
            for (std::int64_t round = 1; round <= 5; ++round) {
                CAM_HANDLE own = nullptr;
                std::int64_t value = 0;
                EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Open_Proxy(factory, id.c_str(), &own));
                for (std::int64_t width = 16; width < 16 + 8 * 20; width += 8) {
                    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(own, "Width", width));
                    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(own, "DoubleWidth", &value));
                    EXPECT_EQ(2 * width, value);
                }
                EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(own));
            }
        });
    for (auto& user : users) user.join();
}

TEST_F(CameraOpen, ChecksTheIdentifierInItsOrder) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_Open_Proxy(factory, nullptr, nullptr));
    for (auto* id : {static_cast<const char*>(nullptr), "", "CAM0", "TL=>SCRIPTED , DEV=>CAM0", "INT=>IF0 , DEV=>CAM0",
                     "TL=>SCRIPTED , INT=>IF0"})
        EXPECT_STATUS(K_ST_INVALID_ID, Open(id)) << (id ? id : "(null)");
    EXPECT_STATUS(K_ST_INVALID_HANDLE, Open("TL=>SCRIPTED , INT=>IF7 , DEV=>CAM0"));
    EXPECT_NE(K_ST_SUCCESS, Open("TL=>OTHER , INT=>IF0 , DEV=>CAM0"));
    EXPECT_EQ(nullptr, camera);
    EXPECT_EQ(0u, producer->Count("IFOpenDevice"));
}

TEST_F(CameraOpen, AnIdentifierFromAnEarlierRunOpensWithoutListing) {
    auto path = write_registry(folder, "registry.xml", {{key, producer.Path()}});
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(path.c_str(), &factory));
    EXPECT_STATUS(K_ST_SUCCESS, Open());
}

TEST_F(CameraOpen, AFailingStepGivesItsStatusWithTheUpperHalfSetAndLeavesNothingOpen) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    struct {
        const char* entry;
        GenTL::GC_ERROR status;
        K_STATUS_CODES seen;
    } failures[] = {{"IFOpenDevice", 5, static_cast<K_STATUS_CODES>(0xFFFF0005u)},
                    {"IFOpenDevice", GenTL::GC_ERR_ACCESS_DENIED, K_ST_ACCESS_DENIED},
                    {"IFOpenDevice", GenTL::GC_ERR_RESOURCE_IN_USE, K_ST_RESOURCE_IN_USE},
                    {"DevGetPort", 6, static_cast<K_STATUS_CODES>(0xFFFF0006u)},
                    {"DevGetPort", GenTL::GC_ERR_IO, K_ST_IO},
                    {"GCGetPortURLInfo", 7, static_cast<K_STATUS_CODES>(0xFFFF0007u)},
                    {"GCGetPortURLInfo", GenTL::GC_ERR_TIMEOUT, K_ST_TIMEOUT}};
    for (auto& failure : failures) {
        producer->Refuse(failure.entry, failure.status);
        EXPECT_STATUS(failure.seen, Open()) << failure.entry;
        EXPECT_EQ(nullptr, camera);
        producer->Accept(failure.entry);
        EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules()) << failure.entry;
    }
    EXPECT_STATUS(K_ST_SUCCESS, Open());
}

TEST_F(CameraOpen, AReadErrorOfTheDescriptionIsAGenICamError) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    producer->Refuse("GCReadPort", GenTL::GC_ERR_TIMEOUT);
    EXPECT_GENICAM_ERROR("ReadData returned Timeout Error in Read. Addr=0x10000, Length=", "", Open());
    producer->Accept("GCReadPort");
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
}

TEST_F(CameraOpen, AFaultyDescriptionIsAGenICamErrorAndLeavesNothingOpen) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    for (auto& text : {std::string(), std::string("no xml at all"), std::string("<RegisterDescription"), std::string(300, '\0'),
                       scripted::plain_description("NotDevice"), std::string(scripted::camera_description).substr(0, 5000)}) {
        {
            std::lock_guard guard(producer->lock);
            producer->FirstDevice().remote.Describe("Faulty.xml", text);
        }
        EXPECT_STATUS(K_ST_GC_ERROR, Open()) << text.substr(0, 100);
        EXPECT_STRNE("", last_genicam_error().sDescription);
        EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
    }
}

TEST_F(CameraOpen, ClosingWithNothingOpenDoesNothing) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    auto stale = camera;
    CloseCamera();
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(stale));
    EXPECT_EQ(1u, producer->Count("DevClose"));
    int stranger = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(reinterpret_cast<CAM_HANDLE>(&stranger)));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_Close(nullptr));
}

TEST_F(CameraOpen, AStaleHandleDoesNotCloseAnotherCamera) {
    auto& other = producer->FirstInterface().devices.emplace_back();
    other.id = "CAM1";
    other.remote = producer->FirstDevice().remote;
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    CAM_HANDLE first = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, Open("TL=>SCRIPTED , INT=>IF0 , DEV=>CAM1"));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_Open_Proxy(factory, camera_id.c_str(), &first));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(first));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_Close(first));
    int stranger = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_Close(reinterpret_cast<CAM_HANDLE>(&stranger)));
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0", "CAM1"}), producer->OpenModules());
}

TEST_F(CameraOpen, ClosingTheFactoryClosesItsCameras) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    auto stale = camera;
    CloseFactory();
    EXPECT_EQ((std::vector<std::string>{"DevClose", "TLClose", "GCCloseLib"}),
              producer->Order({"DevClose", "TLClose", "GCCloseLib"}));
    std::uint32_t count = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetNumOfNodes(stale, &count));
    camera = nullptr;
}

TEST_F(CameraOpen, CloseSucceedsWhenTheDeviceIsGone) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    for (auto* entry : {"GCReadPort", "GCWritePort", "DevClose", "DevGetPort"}) producer->Refuse(entry, GenTL::GC_ERR_IO);
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_ExecuteCommand(camera, "Trigger"));
    CloseCamera();
    EXPECT_EQ(1u, producer->Count("DevClose"));
    CloseFactory();
}

TEST_F(CameraOpenGigE, IFOpenDeviceMcHandsOutTheProducersDevice) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE interface = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetInterfaceHandle(camera, &interface));
    CloseCamera();
    void* device = nullptr;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_IFOpenDeviceMc(layer, interface, nullptr, 3, &device, 1));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_IFOpenDeviceMc(layer, interface, "CAM0", 3, nullptr, 1));
    producer->Refuse("TLOpenDeviceMc", 5, 1, 1);
    EXPECT_STATUS(5, K_Camera_IFOpenDeviceMc(layer, interface, "CAM0", 3, &device, 1)) << "here the status passes as it is";
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_IFOpenDeviceMc(layer, interface, "CAM0", 2, &device, 8));
    EXPECT_EQ(&producer->FirstDevice(), device);
    EXPECT_EQ(8u, producer->CallsOf("TLOpenDeviceMc").back().numbers[2]);
}

}  // namespace
}  // namespace kiv_test
