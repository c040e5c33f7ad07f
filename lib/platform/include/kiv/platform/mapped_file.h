/// Memory that processes share through a file, and a lock that dies with its process.
///
/// Failures are FileErrors (paths.h). Paths are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kiv::platform {

/// A file mapped for reading and writing; every process that maps it sees the same bytes. The size never changes.
class MappedFile {
public:
    /// Maps the file, made with `size` zero bytes when it does not exist or is empty. A file of another size is an error.
    static MappedFile OpenOrCreate(std::string_view path, std::size_t size);
    /// Maps an existing file in its whole size; an empty one is an error.
    static MappedFile Open(std::string_view path);

    ~MappedFile();
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    /// Page aligned. Atomic types that are lock free work across processes.
    std::byte* Data() const noexcept { return data_; }
    std::size_t Size() const noexcept { return size_; }

private:
    MappedFile(std::byte* data, std::size_t size) noexcept : data_(data), size_(size) {}
    std::byte* data_ = nullptr;
    std::size_t size_ = 0;
};

/// An exclusive lock on a file, between processes and within one. The system gives it back when its process ends, however.
class FileLock {
public:
    /// Takes the lock without waiting; nothing when somebody else holds it. The file is made when it does not exist and is not
    /// removed afterwards: removing a lock file lets two owners in.
    static std::optional<FileLock> TryAcquire(std::string_view path);

    ~FileLock();
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    explicit FileLock(std::intptr_t file) noexcept : file_(file) {}
    std::intptr_t file_;
};

}  // namespace kiv::platform
