// Any bytes as an event packet for a map with event nodes.

#include "fuzz_target.h"
#include "unit/genapi_parts/map_fixture.h"

namespace {

struct Events {
    std::unique_ptr<GenApi::INodeMap> map = kiv::test::node_map(R"(
      <Port Name="Device"/>
      <Port Name="EventPort"><EventID>9001</EventID></Port>
      <Integer Name="Anchor"><EventID>9001</EventID><Value>0</Value></Integer>
      <IntReg Name="Time"><Address>8</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>EventPort</pPort>
        <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
      <IntReg Name="Data"><Address>500</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>EventPort</pPort>
        <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>)");
    GenApi::CEventAdapterGEV adapter{map.get()};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Events events;
    try {
        events.adapter.DeliverMessage(data, static_cast<uint32_t>(size));
    } catch (const GenICam::InvalidArgumentException&) {
        return 0;
    }
    for (const char* name : {"Time", "Data"}) {
        try {
            kiv::test::integer(*events.map, name);
        } catch (const GenICam::GenericException&) {
        }
    }
    return 0;
}
