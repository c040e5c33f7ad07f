// kiv probe: cameras on Camera Link serial ports.

#include <kiv/camera_link.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <sstream>
#include <thread>

#include "error.h"
#include "feature.h"
#include "interrupt.h"
#include "options.h"
#include "session.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Looks at the ports of frame grabbers whose serial libraries (clserXYZ) stand in a folder of KIV_CAMERA_LINK_PATH, and at "
    "the\n"
    "serial ports of the system that KIV_CAMERA_LINK_PORTS names (\"all\" for all of them). Prints port, model, rate of the "
    "camera,\n"
    "rates of the port, and device ID. Each port is opened, and asked in the GenICam control protocol at each of its rates.\n"
    "\n"
    "Examples:\n"
    "  kiv probe\n"
    "  KIV_CAMERA_LINK_PORTS=/dev/ttyUSB0 kiv probe --json";

/// The columns in the order of the call's texts.
enum Column { kPort, kDeviceId, kModel, kRate, kSupported, kColumns };
using Camera = std::array<std::string, kColumns>;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);) pieces.push_back(piece);
    return pieces;
}

/// Cancels the probe when Ctrl-C is pressed: the port that is being asked is given back in order.
class CancelOnInterrupt {
public:
    CancelOnInterrupt() : name_("kiv-probe-" + std::to_string(std::random_device()())) {
        catch_interrupts();
        CANCEL_EVENT_HANDLE raw = nullptr;
        check(K_Factory_Camera_Link_CreateCancelEvent(name_.c_str(), &raw), "K_Factory_Camera_Link_CreateCancelEvent", name_);
        event_.reset(raw);
        watch_ = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested() && !is_interrupted()) std::this_thread::sleep_for(std::chrono::milliseconds(50));
            if (is_interrupted()) K_Factory_Camera_Link_Cancel(event_.get());
        });
    }
    const char* EventName() const { return name_.c_str(); }

private:
    std::string name_;
    std::unique_ptr<K_CANCEL_EVENT, Closer<K_Factory_Camera_Link_CloseCancelEvent>> event_;
    std::jthread watch_;  // ends before the event does
};

std::vector<Camera> find_cameras() {
    std::vector<std::string> texts(kColumns, std::string(K_CAMERA_LINK_TEXT_ROOM, '\0'));
    const CancelOnInterrupt cancel;
    const K_STATUS_CODES status =
        K_Factory_Camera_Link_Probe(texts[kPort].data(), texts[kDeviceId].data(), texts[kModel].data(), texts[kRate].data(),
                                    texts[kSupported].data(), K_CAMERA_LINK_TEXT_ROOM, cancel.EventName());
    if (status == K_ST_ABORT) throw ToolError(ExitCode::kInterrupted, "interrupted: not all ports were looked at");
    if (status == K_ST_NO_DATA)
        throw ToolError(ExitCode::kNothingFound,
                        "no Camera Link serial port to look at; \"kiv probe --help\" tells where they are looked for");
    check(status, "K_Factory_Camera_Link_Probe");
    std::vector<Camera> cameras(split(texts[kPort].c_str(), '\n').size());
    for (std::size_t column = 0; column < kColumns; ++column) {
        const std::vector<std::string> lines = split(texts[column].c_str(), '\n');
        for (std::size_t i = 0; i < std::min(lines.size(), cameras.size()); ++i) cameras[i][column] = lines[i];
    }
    return cameras;
}

void print(const std::vector<Camera>& cameras) {
    const Camera titles{"PORT", "DEVICE ID", "MODEL", "RATE", "RATES OF THE PORT"};
    std::vector<Camera> rows{titles};
    for (const Camera& camera : cameras) {
        rows.push_back(camera);
        rows.back()[kSupported] = joined(split(camera[kSupported], '$'), " ");
    }
    for (const Camera& row : rows) {
        std::string line;
        for (const Column column : {kPort, kModel, kRate, kSupported}) {
            std::size_t width = 0;
            for (const Camera& other : rows) width = std::max(width, character_count(printable(other[column])));
            line += padded(printable(row[column]), width) + "  ";
        }
        std::printf("%s%s\n", line.c_str(), printable(row[kDeviceId]).c_str());
    }
}

nlohmann::json to_json(const Camera& camera) {
    nlohmann::json rates = nlohmann::json::array();
    for (const std::string& rate : split(camera[kSupported], '$')) rates.push_back(std::stoul(rate));
    return {{"port", camera[kPort]},
            {"device_id", camera[kDeviceId]},
            {"model", camera[kModel]},
            {"baud_rate", std::stoul(camera[kRate])},
            {"supported_baud_rates", rates}};
}

ExitCode probe(const Options& options) {
    const std::vector<Camera> cameras = find_cameras();
    if (options.json) {
        nlohmann::json json{{"cameras", nlohmann::json::array()}};
        for (const Camera& camera : cameras) json["cameras"].push_back(to_json(camera));
        std::fputs(json_text(json).c_str(), stdout);
    } else if (!cameras.empty()) {
        print(cameras);
    }
    if (!cameras.empty()) return ExitCode::kOk;
    std::fputs("kiv: no camera answers on any serial port; with KIV_DEBUG_OUTPUT=1 each port's reason is told\n", stderr);
    return ExitCode::kNothingFound;
}

}  // namespace

void add_probe_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("probe", "Look for cameras on Camera Link serial ports");
    command->footer(kFooter);
    add_shared_options(*command, invocation.options, static_cast<unsigned>(Takes::kJson));
    command->callback([&invocation] { invocation.run = [&invocation] { return probe(invocation.options); }; });
}
