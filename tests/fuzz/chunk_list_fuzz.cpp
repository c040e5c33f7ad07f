// Any bytes as a list of chunks of a small buffer: a list is refused, or every register reads inside the buffer.

#include <cstring>

#include "fuzz_target.h"
#include "unit/genapi_parts/map_fixture.h"

namespace {

std::string chunk_register(const std::string& port, const std::string& address) {
    return "<Register Name=\"R" + port + std::to_string(address.size()) + "\"><Address>" + address +
           "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>" + port + "</pPort></Register>";
}

struct Chunks {
    std::unique_ptr<GenApi::INodeMap> map = kiv::test::node_map(
        "<Port Name=\"Device\"/><Port Name=\"A\"><ChunkID>1</ChunkID></Port>"
        "<Port Name=\"B\"><ChunkID>02</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>" +
        chunk_register("A", "0") + chunk_register("A", "-4") + chunk_register("B", "0") + chunk_register("B", "16"));
    GenApi::CChunkAdapterGeneric adapter{map.get()};
    std::vector<uint8_t> buffer = std::vector<uint8_t>(64);  // from the heap, so that reading beside it is seen
};

void read_all(const GenApi::INodeMap& map) {
    for (const char* name : {"RA1", "RA2", "RB1", "RB2"}) {
        uint8_t bytes[4];
        try {
            kiv::test::get<GenApi::IRegister>(map, name).Get(bytes, 4);
        } catch (const GenICam::GenericException&) {
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Chunks chunks;
    std::vector<GenApi::SingleChunkData_t> list(size / sizeof(GenApi::SingleChunkData_t));
    if (!list.empty()) std::memcpy(list.data(), data, list.size() * sizeof list[0]);
    try {
        chunks.adapter.AttachBuffer(chunks.buffer.data(), static_cast<int64_t>(chunks.buffer.size()), list.data(),
                                    static_cast<int64_t>(list.size()));
    } catch (const GenICam::InvalidArgumentException&) {
    }
    read_all(*chunks.map);
    if (size % 2) chunks.adapter.UpdateBuffer(chunks.buffer.data());
    if (size % 3) chunks.adapter.DetachBuffer();
    read_all(*chunks.map);
    return 0;
}
