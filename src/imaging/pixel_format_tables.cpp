#include "imaging/pixel_format_tables.h"

#include <algorithm>

#include "imaging/pixel_format_catalogue.h"
#include "imaging/pixel_format_words.h"

namespace kiv {

namespace {

constexpr std::string_view entry_prefix = "EnumEntry_PixelFormat_";

std::string_view without_prefix(std::string_view name) {
    auto underscore = name.rfind('_');
    if (underscore == std::string_view::npos || underscore + 1 == name.size()) return name;
    return name.substr(0, underscore + 1) == entry_prefix ? name.substr(underscore + 1) : name;
}

template <class Table, class Read>
K_STATUS_CODES look_up(const Table& table, std::uint64_t code, Read read) {
    auto found = table.lower_bound(code);
    if (found == table.end()) return K_ST_INVALID_HANDLE;
    if (found->first != code) return K_ST_NO_DATA;
    read(found->second);
    return K_ST_SUCCESS;
}

}  // namespace

PixelFormatTranslation translate_pixel_format(std::uint64_t remote_code, std::string_view entry_name) {
    PixelFormatTranslation entry{remote_code, remote_code, {}, std::string(without_prefix(entry_name))};
    if (auto code = catalogue_code(entry.remote_name)) {
        entry.local_code = *code;
        entry.local_name = entry.remote_name;
    } else if (auto by_words = code_by_words(entry.remote_name)) {
        entry.local_code = *by_words;
        entry.local_name = catalogue_name(*by_words & ~recognised_by_words);
    }
    return entry;
}

void PixelFormatTables::Insert(PixelFormatTranslation entry) {
    std::lock_guard guard(lock_);
    by_remote_.insert_or_assign(entry.remote_code, std::move(entry));
    by_local_.clear();
    for (auto& [remote, each] : by_remote_) by_local_.try_emplace(each.local_code, each);
    filled_ = true;
}

bool PixelFormatTables::Filled() const {
    std::lock_guard guard(lock_);
    return filled_;
}

void PixelFormatTables::MarkFilled() {
    std::lock_guard guard(lock_);
    filled_ = true;
}

K_STATUS_CODES PixelFormatTables::LocalCode(std::uint64_t code, std::uint64_t& local) const {
    std::lock_guard guard(lock_);
    auto read = [&](const PixelFormatTranslation& entry) { local = entry.local_code; };
    if (look_up(by_remote_, code, read) == K_ST_SUCCESS) return K_ST_SUCCESS;
    return look_up(by_local_, code, read) == K_ST_SUCCESS ? K_ST_SUCCESS : K_ST_INVALID_HANDLE;
}

K_STATUS_CODES PixelFormatTables::LocalName(std::uint64_t remote, std::string& name) const {
    std::lock_guard guard(lock_);
    return look_up(by_remote_, remote, [&](const PixelFormatTranslation& entry) { name = entry.local_name; });
}

K_STATUS_CODES PixelFormatTables::RemoteCode(std::uint64_t local, std::uint64_t& remote) const {
    std::lock_guard guard(lock_);
    return look_up(by_local_, local, [&](const PixelFormatTranslation& entry) { remote = entry.remote_code; });
}

K_STATUS_CODES PixelFormatTables::RemoteName(std::uint64_t code, std::string& name) const {
    std::lock_guard guard(lock_);
    auto read = [&](const PixelFormatTranslation& entry) { name = entry.remote_name; };
    if (look_up(by_remote_, code, read) == K_ST_SUCCESS) return K_ST_SUCCESS;
    return look_up(by_local_, code, read);
}

K_STATUS_CODES PixelFormatTables::RemoteCodeOf(std::string_view remote_name, std::uint64_t& remote) const {
    std::lock_guard guard(lock_);
    auto found = std::ranges::find_if(by_remote_, [&](auto& each) { return each.second.remote_name == remote_name; });
    if (found == by_remote_.end()) return K_ST_NO_DATA;
    remote = found->first;
    return K_ST_SUCCESS;
}

K_STATUS_CODES PixelFormatTables::CompatibleCode(std::uint64_t code, std::uint64_t& compatible) const {
    std::lock_guard guard(lock_);
    std::uint64_t plain = 0;
    auto read = [&](const PixelFormatTranslation& entry) {
        // A maker's own code may carry the custom bit, too: only what was recognised has a catalogue code below it.
        plain = entry.local_name.empty() ? 0 : entry.local_code & ~std::uint64_t{recognised_by_words};
    };
    if (look_up(by_remote_, code, read) != K_ST_SUCCESS && look_up(by_local_, code, read) != K_ST_SUCCESS)
        return K_ST_INVALID_HANDLE;
    if (plain == 0) return K_ST_NO_DATA;
    compatible = plain;
    return K_ST_SUCCESS;
}

}  // namespace kiv
