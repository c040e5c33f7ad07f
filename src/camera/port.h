/// MyPortImp: the register port between a node map and a producer's PORT_HANDLE.
///
/// A transfer that the producer refuses becomes a RuntimeException whose text names the reason, the operation, the address and
/// the length; the same text goes to the debugger output. The port borrows the handle: whoever opened the module closes it, and
/// disconnects the port if the node map lives on.
#pragma once

#include <GenApi/register_port_impl.h>

#include <atomic>

#include "transport/tl_wrapper.h"

namespace GenICam::Factory {

class MyPortImp final : public GenApi::CRegisterPortImpl {
public:
    MyPortImp(const CTLWrapper& producer, GenTL::PORT_HANDLE port);

    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void ReadRegister(void* buffer, int64_t address, int64_t length) override;
    void WriteRegister(const void* buffer, int64_t address, int64_t length) override;
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

    /// From now on every transfer fails with "Invalid Handle" and the producer is not called. From any thread.
    void Disconnect() { connected_ = false; }

private:
    std::atomic<bool> connected_{true};
    GenTL::PORT_HANDLE port_;
    kiv::ProducerEntry<GenTL::PGCReadPort> read_;
    kiv::ProducerEntry<GenTL::PGCWritePort> write_;
};

}  // namespace GenICam::Factory
