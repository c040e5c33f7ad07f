#include "transport/camera_link_probe.h"

#include <CLProtocol/baud_rates.h>
#include <CLProtocol/cl_port.h>
#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/event.h>

#include <algorithm>
#include <stdexcept>

namespace kiv {
namespace {

using CLProtocol::CCLPort;
using CLProtocol::CDeviceID;

constexpr std::uint64_t model_name_register = 0x44, bootstrap_address_register = 0x1D8;

static_assert(CLProtocol::PortDirectory::most_ports * longest_camera_link_line + 1 <= 262144, "K_CAMERA_LINK_TEXT_ROOM");

void say(std::string_view text, std::string_view what = {}) {
    platform::debug_print(std::string("K_Factory_Camera_Link_Probe: ").append(text).append(what));
}

/// Whether the caller has had enough; the answer is an exception that no port's failure handling takes for its own.
class Cancellation {
public:
    explicit Cancellation(const char* name) {
        if (!name) return;
        try {
            event_ = platform::Event::OpenNamed(name);
            if (!event_) say("there is no event of the name ", std::string(name) + "\n");
        } catch (const std::exception& error) {
            say(error.what(), "\n");
        }
    }

    void Poll() const {
        if (!event_ || !event_->Wait(platform::Milliseconds(0))) return;
        say("canceling camera link probing.\n");
        fail(K_ST_ABORT);
    }

private:
    std::unique_ptr<platform::Event> event_;
};

/// As a line of a text: what a device says cannot break the lines.
std::string as_line(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = '?';
    if (text.size() >= longest_camera_link_line) throw std::length_error("a text is too long");
    return text + "\n";
}

class PortProbe {
public:
    PortProbe(const CLProtocol::PortDirectory& ports, const CLProtocol::DriverDirectory& drivers,
              const Cancellation& cancellation)
        : cancellation_(cancellation), port_(ports, drivers, [&cancellation] { cancellation.Poll(); }) {}

    CameraLinkFindings Ask(const GenICam::gcstring& id, const CDeviceID& device) {
        Step("Attempting to connect to port: ", id);
        port_.Connect(id, device);
        Step("Attempting to read from port: ", id);
        std::array<char, 64> model{};
        port_.Read(model.data(), model_name_register, model.size());
        cancellation_.Poll();
        const std::uint32_t rate = port_.GetDeviceBauderate();
        Step("Attempting to read bootstrap register address from port: ", id);
        // What stands there is of no use to the caller; a camera that does not tell it is none that can be used.
        std::array<char, 8> address{};
        port_.Read(address.data(), bootstrap_address_register, address.size());
        cancellation_.Poll();
        const std::uint32_t supported = port_.GetSupportedBaudRates();
        Step("Successfully connected to port: ", id);
        return {{as_line(id.str()), as_line(port_.GetDeviceID().GetDeviceID()),
                 as_line({model.begin(), std::ranges::find(model, '\0')}),
                 as_line(std::to_string(CLProtocol::bits_per_second_of(rate))), as_line(baud_rate_words(supported))}};
    }

private:
    void Step(std::string_view what, const GenICam::gcstring& id) const {
        cancellation_.Poll();
        say(what, id);
    }

    const Cancellation& cancellation_;
    CCLPort port_;
};

}  // namespace

std::string baud_rate_words(std::uint32_t mask) {
    std::string words;
    for (const CLProtocol::BaudRate& rate : CLProtocol::baud_rates)
        if ((mask & rate.bit) != 0) words += (words.empty() ? "" : "$") + std::to_string(rate.bits_per_second);
    return words;
}

K_STATUS_CODES probe_camera_link(const char* cancel_event, CameraLinkFindings& findings) {
    const Cancellation cancellation(cancel_event);
    cancellation.Poll();
    const auto ports = CLProtocol::PortDirectory::Find();
    const GenICam::gcstring_vector port_ids = CCLPort::GetPortIDs(ports);
    if (port_ids.empty()) return K_ST_NO_DATA;
    cancellation.Poll();
    const auto drivers = CLProtocol::DriverDirectory::Find();
    const GenICam::gcstring_vector templates = CCLPort::GetDeviceIDTemplates(drivers);
    if (templates.empty()) return K_ST_NO_DATA;
    const CDeviceID device = CDeviceID::FromString(templates[0]);
    CameraLinkFindings found;
    for (const GenICam::gcstring& id : port_ids) {
        const auto skip = [&](const char* why) { say("skipping port: ", std::string(id) + ": " + why + "\n"); };
        try {
            const CameraLinkFindings camera = PortProbe(ports, drivers, cancellation).Ask(id, device);
            for (std::size_t i = 0; i < found.texts.size(); ++i) found.texts[i] += camera.texts[i];
        } catch (const GenICam::GenericException& error) {
            skip(error.GetDescription());
        } catch (const std::exception& error) {
            skip(error.what());
        }
    }
    cancellation.Poll();
    findings = std::move(found);
    return K_ST_SUCCESS;
}

}  // namespace kiv
