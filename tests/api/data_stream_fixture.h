/// A camera of a scripted producer with a data stream, buffers of the test's own, and a condition for its events.
#pragma once

#include <array>
#include <vector>

#include "support/scripted_factory.h"

namespace kiv_test {

using Strings = std::vector<std::string>;

inline std::uint64_t scripted_address(const void* object) { return reinterpret_cast<std::uint64_t>(object); }

class DataStream : public ScriptedFactory {
protected:
    using ScriptedFactory::ScriptedFactory;

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
        ASSERT_STATUS(K_ST_SUCCESS, K_Event_CreateCondition(&condition));
        producer->ForgetCalls();
    }
    void TearDown() override {
        if (stream) K_DataStream_Close(stream);
        ScriptedFactory::TearDown();
        K_Event_CloseCondition(condition);
    }
    void OpenStream() {
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_CreateDataStream(camera, 0, &stream));
        producer->ForgetCalls();
    }
    void CloseStream() {
        EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_Close(stream));
        stream = nullptr;
    }
    /// Announces and queues the test's memory, and starts.
    void StartWithBuffer() {
        ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_AnnounceBuffer(stream, memory.data(), memory.size(), this, &buffer));
        ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_QueueBuffer(stream, buffer));
        ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_StartAcquisition(stream, 0, 0));
    }
    bool Signalled() {
        std::uint32_t result = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Event_WaitForCondition(condition, 10000, &result));
        return result == 1;
    }
    void SetType(const char* transport) {
        std::lock_guard guard(producer->lock);
        producer->tl_type = transport;
    }
    void* Device() { return &producer->FirstDevice(); }
    void* StreamModule() { return &producer->FirstStream(); }

    std::array<char, 64 * 48> memory{};
    STREAM_HANDLE stream = nullptr;
    BUF_HANDLE buffer = nullptr;
    EVT_CONDITION_HANDLE condition = nullptr;
    EVT_HANDLE event = nullptr;
};

class DataStreamGigE : public DataStream {
protected:
    DataStreamGigE() : DataStream(scripted_gev()) {}
};

}  // namespace kiv_test
