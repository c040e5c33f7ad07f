// The camera list: identifiers, their texts, and what the producers tell about cameras that are not open.
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class CameraList : public ScriptedFactory {
protected:
    std::vector<std::string> Ids() {
        std::uint32_t count = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &count));
        std::vector<std::string> ids;
        for (std::uint32_t i = 0; i < count; ++i) ids.push_back(camera_id_at(factory, i));
        return ids;
    }
    scripted::Device& AddDevice(scripted::Interface& interface, const std::string& id) {
        auto& device = interface.devices.emplace_back();
        device.id = id;
        device.infos[GenTL::DEVICE_INFO_ID] = scripted::text_info(id);
        return device;
    }
    bool Update() {
        bool changed = false;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
        return changed;
    }
    std::string Info(const std::string& id, std::uint32_t command) {
        std::uint32_t size = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetCameraInfo(factory, id.c_str(), command, nullptr, &size));
        std::string text(size, '?');
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetCameraInfo(factory, id.c_str(), command, text.data(), &size));
        return text.c_str();
    }
    using Ids_t = std::vector<std::string>;
};

TEST_F(CameraList, NamesProducerInterfaceAndDevice) {
    AddDevice(producer->FirstInterface(), "udp://10.0.0.1/left [2]");
    auto& second = producer->interfaces.emplace_back();
    second.id = "XX::InterfaceA";
    AddDevice(second, "a , b , DEV=>c");
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    EXPECT_EQ((Ids_t{"TL=>SCRIPTED , INT=>IF0 , DEV=>CAM0", "TL=>SCRIPTED , INT=>IF0 , DEV=>udp://10.0.0.1/left [2]",
                     "TL=>SCRIPTED , INT=>XX::InterfaceA , DEV=>a , b , DEV=>c"}),
              Ids());
    EXPECT_EQ("a , b , DEV=>c", Info(Ids()[2], 1003)) << "the device part runs to the end";
    EXPECT_EQ("a , b , DEV=>c", Info(Ids()[2], 0));
}

TEST_F(CameraList, TextRule) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    auto length = static_cast<std::uint32_t>(camera_id.size());
    char text[128] = "as is";
    std::uint32_t size = length;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Factory_GetCameraIDByIndex(factory, 0, text, &size));
    EXPECT_EQ(length + 1, size);
    EXPECT_STREQ("as is", text) << "nothing is copied";
    size = 0;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Factory_GetCameraIDByIndex(factory, 0, nullptr, &size));
    EXPECT_EQ(length + 1, size);
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetCameraIDByIndex(factory, 0, text, &size));
    EXPECT_EQ(camera_id, text);
    size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetCameraIDByIndex(factory, 0, text, &size));
    EXPECT_EQ(length + 1, size);
    size = sizeof text;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetCameraIDByIndex(factory, 1, text, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetCameraIDByIndex(factory, 0xFFFFFFFF, text, &size));
}

TEST_F(CameraList, AnEmptyListHasNoIndex) {
    producer->interfaces.clear();
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    std::uint32_t size = 0;
    EXPECT_EQ(Ids_t{}, Ids());
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetCameraIDByIndex(factory, 0, nullptr, &size));
}

TEST_F(CameraList, FollowsTheProducersListsWithoutRepeating) {
    auto path = write_registry(folder, "registry.xml", {{key, producer.Path()}});
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(path.c_str(), &factory));
    EXPECT_TRUE(Update());
    EXPECT_FALSE(Update());
    EXPECT_EQ(Ids_t{camera_id}, Ids());
    AddDevice(producer->FirstInterface(), "CAM0");
    EXPECT_FALSE(Update()) << "one identifier twice is one camera";
    producer->FirstInterface().devices.pop_back();
    AddDevice(producer->FirstInterface(), "CAM1");
    EXPECT_TRUE(Update());
    EXPECT_EQ(2u, Ids().size());
    EXPECT_EQ(1u, producer->Count("TLOpenInterface")) << "an interface is opened once";
    producer->FirstInterface().devices.clear();
    EXPECT_TRUE(Update());
    EXPECT_EQ(Ids_t{}, Ids());
}

TEST_F(CameraList, LeavesOutWhatAProducerCannotSay) {
    auto& faulty = producer->interfaces.emplace_front();
    faulty.id = "REFUSES";
    AddDevice(faulty, "NOT SEEN");
    AddDevice(producer->interfaces.back(), std::string(600, 'x'));
    AddDevice(producer->interfaces.back(), "LAST");
    producer->SetHook("TLOpenInterface", [](const scripted::Call& call) -> std::optional<GenTL::GC_ERROR> {
        if (call.text == "REFUSES") return GenTL::GC_ERR_ACCESS_DENIED;
        return std::nullopt;
    });
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    EXPECT_EQ((Ids_t{camera_id, "TL=>SCRIPTED , INT=>IF0 , DEV=>LAST"}), Ids());
}

TEST_F(CameraList, ListTimeoutsKeepTheCameras) {
    producer->Refuse("TLUpdateInterfaceList", GenTL::GC_ERR_TIMEOUT);
    producer->Refuse("IFUpdateDeviceList", GenTL::GC_ERR_TIMEOUT);
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    EXPECT_EQ(Ids_t{camera_id}, Ids());
}

TEST_F(CameraList, InfoCommandsAreTranslated) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    struct {
        std::uint32_t asked;
        std::uint64_t sent;
        const char* text;
    } commands[] = {{1, 1, "ScriptedWorks"},
                    {2, 2, "ScriptedCam"},
                    {6, 6, "Left eye"},
                    {7, 7, "SN-0815"},
                    {1001, 1003, "ten-oh-three"},
                    {1002, 1004, "ten-oh-four"},
                    {0, 0, "CAM0"},
                    {3, 0, "CAM0"},
                    {5, 0, "CAM0"},
                    {8, 0, "CAM0"},
                    {1004, 0, "CAM0"}};
    for (auto& command : commands) {
        producer->ForgetCalls();
        EXPECT_EQ(command.text, Info(camera_id, command.asked)) << command.asked;
        auto calls = producer->CallsOf("IFGetDeviceInfo");
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(command.sent, calls[0].numbers[1]) << command.asked;
        EXPECT_EQ("CAM0", calls[0].text);
    }
    producer->ForgetCalls();
    EXPECT_EQ("CAM0", Info(camera_id, 1003));
    EXPECT_EQ(0u, producer->Count("IFGetDeviceInfo")) << "the identifier itself knows";
}

TEST_F(CameraList, InfoChecksTheIdentifierThenItsPlaces) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    char text[64];
    std::uint32_t size = sizeof text;
    auto info = [&](const char* id) { return K_Factory_GetCameraInfo(factory, id, 1, text, &size); };
    for (auto* id : {static_cast<const char*>(nullptr), "", "nonsense", "TL=>SCRIPTED", "TL=>SCRIPTED , INT=>IF0",
                     "INT=>IF0 , DEV=>CAM0", "TL=>SCRIPTED , DEV=>CAM0"})
        EXPECT_STATUS(K_ST_INVALID_ID, info(id)) << (id ? id : "(null)");
    EXPECT_STATUS(K_ST_INVALID_HANDLE, info("TL=>OTHER , INT=>IF0 , DEV=>CAM0"));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, info("TL=>SCRIPTED , INT=>IF9 , DEV=>CAM0"));
    EXPECT_STATUS(K_ST_INVALID_ID, info("TL=>SCRIPTED , INT=>IF0 , DEV=>NOBODY")) << "the producer's own status";
    EXPECT_STATUS(K_ST_INVALID_ID, info(("TL=>" + std::string(5000, 'k') + " , INT=>IF0 , DEV=>CAM0").c_str()));
}

TEST_F(CameraList, InfoHandsOnStatusAndHidesExceptions) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    char text[64];
    std::uint32_t size = 3;
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_Factory_GetCameraInfo(factory, camera_id.c_str(), 1, text, &size));
    producer->Refuse("IFGetDeviceInfo", 4711, 1, 1);
    size = sizeof text;
    EXPECT_STATUS(4711, K_Factory_GetCameraInfo(factory, camera_id.c_str(), 1, text, &size));
    producer->SetHook("IFGetDeviceInfo", [](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> { throw 1; });
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_Factory_GetCameraInfo(factory, camera_id.c_str(), 1, text, &size));
}

TEST_F(CameraList, TellsWhetherACameraCouldBeOpened) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    for (std::int32_t access : {1, 4, 5}) {
        {
            std::lock_guard guard(producer->lock);
            producer->FirstDevice().infos[GenTL::DEVICE_INFO_ACCESS_STATUS] =
                scripted::number_info(GenTL::INFO_DATATYPE_INT32, access);
        }
        std::int32_t seen = -1;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetCameraAccess(factory, camera_id.c_str(), &seen));
        EXPECT_EQ(access, seen);
    }
    std::int32_t seen = 77;
    EXPECT_STATUS(K_ST_INVALID_ID, K_Factory_GetCameraAccess(factory, nullptr, &seen));
    EXPECT_STATUS(K_ST_INVALID_ID, K_Factory_GetCameraAccess(factory, "TL=>SCRIPTED", &seen));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_GetCameraAccess(factory, "TL=>SCRIPTED , INT=>X , DEV=>CAM0", &seen));
    producer->Refuse("IFGetDeviceInfo", GenTL::GC_ERR_NOT_IMPLEMENTED);
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_Factory_GetCameraAccess(factory, camera_id.c_str(), &seen));
    EXPECT_EQ(77, seen);
    EXPECT_EQ(0u, producer->Count("IFOpenDevice"));
}

class CameraListGigE : public ScriptedFactory {
protected:
    CameraListGigE() : ScriptedFactory(scripted_gev()) {}
};

TEST_F(CameraListGigE, InterfacesAreToldTheForceIpSettingsBeforeTheirDevicesAreListed) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    auto calls = producer->CallsOf("TLSetForceIp");
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ((std::vector<std::uint64_t>{reinterpret_cast<std::uint64_t>(&producer->FirstInterface()), 1, 0}), calls[0].numbers);
    EXPECT_EQ((std::vector<std::string>{"TLOpenInterface", "TLSetForceIp", "IFUpdateDeviceList"}),
              producer->Order({"TLOpenInterface", "TLSetForceIp", "IFUpdateDeviceList"}));
}

}  // namespace
}  // namespace kiv_test
