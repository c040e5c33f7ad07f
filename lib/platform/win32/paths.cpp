#include "kiv/platform/paths.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <system_error>

#include "kiv/platform/environment.h"
#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {
namespace {

[[noreturn]] void fail(std::string_view what, std::string_view path) {
    throw FileError("cannot " + std::string(what) + " '" + std::string(path) + "': " + error_text(GetLastError()));
}

void write_all(HANDLE file, std::span<const std::byte> bytes, std::string_view path) {
    constexpr std::size_t largest_part = 1u << 30;  // the system counts in 32 bits
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), largest_part)), &written, nullptr))
            fail("write", path);
        bytes = bytes.subspan(written);
    }
}

/// A file cannot be replaced while somebody reads it, nor opened while it is being replaced: neither lasts long, so it is tried
/// again.
template <typename Attempt>
bool succeeds_soon(Attempt attempt) {
    constexpr int patience = 500;  // milliseconds
    for (int waited = 0;; ++waited) {
        if (attempt()) return true;
        const DWORD reason = GetLastError();
        if ((reason != ERROR_ACCESS_DENIED && reason != ERROR_SHARING_VIOLATION) || waited == patience) return false;
        Sleep(1);
    }
}

bool is_folder(const std::wstring& path) noexcept {
    const DWORD found = GetFileAttributesW(path.c_str());
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// A file that is removed again unless it got its final name.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& folder) {
        static std::atomic<unsigned> made_so_far{0};
        const std::string name =
            ".kiv-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(made_so_far.fetch_add(1)) + ".tmp";
        name_ = wide_from_utf8(join_path(folder, name));
        file_ = owned_file(CreateFileW(name_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        there_ = file_ != nullptr;
    }
    ~TemporaryFile() {
        file_.reset();
        if (there_) DeleteFileW(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    HANDLE Get() const noexcept { return file_.get(); }
    bool MoveTo(const std::wstring& path) noexcept {
        file_.reset();  // an open file cannot be renamed
        const auto move = [&] { return MoveFileExW(name_.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) != 0; };
        if (is_folder(path) ? !move() : !succeeds_soon(move)) return false;
        there_ = false;
        return true;
    }

private:
    std::wstring name_;
    OwnedHandle file_;
    bool there_ = false;
};

}  // namespace

std::string module_file(const void* address) {
    HMODULE module = nullptr;
    constexpr DWORD by_address = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!address || !GetModuleHandleExW(by_address, static_cast<LPCWSTR>(address), &module)) return {};
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
        if (length == 0) return {};
        if (length < name.size()) return utf8_from_wide(std::wstring_view(name).substr(0, length));
        name.resize(name.size() * 2);  // it was cut
    }
}

std::string user_cache_root() {
    const auto local = get_environment("LOCALAPPDATA");
    return local && path_from_utf8(*local).is_absolute() ? *local : temp_folder();
}

std::string user_runtime_folder() {
    const std::string folder = join_path(temp_folder(), "kiv");  // below a folder of this user alone
    create_folders(folder);
    return folder;
}

void write_file_atomically(std::string_view path, std::span<const std::byte> bytes) {
    TemporaryFile temporary(folder_of(path));
    if (!temporary.Get()) fail("write", path);
    write_all(temporary.Get(), bytes, path);
    if (!temporary.MoveTo(wide_from_utf8(path))) fail("write", path);
}

std::string read_file(std::string_view path, std::uint64_t limit) {
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::wstring name = wide_from_utf8(path);
    OwnedHandle file;
    const auto open = [&] {
        file = owned_file(CreateFileW(name.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        return file != nullptr;
    };
    if (is_folder(name)) throw FileError("cannot read '" + std::string(path) + "': it is no file");
    if (!succeeds_soon(open)) fail("read", path);
    if (GetFileType(file.get()) != FILE_TYPE_DISK) throw FileError("cannot read '" + std::string(path) + "': it is no file");
    std::string content;
    std::array<char, 65536> chunk;
    for (;;) {
        DWORD got = 0;
        if (!ReadFile(file.get(), chunk.data(), static_cast<DWORD>(chunk.size()), &got, nullptr)) fail("read", path);
        if (got == 0) return content;
        content.append(chunk.data(), got);
        if (content.size() > limit)
            throw FileError("'" + std::string(path) + "' has more than " + std::to_string(limit) + " bytes");
    }
}

}  // namespace kiv::platform
