#include "feature_list.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "failure.h"

namespace kivsim {
namespace {

constexpr uint64_t first_register = 0x1000;
constexpr uint64_t description_address = 0x100000;

std::string hexadecimal(uint64_t value) {
    char digits[16];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr);
}

[[noreturn]] void fail_address(uint64_t address) {
    fail(GenTL::GC_ERR_INVALID_ADDRESS, "No register at 0x" + hexadecimal(address));
}

}  // namespace

FeatureList::FeatureList(std::string port, std::string module) : port_(std::move(port)), module_(std::move(module)) {}

size_t FeatureList::AddRegister(size_t length, std::function<void(std::span<std::byte>)> read,
                                std::function<void(std::span<const std::byte>)> write) {
    const uint64_t address =
        registers_.empty() ? first_register : registers_.back().address + ((registers_.back().length + 7) & ~7u);
    registers_.push_back({address, length, std::move(read), std::move(write)});
    return registers_.size() - 1;
}

size_t FeatureList::AddIntegerRegister(GetInt get, SetInt set) {
    auto read = [get = std::move(get)](std::span<std::byte> out) {
        const int64_t value = get();
        std::memcpy(out.data(), &value, sizeof value);
    };
    if (!set) return AddRegister(sizeof(int64_t), std::move(read), {});
    return AddRegister(sizeof(int64_t), std::move(read), [set = std::move(set)](std::span<const std::byte> in) {
        int64_t value;
        std::memcpy(&value, in.data(), sizeof value);
        set(value);
    });
}

FeatureList::Feature& FeatureList::Add(Kind kind, std::string name, std::string tool_tip, size_t reg) {
    Feature feature;
    feature.name = std::move(name);
    feature.tool_tip = std::move(tool_tip);
    feature.kind = kind;
    feature.category = category_;
    feature.selector = selector_;
    feature.reg = reg;
    return features_.emplace_back(std::move(feature));
}

void FeatureList::Text(std::string name, std::string tool_tip, size_t length, GetText get, SetText set) {
    auto read = [get = std::move(get)](std::span<std::byte> out) {
        const std::string text = get();
        std::memcpy(out.data(), text.data(), std::min(text.size(), out.size() - 1));
    };
    std::function<void(std::span<const std::byte>)> write;
    if (set)
        write = [set = std::move(set)](std::span<const std::byte> in) {
            const auto* text = reinterpret_cast<const char*>(in.data());
            set({text, strnlen(text, in.size())});
        };
    Add(Kind::Text, std::move(name), std::move(tool_tip), AddRegister(length, std::move(read), std::move(write)));
}

void FeatureList::Integer(std::string name, std::string tool_tip, GetInt get, SetInt set) {
    Add(Kind::Integer, std::move(name), std::move(tool_tip), AddIntegerRegister(std::move(get), std::move(set)));
}

void FeatureList::Event(std::string name, std::string tool_tip, uint64_t event_id) {
    const auto number = [event_id] { return static_cast<int64_t>(event_id); };
    Add(Kind::Integer, std::move(name), std::move(tool_tip), AddIntegerRegister(number, {})).event_id = event_id;
}

void FeatureList::Boolean(std::string name, std::string tool_tip, GetInt get) {
    Add(Kind::Boolean, std::move(name), std::move(tool_tip), AddIntegerRegister(std::move(get), {}));
}

void FeatureList::Enumeration(std::string name, std::string tool_tip, std::vector<std::string> entries, GetInt get, SetInt set) {
    if (set)
        set = [set = std::move(set), count = static_cast<int64_t>(entries.size()), name](int64_t value) {
            if (value < 0 || value >= count) fail(GenTL::GC_ERR_INVALID_VALUE, name + " has no entry " + std::to_string(value));
            set(value);
        };
    const size_t reg = AddIntegerRegister(std::move(get), std::move(set));
    Add(Kind::Enumeration, std::move(name), std::move(tool_tip), reg).entries = std::move(entries);
}

void FeatureList::Command(std::string name, std::string tool_tip, std::function<void()> execute) {
    // Reads as 0: the command is done when the write returns.
    const size_t reg = AddIntegerRegister([] { return int64_t{0}; },
                                          [execute = std::move(execute)](int64_t value) {
                                              if (value == 1) execute();
                                          });
    Add(Kind::Command, std::move(name), std::move(tool_tip), reg);
}

void FeatureList::Index(std::string name, std::string tool_tip, GetInt get, SetInt set, GetInt count) {
    auto checked = [set = std::move(set), count, name](int64_t value) {
        if (value < 0 || value >= count())
            fail(GenTL::GC_ERR_INVALID_VALUE, name + " cannot be " + std::to_string(value) + " of " + std::to_string(count()));
        set(value);
    };
    const size_t reg = AddIntegerRegister(std::move(get), std::move(checked));
    const size_t count_reg = AddIntegerRegister(count, {});
    AddIntegerRegister([count] { return std::max<int64_t>(count() - 1, 0); }, {});  // the maximum follows the count
    Add(Kind::Integer, std::move(name), std::move(tool_tip), reg).count_reg = count_reg;
}

void FeatureList::Finish() { description_ = Describe(); }

std::string FeatureList::Url() const {
    return "Local:KivSim_" + module_ + ".xml;" + hexadecimal(description_address) + ";" + hexadecimal(description_.size());
}

const FeatureList::Register& FeatureList::RegisterAt(uint64_t address) const {
    const auto next = std::upper_bound(registers_.begin(), registers_.end(), address,
                                       [](uint64_t wanted, const Register& reg) { return wanted < reg.address; });
    if (next == registers_.begin()) fail_address(address);
    const Register& reg = *std::prev(next);
    if (address - reg.address >= reg.length) fail_address(address);
    return reg;
}

void FeatureList::ReadRegister(const Register& reg, uint64_t address, std::span<std::byte> out) const {
    std::vector<std::byte> value(reg.length);
    reg.read(value);
    std::memcpy(out.data(), value.data() + (address - reg.address), out.size());
}

void FeatureList::ReadDescription(uint64_t address, std::span<std::byte> out) const {
    const uint64_t offset = address - description_address;
    if (offset > description_.size() || out.size() > description_.size() - offset) fail_address(address + out.size() - 1);
    std::memcpy(out.data(), description_.data() + offset, out.size());
}

void FeatureList::Read(uint64_t address, std::span<std::byte> out) const {
    if (address >= description_address) return ReadDescription(address, out);
    if (out.size() > description_address) fail_address(description_address);
    std::vector<std::byte> whole(out.size());  // nothing reaches the caller when a later register fails
    for (size_t done = 0; done < out.size();) {
        const Register& reg = RegisterAt(address + done);
        const size_t piece = std::min<size_t>(out.size() - done, reg.address + reg.length - (address + done));
        ReadRegister(reg, address + done, std::span(whole).subspan(done, piece));
        done += piece;
    }
    std::memcpy(out.data(), whole.data(), out.size());
}

void FeatureList::Write(uint64_t address, std::span<const std::byte> in) {
    if (address >= description_address) fail(GenTL::GC_ERR_ACCESS_DENIED, "The description cannot be written");
    const Register& reg = RegisterAt(address);
    // A write over several registers could stop half-way; nothing in these node maps needs one.
    if (in.size() > reg.address + reg.length - address) fail_address(reg.address + reg.length);
    if (!reg.write) fail(GenTL::GC_ERR_ACCESS_DENIED, "The register at 0x" + hexadecimal(address) + " cannot be written");
    std::vector<std::byte> value(reg.length);
    reg.read(value);
    std::memcpy(value.data() + (address - reg.address), in.data(), in.size());
    reg.write(value);
}

}  // namespace kivsim
