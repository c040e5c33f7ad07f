#include "GenApi/types.h"

#include <span>
#include <string_view>

namespace GenApi {

namespace {

template <class Enum>
struct Row {
    Enum value;
    std::string_view text;
};

template <class Enum>
constexpr Row<Enum> rows[] = {};

template <>
constexpr Row<EAccessMode> rows<EAccessMode>[] = {{NI, "NI"}, {NA, "NA"}, {WO, "WO"}, {RO, "RO"}, {RW, "RW"}};
template <>
constexpr Row<EVisibility> rows<EVisibility>[] = {
    {Beginner, "Beginner"}, {Expert, "Expert"}, {Guru, "Guru"}, {Invisible, "Invisible"}};
template <>
constexpr Row<ECachingMode> rows<ECachingMode>[] = {
    {NoCache, "NoCache"}, {WriteThrough, "WriteThrough"}, {WriteAround, "WriteAround"}};
template <>
constexpr Row<ENameSpace> rows<ENameSpace>[] = {{Custom, "Custom"}, {Standard, "Standard"}};
template <>
constexpr Row<ERepresentation> rows<ERepresentation>[] = {
    {Linear, "Linear"},       {Logarithmic, "Logarithmic"}, {Boolean, "Boolean"},      {PureNumber, "PureNumber"},
    {HexNumber, "HexNumber"}, {IPV4Address, "IPV4Address"}, {MACAddress, "MACAddress"}};
template <>
constexpr Row<EDisplayNotation> rows<EDisplayNotation>[] = {
    {fnAutomatic, "Automatic"}, {fnFixed, "Fixed"}, {fnScientific, "Scientific"}};
template <>
constexpr Row<EYesNo> rows<EYesNo>[] = {{No, "No"}, {Yes, "Yes"}};
template <>
constexpr Row<ESign> rows<ESign>[] = {{Signed, "Signed"}, {Unsigned, "Unsigned"}};
template <>
constexpr Row<EEndianess> rows<EEndianess>[] = {{BigEndian, "BigEndian"}, {LittleEndian, "LittleEndian"}};
template <>
constexpr Row<EStandardNameSpace> rows<EStandardNameSpace>[] = {
    {None, "None"}, {GEV, "GEV"}, {IIDC, "IIDC"}, {CL, "CL"}, {USB, "USB"}};
template <>
constexpr Row<ESlope> rows<ESlope>[] = {
    {Increasing, "Increasing"}, {Decreasing, "Decreasing"}, {Varying, "Varying"}, {Automatic, "Automatic"}};

template <class Enum>
bool find_value(std::string_view text, Enum* value) {
    for (const auto& row : rows<Enum>) {
        if (row.text != text) continue;
        *value = row.value;
        return true;
    }
    return false;
}

template <class Enum>
gcstring find_text(Enum value) {
    for (const auto& row : rows<Enum>)
        if (row.value == value) return row.text;
    return {};
}

}  // namespace

#define KIV_GENAPI_ENUM_TEXTS(Enum)                                       \
    template <>                                                           \
    bool EnumTexts<Enum>::FromString(const gcstring& text, Enum* value) { \
        return find_value<Enum>(text, value);                             \
    }                                                                     \
    template <>                                                           \
    gcstring EnumTexts<Enum>::ToString(Enum value) {                      \
        return find_text<Enum>(value);                                    \
    }

KIV_GENAPI_ENUM_TEXTS(EAccessMode)
KIV_GENAPI_ENUM_TEXTS(EVisibility)
KIV_GENAPI_ENUM_TEXTS(ECachingMode)
KIV_GENAPI_ENUM_TEXTS(ENameSpace)
KIV_GENAPI_ENUM_TEXTS(ERepresentation)
KIV_GENAPI_ENUM_TEXTS(EDisplayNotation)
KIV_GENAPI_ENUM_TEXTS(EYesNo)
KIV_GENAPI_ENUM_TEXTS(ESign)
KIV_GENAPI_ENUM_TEXTS(EEndianess)
KIV_GENAPI_ENUM_TEXTS(EStandardNameSpace)
KIV_GENAPI_ENUM_TEXTS(ESlope)

}  // namespace GenApi
