/// A node's own view of a register location: how it may be used, how it is cached, in which order its bytes stand.
#pragma once

#include <cstdint>
#include <span>

#include "sources/location.h"
#include "sources/source.h"

namespace kiv::genapi {

struct RegisterAccess {
    Location* location = nullptr;  ///< null when the description is faulty; such a node is never readable or writable
    EAccessMode mode = GenApi::RO;
    ECachingMode caching = GenApi::WriteThrough;
    bool bigEndian = false;

    EAccessMode Mode() const { return location ? Combine(mode, location->Mode()) : GenApi::NA; }
    std::span<const uint8_t> Read() const { return location->Read(caching); }
    /// What a write of a part has to start from.
    std::span<const uint8_t> ReadForWriting() const { return IsReadable(mode) ? location->Read(caching) : location->Known(); }
    void Write(std::span<const uint8_t> bytes) const { location->Write(bytes, caching); }
    bool IsFresh() const { return location && caching != GenApi::NoCache && location->IsFresh(); }
};

/// The integer that the bytes are; at most eight of them.
uint64_t integer_of(std::span<const uint8_t> bytes, bool bigEndian);
void put_integer(uint64_t value, std::span<uint8_t> bytes, bool bigEndian);

/// A number in some or all bits of a register.
class IntegerField final : public Source<int64_t> {
public:
    /// Bits as the description numbers them; a whole register has none.
    struct Bits {
        int64_t lsb = -1, msb = -1;
        bool IsWhole() const { return lsb < 0; }
    };
    IntegerField(const RegisterAccess& access, Bits bits, bool isSigned) : access_(access), bits_(bits), isSigned_(isSigned) {}

    int64_t Read(Node& self) override;
    void Write(Node& self, int64_t value, bool verify) override;
    Range<int64_t> Limits(Node& self) override;
    EAccessMode Mode(Node&) override { return access_.Mode(); }
    bool IsFresh(Node&) override { return access_.IsFresh(); }

private:
    struct Field {
        unsigned shift, width;
        uint64_t Mask() const { return width == 64 ? ~uint64_t{0} : (uint64_t{1} << width) - 1; }
    };
    Field Place(Node& self) const;
    Range<int64_t> LimitsOf(Field field) const;

    const RegisterAccess& access_;
    Bits bits_;
    bool isSigned_;
};

/// An IEEE 754 number in a register of four or eight bytes.
class FloatRegister final : public Source<double> {
public:
    explicit FloatRegister(const RegisterAccess& access) : access_(access) {}

    double Read(Node& self) override;
    void Write(Node& self, double value, bool verify) override;
    Range<double> Limits(Node& self) override;
    EAccessMode Mode(Node&) override { return access_.Mode(); }
    bool IsFresh(Node&) override { return access_.IsFresh(); }

private:
    bool IsDouble(Node& self) const;
    const RegisterAccess& access_;
};

}  // namespace kiv::genapi
