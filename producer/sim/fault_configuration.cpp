#include "fault_configuration.h"

#include <cmath>
#include <iterator>

#include "configuration_section.h"

namespace kivsim {
namespace {

struct Key {
    const char* name;
    Reg reg;
};
constexpr Key keys[] = {{"frame_cache", Reg::FrameCache},
                        {"drop_every", Reg::FaultDropEvery},
                        {"repeat_every", Reg::FaultRepeatEvery},
                        {"tear_every", Reg::FaultTearEvery},
                        {"incomplete_every", Reg::FaultIncompleteEvery},
                        {"incomplete_percent", Reg::FaultIncompletePercent},
                        {"announce_limit", Reg::FaultAnnounceLimit},
                        {"event_copies", Reg::FaultEventCopies},
                        {"event_record_size", Reg::EventRecordSize},
                        {"events_per_message", Reg::EventsPerMessage},
                        {"unplug_at_frame", Reg::FaultUnplugAtFrame},
                        {"return_after_ms", Reg::FaultReturnAfter}};

struct Words {
    const char* name;
    Reg reg;
    std::initializer_list<std::string_view> words;  ///< their index is the value
};

uint64_t index_of(const Section& section, const Words& row, const std::string& word) {
    const auto* found = std::find(row.words.begin(), row.words.end(), word);
    if (found == row.words.end()) refuse(section.Place() + "." + row.name + " cannot be " + word);
    return static_cast<uint64_t>(found - row.words.begin());
}

void read_values(const Section& section, SimulationValues& values) {
    for (const Key& key : keys) {
        if (!section.Find(key.name)) continue;
        const uint64_t value = section.Unsigned(key.name, 0);
        const RegisterRow& row = row_of(key.reg);
        if (static_cast<double>(value) < row.min || static_cast<double>(value) > row.max)
            refuse(section.Place() + "." + key.name + " is not within " + std::to_string(std::llround(row.min)) + " and " +
                   std::to_string(std::llround(row.max)));
        values.emplace_back(key.reg, value);
    }
    const Words words[] = {
        {"size", Reg::FaultSize, {"right", "zero", "too_big"}},
        {"size_of", Reg::FaultSizeOf, {"all", "payload", "buffer", "filled", "image"}},
        {"event_form", Reg::EventForm, {"event_data", "event"}},
    };
    for (const Words& row : words) {
        std::string word;
        section.Get(row.name, word);
        if (section.Find(row.name)) values.emplace_back(row.reg, index_of(section, row, word));
    }
}

void read_register(const json& object, const std::string& place, SimulationValues& values) {
    const Section section(object, place, {"address", "status", "delay_ms"});
    int32_t status = GenTL::GC_ERR_TIMEOUT;
    section.Get("status", status);
    const uint32_t delay = section.Unsigned("delay_ms", 0);
    if (delay > row_of(Reg::FaultRegisterDelay).max) refuse(place + ".delay_ms is more than 10000");
    values.emplace_back(Reg::FaultRegisterEnable, 1);
    values.emplace_back(Reg::FaultRegisterAddress, section.Unsigned("address", 0));
    values.emplace_back(Reg::FaultRegisterStatus, static_cast<uint32_t>(status));
    values.emplace_back(Reg::FaultRegisterDelay, delay);
}

EntryFault read_entry(const json& object, const std::string& place) {
    const Section section(object, place, {"entry", "status", "first_call", "calls", "delay_ms"});
    EntryFault fault;
    section.Get("entry", fault.entry);
    if (!is_entry(fault.entry)) refuse(place + ".entry: a producer has no function \"" + fault.entry + "\"");
    section.Get("status", fault.status);
    fault.first_call = std::max(section.Unsigned("first_call", 1), 1U);
    fault.calls = section.Unsigned("calls", 0);
    const uint32_t delay = section.Unsigned("delay_ms", 0);
    if (delay > row_of(Reg::FaultEntryDelay).max) refuse(place + ".delay_ms is more than 10000");
    fault.delay = std::chrono::milliseconds(delay);
    return fault;
}

}  // namespace

void read_faults(const json& object, const std::string& place, SimulationValues* values, EntryFaults& faults) {
    std::vector<std::string_view> known = {"entries"};
    if (values) {
        known.insert(known.end(), {"register", "size", "size_of", "event_form"});
        for (const Key& key : keys) known.emplace_back(key.name);
    }
    const Section section(object, place, known);
    size_t index = 0;
    for (const json& item : section.List("entries"))
        faults.Add(read_entry(item, place + ".entries[" + std::to_string(index++) + "]"));
    if (!values) return;
    read_values(section, *values);
    if (const json* item = section.Find("register")) read_register(*item, place + ".register", *values);
}

}  // namespace kivsim
