// Names of files in the letters of any language, through the functions that take 8-bit texts and those that take wide ones.
#include <kiv/platform/paths.h>
#include <kiv/platform/text.h>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

using namespace kiv::platform;

class FileNames : public ScriptedFactory {
protected:
    void SetUp() override {
        producer->FirstDevice().remote.Describe("Names.xml",
                                                R"(<RegisterDescription ModelName="N" VendorName="K" SchemaMajorVersion="1"
            SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0">
            <Category Name="Root"><pFeature>Speed</pFeature></Category>
            <Integer Name="Speed"><Value>3</Value><Streamable>Yes</Streamable></Integer><Port Name="Device"/></RegisterDescription>)");
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
    }
};

TEST_F(FileNames, AreTakenNarrowAndWide) {
    // The user's encoding may lack letters of other languages; wide texts have them all.
    const std::string narrow = folder.In("gr\xC3\xBC\xC3\x9F.xml"), wide = folder.In("\xE6\xB8\xAC\xC3\xA9.xml");
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettingsA(camera, local_from_utf8(narrow).c_str(), K_SAVE_ALL));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettingsW(camera, wide_from_utf8(wide).c_str(), K_SAVE_ALL));
    for (const std::string& file : {narrow, wide}) EXPECT_TRUE(path_exists(file)) << file;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_LoadSettingsA(camera, local_from_utf8(narrow).c_str(), K_LOAD_ONLY));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_LoadSettingsW(camera, wide_from_utf8(wide).c_str(), K_LOAD_ONLY));
}

}  // namespace
}  // namespace kiv_test
