#include "gencp_driver.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>

#include <algorithm>
#include <array>
#include <optional>

#include "CLProtocol/baud_rates.h"
#include "gencp_link.h"
#include "line_log.h"

namespace CLProtocol {
namespace {

namespace address {
constexpr std::uint64_t manufacturer = 0x04, model = 0x44, family = 0x84, device_version = 0xC4, serial_number = 0x144,
                        capability = 0x1C4, response_time = 0x1CC, technology_registers = 0x1D8;
constexpr std::uint64_t current_rate = 4;  // from the technology's own registers on
}  // namespace address

constexpr std::uint64_t has_family = 1u << 8, has_technology_registers = 1u << 9;
constexpr std::size_t text_size = 64;

/// How long a camera may take to tell its own response time, which is the first thing that it is asked.
constexpr std::chrono::milliseconds first_response_time{50};
constexpr std::uint64_t longest_response_time = 1000;

class GenCpDevice : public Device {
public:
    GenCpDevice(Serial& serial, const Checkpoint& checkpoint, const Driver& driver, const CDeviceID& wanted)
        : link_(serial, checkpoint) {
        FindRate(serial);
        const std::uint64_t capability = link_.ReadNumber(address::capability, 8);
        if ((capability & has_technology_registers) != 0)
            technology_registers_ = link_.ReadNumber(address::technology_registers, 8);
        id_.emplace(driver.Directory(), driver.FileName(), Identify((capability & has_family) != 0));
        const bool anyone = wanted.Tokens().front() == any_manufacturer;
        if (!anyone && !wanted.IsTemplateOf(*id_))
            throw GenICam::RuntimeException("the camera is '" + id_->GetShortDeviceID() + "', not '" + wanted.GetShortDeviceID() +
                                            "'");
    }

    const CDeviceID& Id() const override { return *id_; }

    void Read(std::uint64_t address, std::span<std::byte> bytes) override {
        for (; !bytes.empty(); address += GenCpLink::most_to_read) {
            const auto part = bytes.first(std::min(bytes.size(), GenCpLink::most_to_read));
            link_.Read(address, part);
            bytes = bytes.subspan(part.size());
        }
    }

    void Write(std::uint64_t address, std::span<const std::byte> bytes) override {
        for (; !bytes.empty(); address += GenCpLink::most_to_write) {
            const auto part = bytes.first(std::min(bytes.size(), GenCpLink::most_to_write));
            link_.Write(address, part);
            bytes = bytes.subspan(part.size());
        }
    }

    std::uint32_t CurrentRate() override {
        if (!technology_registers_) return rate_;  // a camera with one rate may do without the register
        const auto bit = static_cast<std::uint32_t>(link_.ReadNumber(*technology_registers_ + address::current_rate, 4));
        if (bits_per_second_of(bit) == 0)
            throw GenICam::RuntimeException("the camera's current rate is none: " + std::to_string(bit));
        return bit;
    }

private:
    /// A camera starts at the slowest rate, and stays at another one when whoever set it left without a word.
    void FindRate(Serial& serial) {
        const std::uint32_t supported = serial.SupportedRates() | slowest_rate.bit;
        for (const BaudRate& rate : baud_rates) {
            if ((supported & rate.bit) == 0) continue;
            serial.SetRate(rate.bit);
            link_.SetRate(rate.bits_per_second);
            if (!Answers()) {
                if (log_wanted(Level::debug))
                    log_line(Level::debug, "nobody answers at " + std::to_string(rate.bits_per_second) + " baud");
                continue;
            }
            rate_ = rate.bit;
            return;
        }
        throw GenICam::TimeoutException("no camera answers at any rate");
    }

    bool Answers() try {
        link_.Restart();
        link_.SetTries(2);
        link_.SetResponseTime(first_response_time);
        const std::uint64_t time = link_.ReadNumber(address::response_time, 4);
        Settle(std::chrono::milliseconds(std::min(time, longest_response_time)));
        return true;
    } catch (const GenICam::TimeoutException&) {
        return false;
    } catch (const RefusedException&) {
        Settle(GenCpLink::default_response_time);  // a strange camera, but one that answers
        return true;
    }

    void Settle(std::chrono::milliseconds response_time) {
        link_.SetTries(4);
        link_.SetResponseTime(response_time);
    }

    /// The camera's names as tokens. One that it does not tell is "_".
    std::vector<std::string> Identify(bool tells_family) {
        std::vector<std::string> tokens{Text(address::manufacturer), tells_family ? Text(address::family) : "",
                                        Text(address::model), Text(address::device_version), Text(address::serial_number)};
        std::ranges::transform(tokens, tokens.begin(), as_token);
        return tokens;
    }

    std::string Text(std::uint64_t at) try {
        std::array<char, text_size> text;
        link_.Read(at, std::as_writable_bytes(std::span(text)));
        return {text.begin(), std::ranges::find(text, '\0')};
    } catch (const RefusedException&) {
        return {};
    }

    GenCpLink link_;
    std::uint32_t rate_ = slowest_rate.bit;
    std::optional<std::uint64_t> technology_registers_;
    std::optional<CDeviceID> id_;
};

}  // namespace

GenCpDriver::GenCpDriver(const std::vector<std::string>& short_templates) {
    static const char inside = 0;
    const std::string file = kiv::platform::module_file(&inside);
    directory_ = kiv::platform::folder_of(file);
    file_name_ = kiv::platform::utf8_from_path(kiv::platform::path_from_utf8(file).filename());
    for (const std::string& text : short_templates) try {
            templates_.emplace_back(directory_, file_name_, CDeviceID::FromString(text).Tokens());
        } catch (const GenICam::InvalidArgumentException& error) {
            kiv::platform::debug_print(std::string(error.GetDescription()) + "\n");
        }
}

std::unique_ptr<Device> GenCpDriver::Connect(Serial& serial, const CDeviceID& wanted, const Checkpoint& checkpoint) const {
    return std::make_unique<GenCpDevice>(serial, checkpoint, *this, wanted);
}

}  // namespace CLProtocol
