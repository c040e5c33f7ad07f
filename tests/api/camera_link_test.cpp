// The Camera Link probe: which ports it looks at, what it tells of the cameras, what it bears with, and how it is cancelled.
#include <Kiv_Factory.h>
#include <gmock/gmock.h>
#include <kiv/platform/event.h>
#include <kiv/platform/serial_port.h>

#include <array>
#include <filesystem>
#include <memory>
#include <random>

#include "support/debug_recorder.h"
#include "support/expect_status.h"
#include "support/serial_camera.h"
#include "support/system/habits.h"
#include "support/system/installer_records.h"
#include "support/temp_folder.h"

namespace kiv_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* prefix = "K_Factory_Camera_Link_Probe: ";
constexpr const char* cancelled = "K_Factory_Camera_Link_Probe: canceling camera link probing.\n";

struct Findings {
    K_STATUS_CODES status = 0;
    std::array<std::string, 5> texts;
};

/// Nothing of the machine's own is seen: no ports but those that the test adds.
class CameraLink : public testing::Test {
protected:
    CameraLink() { std::filesystem::create_directory(folder.In("libraries")); }
    void SetUp() override {
        if (!SerialLine::IsThere()) GTEST_SKIP() << "there are no serial lines: KIV_TEST_SERIAL_LINES names none";
    }

    /// A port of the test's frame grabber.
    void AddGrabberPort(const std::string& name, const std::string& device, const std::string& mask) {
        if (!std::filesystem::exists(folder.In("libraries/clserkiv") + library_suffix))
            AddLibrary(KIV_SERIAL_LIBRARY, "clserkiv");
        grabber_ports += name + "=" + device + "=" + mask + ";";
    }
    void AddSystemPort(const std::string& device) { system_ports += device + ";"; }
    void AddLibrary(const char* file, const char* name) {
        give_second_name(file, folder.In("libraries/") + name + library_suffix);
    }

    Findings Probe(const char* cancel_event = nullptr) {
        const ScopedEnvironment path("KIV_CAMERA_LINK_PATH", folder.In("libraries"));
        const ScopedEnvironment ports("KIV_CAMERA_LINK_PORTS", system_ports);
        const ScopedEnvironment grabber("KIV_TEST_SERIAL_PORTS", grabber_ports);
        std::vector<std::string> room(5, std::string(K_CAMERA_LINK_TEXT_ROOM, '#'));
        Findings found;
        found.status = K_Factory_Camera_Link_Probe(room[0].data(), room[1].data(), room[2].data(), room[3].data(), room[4].data(),
                                                   K_CAMERA_LINK_TEXT_ROOM, cancel_event);
        for (std::size_t i = 0; i < room.size(); ++i)
            found.texts[i] = found.status == K_ST_SUCCESS ? room[i].c_str() : (room[i].front() == '#' ? "untouched" : "touched");
        return found;
    }

    TempFolder folder;
    std::string grabber_ports, system_ports;
    DebugRecorder debug;
};

const std::array<std::string, 5> all_untouched{"untouched", "untouched", "untouched", "untouched", "untouched"};

std::string system_id(const SerialCamera& camera) { return "COM_Port#" + camera.Path(); }

// ---- what is found ----

TEST_F(CameraLink, TellsOfEachCameraItsPortIdentityNameAndRates) {
    SerialCamera first, second;
    second.SetText(0x44, "Second\tcamera");
    second.SetText(0x144, "77");
    AddGrabberPort("A", first.Path(), "13");
    AddSystemPort(second.Path());
    const Findings found = Probe();
    ASSERT_STATUS(K_ST_SUCCESS, found.status);
    EXPECT_EQ("Test Grabbers#A\n" + system_id(second) + "\n", found.texts[0]);
    const std::string driver = std::string("Kiv_Factory") + library_suffix;
    EXPECT_THAT(found.texts[1], testing::AllOf(HasSubstr(driver + "#Kiv_Ltd#Line#KIV_SIM_1#_1_0#_4F01\n"),
                                               testing::EndsWith(driver + "#Kiv_Ltd#Line#Second_camera#_1_0#_77\n")));
    EXPECT_EQ("KIV-SIM-1\nSecond?camera\n", found.texts[2]);
    EXPECT_EQ("9600\n9600\n", found.texts[3]);
    EXPECT_EQ("9600$19200$115200\n9600$19200$38400$57600$115200$230400$460800$921600\n", found.texts[4]);
}

TEST_F(CameraLink, SaysEachStepInOrder) {
    SerialCamera camera;
    AddSystemPort(camera.Path());
    ASSERT_STATUS(K_ST_SUCCESS, Probe().status);
    std::string said;
    for (const char* step : {"Attempting to connect to port: ", "Attempting to read from port: ",
                             "Attempting to read bootstrap register address from port: ", "Successfully connected to port: "})
        said += prefix + std::string(step) + system_id(camera);
    EXPECT_EQ(said, debug.Text());
    // The probe's own reads come last and in this order: name, present rate, address of the bootstrap registers.
    std::vector<std::uint64_t> addresses;
    for (const SerialCommand& command : camera.Commands()) addresses.push_back(command.address);
    ASSERT_GT(addresses.size(), 3u);
    addresses.erase(addresses.begin(), addresses.end() - 3);
    EXPECT_THAT(addresses, ElementsAre(0x44, 0x10004, 0x1D8));
}

TEST_F(CameraLink, TellsTheLogWhatWasFoundAndAtDebugEachPacket) {
    SerialCamera camera;
    AddSystemPort(camera.Path());
    AddSystemPort(folder.In("nothing"));
    const auto log = [&](const char* level) {
        const auto file = folder.In(level);
        EXPECT_STATUS(K_ST_SUCCESS, K_EnableLogging(false, false, true, false, file.c_str(), level, "%p %m%n"));
        EXPECT_STATUS(K_ST_SUCCESS, Probe().status);
        EXPECT_STATUS(K_ST_SUCCESS, K_DisableLogging());
        auto text = read_file(file);
        std::erase(text, '\r');  // of lines as some systems end them
        return text;
    };
    const auto found =
        testing::AllOf(HasSubstr("INFO " + system_id(camera) + ": connected to Kiv_Ltd#Line#KIV_SIM_1#_1_0#_4F01\n"),
                       HasSubstr("WARN COM_Port#" + folder.In("nothing") + ": no connection: "));
    EXPECT_THAT(log("INFO"), testing::AllOf(found, Not(HasSubstr("request"))));
    EXPECT_THAT(log("DEBUG"), testing::AllOf(found, HasSubstr("DEBUG reading at 0x44, request "),
                                             HasSubstr("status 0x0: 4b 49 56 2d 53 49 4d 2d 31 00")));
}

TEST_F(CameraLink, FindsACameraThatWorksAtAnotherRate) {
    SerialCamera camera;
    camera.SetRate(115200, 0x10);
    AddSystemPort(camera.Path());
    EXPECT_EQ("115200\n", Probe().texts[3]);
}

TEST_F(CameraLink, UsesLibrariesOfTheFirstGenerationAndPassesOverBrokenOnes) {
    SerialCamera camera;
    AddLibrary(KIV_OLD_SERIAL_LIBRARY, "clserold");
    folder.Write(std::string("libraries/clserbad") + library_suffix, "no library");
    AddLibrary(KIV_SIM_PRODUCER, "clsergtl");
    grabber_ports = "unnamed=" + camera.Path() + "=0;";
    const Findings found = Probe();
    EXPECT_EQ(std::string("clserold") + library_suffix + "#Port 0\n", found.texts[0]);
    EXPECT_EQ("9600\n", found.texts[4]);
    EXPECT_THAT(debug.Text(), testing::AllOf(HasSubstr("clserbad"), HasSubstr(std::string("clsergtl") + library_suffix +
                                                                              "' is no serial library: it has no clSerialInit")));
}

TEST_F(CameraLink, TheSystemsRecordNamesAFolderTooAndALibraryCountsOnce) {
    SerialCamera camera;
    give_second_name(KIV_SERIAL_LIBRARY, folder.MakeFolder("recorded") + "/libCLSerKIV" + library_suffix);
    const auto record = [this](const char* name) {
        return "[HKEY_LOCAL_MACHINE\\SOFTWARE\\CameraLink]\n\"CLSERIALPATH\"=\"" +
               std::filesystem::path(folder.In(name)).generic_string() + "\"\n";
    };
    grabber_ports = "A=" + camera.Path() + "=1;";
    {
        const InstallerRecords records(record("recorded"));
        EXPECT_EQ("Test Grabbers#A\n", Probe().texts[0]);
    }
    AddLibrary(KIV_SERIAL_LIBRARY, "clserkiv");
    const InstallerRecords records(record("recorded/../libraries"));
    EXPECT_EQ("Test Grabbers#A\n", Probe().texts[0]) << "two ways to one folder";
}

TEST_F(CameraLink, ATemplateOfAMakerLetsOnlyHisCamerasThrough) {
    SerialCamera ours, theirs;
    theirs.SetText(0x04, "Somebody else");
    AddGrabberPort("A", theirs.Path(), "1");
    AddGrabberPort("B", ours.Path(), "1");
    AddGrabberPort("B", theirs.Path(), "1");
    const ScopedEnvironment templates("KIV_CAMERA_LINK_TEMPLATES", "Kiv_Ltd#Line");
    EXPECT_EQ("Test Grabbers#B\n", Probe().texts[0]);
    EXPECT_THAT(debug.Text(),
                HasSubstr("skipping port: Test Grabbers#A: the camera is 'Somebody_else#Line#KIV_SIM_1#_1_0#_4F01'"));
    EXPECT_THAT(debug.Text(), HasSubstr("skipping port: Test Grabbers#B (2): "));
}

TEST_F(CameraLink, ANameOf64BytesHasNoEndOfItsOwn) {
    SerialCamera camera;
    camera.SetText(0x44, std::string(64, 'x'));
    AddSystemPort(camera.Path());
    EXPECT_EQ(std::string(64, 'x') + "\n", Probe().texts[2]);
}

TEST_F(CameraLink, WhatACameraDoesNotTellIsNoReasonToPassItOver) {
    SerialCamera camera;
    camera.SetNumber(0x1C4, 0x200, 8);  // no family name
    for (const std::uint64_t address : {0x04, 0xC4, 0x144, 0x1CC}) camera.Remove(address);
    AddSystemPort(camera.Path());
    EXPECT_THAT(Probe().texts[1], testing::EndsWith("#_#_#KIV_SIM_1#_#_\n"));
}

// ---- nothing to do ----

TEST_F(CameraLink, WithoutPortsOrTemplatesThereIsNoData) {
    Findings found = Probe();
    EXPECT_STATUS(K_ST_NO_DATA, found.status);
    EXPECT_EQ(all_untouched, found.texts);
    SerialCamera camera;
    AddSystemPort(camera.Path());
    const ScopedEnvironment templates("KIV_CAMERA_LINK_TEMPLATES", ";");
    found = Probe();
    EXPECT_STATUS(K_ST_NO_DATA, found.status);
    EXPECT_EQ(all_untouched, found.texts);
    EXPECT_EQ(0u, camera.BytesHeard());
}

TEST_F(CameraLink, EveryTextNeedsABufferAndTheSizeBoundsNone) {
    SerialCamera camera;
    AddGrabberPort("A", camera.Path(), "1");
    std::array<std::array<char, 4096>, 5> room;
    for (std::size_t missing = 0; missing < 5; ++missing) {
        std::array<char*, 5> out;
        for (std::size_t i = 0; i < 5; ++i) out[i] = i == missing ? nullptr : room[i].data();
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_Camera_Link_Probe(out[0], out[1], out[2], out[3], out[4], 4096, nullptr));
    }
    const ScopedEnvironment path("KIV_CAMERA_LINK_PATH", folder.In("libraries"));
    const ScopedEnvironment grabber("KIV_TEST_SERIAL_PORTS", grabber_ports);
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Camera_Link_Probe(room[0].data(), room[1].data(), room[2].data(), room[3].data(),
                                                            room[4].data(), 3, nullptr));
    EXPECT_STREQ("KIV-SIM-1\n", room[2].data());
    EXPECT_THAT(debug.Text(), HasSubstr("a text is longer than said"));
}

// ---- ports that fail, cameras that are odd ----

struct Oddity {
    const char* name;
    SerialCamera::Manners manners;
    const char* why;  // the port is passed over; null: it is found all the same
};

SerialReply proper_but(const SerialCommand& command, std::uint64_t address, const SerialBytes& otherwise,
                       const SerialBytes& proper) {
    return {command.address == address ? otherwise : proper};
}

const Oddity oddities[] = {
    {"noise before each answer",
     [](auto&, const SerialBytes& proper) {
         SerialBytes bytes{0xFF, 1, 1, 1, 2, 13, 10, 1, 0};
         bytes.insert(bytes.end(), proper.begin(), proper.end());
         return SerialReply{bytes};
     },
     nullptr},
    {"an old answer before the right one",
     [](const SerialCommand& command, const SerialBytes& proper) {
         SerialBytes bytes =
             serial_ack(0, 0x0801, static_cast<std::uint16_t>(command.request - 1), SerialBytes(command.length, 'x'));
         bytes.insert(bytes.end(), proper.begin(), proper.end());
         return SerialReply{bytes};
     },
     nullptr},
    {"a wrong checksum until asked again",
     [](const SerialCommand& command, const SerialBytes& proper) {
         SerialBytes bytes = proper;
         if (!command.Resent()) bytes.back() ^= 0x10;
         return SerialReply{bytes};
     },
     nullptr},
    {"half an answer until asked again",
     [](const SerialCommand& command, const SerialBytes& proper) {
         return SerialReply{{proper.begin(), proper.end() - (command.Resent() ? 0 : 9)}};
     },
     nullptr},
    {"a request for patience first",
     [](const SerialCommand& command, const SerialBytes& proper) {
         SerialBytes bytes = serial_ack(0, 0x0805, command.request, {0, 0, 0x27, 0x10});
         bytes.insert(bytes.end(), proper.begin(), proper.end());
         return SerialReply{bytes};
     },
     nullptr},
    {"silent", [](auto&, auto&) { return SerialReply{}; }, "no camera answers at any rate"},
    {"echoes", [](auto&, auto&) { return SerialReply{SerialBytes(28, 1)}; }, "no camera answers at any rate"},
    {"dies in the middle",
     [](const SerialCommand& command, const SerialBytes& proper) {
         return command.number < 4 ? SerialReply{proper} : SerialReply{{proper.begin(), proper.begin() + 20}, true};
     },
     "(-10006)"},
    {"falls silent in the middle",
     [](const SerialCommand& command, const SerialBytes& proper) { return proper_but(command, 0xC4, {}, proper); },
     "no answer to reading at 0xC4"},
    {"has no bootstrap registers of its own",
     [](const SerialCommand& command, const SerialBytes& proper) {
         return proper_but(command, 0x1D8, serial_ack(0x8003, 0x0801, command.request, {}), proper);
     },
     "refuses reading at 0x1D8: status 0x8003 INVALID_ADDRESS"},
    {"answers with too little",
     [](const SerialCommand& command, const SerialBytes& proper) {
         return proper_but(command, 0x44, serial_ack(0, 0x0801, command.request, SerialBytes(8)), proper);
     },
     "reading at 0x44 gave 8 bytes instead of 64"},
    {"has no rate",
     [](const SerialCommand& command, const SerialBytes& proper) {
         return proper_but(command, 0x10004, serial_ack(0, 0x0801, command.request, {0, 0, 0, 3}), proper);
     },
     "current rate is none: 3"},
};

TEST_F(CameraLink, OddCamerasAreFoundAndUnusablePortsPassedOver) {
    std::vector<std::unique_ptr<SerialCamera>> cameras;
    std::string found_ports;
    for (const Oddity& oddity : oddities) {
        cameras.push_back(std::make_unique<SerialCamera>());
        cameras.back()->SetManners(oddity.manners);
        AddGrabberPort(oddity.name, cameras.back()->Path(), "1");
        if (!oddity.why) found_ports += "Test Grabbers#" + std::string(oddity.name) + "\n";
    }
    SerialCamera taken, last;
    const kiv::platform::SerialPort holder(taken.Path());
    const bool exclusive = SerialLine::IsExclusive();
    if (exclusive) {
        AddGrabberPort("taken", taken.Path(), "1");
        AddSystemPort(taken.Path());
    }
    AddSystemPort(folder.Write("file", ""));
    AddSystemPort(folder.In("nothing"));
    AddGrabberPort("last", last.Path(), "1");
    const Findings found = Probe();
    EXPECT_STATUS(K_ST_SUCCESS, found.status);
    EXPECT_EQ(found_ports + "Test Grabbers#last\n", found.texts[0]);
    const std::string said = debug.Text();
    for (const Oddity& oddity : oddities) {
        const std::string skipping = "skipping port: Test Grabbers#" + std::string(oddity.name) + ": ";
        const auto at = said.find(skipping);
        ASSERT_EQ(oddity.why == nullptr, at == std::string::npos) << oddity.name;
        if (!oddity.why) continue;
        EXPECT_THAT(said.substr(at, said.find('\n', at) - at), HasSubstr(oddity.why));
    }
    EXPECT_THAT(said, testing::AllOf(HasSubstr("file' is none"), HasSubstr("nothing' cannot be opened")));
    if (!exclusive) return;
    EXPECT_THAT(
        said, testing::AllOf(HasSubstr("opening the port: test error -10003 (-10003)"), HasSubstr(taken.Path() + "' is in use")));
}

TEST_F(CameraLink, WithoutACameraTheTextsAreEmpty) {
    AddSystemPort(folder.In("nothing"));
    const Findings found = Probe();
    EXPECT_STATUS(K_ST_SUCCESS, found.status);
    EXPECT_THAT(found.texts, testing::Each(IsEmpty()));
}

TEST_F(CameraLink, RandomAnswersNeitherHangNorBreakTheLines) {
    std::vector<std::unique_ptr<SerialCamera>> cameras;
    for (int i = 0; i < 12; ++i) {
        cameras.push_back(std::make_unique<SerialCamera>());
        cameras.back()->SetManners(
            [i, random = std::mt19937(static_cast<unsigned>(i))](auto&, const SerialBytes& proper) mutable {
                SerialBytes bytes = proper;
                if (i % 3 == 0) bytes.assign(random() % 2000, 0);
                for (auto hits = i % 3 == 0 ? bytes.size() : random() % 2; hits > 0; --hits)
                    bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
                return SerialReply{bytes, random() % 40 == 0};
            });
        AddGrabberPort(std::to_string(i), cameras.back()->Path(), "1");
    }
    const Findings found = Probe();
    EXPECT_STATUS(K_ST_SUCCESS, found.status);
    const auto lines = std::count(found.texts[0].begin(), found.texts[0].end(), '\n');
    for (const std::string& text : found.texts) EXPECT_EQ(lines, std::count(text.begin(), text.end(), '\n'));
}

// ---- cancelling ----

class CancelledCameraLink : public CameraLink {
protected:
    const std::string name = "kiv-test-probe-" + std::to_string(std::random_device()());
    std::unique_ptr<kiv::platform::Event> event = kiv::platform::Event::CreateNamed(name, kiv::platform::ResetMode::manual);
};

TEST_F(CancelledCameraLink, BeforeItBeginsNoPortIsTouched) {
    SerialCamera camera;
    AddSystemPort(camera.Path());
    event->Set();
    const Findings found = Probe(name.c_str());
    EXPECT_STATUS(K_ST_ABORT, found.status);
    EXPECT_EQ(all_untouched, found.texts);
    EXPECT_EQ(cancelled, debug.Text());
    EXPECT_EQ(0u, camera.BytesHeard());
    system_ports.clear();
    EXPECT_STATUS(K_ST_ABORT, Probe(name.c_str()).status) << "also when there is no port";
}

TEST_F(CancelledCameraLink, AtWhateverCommandItEndsThere) {
    std::size_t commands = 0;
    {
        SerialCamera camera;
        AddGrabberPort("A", camera.Path(), "1");
        ASSERT_STATUS(K_ST_SUCCESS, Probe(name.c_str()).status);
        commands = camera.Commands().size();
    }
    // Silent after the event, so that the probe is in the middle of its wait; or with an answer, so that it is at its next step.
    for (const bool silent : {true, false})
        for (std::size_t last = 0; last < commands; ++last) {
            SerialCamera camera;
            camera.SetManners([&](const SerialCommand& command, const SerialBytes& proper) {
                if (command.number == last) event->Set();
                return SerialReply{silent && command.number >= last ? SerialBytes() : proper};
            });
            SerialCamera next;
            grabber_ports.clear();
            AddGrabberPort("A", camera.Path(), "1");
            AddGrabberPort("B", next.Path(), "1");
            EXPECT_STATUS(K_ST_ABORT, Probe(name.c_str()).status) << "at command " << last;
            EXPECT_EQ(last + 1, camera.Commands().size());
            EXPECT_EQ(0u, next.BytesHeard());
            EXPECT_THAT(debug.Text(), testing::EndsWith(cancelled));
            event->Reset();
        }
}

TEST_F(CancelledCameraLink, AnEventThatIsNotThereCannotCancel) {
    SerialCamera camera;
    AddGrabberPort("A", camera.Path(), "1");
    for (const std::string& none : {name + "x", std::string(), std::string(400, 'n'), std::string("a/b\\c")}) {
        EXPECT_STATUS(K_ST_SUCCESS, Probe(none.c_str()).status);
        EXPECT_EQ(nullptr, none.size() < 100 && !none.empty() ? kiv::platform::Event::OpenNamed(none) : nullptr)
            << "it is not made";
    }
}

TEST_F(CameraLink, ACancelEventOfTheLibraryCancelsFromAnotherThread) {
    const std::string name = "kiv-test-cancel-" + std::to_string(std::random_device()());
    CANCEL_EVENT_HANDLE cancel = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Camera_Link_CreateCancelEvent(name.c_str(), &cancel));
    SerialCamera camera;
    camera.SetManners([&](const SerialCommand& command, const SerialBytes& proper) {
        if (command.number == 2) {
            EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Camera_Link_Cancel(cancel));
        }
        return SerialReply{proper};
    });
    AddGrabberPort("A", camera.Path(), "1");
    EXPECT_STATUS(K_ST_ABORT, Probe(name.c_str()).status);
    EXPECT_STATUS(K_ST_ABORT, Probe(name.c_str()).status) << "it stays set";
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Camera_Link_CloseCancelEvent(cancel));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_Camera_Link_CloseCancelEvent(cancel));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Factory_Camera_Link_Cancel(cancel));
    for (const std::string& wrong : {std::string(), std::string(181, 'n')})
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_Camera_Link_CreateCancelEvent(wrong.c_str(), &cancel));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_Camera_Link_CreateCancelEvent(nullptr, &cancel));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Factory_Camera_Link_CreateCancelEvent(name.c_str(), nullptr));
}

}  // namespace
}  // namespace kiv_test
