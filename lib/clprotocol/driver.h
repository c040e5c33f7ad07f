/// Who speaks the protocol of a camera. A driver offers templates of the cameras that it can talk to; with one of them, or with
/// the whole identity of a camera, it makes the connection over an open port.
#pragma once

#include <string>
#include <vector>

#include "CLProtocol/device_id.h"
#include "CLProtocol/serial.h"

namespace CLProtocol {

/// A connected camera. It uses the port, which must outlive it.
class Device {
public:
    virtual ~Device() = default;
    virtual const CDeviceID& Id() const = 0;
    virtual void Read(std::uint64_t address, std::span<std::byte> bytes) = 0;
    virtual void Write(std::uint64_t address, std::span<const std::byte> bytes) = 0;
    /// The rate at which the camera works now, one bit of baud_rates.
    virtual std::uint32_t CurrentRate() = 0;
};

class Driver {
public:
    virtual ~Driver() = default;
    /// The driver's two tokens in the IDs of its cameras.
    virtual const std::string& Directory() const = 0;
    virtual const std::string& FileName() const = 0;
    /// Full templates, best first.
    virtual std::vector<CDeviceID> Templates() const = 0;
    /// Throws when there is no such camera.
    virtual std::unique_ptr<Device> Connect(Serial& serial, const CDeviceID& wanted, const Checkpoint& checkpoint) const = 0;
};

}  // namespace CLProtocol
