/// Descriptions from bytes: each byte decides something, so that small changes of the input make other descriptions instead of
/// broken ones. Nodes refer to each other at will: forward, backward, in circles.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kiv::fuzz {

/// In the texts below @ is the name of a node, # a number, $ a short length, % a formula.
struct Body {
    std::string_view element;
    std::string_view text;
};

constexpr std::string_view behindPort = "<Length>$</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";

constexpr Body bodies[] = {
    {"Integer", "<Value>#</Value>"},
    {"Integer", "<pValue>@</pValue>"},
    {"Integer", "<pValue>@</pValue><Min>#</Min><pMax>@</pMax><pInc>@</pInc>"},
    {"Integer", "<pValue>@</pValue><pValueCopy>@</pValueCopy>"},
    {"Integer",
     "<pIndex>@</pIndex><pValueIndexed Index='1'>@</pValueIndexed><ValueIndexed Index='#'>#</ValueIndexed><pValueDefault>@"
     "</pValueDefault>"},
    {"IntReg", "<Address>#</Address>"},
    {"IntReg", "<Address>#</Address><pAddress>@</pAddress>"},
    {"IntReg", "<Address>#</Address><pIndex Offset='$'>@</pIndex>"},
    {"IntReg", "<pIndex pOffset='@'>@</pIndex>"},
    {"IntReg", "<IntSwissKnife Name='Inner@'><pVariable Name='A'>@</pVariable><Formula>%</Formula></IntSwissKnife>"},
    {"MaskedIntReg", "<Address>#</Address><LSB>$</LSB><MSB>$</MSB>"},
    {"MaskedIntReg", "<Address>0</Address><Bit>$</Bit>"},
    {"StructReg",
     "<Address>#</Address><StructEntry Name='Low@'><LSB>0</LSB><MSB>3</MSB></StructEntry><StructEntry Name='High@'>"
     "<Bit>$</Bit><Sign>Signed</Sign></StructEntry>"},
    {"IntSwissKnife", "<pVariable Name='A'>@</pVariable><pVariable Name='B.Max'>@</pVariable><Formula>%</Formula>"},
    {"SwissKnife", "<pVariable Name='A'>@</pVariable><Constant Name='B'>#</Constant><Formula>%</Formula>"},
    {"IntConverter",
     "<pVariable Name='A'>@</pVariable><FormulaTo>FROM+A</FormulaTo><FormulaFrom>TO-A</FormulaFrom><pValue>@</pValue>"},
    {"IntConverter", "<FormulaTo>FROM*#</FormulaTo><FormulaFrom>TO/#</FormulaFrom><pValue>@</pValue><Slope>Varying</Slope>"},
    {"Converter", "<FormulaTo>FROM*2</FormulaTo><FormulaFrom>TO/2</FormulaFrom><pValue>@</pValue><IsLinear>Yes</IsLinear>"},
    {"Converter", "<FormulaTo>#/FROM</FormulaTo><FormulaFrom>#/TO</FormulaFrom><pValue>@</pValue><Slope>Decreasing</Slope>"},
    {"Boolean", "<pValue>@</pValue><OnValue>#</OnValue><OffValue>#</OffValue>"},
    {"Boolean", "<Value>true</Value>"},
    {"Command", "<pValue>@</pValue><pCommandValue>@</pCommandValue>"},
    {"Command", "<pValue>@</pValue><CommandValue>#</CommandValue>"},
    {"Enumeration",
     "<EnumEntry Name='One'><Value>#</Value><pIsAvailable>@</pIsAvailable></EnumEntry><EnumEntry Name='Two'><Value>2</Value>"
     "<NumericValue>0.5</NumericValue></EnumEntry><EnumEntry Name='Again'><Value>2</Value></EnumEntry><pValue>@</pValue>"},
    {"Enumeration",
     "<EnumEntry Name='Idle'><Value>0</Value></EnumEntry><EnumEntry Name='Busy'><Value>1</Value><IsSelfClearing>Yes"
     "</IsSelfClearing></EnumEntry><pValue>@</pValue><PollingTime>#</PollingTime>"},
    {"Float", "<Value>#</Value>"},
    {"Float", "<pValue>@</pValue><pMin>@</pMin><Max>#</Max>"},
    {"FloatReg", "<Address>#</Address>"},
    {"String", "<pValue>@</pValue>"},
    {"String", "<Value>text</Value>"},
    {"StringReg", "<Address>#</Address>"},
    {"Register", "<Address>#</Address>"},
    {"Category", "<pFeature>@</pFeature><pFeature>@</pFeature><pFeature>@</pFeature>"},
    {"Port", "<ChunkID>12</ChunkID>"},
    {"Node", ""},
};

constexpr std::string_view extras[] = {
    "<pIsImplemented>@</pIsImplemented>",
    "<pIsAvailable>@</pIsAvailable>",
    "<pIsLocked>@</pIsLocked>",
    "<pBlockPolling>@</pBlockPolling>",
    "<pError>@</pError>",
    "<pAlias>@</pAlias><pCastAlias>@</pCastAlias>",
    "<pInvalidator>@</pInvalidator>",
    "<pSelected>@</pSelected>",
    "<ImposedAccessMode>RO</ImposedAccessMode>",
    "<Cachable>NoCache</Cachable>",
    "<Cachable>WriteAround</Cachable>",
    "<PollingTime>#</PollingTime>",
    "<Sign>Signed</Sign>",
    "<Endianess>BigEndian</Endianess>",
    "<Streamable>Yes</Streamable>",
    "<pLength>@</pLength>",
    "<AccessMode>WO</AccessMode>",
    "<Representation>IPV4Address</Representation>",
    "<Unit>us</Unit>",
    "<ValidValueSet>1;2;#</ValidValueSet>",
    "<pMax>@</pMax>",
    "<Min>#</Min>",
    "<Inc>#</Inc>",
    "<DocuURL>http://x/$(@)</DocuURL>",
    "<EventID>9</EventID>",
    "<pPort>Other</pPort>",
};

constexpr std::string_view numbers[] = {
    "0", "1", "2", "3", "4", "8", "-1", "16", "0x7FFFFFFFFFFFFFFF", "-9223372036854775808", "0xFFFFFFFFFFFFFFFF", "100"};
constexpr std::string_view formulas[] = {"A",    "A+1",       "A*A",     "A=0?1:2", "A/(A-A)", "(A<<3)&0xFF",
                                         "A**A", "A>4?A-4:A", "B.Max-A", "A%7",     "~A",      "A<>1"};

class Choices {
public:
    explicit Choices(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    std::string Description() {
        nodes_ = 2 + Take(24);
        std::string text =
            "<RegisterDescription SchemaMajorVersion='1' SchemaMinorVersion='1'><Port Name='Device'/>"
            "<Port Name='Other'><SwapEndianess>Yes</SwapEndianess></Port>";
        for (unsigned i = 0; i < nodes_; ++i) AppendNode(text, i);
        return text + "</RegisterDescription>";
    }

private:
    unsigned Take(size_t below) {
        if (next_ == bytes_.size()) return 0;
        return static_cast<unsigned>(bytes_[next_++] % below);
    }

    void AppendNode(std::string& text, unsigned index) {
        const auto& body = bodies[Take(std::size(bodies))];
        text.append("<").append(body.element).append(" Name='N").append(std::to_string(index)).append("'>");
        for (auto more = Take(4); more > 0; --more) Append(text, extras[Take(std::size(extras))]);
        Append(text, body.text);
        if (body.element.find("Reg") != body.element.npos) Append(text, behindPort);
        text.append("</").append(body.element).append(">");
    }

    void Append(std::string& text, std::string_view form) {
        for (const char c : form) switch (c) {
                case '@':
                    text.append("N").append(std::to_string(Take(nodes_)));
                    break;
                case '#':
                    text.append(numbers[Take(std::size(numbers))]);
                    break;
                case '$':
                    text.append(std::to_string(Take(10)));
                    break;
                case '%':
                    for (const char f : formulas[Take(std::size(formulas))])
                        text.append(f == '<' ? "&lt;" : f == '&' ? "&amp;" : std::string(1, f));
                    break;
                default:
                    text += c;
            }
    }

    std::span<const uint8_t> bytes_;
    size_t next_ = 0;
    unsigned nodes_ = 0;
};

}  // namespace kiv::fuzz
