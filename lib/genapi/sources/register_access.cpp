#include "sources/register_access.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <string>

#include "runtime/value_text.h"

namespace kiv::genapi {

using GenICam::OutOfRangeException;
using GenICam::RuntimeException;

uint64_t integer_of(std::span<const uint8_t> bytes, bool bigEndian) {
    uint64_t value = 0;
    for (size_t i = 0; i < bytes.size(); ++i) value = value << 8 | bytes[bigEndian ? i : bytes.size() - 1 - i];
    return value;
}

void put_integer(uint64_t value, std::span<uint8_t> bytes, bool bigEndian) {
    for (size_t i = 0; i < bytes.size(); ++i, value >>= 8)
        bytes[bigEndian ? bytes.size() - 1 - i : i] = static_cast<uint8_t>(value);
}

// ---- integers ----

/// Bit numbers count from the least significant bit in a little endian register and from the most significant one in a big
/// endian one. Which of the two given numbers is the larger does not matter.
IntegerField::Field IntegerField::Place(Node& self) const {
    const auto length = access_.location->Length();
    if (length < 1 || length > 8)
        throw RuntimeException("An integer cannot have " + std::to_string(length) + " bytes.", self.Place());
    const auto highest = length * 8 - 1;
    if (bits_.IsWhole()) return {0, static_cast<unsigned>(highest + 1)};
    const auto [low, high] = std::minmax(bits_.lsb, bits_.msb);
    if (high > highest)
        throw RuntimeException("A register of " + std::to_string(length) + " bytes has no bit " + std::to_string(high) + ".",
                               self.Place());
    const auto shift = access_.bigEndian ? highest - high : low;
    return {static_cast<unsigned>(shift), static_cast<unsigned>(high - low + 1)};
}

Range<int64_t> IntegerField::LimitsOf(Field field) const {
    Range<int64_t> range;
    const auto positive = static_cast<int64_t>(field.Mask() >> 1);
    range.min = isSigned_ ? -positive - 1 : 0;
    range.max = isSigned_ || field.width == 64 ? positive : static_cast<int64_t>(field.Mask());
    return range;
}

Range<int64_t> IntegerField::Limits(Node& self) { return LimitsOf(Place(self)); }

int64_t IntegerField::Read(Node& self) {
    const auto field = Place(self);
    const auto value = integer_of(access_.Read(), access_.bigEndian) >> field.shift & field.Mask();
    const bool negative = isSigned_ && (value >> (field.width - 1) & 1);
    return static_cast<int64_t>(negative ? value | ~field.Mask() : value);
}

void IntegerField::Write(Node& self, int64_t value, bool) {
    const auto field = Place(self);
    const auto range = LimitsOf(field);
    if (value < range.min || value > range.max)
        throw OutOfRangeException(value > range.max ? above_text(value, range.max) + " Max is what the register can hold."
                                                    : below_text(value, range.min) + " Min is what the register can hold.",
                                  self.Place());
    std::array<uint8_t, 8> buffer{};
    const auto length = static_cast<size_t>(access_.location->Length());
    const auto bytes = std::span(buffer).first(length);
    const auto raw = static_cast<uint64_t>(value);
    if (field.width == length * 8) {
        put_integer(raw, bytes, access_.bigEndian);
    } else {
        const auto before = integer_of(access_.ReadForWriting(), access_.bigEndian);
        const auto mask = field.Mask() << field.shift;
        put_integer((before & ~mask) | (raw << field.shift & mask), bytes, access_.bigEndian);
    }
    access_.Write(bytes);
}

// ---- floats ----

bool FloatRegister::IsDouble(Node& self) const {
    const auto length = access_.location->Length();
    if (length != 4 && length != 8)
        throw RuntimeException("A floating point number cannot have " + std::to_string(length) + " bytes.", self.Place());
    return length == 8;
}

double FloatRegister::Read(Node& self) {
    const bool isDouble = IsDouble(self);
    const auto raw = integer_of(access_.Read(), access_.bigEndian);
    return isDouble ? std::bit_cast<double>(raw) : static_cast<double>(std::bit_cast<float>(static_cast<uint32_t>(raw)));
}

void FloatRegister::Write(Node& self, double value, bool) {
    const bool isDouble = IsDouble(self);
    if (!isDouble && std::isfinite(value) && std::fabs(value) > FLT_MAX)
        throw OutOfRangeException(value > 0 ? above_text(value, double{FLT_MAX}) : below_text(value, double{-FLT_MAX}),
                                  self.Place());
    std::array<uint8_t, 8> buffer{};
    const auto bytes = std::span(buffer).first(isDouble ? 8 : 4);
    put_integer(isDouble ? std::bit_cast<uint64_t>(value) : std::bit_cast<uint32_t>(static_cast<float>(value)), bytes,
                access_.bigEndian);
    access_.Write(bytes);
}

Range<double> FloatRegister::Limits(Node& self) {
    Range<double> range;
    if (!IsDouble(self)) range.min = -FLT_MAX, range.max = FLT_MAX;
    return range;
}

}  // namespace kiv::genapi
