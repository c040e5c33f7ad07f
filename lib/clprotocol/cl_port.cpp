#include "CLProtocol/cl_port.h"

#include <GenICam/exceptions.h>

#include "driver.h"

namespace CLProtocol {

GenICam::gcstring_vector CCLPort::GetPortIDs(const PortDirectory& ports) {
    GenICam::gcstring_vector ids;
    for (const std::string& id : ports.Ids()) ids.push_back(id);
    return ids;
}

GenICam::gcstring_vector CCLPort::GetDeviceIDTemplates(const DriverDirectory& drivers) {
    GenICam::gcstring_vector templates;
    for (const CDeviceID& id : drivers.Templates()) templates.push_back(id.GetDeviceID());
    return templates;
}

CCLPort::CCLPort(const PortDirectory& ports, const DriverDirectory& drivers, Checkpoint checkpoint)
    : ports_(ports), drivers_(drivers), checkpoint_(std::move(checkpoint)) {}

CCLPort::~CCLPort() = default;

void CCLPort::Connect(const GenICam::gcstring& port_id, const CDeviceID& device_or_template) {
    Disconnect();
    const Driver& driver = drivers_.For(device_or_template);
    checkpoint_();
    serial_ = ports_.Open(port_id.str());
    try {
        device_ = driver.Connect(*serial_, device_or_template, checkpoint_);
    } catch (...) {
        Disconnect();
        throw;
    }
}

void CCLPort::Disconnect() noexcept {
    device_.reset();
    serial_.reset();
}

Device& CCLPort::Connected() const {
    if (!device_) throw GenICam::LogicalErrorException("the port is not connected to a camera");
    return *device_;
}

const CDeviceID& CCLPort::GetDeviceID() const { return Connected().Id(); }

void CCLPort::Read(void* buffer, std::uint64_t address, std::size_t length) {
    Connected().Read(address, {static_cast<std::byte*>(buffer), length});
}

void CCLPort::Write(const void* buffer, std::uint64_t address, std::size_t length) {
    Connected().Write(address, {static_cast<const std::byte*>(buffer), length});
}

std::uint32_t CCLPort::GetDeviceBauderate() { return Connected().CurrentRate(); }

std::uint32_t CCLPort::GetSupportedBaudRates() {
    Connected();
    return serial_->SupportedRates();
}

}  // namespace CLProtocol
