// Any call from any thread: many threads on few cameras, and cameras that do not wait for each other.
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "support/scripted_factory.h"
#include "support/sim_camera.h"

namespace kiv_test {
namespace {

constexpr K_STATUS_CODES ok = K_ST_SUCCESS;

/// Opened once, for good.
class Gate {
public:
    void Open() {
        std::lock_guard guard(lock_);
        open_ = true;
        changed_.notify_all();
    }
    /// False when it stays shut for very long.
    bool Wait() {
        std::unique_lock guard(lock_);
        return changed_.wait_for(guard, std::chrono::seconds(30), [&] { return open_; });
    }

private:
    std::mutex lock_;
    std::condition_variable changed_;
    bool open_ = false;
};

// ---- two simulated cameras, eight threads -----------------------------------------------------------------------------------

std::atomic<unsigned> called_back{0};

/// Runs inside the map's lock, on whichever thread made the change, and uses the same map.
void K_CALL use_the_map(void* changed) {
    char text[64];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(ok, K_Node_GetName(static_cast<NODE_HANDLE>(changed), text, &size, 0));
    std::int64_t value = 0;
    EXPECT_STATUS(ok, K_Node_GetValueInt64(static_cast<NODE_HANDLE>(changed), false, &value));
    ++called_back;
}

class Threads : public SimCamera {
protected:
    static constexpr int rounds = 300;
    using Role = std::function<void(CAM_HANDLE, int round)>;

    static NODE_HANDLE NodeOf(CAM_HANDLE opened, const char* name) {
        NODE_HANDLE node = nullptr;
        EXPECT_STATUS(ok, K_Camera_GetNodeByName(opened, name, &node)) << name;
        return node;
    }

    static void WriteNumbers(CAM_HANDLE opened, int round) {
        const std::int64_t width = 16 + 4 * (round % 28);
        std::int64_t seen = 0;
        EXPECT_STATUS(ok, K_Camera_SetValueInt64(opened, "Width", width));
        EXPECT_STATUS(ok, K_Camera_GetValueInt64(opened, "Width", &seen));
        EXPECT_EQ(width, seen) << "nobody else sets it";
        EXPECT_STATUS(ok, K_Camera_GetValueInt64(opened, "PayloadSize", &seen));
    }

    static void WriteTexts(CAM_HANDLE opened, int round) {
        const char* pattern = round % 2 ? "Off" : "GreyHorizontalRamp";
        char text[64];
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(ok, K_Camera_SetValueString(opened, "TestPattern", pattern));
        EXPECT_STATUS(ok, K_Camera_GetValueString(opened, "TestPattern", text, &size));
        EXPECT_STREQ(pattern, text);
        EXPECT_STATUS(ok, K_Camera_SetValueDouble(opened, "ExposureTime", 100.0 + round));
    }

    static void ReadEverything(CAM_HANDLE opened, int round) {
        std::uint32_t count = 0, number = 0;
        ASSERT_STATUS(ok, K_Camera_GetNumOfNodes(opened, &count));
        const auto first = static_cast<std::uint32_t>(round) * 37 % count;
        for (auto i = first; i < std::min(first + 37, count); ++i) {
            NODE_HANDLE node = nullptr, entry = nullptr;
            char text[512];
            std::uint32_t size = sizeof text;
            ASSERT_STATUS(ok, K_Camera_GetNodeByIndex(opened, i, &node));
            EXPECT_STATUS(ok, K_Node_GetType(node, &number));
            EXPECT_STATUS(ok, K_Node_GetAccessMode(node, &number));
            EXPECT_STATUS(ok, K_Node_GetCachingMode(node, &number));
            EXPECT_STATUS(ok, K_Node_GetVisibility(node, &number));
            K_Node_GetValueString(node, true, text, &size);
            number = 0;
            K_Node_GetNumOfSelectedFeatures(node, &number);
            if (K_Node_GetNumOfEnumEntries(node, &number) != ok) continue;
            std::int64_t value = 0;
            for (std::uint32_t e = 0; e < number; ++e) {
                EXPECT_STATUS(ok, K_Node_GetEnumEntryByIndex(node, e, &entry));
                EXPECT_STATUS(ok, K_Node_GetEnumEntryValue(entry, &value));
            }
        }
    }

    void Disturb(CAM_HANDLE opened, int round) {
        EXPECT_STATUS(ok, K_Node_Invalidate(NodeOf(opened, "Width")));
        EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(opened, "Height", -1));
        K_GC_ERROR_INFO error;
        EXPECT_STATUS(ok, K_Factory_GetGenICamErrorInfo(&error));
        const bool is_own = std::string(error.sNodeName) == "Height";
        EXPECT_EQ(is_own, std::string(error.sDescription).find("Value = -1 ") != std::string::npos) << "never mixed of two";
        if (round % 8 != 0) return;
        bool changed = false;
        std::uint32_t count = 0, nodes = 0;
        EXPECT_STATUS(ok, K_Camera_InvalidateNodes(opened));
        EXPECT_STATUS(ok, K_Factory_UpdateCameraList(factory, &changed));
        EXPECT_STATUS(ok, K_Factory_GetNumOfCameras(factory, &count));
        EXPECT_EQ(2u, count);
        TRANSPORT_LAYER_HANDLE layer = nullptr;
        INTERFACE_HANDLE its_interface = nullptr;
        void* device = nullptr;
        EXPECT_STATUS(ok, K_Camera_GetTLHandle(opened, &layer));
        EXPECT_STATUS(ok, K_Camera_GetInterfaceHandle(opened, &its_interface));
        EXPECT_STATUS(ok, K_Camera_GetLocalDeviceHandle(opened, &device));
        for (void* module : {static_cast<void*>(layer), static_cast<void*>(its_interface), device})
            EXPECT_STATUS(ok, K_GenTL_GetNumOfNodes(module, &nodes));
    }
};

TEST_F(Threads, EightOnTwoCameras) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera("T0002"));
    const auto second = std::exchange(camera, nullptr);
    ASSERT_NO_FATAL_FAILURE(OpenCamera("T0001"));
    called_back = 0;
    const Role roles[] = {WriteNumbers, WriteTexts, ReadEverything, [this](CAM_HANDLE opened, int i) { Disturb(opened, i); }};
    std::vector<std::thread> users;
    for (auto opened : {camera, second}) {
        EXPECT_STATUS(ok, K_Node_RegisterCallback(NodeOf(opened, "Width"), use_the_map));
        for (const auto& role : roles)
            users.emplace_back([opened, role] {
                for (int round = 0; round < rounds; ++round) role(opened, round);
            });
    }
    for (auto& user : users) user.join();
    EXPECT_GE(called_back, 2u * rounds) << "every write of a width is told";
    EXPECT_STATUS(ok, K_Camera_Close(second));
}

// ---- one camera that does not answer ----------------------------------------------------------------------------------------

Gate* callback_reached = nullptr;
Gate* callback_may_return = nullptr;
void K_CALL wait_in_callback(void*) {
    callback_reached->Open();
    callback_may_return->Wait();
}

class SlowCamera : public ScriptedFactory {
protected:
    void SetUp() override {
        auto& other = producer->FirstInterface().devices.emplace_back();
        other.id = "CAM1";
        other.remote = producer->FirstDevice().remote;
        other.local = producer->FirstDevice().local;
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
        ASSERT_STATUS(ok, K_Camera_Open_Proxy(factory, other_id, &quick));
    }

    /// While `slow` is held up in its camera, everything goes on that does not need that camera's node map.
    void ExpectOthersGoOn(const std::function<void()>& slow, Gate& held_up, Gate& go_on) {
        std::thread waiting(slow);
        EXPECT_TRUE(held_up.Wait());
        Gate done;
        std::thread working([&] {
            UseQuickCamera();
            UseLists();
            done.Open();
        });
        EXPECT_TRUE(done.Wait()) << "another camera's call waits for the slow one";
        go_on.Open();
        working.join();
        waiting.join();
    }

    void UseQuickCamera() {
        std::int64_t value = 0;
        char text[32];
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(ok, K_Camera_GetValueInt64(quick, "Counter", &value));
        EXPECT_STATUS(ok, K_Camera_SetValueString(quick, "Pattern", "Third choice"));
        EXPECT_STATUS(ok, K_Camera_GetValueString(quick, "UserName", text, &size));
        EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_GetValueInt64(quick, "Faulty", &value));
        EXPECT_STATUS(ok, K_Camera_InvalidateNodes(quick));
        EXPECT_STATUS(ok, K_Camera_Close(quick));
        EXPECT_STATUS(ok, K_Camera_Open_Proxy(factory, other_id, &quick));
    }

    void UseLists() {
        bool changed = false;
        std::uint32_t count = 0;
        TRANSPORT_LAYER_HANDLE layer = nullptr;
        EXPECT_STATUS(ok, K_Factory_UpdateCameraList(factory, &changed));
        EXPECT_STATUS(ok, K_Camera_GetTLHandle(camera, &layer));
        EXPECT_STATUS(ok, K_GenTL_GetNumOfNodes(layer, &count));
        EXPECT_STATUS(ok, K_Camera_GetNumOfNodes(camera, &count)) << "of the slow camera: nothing that it has to be asked for";
        char text[64];
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(ok, K_Node_GetToolTip(Node("Width"), text, &size));
    }

    static constexpr const char* other_id = "TL=>SCRIPTED , INT=>IF0 , DEV=>CAM1";
    CAM_HANDLE quick = nullptr;
};

TEST_F(SlowCamera, ARegisterAccessThatTakesForEverDelaysNobodyElse) {
    Gate reached, answer;
    const auto slow_port = reinterpret_cast<std::uint64_t>(&producer->FirstDevice().remote);
    producer->SetHook("GCReadPort", [&](const scripted::Call& call) -> std::optional<GenTL::GC_ERROR> {
        if (call.numbers[0] != slow_port) return std::nullopt;
        reached.Open();
        answer.Wait();
        return std::nullopt;
    });
    std::int64_t value = 0;
    ExpectOthersGoOn([&] { EXPECT_STATUS(ok, K_Camera_GetValueInt64(camera, "Counter", &value)); }, reached, answer);
    EXPECT_EQ(7, value);
    producer->SetHook("GCReadPort", nullptr);
}

TEST_F(SlowCamera, ACallbackThatTakesForEverDelaysNobodyElse) {
    Gate reached, may_return;
    callback_reached = &reached;
    callback_may_return = &may_return;
    ASSERT_STATUS(ok, K_Node_RegisterCallback(Node("Height"), wait_in_callback));
    ExpectOthersGoOn([&] { EXPECT_STATUS(ok, K_Camera_SetValueInt64(camera, "Height", 100)); }, reached, may_return);
    EXPECT_EQ(100u, Register(scripted::reg::height));
}

// ---- callbacks ----------------------------------------------------------------------------------------------------------------

CAM_HANDLE own_camera = nullptr;
std::vector<std::string> events;

void K_CALL follow_the_width(void*) {
    std::int64_t width = 0, twice = 0;
    EXPECT_STATUS(ok, K_Camera_GetValueInt64(own_camera, "Width", &width));
    EXPECT_STATUS(ok, K_Camera_GetValueInt64(own_camera, "DoubleWidth", &twice));
    EXPECT_EQ(2 * width, twice) << "what depends on the change is known to be old before anybody is told";
    events.push_back("width " + std::to_string(width));
    EXPECT_STATUS(ok, K_Camera_SetValueInt64(own_camera, "Height", width / 2));
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(own_camera, "Width", 1)) << "and failing in it harms nobody";
}
void K_CALL note_the_height(void* node) {
    std::int64_t height = 0;
    EXPECT_STATUS(ok, K_Node_GetValueInt64(static_cast<NODE_HANDLE>(node), true, &height));
    events.push_back("height " + std::to_string(height));
}

TEST_F(SlowCamera, CallbacksMayUseTheirOwnMap) {
    own_camera = camera;
    events.clear();
    ASSERT_STATUS(ok, K_Node_RegisterCallback(Node("Width"), follow_the_width));
    ASSERT_STATUS(ok, K_Node_RegisterCallback(Node("Height"), note_the_height));
    std::thread([&] { EXPECT_STATUS(ok, K_Camera_SetValueInt64(camera, "Width", 128)); }).join();
    EXPECT_EQ((std::vector<std::string>{"width 128", "height 64"}), events);
    EXPECT_EQ(64u, Register(scripted::reg::height));
}

}  // namespace
}  // namespace kiv_test
