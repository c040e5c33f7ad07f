// The factory's two switches for GigE Vision producers: forced addresses and action commands.
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class GigEExtras : public ScriptedFactory {
protected:
    GigEExtras() : ScriptedFactory(scripted_gev()) {}

    /// The enable values that interfaces were told since the last time.
    std::vector<std::uint64_t> Told() {
        std::vector<std::uint64_t> told;
        for (auto& call : producer->CallsOf("TLSetForceIp")) {
            told.push_back(call.numbers[1]);
            EXPECT_EQ(0u, call.numbers[2]) << "the second value never changes";
        }
        producer->ForgetCalls();
        return told;
    }
};

TEST_F(GigEExtras, ForceIpIsToldWithEveryUpdateWhateverItsValue) {
    producer->interfaces.emplace_back().id = "IF1";
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    EXPECT_EQ((std::vector<std::uint64_t>{1, 1}), Told()) << "each interface, enabled at first";
    bool changed = false;
    for (std::uint32_t value : {0u, 7u, 0xFFFFFFFFu}) {
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_EnableForceIp(factory, value));
        EXPECT_EQ((std::vector<std::uint64_t>{}), Told()) << "not before the next update";
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
        EXPECT_EQ((std::vector<std::uint64_t>{value, value}), Told());
    }
    producer->Refuse("TLSetForceIp", GenTL::GC_ERR_IO);
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed)) << "what it answers is not looked at";
    std::uint32_t count = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &count));
    EXPECT_EQ(1u, count);
    // The extension alone does not make it a GigE Vision producer.
    producer->Accept("TLSetForceIp");
    producer->tl_type = "Custom";
    Told();
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
    EXPECT_EQ((std::vector<std::uint64_t>{}), Told());
}

TEST_F(GigEExtras, ActionCommandsGoToEveryProducerThatCan) {
    ScriptedProducer plain(scripted_u3v()), gap(scripted_gap());
    auto registry =
        write_registry(folder, "registry.xml", {{"C_GEV", producer.Path()}, {"B_PLAIN", plain.Path()}, {"A_GAP", gap.Path()}});
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(registry.c_str(), &factory));
    int first = 0, second = 0;
    auto send = [&] { return K_Factory_SendActionCommand(factory, 11, 22, 33, &first, &second); };
    EXPECT_STATUS(K_ST_SUCCESS, send()) << "no producer is bound yet";
    EXPECT_EQ(0u, producer->Count("TLSendActionCommand"));

    bool changed = false;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
    EXPECT_STATUS(K_ST_SUCCESS, send());
    auto calls = producer->CallsOf("TLSendActionCommand");
    ASSERT_EQ(1u, calls.size());
    auto address = [](const void* pointer) { return reinterpret_cast<std::uint64_t>(pointer); };
    EXPECT_EQ((std::vector<std::uint64_t>{address(&*producer), 11, 22, 33, address(&first), address(&second)}), calls[0].numbers);
    EXPECT_EQ(0u, gap->Count("TLSendActionCommand")) << "exported, but behind the gap";

    producer->Refuse("TLSendActionCommand", GenTL::GC_ERR_IO);
    EXPECT_STATUS(K_ST_SUCCESS, send());
    producer->Accept("TLSendActionCommand");
    producer->SetHook("TLSendActionCommand", [](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> { throw 1; });
    EXPECT_STATUS(K_ST_SUCCESS, send()) << "a producer that throws does not keep the others from being asked";
    producer->SetHook("TLSendActionCommand", nullptr);
}

}  // namespace
}  // namespace kiv_test
