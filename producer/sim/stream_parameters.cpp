#include "stream_parameters.h"

#include <algorithm>

namespace kivsim {
namespace {

struct Row {
    uint32_t initial, min, max, step;
    bool writable;
};
constexpr Row rows[] = {{1500, 576, 16260, 4, true}, {1, 0, 1, 1, true},          {20, 1, 10000, 1, true},
                        {50, 0, 65535, 1, true},     {0, 0, 0xFFFFFFFF, 1, true}, {0, 0, 0xFFFFFFFF, 1, false}};
constexpr size_t packet_headers = 36;  // IP, UDP and GVSP

}  // namespace

StreamParameters::StreamParameters(uint32_t multicast) : values_{} {
    static_assert(std::size(rows) == std::tuple_size_v<decltype(values_)>);
    for (size_t i = 0; i < values_.size(); ++i) values_[i] = rows[i].initial;
    values_[Multicast] = multicast;
}

Info StreamParameters::Get(int32_t parameter) const {
    if (parameter == PacketsReceived) return Info::Uint64(received_);
    if (parameter == PacketsMissing) return Info::Uint64(missing_);
    if (parameter >= 0 && static_cast<size_t>(parameter) < values_.size())
        return Info::Uint32(values_[static_cast<size_t>(parameter)]);
    fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "A stream has no parameter " + std::to_string(parameter));
}

void StreamParameters::Set(int32_t parameter, uint32_t value) {
    Get(parameter);
    const auto index = static_cast<size_t>(parameter);
    if (index >= values_.size() || !rows[index].writable)
        fail(GenTL::GC_ERR_ACCESS_DENIED, "Parameter " + std::to_string(parameter) + " of a stream cannot be set");
    const Row& row = rows[index];
    if (value < row.min || value > row.max || value % row.step != 0)
        fail(GenTL::GC_ERR_INVALID_VALUE,
             "Parameter " + std::to_string(parameter) + " of a stream cannot be " + std::to_string(value));
    values_[index] = value;
}

uint32_t StreamParameters::Arrived(size_t filled, size_t whole) {
    const size_t payload = values_[PacketSize] - packet_headers;
    const size_t wanted = (whole + payload - 1) / payload, came = filled / payload + (filled == whole && whole % payload != 0);
    const size_t lost = wanted - std::min(wanted, came);
    received_ += wanted - lost;
    missing_ += lost;
    return static_cast<uint32_t>(lost);
}

}  // namespace kivsim
