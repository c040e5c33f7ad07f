/// The vocabulary of device descriptions: the elements that are nodes, and the elements that stand inside nodes. Each list
/// is kept once; the enumerations, the texts and the look-up come from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace kiv::genapi {

// clang-format off: one element a line, which the formatter does not keep
#define KIV_GENAPI_ELEMENTS(X) \
    X(Node)                    \
    X(Category)                \
    X(Integer)                 \
    X(IntReg)                  \
    X(MaskedIntReg)            \
    X(StructReg)               \
    X(StructEntry)             \
    X(IntSwissKnife)           \
    X(IntConverter)            \
    X(Boolean)                 \
    X(Command)                 \
    X(Enumeration)             \
    X(EnumEntry)               \
    X(Float)                   \
    X(FloatReg)                \
    X(SwissKnife)              \
    X(Converter)               \
    X(String)                  \
    X(StringReg)               \
    X(Register)                \
    X(Port)                    \
    X(ConfRom)                 \
    X(TextDesc)                \
    X(IntKey)                  \
    X(AdvFeatureLock)          \
    X(SmartFeature)            \
    X(Group)
// clang-format on

enum class Element : uint8_t {
#define X(name) name,
    KIV_GENAPI_ELEMENTS(X)
#undef X
};

/// What the text of a property is, as far as the reader and the linker care.
enum class TagKind : uint8_t {
    Plain,
    Reference,  ///< the name of another node
};

// clang-format off
#define KIV_GENAPI_TAGS(X)                                                                                                  \
    X(ToolTip, Plain) X(Description, Plain) X(DisplayName, Plain) X(Visibility, Plain) X(DocuURL, Plain)                    \
    X(IsDeprecated, Plain) X(EventID, Plain) X(ImposedAccessMode, Plain) X(Streamable, Plain) X(Value, Plain)               \
    X(Min, Plain) X(Max, Plain) X(Inc, Plain) X(Unit, Plain) X(Representation, Plain) X(ValidValueSet, Plain)               \
    X(ValidValuesSet, Plain) X(Address, Plain) X(Length, Plain) X(AccessMode, Plain) X(Cachable, Plain)                     \
    X(PollingTime, Plain) X(Sign, Plain) X(Endianess, Plain) X(Bit, Plain) X(LSB, Plain) X(MSB, Plain)                      \
    X(Constant, Plain) X(Expression, Plain) X(Formula, Plain) X(FormulaTo, Plain) X(FormulaFrom, Plain) X(Slope, Plain)     \
    X(IsLinear, Plain) X(OnValue, Plain) X(OffValue, Plain) X(CommandValue, Plain) X(NumericValue, Plain)                   \
    X(Symbolic, Plain) X(IsSelfClearing, Plain) X(ValueIndexed, Plain) X(ValueDefault, Plain) X(DisplayNotation, Plain)     \
    X(DisplayPrecision, Plain) X(ChunkID, Plain) X(SwapEndianess, Plain) X(CacheChunkData, Plain) X(FeatureID, Plain)       \
    X(Timeout, Plain) X(Key, Plain)                                                                                         \
    X(pIsImplemented, Reference) X(pIsAvailable, Reference) X(pIsLocked, Reference) X(pBlockPolling, Reference)             \
    X(pError, Reference) X(pAlias, Reference) X(pCastAlias, Reference) X(pInvalidator, Reference) X(pFeature, Reference)    \
    X(pValue, Reference) X(pValueCopy, Reference) X(pMin, Reference) X(pMax, Reference) X(pInc, Reference)                  \
    X(pIndex, Reference) X(pValueIndexed, Reference) X(pValueDefault, Reference) X(pSelected, Reference)                    \
    X(pAddress, Reference) X(pLength, Reference) X(pPort, Reference) X(pVariable, Reference) X(pCommandValue, Reference)    \
    X(pChunkID, Reference) X(pEnumEntry, Reference) X(p1212Parser, Reference)                                               \
    /* A formula that stands inside a register as a term of its address; its text is the name of the node made of it. */    \
    X(IntSwissKnife, Reference)
// clang-format on

enum class Tag : uint8_t {
#define X(name, kind) name,
    KIV_GENAPI_TAGS(X)
#undef X
};

/// Some of the tags.
class TagSet {
public:
    constexpr TagSet() = default;
    constexpr TagSet(std::initializer_list<Tag> tags) {
        for (const auto tag : tags) Add(tag);
    }
    constexpr void Add(Tag tag) { bits_[Word(tag)] |= Bit(tag); }
    constexpr bool Has(Tag tag) const { return bits_[Word(tag)] & Bit(tag); }
    constexpr bool HasAny(const TagSet& others) const { return (bits_[0] & others.bits_[0]) | (bits_[1] & others.bits_[1]); }

private:
    static constexpr size_t Word(Tag tag) { return static_cast<size_t>(tag) / 64; }
    static constexpr uint64_t Bit(Tag tag) { return uint64_t{1} << static_cast<size_t>(tag) % 64; }
    static_assert(static_cast<size_t>(Tag::IntSwissKnife) < 128);
    uint64_t bits_[2] = {};
};

std::optional<Element> find_element(std::string_view name) noexcept;
std::optional<Tag> find_tag(std::string_view name) noexcept;
std::string_view name_of(Element element) noexcept;
std::string_view name_of(Tag tag) noexcept;
bool is_reference(Tag tag) noexcept;

}  // namespace kiv::genapi
