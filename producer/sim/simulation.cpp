#include "simulation.h"

#include <cmath>
#include <cstring>

#include "failure.h"

namespace kivsim {
namespace {

constexpr Reg first = Reg::FrameCache, last = Reg::FaultEntryClear;

uint64_t value_of(Camera& camera, Reg reg) {
    uint64_t value = 0;
    camera.Read(row_of(reg).address, &value, row_of(reg).bytes);
    return value;
}

std::string text_of(Camera& camera, Reg reg) {
    char text[65] = {};
    camera.Read(row_of(reg).address, text, row_of(reg).bytes);
    return text;
}

GC_ERROR status_of(Camera& camera, Reg reg) { return static_cast<GC_ERROR>(static_cast<uint32_t>(value_of(camera, reg))); }

std::chrono::milliseconds time_of(Camera& camera, Reg reg) {
    return std::chrono::milliseconds(static_cast<int64_t>(value_of(camera, reg)));
}

bool covers(uint64_t address, size_t size, Reg reg) {
    const RegisterRow& row = row_of(reg);
    return address < row.End() && row.address < address + size;
}

}  // namespace

void reset_simulation(Camera& camera, const SimulationValues& values) {
    for (auto i = static_cast<uint16_t>(first); i <= static_cast<uint16_t>(last); ++i) {
        const RegisterRow& row = row_of(static_cast<Reg>(i));
        if (row.access != Access::RW) continue;
        std::vector<std::byte> bytes(row.bytes);
        const auto initial = static_cast<uint64_t>(std::llround(row.initial));
        std::memcpy(bytes.data(), &initial, std::min<size_t>(bytes.size(), sizeof initial));
        camera.Write(row.address, bytes.data(), bytes.size());
    }
    for (const auto& [reg, value] : values) camera.Write(row_of(reg).address, &value, row_of(reg).bytes);
}

void meet_register_fault(Camera& camera, CameraState& state) {
    state.Faults().Delay(time_of(camera, Reg::FaultRegisterDelay));
    const GC_ERROR status = status_of(camera, Reg::FaultRegisterStatus);
    if (status != GenTL::GC_ERR_SUCCESS) fail(status, "The register was asked to fail");
}

void simulation_written(Camera& camera, CameraState& state, uint64_t address, size_t size) {
    if (!covers(address, size, first) && (address + size <= row_of(first).address || address >= row_of(last).End())) return;
    if (covers(address, size, Reg::FaultUnplugAtFrame)) state.ArmUnplugging();
    if (covers(address, size, Reg::FaultUnplug)) {
        const auto returns = time_of(camera, Reg::FaultReturnAfter);
        state.Unplug(returns.count() > 0 ? std::optional(returns) : std::nullopt);
    }
    if (covers(address, size, Reg::FaultEntryClear)) state.Faults().Clear();
    if (!covers(address, size, Reg::FaultEntryApply)) return;
    EntryFault fault;
    fault.entry = text_of(camera, Reg::FaultEntry);
    if (!is_entry(fault.entry)) fail(GenTL::GC_ERR_INVALID_VALUE, "A producer has no function \"" + fault.entry + "\"");
    fault.status = status_of(camera, Reg::FaultEntryStatus);
    fault.first_call = static_cast<uint32_t>(value_of(camera, Reg::FaultEntryFirstCall));
    fault.calls = static_cast<uint32_t>(value_of(camera, Reg::FaultEntryCalls));
    fault.delay = time_of(camera, Reg::FaultEntryDelay);
    state.Faults().Add(fault);
}

}  // namespace kivsim
