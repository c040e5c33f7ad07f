#include "kiv/platform/mapped_file.h"

#include <utility>

#include "kiv/platform/paths.h"
#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {
namespace {

[[noreturn]] void fail(const char* what, std::string_view path) {
    throw FileError(std::string("cannot ") + what + " '" + std::string(path) + "': " + error_text(GetLastError()));
}

OwnedHandle open_shared(std::string_view path, DWORD how, const char* what) {
    OwnedHandle file = owned_file(CreateFileW(wide_from_utf8(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) fail(what, path);
    return file;
}

std::size_t size_of(const OwnedHandle& file, std::string_view path) {
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.get(), &size)) fail("look at", path);
    return static_cast<std::size_t>(size.QuadPart);
}

/// The view keeps the file mapped; the handles of file and mapping are not needed any more.
std::byte* map(const OwnedHandle& file, std::size_t size, std::string_view path) {
    if (size == 0) throw FileError("cannot map '" + std::string(path) + "': it is empty");
    const OwnedHandle mapping(CreateFileMappingW(file.get(), nullptr, PAGE_READWRITE, static_cast<DWORD>(size >> 32),
                                                 static_cast<DWORD>(size & 0xFFFFFFFFu), nullptr));
    void* data = mapping ? MapViewOfFile(mapping.get(), FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, size) : nullptr;
    if (!data) fail("map", path);
    return static_cast<std::byte*>(data);
}

}  // namespace

MappedFile MappedFile::OpenOrCreate(std::string_view path, std::size_t size) {
    const OwnedHandle file = open_shared(path, OPEN_ALWAYS, "make");
    const std::size_t present = size_of(file, path);
    if (present != 0 && present != size)
        throw FileError("'" + std::string(path) + "' has " + std::to_string(present) + " bytes, not " + std::to_string(size));
    return MappedFile(map(file, size, path), size);  // the system makes the file as long as the mapping
}

MappedFile MappedFile::Open(std::string_view path) {
    const OwnedHandle file = open_shared(path, OPEN_EXISTING, "open");
    const std::size_t size = size_of(file, path);
    return MappedFile(map(file, size, path), size);
}

MappedFile::~MappedFile() {
    if (data_) UnmapViewOfFile(data_);
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
}

std::optional<FileLock> FileLock::TryAcquire(std::string_view path) {
    OwnedHandle file = open_shared(path, OPEN_ALWAYS, "lock");
    OVERLAPPED whole = {};
    if (!LockFileEx(file.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, MAXDWORD, MAXDWORD, &whole)) {
        if (GetLastError() == ERROR_LOCK_VIOLATION || GetLastError() == ERROR_IO_PENDING) return std::nullopt;
        fail("lock", path);
    }
    return FileLock(reinterpret_cast<std::intptr_t>(file.release()));
}

FileLock::~FileLock() {
    if (file_ != -1) CloseHandle(reinterpret_cast<HANDLE>(file_));
}

FileLock::FileLock(FileLock&& other) noexcept : file_(std::exchange(other.file_, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    std::swap(file_, other.file_);
    return *this;
}

}  // namespace kiv::platform
