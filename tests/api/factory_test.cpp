// The factory: which registry file it opens, what it tells about itself, and its list of producers.
#include <cstring>
#include <filesystem>

#include "support/patterns.h"
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class FactoryOpen : public ScriptedFactory {
protected:
    FactoryOpen() {
        data_registry = [&] { return write_registry(folder, "data/Registry_64.xml", {{"FROM_DATA", producer.Path()}}); };
        program_registry = [&] { return write_registry(folder, "bin/Registry.xml", {{"FROM_BIN", producer.Path()}}); };
    }

    /// Opens on `path` and tells the key of the first producer; nothing when it does not open.
    std::string KeyOf(const char* path) {
        CloseFactory();
        if (K_Factory_Open(path, &factory) != K_ST_SUCCESS) return "(not opened)";
        bool changed = false;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
        K_PRODUCER_REPORT report{};
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetProducerReport(factory, 0, &report));
        return report.sKey;
    }

    ScopedEnvironment data{"KIV_SDK_DATA", folder.In("data")};
    ScopedEnvironment bin{"KIV_SDK_BIN_64", folder.In("bin")};
    std::function<std::string()> data_registry, program_registry;
};

TEST_F(FactoryOpen, TakesTheGivenFileElseTheDataFileElseTheProgramFile) {
    auto own = write_registry(folder, "own.xml", {{"OWN", producer.Path()}});
    program_registry();
    EXPECT_EQ("FROM_BIN", KeyOf(""));
    data_registry();
    EXPECT_EQ("FROM_DATA", KeyOf(""));
    EXPECT_EQ("FROM_DATA", KeyOf(nullptr));
    EXPECT_EQ("FROM_DATA", KeyOf("there/is/no/such/file.xml"));
    EXPECT_EQ("FROM_DATA", KeyOf(folder.Path().c_str())) << "a folder is no registry file";
    EXPECT_EQ("OWN", KeyOf(own.c_str()));
}

TEST_F(FactoryOpen, ExpandsMacrosInThePath) {
    write_registry(folder, "own.xml", {{"OWN", producer.Path()}});
    ScopedEnvironment place("KIV_TEST_PLACE", folder.Path());
    EXPECT_EQ("OWN", KeyOf("$(KIV_TEST_PLACE)/own.xml"));
    EXPECT_EQ("OWN", KeyOf("$(KIV_TEST_PLACE)\\own.xml"));
}

TEST_F(FactoryOpen, WithoutAnyFileThereIsNoFactory) {
    factory = reinterpret_cast<FACTORY_HANDLE>(&folder);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_Open("", &factory));
    EXPECT_EQ(nullptr, factory);
}

TEST_F(FactoryOpen, ARegistryWithoutProducersGivesAFactoryAndNoData) {
    for (auto& path : {write_registry(folder, "empty.xml", {}), folder.Write("broken.xml", "<KivRegistry version=\"1\"><Prod")}) {
        EXPECT_STATUS(K_ST_NO_DATA, K_Factory_Open(path.c_str(), &factory)) << path;
        EXPECT_NE(nullptr, factory) << path;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Close(factory));
        factory = nullptr;
    }
}

TEST_F(FactoryOpen, AnUnreadableRegistryEndsDiscovery) {
    auto broken = folder.Write("broken.xml", "this is no registry");
    ASSERT_STATUS(K_ST_NO_DATA, K_Factory_Open(broken.c_str(), &factory));
    bool changed = true;
    std::uint32_t count = 5;
    EXPECT_STATUS(K_ST_INVALID_ADDRESS, K_Factory_UpdateCameraList(factory, &changed));
    EXPECT_FALSE(changed);
    EXPECT_STATUS(K_ST_INVALID_ADDRESS, K_Factory_GetNumOfCameras(factory, &count));
    EXPECT_EQ(5u, count);
    EXPECT_THAT(debug.Text(), ::testing::HasSubstr("broken.xml"));
}

TEST_F(FactoryOpen, NothingIsBoundBeforeTheFirstUpdate) {
    data_registry();
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(nullptr, &factory));
    std::uint32_t layers = 9;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNumberOfTransportLayers(factory, &layers));
    EXPECT_EQ(0u, layers);
    EXPECT_THAT(producer->Calls(), ::testing::IsEmpty());
    std::uint32_t cameras = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &cameras));
    EXPECT_EQ(1u, cameras);
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &cameras));
    EXPECT_EQ(1u, producer->Count("TLOpen"));
    EXPECT_EQ(1u, producer->Count("IFUpdateDeviceList")) << "only the first query makes the list";
}

TEST_F(FactoryOpen, ASecondFactoryDoesNotDisturbTheFirst) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    auto registry = folder.In("registry.xml");
    FACTORY_HANDLE second = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(registry.c_str(), &second));
    std::uint32_t cameras = 9;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(second, &cameras));
    EXPECT_EQ(0u, cameras) << "a producer opens once in a process";
    K_PRODUCER_REPORT report{};
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetProducerReport(second, 0, &report));
    EXPECT_STATUS(K_ST_RESOURCE_IN_USE, report.status);
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Close(second));
    EXPECT_EQ(0u, producer->Count("GCCloseLib"));
    EXPECT_EQ("Scripted", Text("DeviceModelName"));
}

// ---- facts and errors ----

TEST(FactoryInfo, TellsFourFixedFactsWithoutLookingAtTheCapacity) {
    struct {
        std::uint32_t id;
        const char* text;
        std::uint32_t size;
    } facts[] = {{1, "Feb 22 2018", 12}, {2, "18:58:43", 9}, {3, "KIV", 4}};
    for (auto& fact : facts) {
        std::uint32_t size = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetInfo(fact.id, nullptr, &size));
        EXPECT_EQ(fact.size, size);
        char text[32] = "?";
        size = 1;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetInfo(fact.id, text, &size));
        EXPECT_STREQ(fact.text, text);
        EXPECT_EQ(fact.size, size);
    }
}

TEST(FactoryInfo, TheVersionIsThreeNumbers) {
    char text[64] = "";
    std::uint32_t size = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetInfo(0, text, &size));
    EXPECT_THAT(text, IsLike("[0-9]+\\.[0-9]+\\.[0-9]+"));
    EXPECT_EQ(std::string(text).size() + 1, size);
}

TEST(FactoryInfo, AnUnknownNumberWritesNothing) {
    for (std::uint32_t id : {4u, 1000u, 0xFFFFFFFFu}) {
        char text[8] = "as is";
        std::uint32_t size = 77;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetInfo(id, text, &size));
        EXPECT_STREQ("as is", text);
        EXPECT_EQ(77u, size);
    }
}

class ErrorRecordOfCamera : public ScriptedFactory {};

TEST_F(ErrorRecordOfCamera, KeepsTheLastErrorWithItsNodeAndIsNotCleared) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(camera, "Width", 5000));
    EXPECT_STREQ("Width", last_genicam_error().sNodeName);
    EXPECT_STRNE("", last_genicam_error().sDescription);
    auto description = std::string(last_genicam_error().sDescription);
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "Width", 64));
    EXPECT_EQ(description, last_genicam_error().sDescription);

    // An error without a node empties the name that the former one left.
    {
        std::lock_guard guard(producer->lock);
        producer->FirstDevice().remote.urls = {"nonsense"};
    }
    CloseCamera();
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera));
    EXPECT_STREQ("", last_genicam_error().sNodeName);
    EXPECT_STREQ("No scheme found in url: nonsense", last_genicam_error().sDescription);
}

TEST_F(ErrorRecordOfCamera, CutsALongTextAndEndsIt) {
    {
        std::lock_guard guard(producer->lock);
        producer->FirstDevice().remote.urls = {std::string(5000, 'u')};
    }
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera));
    EXPECT_EQ(sizeof(K_GC_ERROR_INFO::sDescription) - 1, std::strlen(last_genicam_error().sDescription));
}

}  // namespace
}  // namespace kiv_test
