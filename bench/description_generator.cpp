#include "description_generator.h"

#include <cstdio>

namespace kiv::bench {

namespace {

using std::to_string;

constexpr const char* head = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Bench" VendorName="Kiv" ToolTip="For measuring" StandardNameSpace="None"
 SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="6A1B4E02-93F1-4C1D-8F0E-2B8E5C7D9A10" VersionGuid="6A1B4E02-93F1-4C1D-8F0E-2B8E5C7D9A11"
 xmlns="http://www.genicam.org/GenApi/Version_1_1" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
 xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_1 http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd">
  <Port Name="Device" NameSpace="Standard">
    <ToolTip>Port of the camera</ToolTip>
  </Port>
)";

/// Writes nodes and counts them.
class Writer {
public:
    explicit Writer(Description& description) : out_(description) {}

    void Open(const std::string& element, const std::string& name) {
        out_.xml += "  <" + element + " Name=\"" + name + "\" NameSpace=\"Custom\">\n";
        element_ = element;
        ++out_.nodes;
    }
    void Close() { out_.xml += "  </" + element_ + ">\n"; }
    void Child(const char* tag, const std::string& text) {
        out_.xml += std::string("    <") + tag + ">" + text + "</" + tag + ">\n";
    }
    void Raw(const std::string& text) { out_.xml += text; }
    void Inner() { ++out_.nodes; }

    void Texts(const std::string& name) {
        Child("ToolTip", "Controls the " + name + " of the camera.");
        Child("Description", "This feature controls the " + name +
                                 ". It depends on the selected mode, and it cannot be changed "
                                 "while images are being acquired.");
        Child("DisplayName", name);
    }
    void Variable(const char* name, const std::string& node) {
        out_.xml += std::string("    <pVariable Name=\"") + name + "\">" + node + "</pVariable>\n";
    }
    void Register(const std::string& address, const char* cachable = "WriteThrough", const char* mode = "RW", int length = 4) {
        Raw(address);
        Child("Length", to_string(length));
        Child("AccessMode", mode);
        Child("pPort", "Device");
        Child("Cachable", cachable);
    }
    void Invalidators(const std::string& module, int count) {
        static constexpr const char* sources[] = {"Selector", "Mode0", "Reset", "Mode1", "Mode2"};
        for (int i = 0; i < count; ++i) Child("pInvalidator", sources[i] + module);
    }
    void IntReg(const std::string& name, const std::string& address, const std::string& module = "", int invalidators = 0,
                const char* cachable = "WriteThrough") {
        Open("IntReg", name);
        Register(address, cachable);
        Invalidators(module, invalidators);
        Child("Sign", "Unsigned");
        Child("Endianess", "BigEndian");
        Close();
    }
    void Masked(const std::string& name, const std::string& address, int lsb, int msb, const std::string& module = "",
                int invalidators = 0, const char* cachable = "WriteThrough") {
        Open("MaskedIntReg", name);
        Register(address, cachable);
        Invalidators(module, invalidators);
        Child("LSB", to_string(lsb));
        Child("MSB", to_string(msb));
        Child("Sign", "Unsigned");
        Child("Endianess", "BigEndian");
        Close();
    }
    void Enumeration(const std::string& name, const std::string& value, const char* entry, int entries,
                     const std::vector<std::string>& selected = {}) {
        Open("Enumeration", name);
        Texts(name);
        Child("Visibility", "Expert");
        for (int i = 0; i < entries; ++i) {
            const std::string symbolic = entry + to_string(i);
            Raw("    <EnumEntry Name=\"" + symbolic + "\" NameSpace=\"Custom\">\n      <ToolTip>Chooses " + symbolic +
                "</ToolTip>\n      <DisplayName>" + symbolic + "</DisplayName>\n      <Value>" + to_string(i) +
                "</Value>\n    </EnumEntry>\n");
            Inner();
        }
        Child("pValue", value);
        for (const std::string& one : selected) Child("pSelected", one);
        Close();
        out_.enumerations.push_back(name);
    }
    void Integer(const std::string& name, const std::string& value, const std::string& max = "", const char* locked = nullptr) {
        Open("Integer", name);
        Texts(name);
        if (locked) Child("pIsLocked", locked);
        Child("pValue", value);
        Child("Min", "0");
        if (!max.empty()) Child("pMax", max);
        Close();
        out_.integers.push_back(name);
    }

    Description& Out() { return out_; }

private:
    Description& out_;
    std::string element_;
};

std::string at(size_t address) { return "    <Address>" + to_string(address) + "</Address>\n"; }

/// A node of each kind over a register of its own.
void kinds(Writer& w, bool cached) {
    const std::string prefix = cached ? "" : "Uncached";
    const char* caching = cached ? "WriteThrough" : "NoCache";
    size_t next = cached ? 0x30 : 0x90;
    const auto address = [&next](size_t length = 4) { return next += length, at(next - length); };
    const auto converter = [&](const char* element, const char* name) {
        w.IntReg(prefix + name + "Reg", address(), "", 0, caching);
        w.Open(element, prefix + name);
        w.Child("FormulaTo", "FROM * 10");
        w.Child("FormulaFrom", "TO / 10");
        w.Child("pValue", prefix + name + "Reg");
        w.Child("Slope", "Increasing");
        w.Close();
    };
    w.Masked(prefix + "ModeReg", address(), 31, 29, "", 0, caching);
    w.Enumeration(prefix + "Mode", prefix + "ModeReg", "Mode", 8);
    w.Masked(prefix + "FieldReg", address(), 23, 8, "", 0, caching);
    w.Integer(prefix + "Field", prefix + "FieldReg");
    w.Masked(prefix + "FlagReg", address(), 4, 4, "", 0, caching);
    w.Open("Boolean", prefix + "Flag");
    w.Child("pValue", prefix + "FlagReg");
    w.Close();
    converter("IntConverter", "ConvertedInteger");
    w.Open("FloatReg", prefix + "NumberReg");
    w.Register(address(), caching);
    w.Child("Endianess", "BigEndian");
    w.Close();
    w.Open("Float", prefix + "Number");
    w.Child("pValue", prefix + "NumberReg");
    w.Child("Max", "1000");
    w.Close();
    next += 12;
    w.Open("StringReg", prefix + "Text");
    w.Register(address(16), caching, "RW", 16);
    w.Close();
    w.Open("Register", prefix + "Bytes");
    w.Register(address(16), caching, "RW", 16);
    w.Close();
    w.IntReg(prefix + "StartReg", address(), "", 0, caching);
    w.Open("Command", prefix + "Start");
    w.Child("pValue", prefix + "StartReg");
    w.Child("CommandValue", "1");
    w.Close();
    if (!cached) converter("Converter", "ConvertedFloat");
}

void probes(Writer& w) {
    w.IntReg("CachedReg", at(0x10));
    w.Integer("CachedInteger", "CachedReg");
    w.IntReg("UncachedReg", at(0x14), "", 0, "NoCache");
    w.Integer("UncachedInteger", "UncachedReg");
    w.IntReg("ConvertedReg", at(0x18));
    w.Open("Converter", "ConvertedFloat");
    w.Child("FormulaTo", "FROM * 10");
    w.Child("FormulaFrom", "TO / 10");
    w.Child("pValue", "ConvertedReg");
    w.Child("Slope", "Increasing");
    w.Close();
    for (int i = 0; i < 4; ++i) w.IntReg("VariableReg" + to_string(i), at(0x20 + 4 * static_cast<size_t>(i)));
    w.Open("SwissKnife", "OneVariable");
    w.Variable("A", "VariableReg0");
    w.Child("Formula", "A * 0.5 + 1");
    w.Close();
    w.Open("SwissKnife", "FourVariables");
    for (int i = 0; i < 4; ++i) w.Variable(std::string(1, static_cast<char>('A' + i)).c_str(), "VariableReg" + to_string(i));
    w.Child("Formula", "(A = 0) ? 0 : ((B - C) / (D + 1)) * A");
    w.Close();
    for (const bool cached : {true, false}) kinds(w, cached);
    w.Out().floats.insert(w.Out().floats.end(), {"ConvertedFloat", "OneVariable", "FourVariables"});
}

/// About a hundred nodes around one selector, with registers of their own.
void module(Writer& w, size_t number) {
    const std::string m = to_string(number);
    size_t next = 0x1000 + number * 0x400;
    auto address = [&next] { return at(next += 4); };

    w.Masked("SelectorReg" + m, address(), 31, 29);
    w.Enumeration("Selector" + m, "SelectorReg" + m, "Source", 8, {"Level" + m + "_0", "Level" + m + "_1", "Gain" + m});
    for (int i = 0; i < 3; ++i) {
        w.Masked("Mode" + to_string(i) + "Reg" + m, address(), 31, 28, m, 1);
        w.Enumeration("Mode" + to_string(i) + m, "Mode" + to_string(i) + "Reg" + m, "Choice", 5);
    }
    w.IntReg("ResetReg" + m, address());
    w.Open("Command", "Reset" + m);
    w.Texts("Reset" + m);
    w.Child("pValue", "ResetReg" + m);
    w.Child("CommandValue", "1");
    w.Close();

    // Registers whose place depends on the selector, by a formula or by an index.
    w.Integer("SelectorIndex" + m, "SelectorReg" + m);
    for (int i = 0; i < 10; ++i) {
        const std::string id = m + "_" + to_string(i);
        w.Open("IntSwissKnife", "Place" + id);
        w.Variable("SEL", "SelectorReg" + m);
        w.Variable("SCALE", "ScaleReg" + m);
        w.Child("Formula", "(SEL = " + to_string(i) + ") ? (0x800 + SEL * 4) : ((SCALE &gt; 0) ? (0x900 + SEL * 4) : 0xA00)");
        w.Close();
        if (i < 6)
            w.IntReg("LevelReg" + id,
                     "    <Address>" + to_string(next) + "</Address>\n    <pAddress>Place" + id + "</pAddress>\n", m, 4);
    }
    w.IntReg("ScaleReg" + m, address());
    for (int i = 0; i < 6; ++i) w.IntReg("LimitReg" + m + "_" + to_string(i), address(), m, 3);
    for (int i = 0; i < 3; ++i)
        w.IntReg("TableReg" + m + "_" + to_string(i), address() + "    <pIndex Offset=\"4\">SelectorIndex" + m + "</pIndex>\n", m,
                 3);
    for (int i = 0; i < 6; ++i)
        w.Integer("Level" + m + "_" + to_string(i), "LevelReg" + m + "_" + to_string(i), "LimitReg" + m + "_" + to_string(i),
                  i % 2 ? "CachedReg" : nullptr);
    for (int i = 0; i < 3; ++i) w.Integer("Table" + m + "_" + to_string(i), "TableReg" + m + "_" + to_string(i));
    for (int i = 0; i < 18; ++i) {
        if (i % 6 == 0) next += 4;
        w.Masked("Bits" + m + "_" + to_string(i), at(next), 31 - 5 * (i % 6), 27 - 5 * (i % 6), m, i % 3);
    }
    w.Open("StructReg", "Status" + m);
    --w.Out().nodes;  // its entries are the nodes
    w.Register(address(), "NoCache", "RO");
    w.Child("Endianess", "BigEndian");
    for (int i = 0; i < 3; ++i) {
        w.Raw("    <StructEntry Name=\"Status" + m + "_" + to_string(i) + "\" NameSpace=\"Custom\">\n      <Bit>" + to_string(i) +
              "</Bit>\n    </StructEntry>\n");
        w.Inner();
    }
    w.Close();
    for (int i = 0; i < 2; ++i) {
        const std::string name = "Enable" + m + "_" + to_string(i);
        w.Open("Boolean", name);
        w.Texts(name);
        w.Child("pValue", "Bits" + m + "_" + to_string(i));
        w.Close();
        w.Out().booleans.push_back(name);
    }
    w.Open("Converter", "Gain" + m);
    w.Texts("Gain" + m);
    w.Variable("SCALE", "ScaleReg" + m);
    w.Child("FormulaTo", "FROM * 100 / (SCALE + 1)");
    w.Child("FormulaFrom", "TO * (SCALE + 1) / 100.0");
    w.Child("pValue", "LimitReg" + m + "_4");
    w.Child("Unit", "dB");
    w.Child("Slope", "Increasing");
    w.Close();
    w.Open("IntConverter", "Delay" + m);
    w.Child("FormulaTo", "FROM / 8");
    w.Child("FormulaFrom", "TO * 8");
    w.Child("pValue", "LimitReg" + m + "_5");
    w.Child("Slope", "Increasing");
    w.Close();
    w.Open("SwissKnife", "Rate" + m);
    w.Variable("PERIOD", "LimitReg" + m + "_3");
    w.Variable("SCALE", "ScaleReg" + m);
    w.Child("Formula", "1000000.0 / (PERIOD + SCALE + 1)");
    w.Child("Unit", "Hz");
    w.Close();
    w.Open("FloatReg", "TemperatureReg" + m);
    w.Register(address());
    w.Child("Endianess", "BigEndian");
    w.Child("Unit", "C");
    w.Close();
    w.Open("Float", "Temperature" + m);
    w.Texts("Temperature" + m);
    w.Child("pValue", "TemperatureReg" + m);
    w.Close();
    next += 16;
    w.Open("StringReg", "Label" + m);
    w.Register(at(next), "WriteThrough", "RW", 16);
    w.Close();
    char chunkId[9];
    std::snprintf(chunkId, sizeof chunkId, "%08x", static_cast<unsigned>(chunk_id_of_module(number)));
    w.Open("Port", "ChunkPort" + m);
    w.Child("ChunkID", chunkId);
    w.Close();
    w.Open("IntReg", "Chunk" + m);
    w.Raw(at(0));
    w.Child("Length", "4");
    w.Child("AccessMode", "RO");
    w.Child("pPort", "ChunkPort" + m);
    w.Child("Sign", "Unsigned");
    w.Child("Endianess", "LittleEndian");
    w.Close();
    w.Out().integers.push_back("Delay" + m);
    w.Out().floats.insert(w.Out().floats.end(), {"Gain" + m, "Rate" + m, "Temperature" + m});

    w.Open("Category", "Module" + m);
    w.Child("ToolTip", "The features of module " + m);
    for (const char* feature : {"Selector", "Mode0", "Mode1", "Mode2", "Reset", "Gain", "Delay", "Rate", "Temperature", "Label"})
        w.Child("pFeature", feature + m);
    for (int i = 0; i < 6; ++i) w.Child("pFeature", "Level" + m + "_" + to_string(i));
    w.Close();
}

}  // namespace

Description generate_description(size_t nodes) {
    Description description;
    description.xml = head;
    ++description.nodes;
    Writer writer(description);
    probes(writer);
    size_t modules = 0;
    for (; description.nodes + 1 < nodes; ++modules) module(writer, modules);
    writer.Open("Category", "Root");
    for (size_t i = 0; i < modules; ++i) writer.Child("pFeature", "Module" + to_string(i));
    writer.Close();
    description.xml += "</RegisterDescription>\n";
    return description;
}

}  // namespace kiv::bench
