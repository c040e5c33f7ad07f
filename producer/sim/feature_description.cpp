// The GenICam description of a FeatureList.

#include <charconv>

#include "feature_list.h"

namespace kivsim {
namespace {

std::string hexadecimal(uint64_t value) {
    char digits[16];
    return "0x" + std::string(digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr);
}

std::string element(std::string_view name, std::string_view content) {
    return "    <" + std::string(name) + ">" + std::string(content) + "</" + std::string(name) + ">\n";
}

std::string open(std::string_view type, std::string_view name) {
    return "  <" + std::string(type) + " Name=\"" + std::string(name) + "\" NameSpace=\"Standard\">\n";
}

std::string close(std::string_view type) { return "  </" + std::string(type) + ">\n"; }

constexpr std::string_view element_names[] = {"StringReg", "Integer", "Enumeration", "Boolean", "Command"};

}  // namespace

std::string FeatureList::Describe() const {
    std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<RegisterDescription ModelName="KivSim_)" +
                      module_ + R"(" VendorName="Kivotek" ToolTip="Module of the simulated producer" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="6E1F5A0C-2B7D-4D57-9C35-51A000000001" VersionGuid="6E1F5A0C-2B7D-4D57-9C35-51A000010000"
    xmlns="http://www.genicam.org/GenApi/Version_1_1" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
    xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_1 http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd">
)";
    std::vector<std::string> categories;
    for (const Feature& feature : features_)
        if (categories.empty() || categories.back() != feature.category) categories.push_back(feature.category);

    xml += open("Category", "Root");
    for (const std::string& category : categories) xml += element("pFeature", category);
    xml += close("Category");
    for (const std::string& category : categories) {
        xml += open("Category", category);
        for (const Feature& feature : features_)
            if (feature.category == category) xml += element("pFeature", feature.name);
        xml += close("Category");
    }
    for (const Feature& feature : features_) DescribeFeature(xml, feature);
    xml += open("Port", port_) + element("Visibility", "Invisible") + close("Port");
    return xml + "</RegisterDescription>\n";
}

void FeatureList::DescribeRegister(std::string& xml, const Feature& feature, std::string_view type, const std::string& name,
                                   size_t index) const {
    const Register& reg = registers_[index];
    xml += open(type, name);
    if (name == feature.name) xml += element("ToolTip", feature.tool_tip);
    xml += element("Visibility", name == feature.name ? "Beginner" : "Invisible");
    for (const Feature& selector : features_)
        if (name == feature.name && selector.name == feature.selector && selector.count_reg)
            xml += element("pIsAvailable", selector.name + "Count");
    xml += element("Address", hexadecimal(reg.address)) + element("Length", std::to_string(reg.length));
    xml += element("AccessMode", reg.write ? "RW" : "RO") + element("pPort", port_) + element("Cachable", "NoCache");
    for (const Feature& selector : features_)
        if (name == feature.name && selector.name == feature.selector) xml += element("pInvalidator", selector.name);
    if (type == "IntReg") xml += element("Sign", "Signed") + element("Endianess", "LittleEndian");
    xml += close(type);
}

void FeatureList::DescribeFeature(std::string& xml, const Feature& feature) const {
    if (feature.kind == Kind::Text) return DescribeRegister(xml, feature, "StringReg", feature.name, feature.reg);

    const std::string_view type = element_names[static_cast<size_t>(feature.kind)];
    const std::string value = feature.name + "Value";
    xml += open(type, feature.name) + element("ToolTip", feature.tool_tip) + element("Visibility", "Beginner");
    if (feature.event_id) xml += element("EventID", hexadecimal(feature.event_id).substr(2));
    for (const Feature& selector : features_)
        if (selector.name == feature.selector && selector.count_reg) xml += element("pIsAvailable", selector.name + "Count");
    if (feature.count_reg) xml += element("pIsAvailable", feature.name + "Count");
    if (!registers_[feature.reg].write) xml += element("ImposedAccessMode", "RO");
    for (size_t entry = 0; entry < feature.entries.size(); ++entry)
        xml += "    <EnumEntry Name=\"" + feature.entries[entry] + "\" NameSpace=\"Standard\"><Value>" + std::to_string(entry) +
               "</Value></EnumEntry>\n";
    xml += element("pValue", value);
    if (feature.count_reg) xml += element("Min", "0") + element("pMax", feature.name + "Max");
    if (feature.kind == Kind::Command) xml += element("CommandValue", "1");
    if (feature.kind == Kind::Boolean) xml += element("OnValue", "1") + element("OffValue", "0");
    for (const Feature& selected : features_)
        if (selected.selector == feature.name) xml += element("pSelected", selected.name);
    xml += close(type);

    DescribeRegister(xml, feature, "IntReg", value, feature.reg);
    if (!feature.count_reg) return;
    DescribeRegister(xml, feature, "IntReg", feature.name + "Count", feature.count_reg);
    DescribeRegister(xml, feature, "IntReg", feature.name + "Max", feature.count_reg + 1);
}

}  // namespace kivsim
