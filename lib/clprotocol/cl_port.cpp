#include "CLProtocol/cl_port.h"

#include <GenICam/exceptions.h>

#include "CLProtocol/baud_rates.h"
#include "driver.h"
#include "line_log.h"

namespace CLProtocol {

namespace {

/// Tells the log why something on a port failed. What a checkpoint throws to end the work is not of this kind.
template <class Body>
auto told(const std::string& port, const char* what, Body&& body) -> decltype(body()) try {
    return body();
} catch (const std::exception& error) {
    const auto* known = dynamic_cast<const GenICam::GenericException*>(&error);
    if (log_wanted(Level::warn))
        log_line(Level::warn, port + ": " + what + ": " + (known ? known->GetDescription() : error.what()));
    throw;
}

}  // namespace

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
    id_ = port_id.str();
    told(id_, "no connection", [&] {
        const Driver& driver = drivers_.For(device_or_template);
        checkpoint_();
        if (log_wanted(Level::debug)) log_line(Level::debug, id_ + ": opening");
        serial_ = ports_.Open(id_);
        try {
            device_ = driver.Connect(*serial_, device_or_template, checkpoint_);
        } catch (...) {
            Disconnect();
            throw;
        }
    });
    if (log_wanted(Level::info)) log_line(Level::info, id_ + ": connected to " + device_->Id().GetShortDeviceID());
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
    told(id_, "reading", [&] { Connected().Read(address, {static_cast<std::byte*>(buffer), length}); });
}

void CCLPort::Write(const void* buffer, std::uint64_t address, std::size_t length) {
    told(id_, "writing", [&] { Connected().Write(address, {static_cast<const std::byte*>(buffer), length}); });
}

std::uint32_t CCLPort::GetDeviceBauderate() {
    const std::uint32_t rate = told(id_, "asking for the rate", [&] { return Connected().CurrentRate(); });
    if (log_wanted(Level::info))
        log_line(Level::info, id_ + ": the camera talks at " + std::to_string(bits_per_second_of(rate)) + " baud");
    return rate;
}

std::uint32_t CCLPort::GetSupportedBaudRates() {
    Connected();
    return serial_->SupportedRates();
}

}  // namespace CLProtocol
