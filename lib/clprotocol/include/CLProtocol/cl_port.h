/// A connection to a Camera Link camera through one serial port.
///
/// Failures are GenICam exceptions (TimeoutException: silence), or std::system_errors of a port of the system. One thread at a
/// time; another one stops a call through the checkpoint.
#pragma once

#include <GenICam/gcstring_vector.h>

#include <memory>

#include "CLProtocol/device_id.h"
#include "CLProtocol/driver_directory.h"
#include "CLProtocol/port_directory.h"

namespace CLProtocol {

class Device;

class CCLPort {
public:
    static GenICam::gcstring_vector GetPortIDs(const PortDirectory& ports);
    /// Of all drivers, in the order of preference; full forms.
    static GenICam::gcstring_vector GetDeviceIDTemplates(const DriverDirectory& drivers);

    /// The directories must outlive the port.
    CCLPort(const PortDirectory& ports, const DriverDirectory& drivers, Checkpoint checkpoint);
    ~CCLPort();
    CCLPort(const CCLPort&) = delete;
    CCLPort& operator=(const CCLPort&) = delete;

    /// Opens the port and finds the camera on it. Throws when it is none that the ID stands for.
    void Connect(const GenICam::gcstring& port_id, const CDeviceID& device_or_template);
    void Disconnect() noexcept;

    /// Who the camera is, in full; like all below only while it is connected (LogicalErrorException otherwise).
    const CDeviceID& GetDeviceID() const;
    void Read(void* buffer, std::uint64_t address, std::size_t length);
    void Write(const void* buffer, std::uint64_t address, std::size_t length);
    /// One bit of baud_rates. (The spelling is that of the standard.)
    std::uint32_t GetDeviceBauderate();
    /// What the port can do, a mask of baud_rates and perhaps other bits.
    std::uint32_t GetSupportedBaudRates();

private:
    Device& Connected() const;

    const PortDirectory& ports_;
    const DriverDirectory& drivers_;
    Checkpoint checkpoint_;
    std::string id_;  // of the port, while and after it is connected
    std::unique_ptr<Serial> serial_;
    std::unique_ptr<Device> device_;
};

}  // namespace CLProtocol
