// Any bytes as the description of a camera: it is refused, or every feature of it can be used without harm.
//
// Three forms: a zip archive, a description, and (after a byte 1) choices from which a description is made.

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "GenApi/description_check.h"
#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "description_choices.h"
#include "feature_tour.h"
#include "fuzz_target.h"
#include "kiv/archive/first_xml.h"
#include "kiv/genapi/load_node_map.h"

namespace {

using namespace kiv::fuzz;

std::string description_of(std::span<const uint8_t> input) {
    constexpr uint64_t largest = 1 << 20;
    if (!input.empty() && input[0] == 1) return Choices(input.subspan(1)).Description();
    const auto bytes = std::as_bytes(input);
    if (kiv::archive::is_zip(bytes)) return kiv::archive::first_xml_of_zip(bytes, "fuzz.zip", largest).content;
    return {input.begin(), input.end()};
}

/// Each port of a map with a device of its own.
class Devices {
public:
    Devices(GenApi::INodeMap& map, uint64_t seed, bool isWild) {
        GenApi::NodeList_t nodes;
        map.GetNodes(nodes);
        for (auto* node : nodes) {
            if (!dynamic_cast<GenApi::IPort*>(node)) continue;
            devices_.push_back(std::make_unique<Device>(seed + devices_.size(), isWild));
            map.Connect(devices_.back().get(), node->GetName());
        }
    }
    uint64_t Transfers() const {
        uint64_t transfers = 0;
        for (const auto& device : devices_) transfers += device->Transfers();
        return transfers;
    }

private:
    std::vector<std::unique_ptr<Device>> devices_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    uint64_t seed = size;
    for (size_t i = 0; i < size; ++i) seed = (seed ^ data[i]) * 0x100000001B3u;
    Dice dice(seed);
    std::unique_ptr<GenApi::INodeMap> map;
    try {
        const auto description = description_of({data, size});
        if (dice.Below(4) == 0) GenApi::CheckDescription(description);
        map = kiv::genapi::load_node_map(description);
    } catch (const GenICam::RuntimeException&) {
        return 0;
    } catch (const kiv::archive::ArchiveError&) {
        return 0;
    }
    constexpr uint64_t mostTransfers = 5'000;
    constexpr auto longest = std::chrono::seconds(2);
    const auto start = std::chrono::steady_clock::now();
    const auto isEnoughOf = [&](const Devices& devices) {
        return [&] { return devices.Transfers() > mostTransfers || std::chrono::steady_clock::now() - start > longest; };
    };
    const Devices calm(*map, seed, false);
    require_true_caches(*map, dice, isEnoughOf(calm));
    tour(*map, dice, isEnoughOf(calm));
    if (dice.Below(2)) return 0;
    const Devices wild(*map, seed, true);
    tour(*map, dice, isEnoughOf(wild));
    return 0;
}
