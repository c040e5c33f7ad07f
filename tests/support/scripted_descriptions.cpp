#include "scripted_descriptions.h"

#include <cstring>

#include "scripted_world.h"

namespace scripted {

namespace {

void put(std::string& memory, std::uint64_t address, const void* bytes, std::size_t length) {
    std::memcpy(&memory[address], bytes, length);
}

void put(std::string& memory, std::uint64_t address, std::uint32_t value) { put(memory, address, &value, sizeof value); }

std::string camera_registers() {
    std::string memory(reg::size, '\0');
    put(memory, reg::width, 320);
    put(memory, reg::height, 240);
    put(memory, reg::pixel_format, 0x01080001);
    put(memory, reg::pattern, 1);
    put(memory, reg::flag, 2);
    const float gain = 1.5F;
    put(memory, reg::gain, &gain, sizeof gain);
    put(memory, reg::counter, 7);
    put(memory, reg::model, "Scripted", 8);
    put(memory, reg::user_name, "Nobody", 6);
    for (std::size_t i = 0; i < 16; ++i) memory[reg::blob + i] = static_cast<char>(i);
    put(memory, reg::gain_raw, 40);
    put(memory, reg::level, 11);
    put(memory, reg::level + 4, 22);
    put(memory, reg::masked, 0xABCD);
    put(memory, reg::payload_size, 320 * 240);
    return memory;
}

}  // namespace

std::string plain_description(const std::string& port_name) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Plain" VendorName="ScriptedWorks" StandardNameSpace="GEV" SchemaMajorVersion="1" SchemaMinorVersion="1"
  SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="A module" ProductGuid="p" VersionGuid="v"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root"><pFeature>ModuleValue</pFeature></Category>
<Integer Name="ModuleValue"><Value>42</Value></Integer>
<Port Name=")" +
           port_name + R"("></Port>
</RegisterDescription>
)";
}

const char camera_description[] = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="ScriptedCam" VendorName="ScriptedWorks" ToolTip="A camera for tests" StandardNameSpace="None"
  SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="2" MinorVersion="3" SubMinorVersion="4"
  ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="66666666-7777-8888-9999-AAAAAAAAAAAA"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">

<Category Name="Root" NameSpace="Standard">
  <pFeature>ImageFormatControl</pFeature><pFeature>Tricks</pFeature>
</Category>
<Category Name="ImageFormatControl" NameSpace="Standard">
  <pFeature>Width</pFeature><pFeature>Height</pFeature><pFeature>PixelFormat</pFeature><pFeature>Hidden</pFeature>
</Category>
<Category Name="Tricks">
  <pFeature>Pattern</pFeature><pFeature>Flag</pFeature><pFeature>Gain</pFeature><pFeature>GainRaw</pFeature><pFeature>SubTricks</pFeature>
</Category>
<Category Name="SubTricks"><pFeature>UserName</pFeature><pFeature>Faulty</pFeature></Category>

<Integer Name="Width" NameSpace="Standard">
  <ToolTip>Columns</ToolTip><Description>The width of the image in pixels.</Description><DisplayName>Width</DisplayName>
  <Visibility>Beginner</Visibility><DocuURL>http://example.org/width</DocuURL><EventID>9A01</EventID><Streamable>Yes</Streamable>
  <pValue>WidthReg</pValue><Min>16</Min><Max>640</Max><Inc>8</Inc><Unit>px</Unit><Representation>HexNumber</Representation>
</Integer>
<IntReg Name="WidthReg"><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>WriteThrough</Cachable>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="Height"><Address>0x14</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Enumeration Name="PixelFormat" NameSpace="Standard">
  <EnumEntry Name="Mono8" NameSpace="Standard"><Value>0x01080001</Value></EnumEntry>
  <EnumEntry Name="Mono16" NameSpace="Standard"><Value>0x01100007</Value></EnumEntry>
  <EnumEntry Name="BayerRG8" NameSpace="Standard"><Value>0x01080009</Value></EnumEntry>
  <pValue>PixelFormatReg</pValue>
</Enumeration>
<IntReg Name="PixelFormatReg"><Address>0x18</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Hidden"><Visibility>Invisible</Visibility><Value>3</Value></Integer>

<Enumeration Name="Pattern">
  <EnumEntry Name="Alpha"><DisplayName>First choice</DisplayName><Value>1</Value></EnumEntry>
  <EnumEntry Name="Beta"><DisplayName>Gamma</DisplayName><Value>2</Value></EnumEntry>
  <EnumEntry Name="Gamma"><DisplayName>Third choice</DisplayName><Value>3</Value></EnumEntry>
  <EnumEntry Name="Never"><pIsImplemented>Zero</pIsImplemented><Value>4</Value></EnumEntry>
  <pValue>PatternReg</pValue>
</Enumeration>
<IntReg Name="PatternReg"><Address>0x1C</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Zero"><Value>0</Value></Integer>

<Boolean Name="Flag"><pValue>FlagReg</pValue><OnValue>5</OnValue><OffValue>2</OffValue></Boolean>
<IntReg Name="FlagReg"><Address>0x20</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

<Float Name="Gain"><Visibility>Expert</Visibility><pAlias>GainRaw</pAlias><pCastAlias>GainRaw</pCastAlias><Streamable>Yes</Streamable>
  <pValue>GainReg</pValue><Min>0.5</Min><Max>20.25</Max><Inc>0.25</Inc>
  <Unit>dB</Unit><Representation>Logarithmic</Representation><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>3</DisplayPrecision></Float>
<FloatReg Name="GainReg"><Address>0x24</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Endianess>LittleEndian</Endianess></FloatReg>
<Integer Name="GainRaw"><IsDeprecated>Yes</IsDeprecated><pCastAlias>Gain</pCastAlias><pValue>GainRawReg</pValue><Min>0</Min><Max>255</Max></Integer>
<IntReg Name="GainRawReg"><Address>0x64</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Float Name="PlainFloat"><Value>2.5</Value></Float>

<IntReg Name="Counter"><ImposedAccessMode>RO</ImposedAccessMode><Address>0x28</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><PollingTime>250</PollingTime><Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="Faulty"><Address>0x9000</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="LowAddress"><Address>0x1</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<MaskedIntReg Name="Masked"><Address>0x80</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <LSB>4</LSB><MSB>7</MSB><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></MaskedIntReg>
<IntReg Name="WriteOnly"><Address>0x68</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

<StringReg Name="DeviceModelName"><Address>0x30</Address><Length>16</Length><AccessMode>RO</AccessMode><pPort>Device</pPort></StringReg>
<StringReg Name="UserName"><Address>0x40</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
<String Name="Note"><Value>some text</Value></String>
<Register Name="Blob"><Address>0x50</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>

<Command Name="Trigger"><pValue>CommandReg</pValue><CommandValue>1</CommandValue></Command>
<IntReg Name="CommandReg"><Address>0x60</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

<Enumeration Name="LevelSelector">
  <EnumEntry Name="Left"><Value>0</Value></EnumEntry><EnumEntry Name="Right"><Value>1</Value></EnumEntry>
  <pValue>SelectorReg</pValue><pSelected>Level</pSelected>
</Enumeration>
<IntReg Name="SelectorReg"><Address>0x6C</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Level"><pValue>LevelReg</pValue></Integer>
<IntReg Name="LevelReg"><Address>0x70</Address><pIndex Offset="4">SelectorReg</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

<IntSwissKnife Name="DoubleWidth"><pVariable Name="W">WidthReg</pVariable><Formula>W*2</Formula></IntSwissKnife>
<SwissKnife Name="HalfWidth"><pVariable Name="W">WidthReg</pVariable><Formula>W/2.0</Formula></SwissKnife>
<IntConverter Name="WidthInEights"><FormulaTo>FROM*8</FormulaTo><FormulaFrom>TO/8</FormulaFrom><pValue>WidthReg</pValue></IntConverter>
<Converter Name="GainFactor"><FormulaTo>FROM*2</FormulaTo><FormulaFrom>TO/2</FormulaFrom><pValue>GainReg</pValue></Converter>

<Integer Name="TLParamsLocked"><Visibility>Invisible</Visibility><pValue>TLParamsLockedReg</pValue><Min>0</Min><Max>1</Max></Integer>
<IntReg Name="TLParamsLockedReg"><Address>0x84</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="PayloadSize"><Address>0x88</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Command Name="AcquisitionStart"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
<IntReg Name="StartReg"><Address>0x8C</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Command Name="AcquisitionStop"><pValue>StopReg</pValue><CommandValue>1</CommandValue></Command>
<IntReg Name="StopReg"><Address>0x90</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

<IntReg Name="ChunkWidth"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="ChunkHeight"><Address>4</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="ChunkOffsetX"><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="ChunkOffsetY"><Address>12</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="ChunkPixelFormat"><Address>16</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>

<Port Name="Device"></Port>
<Port Name="ChunkPort"><ChunkID>c0de</ChunkID></Port>
</RegisterDescription>
)";

void furnish(World& world, const std::string& name, const std::string& type) {
    world.name = name;
    world.tl_type = type;
    world.port.memory[0] = std::string(16, '\0');
    world.port.Describe("ScriptedSystem_" + name + ".xml", plain_description("TLPort"));

    Interface& interface = world.interfaces.emplace_back();
    interface.id = "IF0";
    interface.port.Describe("ScriptedInterface.xml", plain_description("InterfacePort"));

    Device& device = interface.devices.emplace_back();
    device.id = "CAM0";
    device.infos = {{GenTL::DEVICE_INFO_ID, text_info(device.id)},
                    {GenTL::DEVICE_INFO_VENDOR, text_info("ScriptedWorks")},
                    {GenTL::DEVICE_INFO_MODEL, text_info("ScriptedCam")},
                    {GenTL::DEVICE_INFO_TLTYPE, text_info(type)},
                    {GenTL::DEVICE_INFO_DISPLAYNAME, text_info("ScriptedWorks ScriptedCam (CAM0)")},
                    {GenTL::DEVICE_INFO_ACCESS_STATUS, number_info<std::int32_t>(GenTL::INFO_DATATYPE_INT32, 1)},
                    {GenTL::DEVICE_INFO_USER_DEFINED_NAME, text_info("Left eye")},
                    {GenTL::DEVICE_INFO_SERIAL_NUMBER, text_info("SN-0815")},
                    {1003, text_info("ten-oh-three")},
                    {1004, text_info("ten-oh-four")}};
    device.local.Describe("ScriptedDevice.xml", plain_description("DevicePort"));
    device.remote.memory[0] = camera_registers();
    device.remote.Describe("ScriptedCam.xml", camera_description);

    Stream& stream = device.streams.emplace_back();
    stream.id = "STREAM0";
    stream.port.Describe("ScriptedStream.xml", plain_description("StreamPort"));
}

}  // namespace scripted
