// The module tree: transport layers and what they tell.
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class GenTLTree : public ScriptedFactory {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OpenFactory());
        ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, nullptr, 0));
    }
    TRANSPORT_LAYER_HANDLE layer = nullptr;
};

TEST_F(GenTLTree, TheKeyOfATransportLayerIsCutToTheBuffer) {
    char name[16] = "zzzzzzzzzzzzzzz";
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, name, 5));
    EXPECT_STREQ("SCRI", name);
    EXPECT_EQ('z', name[5]);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, name, sizeof name));
    EXPECT_STREQ("SCRIPTED", name);
    name[0] = 'q';
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, name, 0));
    EXPECT_EQ('q', name[0]);
    const auto before = layer;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GetTransportLayerByIndex(factory, 1, &layer, name, sizeof name));
    EXPECT_EQ(before, layer);
}

TEST_F(GenTLTree, InfosOfATransportLayerAreTheProducers) {
    char text[64];
    std::uint32_t size = 0;
    std::int32_t type = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, &type, nullptr, &size));
    EXPECT_EQ(15u, size);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, &type, text, &size));
    EXPECT_STREQ("Scripted Works", text);
    EXPECT_EQ(GenTL::INFO_DATATYPE_STRING, type);
    size = 3;
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, &type, text, &size));
    EXPECT_EQ(3u, size) << "written back on success only";
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_GenTL_TLGetInfo(layer, 4242, &type, text, &size));
}

}  // namespace
}  // namespace kiv_test
