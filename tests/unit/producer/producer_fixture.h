/// The simulated producer with two small cameras, each test with a state folder of its own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "../platform/temporary_folder.h"
#include "consumer.h"

namespace kiv::test {

using namespace GenTL;  // NOLINT: every test speaks this vocabulary

/// Registers of the camera that the tests use.
namespace camera_register {
constexpr uint64_t width = 0x20100, payload_size = 0x2012C, start = 0x20204, stop = 0x20208, exposure = 0x20224,
                   trigger_mode = 0x20240, trigger_software = 0x20268, user_name = 0x184, vendor = 0x4;
}

class ProducerTest : public testing::Test {
protected:
    ProducerTest() : ProducerTest(KIV_SIM_PRODUCER, "KIV_SIM_CONFIG") {}
    /// Another producer of the same sources, and the environment variable that names its configuration.
    ProducerTest(const char* producer, const char* config_variable);
    ~ProducerTest() override;

    /// Takes effect at the next GCInitLib. The first one: SIM0 with FAST (128 x 96 monochrome) and SLOW (the same behind a link
    /// of 0.02 MB/s, so that a frame takes 0.6 s), SIM1 without a camera.
    void Configure(const std::string& json);

    void OpenSystem();
    void OpenInterface(const char* id = "SIM0");
    void OpenDevice(const char* id = "SIM0_FAST", DEVICE_ACCESS_FLAGS access = DEVICE_ACCESS_EXCLUSIVE);
    void OpenStream();
    /// All the way down.
    void Open(const char* device = "SIM0_FAST");

    void AnnounceBuffers(size_t count, size_t size);
    void AnnounceBuffers(size_t count) {
        AnnounceBuffers(count, StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE, INFO_DATATYPE_SIZET));
    }
    void QueueAll();
    EVENT_HANDLE RegisterNewBuffer();
    /// Starts stream and camera; with `triggered` the camera takes a frame at each Trigger() only.
    void StartAcquisition(uint64_t count = GENTL_INFINITE, bool triggered = true);
    void Trigger() { Write32(camera_register::trigger_software, 1); }
    void Write32(uint64_t address, uint32_t value);
    uint32_t Read32(uint64_t address);
    /// The next new buffer, at most 20 s later; null with a test failure when there is none.
    EVENT_NEW_BUFFER_DATA NextBuffer(EVENT_HANDLE event);

    template <typename T>
    T StreamInfo(STREAM_INFO_CMD command, INFO_DATATYPE type) {
        return ask_value<T>([&](auto... out) { return gentl.DSGetInfo(stream, command, out...); }, type);
    }
    template <typename T>
    T BufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command, INFO_DATATYPE type) {
        return ask_value<T>([&](auto... out) { return gentl.DSGetBufferInfo(stream, buffer, command, out...); }, type);
    }
    bool BufferFlag(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
        return BufferInfo<bool8_t>(buffer, command, INFO_DATATYPE_BOOL8);
    }
    size_t BufferSize(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
        return BufferInfo<size_t>(buffer, command, INFO_DATATYPE_SIZET);
    }
    std::string LastErrorText();

    TemporaryFolder folder;
    const char* const config_variable;
    EntryPoints gentl;
    TL_HANDLE system = nullptr;
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    PORT_HANDLE camera = nullptr;
    DS_HANDLE stream = nullptr;
    std::vector<std::vector<std::byte>> memory;
    std::vector<BUFFER_HANDLE> buffers;
};

/// Waits until the condition holds, at most 20 s; answers whether it does.
bool eventually(const std::function<bool()>& condition);

}  // namespace kiv::test
