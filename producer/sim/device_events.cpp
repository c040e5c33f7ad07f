#include "device_events.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "flavour.h"

namespace kivsim {
namespace {

constexpr size_t header_size = 8, item_size = 16, extended_item_size = 24;
constexpr size_t record_header = 16;
constexpr uint8_t extended_flag = 0x10;
constexpr uint16_t event_data_command = 0x00C2, no_channel = 0xFFFF;

class BigEndian {
public:
    template <typename T>
    BigEndian& Add(T value) {
        for (size_t i = sizeof value; i-- > 0;) bytes_.push_back(static_cast<char>(static_cast<uint64_t>(value) >> (8 * i)));
        return *this;
    }
    std::string Take() { return std::move(bytes_); }

private:
    std::string bytes_;
};

uint16_t id_of(std::string_view message) {
    if (message.size() < header_size + item_size) fail(GenTL::GC_ERR_INVALID_PARAMETER, "The event data is no event message");
    const auto byte = [&](size_t at) { return static_cast<unsigned>(static_cast<unsigned char>(message[at])); };
    return static_cast<uint16_t>(byte(header_size + 2) << 8 | byte(header_size + 3));
}

std::string hexadecimal(uint32_t id) {
    char text[9];
    std::snprintf(text, sizeof text, "%04X", id);
    return text;
}

struct Parts {
    uint32_t id;
    std::string_view value;
};

Parts take_apart(GenTL::EVENT_TYPE kind, std::string_view data) {
    if (kind == event_kind::number) {
        uint32_t id = 0;
        if (data.size() < sizeof id) fail(GenTL::GC_ERR_INVALID_PARAMETER, "The event data has no 4 bytes");
        std::memcpy(&id, data.data(), sizeof id);
        return {id, data};
    }
    if (kind != event_kind::record) return {id_of(data), data.substr(header_size)};
    if (data.size() < least_record) fail(GenTL::GC_ERR_INVALID_PARAMETER, "The event data is no record of a message");
    return {id_of(data.substr(record_header)), data};
}

}  // namespace

std::string event_message(const CameraEvent& event, uint16_t request_id) {
    constexpr size_t data_size = 8;
    const size_t length = (event.extended_ids ? extended_item_size : item_size) + data_size;
    BigEndian message;
    message.Add<uint8_t>(0x42).Add<uint8_t>(event.extended_ids ? extended_flag : 0).Add(event_data_command);
    message.Add(static_cast<uint16_t>(length)).Add(request_id);
    message.Add(static_cast<uint16_t>(event.extended_ids ? length : 0)).Add(event.id).Add(no_channel);
    if (event.extended_ids)
        message.Add<uint16_t>(0).Add(event.frame_id);
    else
        message.Add(static_cast<uint16_t>(event.frame_id));
    return message.Add(event.timestamp_ns).Add(event.frame_id).Take();
}

std::string event_record(const CameraEvent& event, std::string_view message, uint32_t sequence, size_t size) {
    std::string record(std::max(size, least_record), '\0');
    const auto used = static_cast<uint32_t>(message.size());
    std::memcpy(record.data(), &sequence, sizeof sequence);
    std::memcpy(record.data() + 4, &used, sizeof used);
    std::memcpy(record.data() + 8, &event.timestamp_ns, sizeof event.timestamp_ns);
    message.copy(record.data() + record_header, record.size() - record_header);
    return record;
}

Info device_event_info(GenTL::EVENT_TYPE kind, std::string_view data, GenTL::EVENT_DATA_INFO_CMD command) {
    const Parts parts = take_apart(kind, data);
    switch (command) {
        case GenTL::EVENT_DATA_ID:
            return Info::Text(hexadecimal(parts.id));
        case GenTL::EVENT_DATA_VALUE:
            return Info::Bytes(parts.value);
        case GenTL::EVENT_DATA_NUMID:
            return Info::Uint64(parts.id);
        default:
            fail_unknown_command("EventGetDataInfo", command);
    }
}

std::vector<GenTL::EVENT_TYPE> device_event_kinds() {
    if (!flavour.gige) return {GenTL::EVENT_ERROR, GenTL::EVENT_REMOTE_DEVICE};
    return {GenTL::EVENT_ERROR, GenTL::EVENT_REMOTE_DEVICE, event_kind::message, event_kind::record, event_kind::number};
}

size_t device_event_size(GenTL::EVENT_TYPE kind) {
    switch (kind) {
        case GenTL::EVENT_REMOTE_DEVICE:
        case event_kind::message:
            return largest_message;
        case event_kind::record:
            return least_record;
        case event_kind::number:
            return sizeof(uint32_t);
        default:
            return 0;
    }
}

}  // namespace kivsim
