// Discovery: from the elements of the registry file to bound producers, and why some are not bound.
#include <filesystem>

#include "support/scripted_factory.h"
#include "support/system/habits.h"

namespace kiv_test {
namespace {

using ::testing::HasSubstr;

class Discovery : public ScriptedFactory {
protected:
    K_STATUS_CODES Open(const std::vector<RegistryEntry>& entries) {
        CloseFactory();
        auto path = write_registry(folder, "registry.xml", entries);
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Open(path.c_str(), &factory));
        return Update();
    }
    K_STATUS_CODES Update() {
        bool changed = false;
        return K_Factory_UpdateCameraList(factory, &changed);
    }
    K_PRODUCER_REPORT Report(std::uint32_t index) {
        K_PRODUCER_REPORT report{};
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetProducerReport(factory, index, &report));
        return report;
    }
    /// Keys of the bound producers.
    std::vector<std::string> Bound() {
        std::uint32_t count = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNumberOfTransportLayers(factory, &count));
        std::vector<std::string> keys;
        for (std::uint32_t i = 0; i < count; ++i) {
            TRANSPORT_LAYER_HANDLE layer = nullptr;
            char key_text[64] = "";
            EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, i, &layer, key_text, sizeof key_text));
            EXPECT_NE(nullptr, layer);
            keys.push_back(key_text);
        }
        return keys;
    }
};

using Keys = std::vector<std::string>;

TEST_F(Discovery, BindsEachEnabledElementOnce) {
    ScriptedProducer gev(scripted_gev());
    EXPECT_STATUS(K_ST_SUCCESS, Open({{"Z", producer.Path()}, {"OFF", "/nowhere.cti", "false"}, {"A", gev.Path()}}));
    EXPECT_EQ((Keys{"A", "Z"}), Bound()) << "in the order of their keys";
    EXPECT_EQ(1u, Report(1).disabled);
    EXPECT_STREQ("OFF", Report(1).sKey);
    EXPECT_STREQ("Scripted Works", Report(0).sVendor);
    EXPECT_STREQ("U3V", Report(0).sTLType);
    EXPECT_STATUS(K_ST_SUCCESS, Report(0).status);
    K_PRODUCER_REPORT none;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_GetProducerReport(factory, 3, &none));

    EXPECT_STATUS(K_ST_SUCCESS, Update());
    EXPECT_EQ(1u, producer->Count("TLOpen")) << "a bound producer is not bound again";
    CloseFactory();
    EXPECT_EQ(1u, gev->Count("TLClose"));
    EXPECT_EQ(1u, gev->Count("GCCloseLib"));
    EXPECT_THAT(gev->Misuse(), ::testing::IsEmpty());
}

TEST_F(Discovery, TheFirstElementOfAKeyWins) {
    ScriptedProducer gev(scripted_gev());
    EXPECT_STATUS(K_ST_SUCCESS, Open({{"SAME", producer.Path()}, {"SAME", gev.Path()}}));
    EXPECT_EQ(Keys{"SAME"}, Bound());
    EXPECT_EQ(1u, producer->Count("TLOpen"));
    EXPECT_THAT(gev->Calls(), ::testing::IsEmpty());
}

TEST_F(Discovery, InitialisesIdentifiesOpensAndReadsTheProducersDescription) {
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
    auto calls = producer->Calls();
    ASSERT_GE(calls.size(), 8u);
    EXPECT_EQ("GCInitLib", calls[0].entry);
    const std::uint64_t asked[] = {GenTL::TL_INFO_VENDOR, GenTL::TL_INFO_NAME, GenTL::TL_INFO_TLTYPE};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ("GCGetInfo", calls[1 + i].entry);
        EXPECT_EQ(asked[i / 2], calls[1 + i].numbers[0]) << "size first, then the text";
    }
    EXPECT_EQ("TLOpen", calls[7].entry);
    EXPECT_EQ((std::vector<std::string>{"TLOpen", "GCReadPort", "TLUpdateInterfaceList"}),
              producer->Order({"TLOpen", "GCReadPort", "TLUpdateInterfaceList"}));
    EXPECT_EQ(200u, producer->CallsOf("TLUpdateInterfaceList")[0].numbers[1]);
    EXPECT_EQ(200u, producer->CallsOf("IFUpdateDeviceList")[0].numbers[1]);
    EXPECT_EQ(0u, producer->Count("GCWritePort"));
}

TEST_F(Discovery, OnlyTheHousesOwnGigEProducerGetsTheWakeUpWrite) {
    producer->vendor = "Kivotek";
    producer->name = "KivOtherTL.cti";
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
    EXPECT_EQ(0u, producer->Count("GCWritePort"));
    producer->name = "KivGevTL.cti";
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
    auto writes = producer->CallsOf("GCWritePort");
    ASSERT_EQ(1u, writes.size());
    EXPECT_EQ(0u, writes[0].numbers[1]) << "address";
    EXPECT_EQ(4u, writes[0].numbers[2]) << "length";
    CloseFactory();
    producer->ForgetCalls();
    producer->vendor = "Kivotek Ltd";
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
    EXPECT_EQ(0u, producer->Count("GCWritePort")) << "the whole text counts";
}

// ---- finding the file ----

TEST_F(Discovery, SearchesTheSearchPathForABareName) {
    namespace fs = std::filesystem;
    fs::path module = producer.Path();
    auto name = module.filename().string();
    auto empty = folder.MakeFolder("empty");
    for (auto& list :
         {module.parent_path().string(), module.parent_path().string() + "/", ";;" + empty + ";" + module.parent_path().string(),
          "/does/not/exist" + list_separator + module.parent_path().string() + "/" + list_separator}) {
        ScopedEnvironment path("GENICAM_GENTL64_PATH", list);
        EXPECT_STATUS(K_ST_SUCCESS, Open({{key, name}})) << list;
        EXPECT_EQ(Keys{key}, Bound()) << list;
        EXPECT_EQ(module, fs::path(Report(0).sPath)) << list;
        CloseFactory();
    }
}

TEST_F(Discovery, TakesTheFirstCandidateThatExists) {
    namespace fs = std::filesystem;
    fs::path module = producer.Path();
    folder.Write("first/" + module.filename().string(), "a text file in front of the real one");
    ScopedEnvironment path("GENICAM_GENTL64_PATH", folder.In("first") + ";" + module.parent_path().string());
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, module.filename().string()}}));
    EXPECT_EQ(Keys{}, Bound());
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, Report(0).status);
}

TEST_F(Discovery, RepairsDoubledSeparatorsOfThePath) {
    auto path = producer.Path();
    path.insert(path.rfind('/'), "/");
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, path}}));
    EXPECT_EQ(Keys{key}, Bound());
    EXPECT_EQ(producer.Path(), Report(0).sPath);
}

TEST_F(Discovery, AProducerThatIsNotThereIsLookedForAgain) {
    auto path = folder.In("late.cti");
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, path}}));
    EXPECT_EQ(Keys{}, Bound());
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, Report(0).status);
    EXPECT_THAT(Report(0).sReason, HasSubstr("Library could not be loaded."));
    EXPECT_THAT(debug.Text(), HasSubstr("late.cti"));

    give_second_name(producer.Path(), path);
    EXPECT_STATUS(K_ST_SUCCESS, Update());
    EXPECT_EQ(Keys{key}, Bound());
}

// ---- refusals ----

TEST_F(Discovery, RefusesWhatIsNoProducerAndGoesOn) {
    auto no_library = folder.Write("text.cti", "This file is no library.");
    EXPECT_STATUS(K_ST_SUCCESS, Open({{"TEXT", no_library},
                                      {"FOLDER", folder.MakeFolder("folder.cti")},
                                      {"NO_CHUNKS", scripted_no_chunk_data()},
                                      {key, producer.Path()}}));
    EXPECT_EQ(Keys{key}, Bound());
    for (std::uint32_t i = 0; i < 3; ++i) EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, Report(i).status) << Report(i).sKey;
    EXPECT_THAT(Report(0).sReason, HasSubstr("Library could not be loaded."));
    EXPECT_STREQ("Function could not be loaded. :DSGetBufferChunkData", Report(2).sReason);
    EXPECT_THAT(debug.Text(), HasSubstr("DSGetBufferChunkData"));
    std::uint32_t cameras = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &cameras));
    EXPECT_EQ(1u, cameras);
}

TEST_F(Discovery, AProducerWhoseSystemDoesNotOpenIsRefusedWithItsStatus) {
    producer->Refuse("TLOpen", GenTL::GC_ERR_ACCESS_DENIED, 1, 1);
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
    EXPECT_EQ(Keys{}, Bound());
    EXPECT_STATUS(K_ST_ACCESS_DENIED, Report(0).status);
    EXPECT_EQ(0u, producer->Count("TLClose")) << "what was not opened is not closed";
    EXPECT_EQ(1u, producer->Count("GCCloseLib"));
    EXPECT_STATUS(K_ST_SUCCESS, Update());
    EXPECT_EQ(Keys{key}, Bound()) << "it stays eligible";
}

TEST_F(Discovery, AGapInTheExtensionGroupEndsTheGroup) {
    ScriptedProducer gap(scripted_gap());
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, gap.Path()}}));
    EXPECT_EQ(Keys{key}, Bound());
    EXPECT_EQ(0u, gap->Count("TLSetForceIp")) << "exported, but behind the gap";
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_OpenMc(factory, camera_id.c_str(), &camera, 3, 7));
    EXPECT_EQ(1u, gap->Count("TLOpenDeviceMc"));
    CloseCamera();
    CloseFactory();
    EXPECT_THAT(gap->Misuse(), ::testing::IsEmpty());
}

TEST_F(Discovery, TheGigETestIsAPrefixOfTheTransportType) {
    struct {
        const char* type;
        bool is_gige;
    } types[] = {{"GEV", true},   {"GEV2", true}, {"GigEVision", true}, {"GigEVision2", true},
                 {"GigE", false}, {"gev", false}, {"", false}};
    for (auto& type : types) {
        producer->tl_type = type.type;
        EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
        TRANSPORT_LAYER_HANDLE layer = nullptr;
        ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, nullptr, 0));
        bool answer = !type.is_gige;
        EXPECT_STATUS(K_ST_SUCCESS, K_Is_GigE_Transport_Layer(layer, &answer));
        EXPECT_EQ(type.is_gige, answer) << type.type;
        producer->Refuse("TLGetInfo", GenTL::GC_ERR_NOT_AVAILABLE);
        EXPECT_STATUS(K_ST_SUCCESS, K_Is_GigE_Transport_Layer(layer, &answer));
        EXPECT_FALSE(answer) << "a producer that does not tell is none";
        producer->Accept("TLGetInfo");
    }
}

TEST_F(Discovery, AnExceptionOutOfAProducerEndsDiscoveryWithAStatus) {
    for (auto* entry : {"GCInitLib", "GCGetInfo", "TLOpen", "GCGetPortURLInfo", "TLGetNumInterfaces", "IFGetDeviceID"}) {
        producer->SetHook(entry, [](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> { throw 1; });
        EXPECT_STATUS(K_ST_ERROR, Open({{key, producer.Path()}})) << entry;
        producer->SetHook(entry, nullptr);
        EXPECT_STATUS(K_ST_SUCCESS, Update()) << entry;
        EXPECT_EQ(Keys{key}, Bound()) << entry;
    }
}

TEST_F(Discovery, AFaultyDescriptionOfTheProducerItselfEndsDiscovery) {
    producer->port.urls = {"Local:System.xml"};
    EXPECT_STATUS(K_ST_GC_ERROR, Open({{key, producer.Path()}}));
    EXPECT_STREQ("Given local scheme has missing address and length: Local:System.xml", last_genicam_error().sDescription);
    EXPECT_EQ(Keys{}, Bound());
}

TEST_F(Discovery, AProducerThatServesNoDescriptionOfItselfIsBoundWithout) {
    producer->Refuse("GCGetPortURLInfo", GenTL::GC_ERR_NOT_AVAILABLE);
    producer->Refuse("GCGetPortURL", GenTL::GC_ERR_NOT_AVAILABLE);
    EXPECT_STATUS(K_ST_SUCCESS, Open({{key, producer.Path()}}));
    EXPECT_EQ(Keys{key}, Bound());
}

}  // namespace
}  // namespace kiv_test
