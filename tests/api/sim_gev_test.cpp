// The simulated GigE Vision cameras: what only cameras of their kind can be asked for.
#include <GenTL/GenTL.h>

#include "image_stream_fixture.h"
#include "support/sim_camera.h"

namespace kiv_test {
namespace {

class SimGevTest : public SimGevCamera {
protected:
    K_STATUS_CODES Set(const char* feature, const char* text) { return K_Camera_SetValueString(camera, feature, text); }
    K_STATUS_CODES Execute(const char* feature) { return K_Camera_ExecuteCommand(camera, feature); }
};

TEST_F(SimGevTest, ACameraWithAForeignAddressOpensUnlessForcingIsSwitchedOff) {
    Configure(R"({"interfaces": [{"cameras": [{"serial": "FAR", "ip": "169.254.1.2", "width": 64, "height": 64}]}]})");
    ASSERT_NO_FATAL_FAILURE(OpenCamera("FAR"));
    EXPECT_EQ(64, Integer("Width"));
    CloseCamera();
    CloseFactory();

    auto registry = write_registry(folder, "registry.xml", {{key, producer}});
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(registry.c_str(), &factory));
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_EnableForceIp(factory, 0));
    bool changed = false;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
    auto id = camera_id_at(factory, 0);
    EXPECT_STATUS(K_ST_ACCESS_DENIED, K_Camera_Open_Proxy(factory, id.c_str(), &camera));
    camera = nullptr;
}

TEST_F(SimGevTest, AnActionCommandTakesAnImage) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera("G0001"));
    for (auto [feature, value] : {std::pair{"TriggerMode", "On"},
                                  {"TriggerSource", "Action1"},
                                  {"ActionDeviceKey", "5"},
                                  {"ActionSelector", "1"},
                                  {"ActionGroupKey", "6"},
                                  {"ActionGroupMask", "2"}})
        ASSERT_STATUS(K_ST_SUCCESS, Set(feature, value)) << feature;
    Images images;
    THRD_HANDLE thread = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, &images, reinterpret_cast<AnyFunction>(on_image_with_context),
                                                   &thread, static_cast<std::uint32_t>(Integer("PayloadSize")), 0));
    ASSERT_STATUS(K_ST_SUCCESS, Execute("AcquisitionStart"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_SendActionCommand(factory, 5, 6, 1, nullptr, nullptr)) << "not for this mask";
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_SendActionCommand(factory, 5, 6, 3, nullptr, nullptr));
    auto image = images.Next();
    EXPECT_EQ(1u, image.info.frame_id);
    EXPECT_EQ(128u, image.info.width);
    EXPECT_EQ(0u, image.info.producer_specific) << "no packet is missing";
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(thread));
    EXPECT_EQ(0u, images.Waiting());
}

}  // namespace
}  // namespace kiv_test
