#include <kiv/platform/environment.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

#include "producer_fixture.h"
#include "support/system/habits.h"

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
    std::vector<std::string> names;
#define KIV_NAME(name, arguments) names.push_back(#name);
    GENTL_FUNCTION_LIST(KIV_NAME)
#undef KIV_NAME
    std::sort(names.begin(), names.end());
    EXPECT_EQ(57u, names.size());
    EXPECT_EQ(names, kiv_test::exported_names(KIV_SIM_PRODUCER));
}

TEST_F(Library, TellsItsLogWhatTheEnvironmentAsksFor) {
    const std::vector<std::string> kinds = {"TLOpenInterface(", "TLOpen(", "IFOpenDevice(", "GCReadPort(",
                                            " read 4 bytes at 0x20100: 80 00 00 00"};
    const struct {
        const char *calls, *link, *level;
        std::vector<bool> told;  ///< of each kind: a failure, a refusal, what opens, everything, a transfer
    } rows[] = {
        {"TRUE", "TRUE", "1", {false, false, false, false, false}}, {"TRUE", "TRUE", "2", {true, false, false, false, false}},
        {"TRUE", "TRUE", "3", {true, true, false, false, false}},   {"TRUE", "TRUE", "4", {true, true, true, false, false}},
        {"TRUE", "TRUE", "6", {true, true, true, true, true}},      {"", "TRUE", "6", {false, false, false, false, true}},
        {"TRUE", "", "6", {true, true, true, true, false}},         {"", "", "6", {false, false, false, false, false}}};
    for (auto& row : rows) {
        const std::string log = folder / ("log" + std::to_string(&row - rows));
        platform::set_environment("KIV_GENTL_LOGGING", row.calls);
        platform::set_environment("KIV_LIBUSB_LOGGING", row.link);
        platform::set_environment("KIV_LOG_LEVEL", row.level);
        platform::set_environment("KIV_SIM_LOG", log);
        system = nullptr, interface = nullptr;
        ASSERT_NO_FATAL_FAILURE(OpenSystem());
        IF_HANDLE none = nullptr;
        EXPECT_EQ(GC_ERR_INVALID_ID, gentl.TLOpenInterface(system, "nowhere", &none));
        TL_HANDLE second = nullptr;
        EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.TLOpen(&second));
        ASSERT_NO_FATAL_FAILURE(OpenDevice());
        EXPECT_EQ(128u, Read32(camera_register::width));
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCCloseLib());
        const std::string text = platform::read_file(log, 1 << 20);
        for (size_t i = 0; i < kinds.size(); ++i)
            EXPECT_EQ(row.told[i], text.find(kinds[i]) != text.npos) << row.calls << row.link << row.level << "\n" << text;
        EXPECT_EQ(row.told[0], text.find("nowhere") != text.npos) << "the reason of the failure";
    }
    for (auto* name : {"KIV_GENTL_LOGGING", "KIV_LIBUSB_LOGGING", "KIV_LOG_LEVEL", "KIV_SIM_LOG"})
        platform::unset_environment(name);
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
