// A node map without a camera: a few lines of description, a device of plain memory, and what one does with features. It needs
// the headers of GenApi and one library.
#include <GenApi/GenApi.h>

#include <array>
#include <cstring>
#include <iostream>

using namespace GenApi;

namespace {

const char* const description = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Lamp" VendorName="Example" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1"
  SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
  ProductGuid="2E0B5A5C-8C1C-4B0C-9C55-3F8F3C9D7A01" VersionGuid="2E0B5A5C-8C1C-4B0C-9C55-3F8F3C9D7A02"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root"><pFeature>Brightness</pFeature><pFeature>Colour</pFeature><pFeature>Power</pFeature></Category>
  <Integer Name="Brightness"><pIsLocked>ChildLock</pIsLocked><pValue>BrightnessReg</pValue><Max>100</Max><Unit>%</Unit></Integer>
  <Enumeration Name="Colour">
    <EnumEntry Name="Warm"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Cold"><Value>1</Value></EnumEntry>
    <pValue>ColourReg</pValue>
  </Enumeration>
  <Integer Name="ChildLock"><Value>0</Value></Integer>
  <SwissKnife Name="Power">
    <pVariable Name="PERCENT">Brightness</pVariable>
    <Formula>PERCENT * 12.5 / 100</Formula>
    <Unit>W</Unit>
  </SwissKnife>
  <IntReg Name="BrightnessReg"><Address>0x10</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="ColourReg"><Address>0x12</Address><Length>1</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <Port Name="Device"/>
</RegisterDescription>)";

/// The device. A real one would send the transfer over a wire and throw when that fails.
class MemoryPort : public IPort {
public:
    void Read(void* buffer, int64_t address, int64_t length) override {
        std::memcpy(buffer, Place(address, length), static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        std::memcpy(Place(address, length), buffer, static_cast<size_t>(length));
    }
    EAccessMode GetAccessMode() const override { return RW; }
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIPort; }

private:
    uint8_t* Place(int64_t address, int64_t length) {
        const auto size = static_cast<int64_t>(bytes_.size());
        if (address < 0 || length < 0 || length > size || address > size - length)
            throw GenICam::RuntimeException("The device has no such address.");
        return &bytes_[static_cast<size_t>(address)];
    }
    std::array<uint8_t, 64> bytes_{};
};

void print_features(const CNodeMapRef& lamp) {
    FeatureList_t features;
    CCategoryPtr(lamp._GetNode("Root"))->GetFeatures(features);
    for (IValue* feature : features) {
        const bool isWritable = IsWritable(feature);
        std::cout << "  " << feature->GetNode()->GetName() << " = " << feature->ToString() << (isWritable ? "" : "  (read only)")
                  << "\n";
    }
}

void use(const CNodeMapRef& lamp) {
    CIntegerPtr brightness = lamp._GetNode("Brightness");
    CEnumerationPtr colour = lamp._GetNode("Colour");
    print_features(lamp);

    // Power is computed from the brightness: whoever shows it wants to know.
    const auto handle = Register(lamp._GetNode("Power"), [](INode* node) {
        CFloatPtr power = node;
        std::cout << "the lamp takes " << power->GetValue() << " " << power->GetUnit() << "\n";
    });
    brightness->SetValue(80);
    *colour = "Cold";
    Deregister(handle);
    brightness->SetValue(20);
    print_features(lamp);

    const auto attempt = [&](int64_t value) {
        try {
            brightness->SetValue(value);
        } catch (const GenICam::GenericException& error) {
            std::cout << error.GetNodeName() << ": " << error.GetDescription() << "\n";
        }
    };
    attempt(101);
    CIntegerPtr(lamp._GetNode("ChildLock"))->SetValue(1);
    attempt(50);
}

}  // namespace

int main() {
    try {
        MemoryPort port;
        CNodeMapRef lamp;
        lamp._LoadXMLFromString(description);
        lamp._Connect(&port);
        use(lamp);
        return 0;
    } catch (const GenICam::GenericException& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
