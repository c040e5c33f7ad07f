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
constexpr uint16_t event_command = 0x00C0, event_data_command = 0x00C2, no_channel = 0xFFFF;
constexpr size_t event_data_size = 8;

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

void add_item(BigEndian& message, const CameraEvent& event, size_t size) {
    message.Add(static_cast<uint16_t>(event.extended_ids ? size : 0)).Add(event.id).Add(no_channel);
    if (event.extended_ids)
        message.Add<uint16_t>(0).Add(event.frame_id);
    else
        message.Add(static_cast<uint16_t>(event.frame_id));
    message.Add(event.timestamp_ns);
}

template <typename T>
T number_in(std::string_view data) {
    T number = 0;
    if (data.size() < sizeof number)
        fail(GenTL::GC_ERR_INVALID_PARAMETER, "The event data has no " + std::to_string(sizeof number) + " bytes");
    std::memcpy(&number, data.data(), sizeof number);
    return number;
}

bool is_of_a_feature(GenTL::EVENT_TYPE kind) {
    return kind == GenTL::EVENT_FEATURE_INVALIDATE || kind == GenTL::EVENT_FEATURE_CHANGE;
}

Info feature_info(GenTL::EVENT_TYPE kind, std::string_view data, GenTL::EVENT_DATA_INFO_CMD command) {
    const size_t end = data.find('\0');
    switch (command) {
        case GenTL::EVENT_DATA_ID:
            return Info::Text(std::string(data.substr(0, end)));
        case GenTL::EVENT_DATA_VALUE:
            if (kind == GenTL::EVENT_FEATURE_CHANGE && end != data.npos) return Info::Text(std::string(data.substr(end + 1)));
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "An invalidated feature comes without a value");
        case GenTL::EVENT_DATA_NUMID:
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "A feature has no number");
        default:
            fail_unknown_command("EventGetDataInfo", command);
    }
}

Parts take_apart(GenTL::EVENT_TYPE kind, std::string_view data) {
    if (kind == GenTL::EVENT_MODULE) return {static_cast<uint32_t>(number_in<uint64_t>(data)), {}};
    if (kind == event_kind::number) {
        return {number_in<uint32_t>(data), data};
    }
    if (kind != event_kind::record) return {id_of(data), data.substr(header_size)};
    if (data.size() < least_record) fail(GenTL::GC_ERR_INVALID_PARAMETER, "The event data is no record of a message");
    return {id_of(data.substr(record_header)), data};
}

}  // namespace

std::string event_message(std::span<const CameraEvent> events, EventForm form, uint16_t request_id) {
    const bool extended = events.front().extended_ids, has_data = form == EventForm::EventData;
    const size_t size = (extended ? extended_item_size : item_size) + (has_data ? event_data_size : 0);
    BigEndian message;
    message.Add<uint8_t>(0x42).Add<uint8_t>(extended ? extended_flag : 0).Add(has_data ? event_data_command : event_command);
    message.Add(static_cast<uint16_t>(size * events.size())).Add(request_id);
    for (const CameraEvent& event : events) {
        add_item(message, event, size);
        if (has_data) message.Add(event.frame_id);
    }
    return message.Take();
}

std::string module_event(uint64_t id) { return {reinterpret_cast<const char*>(&id), sizeof id}; }

FeatureEvent feature_event(std::string_view change) {
    const size_t sign = change.find('=');
    if (sign == change.npos) return {GenTL::EVENT_FEATURE_INVALIDATE, std::string(change)};
    std::string data(change);
    data[sign] = '\0';
    return {GenTL::EVENT_FEATURE_CHANGE, data};
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
    if (is_of_a_feature(kind)) return feature_info(kind, data, command);
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
    std::vector<GenTL::EVENT_TYPE> kinds{GenTL::EVENT_ERROR, GenTL::EVENT_FEATURE_INVALIDATE, GenTL::EVENT_FEATURE_CHANGE,
                                         GenTL::EVENT_REMOTE_DEVICE};
    if (flavour.gige) kinds.insert(kinds.end(), {event_kind::message, event_kind::record, event_kind::number});
    return kinds;
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
        case GenTL::EVENT_FEATURE_INVALIDATE:
        case GenTL::EVENT_FEATURE_CHANGE:
            return longest_change;
        case GenTL::EVENT_MODULE:
            return sizeof(uint64_t);
        default:
            return 0;
    }
}

}  // namespace kivsim
