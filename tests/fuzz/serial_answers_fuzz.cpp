// Any bytes as what comes over a camera's serial line: whatever is found is a packet that could be there.

#include <gencp_packet.h>

#include <algorithm>

#include "fuzz_target.h"

using namespace CLProtocol;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto line = std::as_bytes(std::span(data, size));
    const size_t piece = size == 0 ? 1 : data[0] % 33u + 1u;
    AckReader reader;
    size_t found = 0;
    for (size_t from = 0; from < line.size(); from += piece) {
        reader.Add(line.subspan(from, std::min(piece, line.size() - from)));
        while (const auto ack = reader.Next()) {
            require(ack->payload.size() <= largest_payload, "a packet is longer than one can be");
            found += header_size + ack->payload.size();
        }
    }
    require(found <= size, "packets overlap");
    return 0;
}
