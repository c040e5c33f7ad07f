#include "record/elements.h"

#include <array>

namespace kiv::genapi {

namespace {

constexpr std::string_view elementNames[] = {
#define X(name) #name,
    KIV_GENAPI_ELEMENTS(X)
#undef X
};
constexpr std::string_view tagNames[] = {
#define X(name, kind) #name,
    KIV_GENAPI_TAGS(X)
#undef X
};
constexpr TagKind tagKinds[] = {
#define X(name, kind) TagKind::kind,
    KIV_GENAPI_TAGS(X)
#undef X
};

/// Names to numbers without comparing more than one or two texts. A description has tens of thousands of elements.
template <size_t Count>
class WordTable {
public:
    constexpr explicit WordTable(const std::string_view (&words)[Count]) : words_(words) {
        for (size_t i = 0; i < Count; ++i) {
            auto slot = Hash(words[i]);
            while (slots_[slot] != 0) slot = (slot + 1) % size;
            slots_[slot] = static_cast<uint8_t>(i + 1);
        }
    }

    constexpr int Find(std::string_view word) const noexcept {
        if (word.empty()) return -1;
        for (auto slot = Hash(word); slots_[slot] != 0; slot = (slot + 1) % size)
            if (words_[slots_[slot] - 1] == word) return slots_[slot] - 1;
        return -1;
    }

private:
    static constexpr size_t size = 512;
    static_assert(Count < 255);

    static constexpr size_t Hash(std::string_view word) {
        const auto at = [&](size_t i) { return static_cast<size_t>(static_cast<unsigned char>(word[i])); };
        return (word.size() * 61 + at(0) * 7 + at(word.size() / 2) * 31 + at(word.size() - 1) * 131) % size;
    }

    const std::string_view* words_;
    std::array<uint8_t, size> slots_{};
};

constexpr WordTable elementTable{elementNames};
constexpr WordTable tagTable{tagNames};

}  // namespace

std::optional<Element> find_element(std::string_view name) noexcept {
    const int found = elementTable.Find(name);
    return found < 0 ? std::nullopt : std::optional(static_cast<Element>(found));
}

std::optional<Tag> find_tag(std::string_view name) noexcept {
    const int found = tagTable.Find(name);
    return found < 0 ? std::nullopt : std::optional(static_cast<Tag>(found));
}

std::string_view name_of(Element element) noexcept { return elementNames[static_cast<size_t>(element)]; }
std::string_view name_of(Tag tag) noexcept { return tagNames[static_cast<size_t>(tag)]; }
bool is_reference(Tag tag) noexcept { return tagKinds[static_cast<size_t>(tag)] == TagKind::Reference; }

}  // namespace kiv::genapi
