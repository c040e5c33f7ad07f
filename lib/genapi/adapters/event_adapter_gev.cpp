// Event packets of GigE Vision, big endian:
//
//     0x42, flags (1 byte each), command, length of what follows the header, request id (2 bytes each); then the items
//
//     item:           size or 0, event id, channel, block id (2 bytes each), time stamp (8), data
//     extended item:  size or 0, event id, channel, 0 (2 bytes each), block id (8), time stamp (8), data
//
// An item without data command has no data. Nodes see an item from its first byte on.

#include <string>

#include "GenApi/event_adapter.h"
#include "GenICam/exceptions.h"

namespace GenApi {

namespace {

constexpr uint32_t headerSize = 8;
constexpr uint8_t magic = 0x42;
constexpr uint8_t extendedFlag = 0x10;
constexpr unsigned eventCommand = 0x00C0;
constexpr unsigned eventDataCommand = 0x00C2;
constexpr uint32_t itemSize = 16;
constexpr uint32_t extendedItemSize = 24;
constexpr uint32_t eventIdOffset = 2;

unsigned word_at(const uint8_t* bytes) { return static_cast<unsigned>(bytes[0] << 8 | bytes[1]); }

[[noreturn]] void refuse(const std::string& why) {
    throw GenICam::InvalidArgumentException("Event packet refused: " + why + ".");
}

struct Packet {
    bool hasData;
    bool extended;
    uint32_t length;  // of all items
};

Packet check(const uint8_t* message, uint32_t length) {
    if (!message || length < headerSize) refuse("it is shorter than its header");
    const unsigned command = word_at(message + 2);
    if (message[0] != magic || (command != eventCommand && command != eventDataCommand)) refuse("it carries no event");
    const Packet packet{command == eventDataCommand, (message[1] & extendedFlag) != 0, word_at(message + 4)};
    if (packet.length > length - headerSize)
        refuse("it announces " + std::to_string(packet.length) + " bytes and has " + std::to_string(length - headerSize));
    if (packet.length < (packet.extended ? extendedItemSize : itemSize)) refuse("it has no room for an event");
    return packet;
}

/// The size of the item at `item`, of which `left` bytes are there; 0 when the packet goes wrong here.
uint32_t size_of_item(const Packet& packet, const uint8_t* item, uint32_t left) {
    const uint32_t least = packet.extended ? extendedItemSize : itemSize;
    if (left < least) return 0;
    if (!packet.hasData) return least;
    if (!packet.extended) return left;
    const uint32_t size = word_at(item);
    if (size == 0) return left;  // devices of before several items could stand in one packet
    return size < least || size > left ? 0 : size;
}

}  // namespace

CEventAdapterGEV::CEventAdapterGEV(INodeMap* map) : CEventAdapter(map) {}
CEventAdapterGEV::CEventAdapterGEV(const CEventAdapterGEV&) = default;
CEventAdapterGEV& CEventAdapterGEV::operator=(const CEventAdapterGEV&) = default;
CEventAdapterGEV::~CEventAdapterGEV() = default;

void CEventAdapterGEV::DeliverMessage(const uint8_t* message, uint32_t length) {
    const Packet packet = check(message, length);
    const uint8_t* item = message + headerSize;
    uint32_t left = packet.length;
    if (size_of_item(packet, item, left) == 0) refuse("the size of its first event is wrong");
    // What follows a good item and is none itself is dropped: the good ones have happened all the same.
    while (const uint32_t size = size_of_item(packet, item, left)) {
        DeliverEvent(item, size, word_at(item + eventIdOffset));
        item += size;
        left -= size;
    }
}

}  // namespace GenApi
