/// The features that a module of the producer (system, interface, device, stream) shows in its node map.
///
/// A module lists its features once, with functions that read and write them. The list lays out the registers, writes the
/// GenICam description of them, and serves both as a register space; nothing is stored here, so the values are always those
/// of the module. Every node says NoCache for that reason.
///
///     0x1000    registers, 8-byte aligned, little endian
///     0x100000  the description, readable in any pieces
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kivsim {

class FeatureList {
public:
    using GetText = std::function<std::string()>;
    using SetText = std::function<void(std::string_view)>;
    using GetInt = std::function<int64_t()>;
    using SetInt = std::function<void(int64_t)>;

    enum class Kind { Text, Integer, Enumeration, Boolean, Command };

    struct Feature {
        std::string name, tool_tip;
        Kind kind = Kind::Text;
        std::string category;
        size_t reg = 0;                    ///< index of its register
        std::vector<std::string> entries;  ///< of an enumeration; an entry's value is its index
        std::string selector;              ///< name of the integer or enumeration that selects it
        size_t count_reg = 0;              ///< of an index into a list: register with the list's length, else 0
        uint64_t event_id = 0;             ///< of the EVENT_MODULE that changes it, else 0
    };

    /// Keeps the text; `port` is the name of the Port node, `module` the one in the description's file name.
    FeatureList(std::string port, std::string module);

    /// The features that follow belong to this category.
    void Category(std::string name) { category_ = std::move(name); }
    /// The features that follow depend on that selector; an empty text ends it.
    void SelectedBy(std::string selector) { selector_ = std::move(selector); }

    void Text(std::string name, std::string tool_tip, size_t length, GetText get, SetText set = {});
    void Integer(std::string name, std::string tool_tip, GetInt get, SetInt set = {});
    void Boolean(std::string name, std::string tool_tip, GetInt get);
    void Enumeration(std::string name, std::string tool_tip, std::vector<std::string> entries, GetInt get, SetInt set = {});
    void Command(std::string name, std::string tool_tip, std::function<void()> execute);
    /// A selector that is an index into a list. What it selects is not available while the list is empty.
    void Index(std::string name, std::string tool_tip, GetInt get, SetInt set, GetInt count);

    /// The number of an event of the module, which changes when the event happens.
    void Event(std::string name, std::string tool_tip, uint64_t event_id);

    /// To be called once, after the last feature.
    void Finish();

    std::string Url() const;
    /// Both throw INVALID_ADDRESS and ACCESS_DENIED, and what the module's functions throw.
    void Read(uint64_t address, std::span<std::byte> out) const;
    void Write(uint64_t address, std::span<const std::byte> in);

private:
    struct Register {
        uint64_t address = 0;
        size_t length = 0;
        std::function<void(std::span<std::byte>)> read;         ///< empty: write only
        std::function<void(std::span<const std::byte>)> write;  ///< empty: read only
    };

    Feature& Add(Kind kind, std::string name, std::string tool_tip, size_t reg);
    size_t AddRegister(size_t length, std::function<void(std::span<std::byte>)> read,
                       std::function<void(std::span<const std::byte>)> write);
    size_t AddIntegerRegister(GetInt get, SetInt set);
    const Register& RegisterAt(uint64_t address) const;
    void ReadRegister(const Register& reg, uint64_t address, std::span<std::byte> out) const;
    void ReadDescription(uint64_t address, std::span<std::byte> out) const;
    std::string Describe() const;
    void DescribeFeature(std::string& xml, const Feature& feature) const;
    void DescribeRegister(std::string& xml, const Feature& feature, std::string_view element, const std::string& name,
                          size_t reg) const;

    std::string port_, module_, category_, selector_;
    std::vector<Register> registers_;  ///< ascending
    std::vector<Feature> features_;
    std::string description_;
};

}  // namespace kivsim
