#include <cstdlib>
#include <thread>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Library : public ProducerTest {};

TEST_F(Library, IsInitialisedOnceAndClosedOnce) {
    EXPECT_EQ(GC_ERR_NOT_INITIALIZED, gentl.GCCloseLib());
    EXPECT_EQ(GC_ERR_NOT_INITIALIZED, gentl.TLOpen(&system));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.GCInitLib());
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLOpen(&system));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.TLOpen(&system));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCCloseLib());
    EXPECT_EQ(GC_ERR_NOT_INITIALIZED, gentl.TLClose(system));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.TLClose(system)) << "a handle of the session before";
}

TEST_F(Library, ShowsTheGenTLFunctionsOnly) {
    const std::string list = folder / "names";
    ASSERT_EQ(0, std::system(("nm -D --defined-only " KIV_SIM_PRODUCER " | awk '{print $3}' | sort > " + list).c_str()));
    std::string expected;
    std::vector<std::string> names;
#define KIV_NAME(name, arguments) names.push_back(#name);
    GENTL_FUNCTION_LIST(KIV_NAME)
#undef KIV_NAME
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) expected += name + "\n";
    EXPECT_EQ(57u, names.size());
    std::string shown = platform::read_file(list, 1 << 20);
    std::vector<std::string> lines;
    for (size_t at = 0, end; (end = shown.find('\n', at)) != shown.npos; at = end + 1)
        lines.push_back(shown.substr(at, end - at));
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(names, lines);
}

TEST_F(Library, SaysTheSameOfItselfBeforeAndAfterTLOpen) {
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    std::vector<std::string> before;
    for (TL_INFO_CMD command = TL_INFO_ID; command <= TL_INFO_DISPLAYNAME; ++command)
        before.push_back(ask_text([&](auto... out) { return gentl.GCGetInfo(command, out...); }));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLOpen(&system));
    for (TL_INFO_CMD command = TL_INFO_ID; command <= TL_INFO_DISPLAYNAME; ++command)
        EXPECT_EQ(before[static_cast<size_t>(command)],
                  ask_text([&](auto... out) { return gentl.TLGetInfo(system, command, out...); }));
    EXPECT_EQ("KIV_SIM", before[TL_INFO_ID]);
    EXPECT_EQ("Custom", before[TL_INFO_TLTYPE]);
    EXPECT_EQ("KivSim.cti", before[TL_INFO_NAME]);
    EXPECT_EQ(std::filesystem::canonical(KIV_SIM_PRODUCER), before[TL_INFO_PATHNAME]);
    const auto number = [&](TL_INFO_CMD command) {
        return ask_value<uint32_t>([&](auto... out) { return gentl.TLGetInfo(system, command, out...); }, INFO_DATATYPE_UINT32);
    };
    EXPECT_EQ(1u, number(TL_INFO_GENTL_VER_MAJOR));
    EXPECT_EQ(5u, number(TL_INFO_GENTL_VER_MINOR));
}

TEST_F(Library, KeepsTheTwoCallRule) {
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    INFO_DATATYPE type = -1;
    size_t size = 0;
    char text[64] = "untouched";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCGetInfo(TL_INFO_VENDOR, &type, nullptr, &size));
    EXPECT_EQ(sizeof "Kivotek", size);
    --size;
    type = -1;
    EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL, gentl.GCGetInfo(TL_INFO_VENDOR, &type, text, &size));
    EXPECT_STREQ("untouched", text);
    EXPECT_EQ(-1, type);
    size = sizeof text;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCGetInfo(TL_INFO_VENDOR, &type, text, &size));
    EXPECT_EQ(sizeof "Kivotek", size);
    EXPECT_STREQ("Kivotek", text);
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.GCGetInfo(TL_INFO_CUSTOM_ID, &type, text, &size));
}

TEST_F(Library, RefusesNullAndAllOnesPointers) {
    ASSERT_NO_FATAL_FAILURE(Open());
    INFO_DATATYPE type = 0;
    size_t size = 64;
    char text[64];
    auto* const ones = reinterpret_cast<size_t*>(UINTPTR_MAX);
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCGetInfo(TL_INFO_ID, nullptr, text, &size));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCGetInfo(TL_INFO_ID, &type, text, nullptr));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCGetInfo(TL_INFO_ID, &type, text, ones));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCGetInfo(TL_INFO_ID, &type, ones, &size));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.TLOpenInterface(system, nullptr, &interface));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.TLOpenInterface(system, "SIM1", nullptr));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.TLGetNumInterfaces(system, nullptr));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCReadPort(camera, 0, nullptr, &size));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCReadPort(camera, 0, text, nullptr));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.DSAnnounceBuffer(stream, nullptr, 64, nullptr, &camera));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.DSAnnounceBuffer(stream, text, 0, nullptr, &camera));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, nullptr));
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &event)) << "the refused call registered nothing";
}

TEST_F(Library, RemembersTheLastFailureOfEachThread) {
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    std::thread([&] {
        GC_ERROR code = -1;
        EXPECT_EQ("No Error", ask_id([&](auto... out) { return gentl.GCGetLastError(&code, out...); }));
        EXPECT_EQ(GC_ERR_SUCCESS, code);
    }).join();

    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLOpen(&system));
    EXPECT_EQ(GC_ERR_INVALID_ID, gentl.TLOpenInterface(system, "no such bus", &interface));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLUpdateInterfaceList(system, nullptr, 0)) << "a success clears nothing";
    GC_ERROR code = 0;
    char text[256];
    size_t size = 3;
    EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL, gentl.GCGetLastError(&code, text, &size)) << "its own failure is not remembered";
    EXPECT_NE(std::string::npos, ask_id([&](auto... out) { return gentl.GCGetLastError(&code, out...); }).find("no such bus"));
    EXPECT_EQ(GC_ERR_INVALID_ID, code);
    std::thread([&] {
        size = sizeof text;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCGetLastError(&code, text, &size));
        EXPECT_EQ(GC_ERR_SUCCESS, code) << "the failure of another thread";
    }).join();
}

}  // namespace
}  // namespace kiv::test
