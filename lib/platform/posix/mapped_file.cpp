#include "kiv/platform/mapped_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "kiv/platform/paths.h"
#include "posix/file_descriptor.h"

namespace kiv::platform {
namespace {

[[noreturn]] void fail(const char* what, std::string_view path, int reason) {
    throw FileError(std::string("cannot ") + what + " '" + std::string(path) + "': " + std::generic_category().message(reason));
}

FileDescriptor open_shared(std::string_view path, int how, const char* what) {
    FileDescriptor file(open(std::string(path).c_str(), how | O_RDWR | O_CLOEXEC, 0600));
    if (!file) fail(what, path, errno);
    return file;
}

std::size_t size_of(const FileDescriptor& file, std::string_view path) {
    struct stat status = {};
    if (fstat(file.Get(), &status) != 0) fail("look at", path, errno);
    return static_cast<std::size_t>(status.st_size);
}

std::byte* map(const FileDescriptor& file, std::size_t size, std::string_view path) {
    if (size == 0) throw FileError("cannot map '" + std::string(path) + "': it is empty");
    void* data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (data == MAP_FAILED) fail("map", path, errno);
    return static_cast<std::byte*>(data);
}

}  // namespace

MappedFile MappedFile::OpenOrCreate(std::string_view path, std::size_t size) {
    const FileDescriptor file = open_shared(path, O_CREAT, "make");
    const std::size_t present = size_of(file, path);
    if (present != 0 && present != size)
        throw FileError("'" + std::string(path) + "' has " + std::to_string(present) + " bytes, not " + std::to_string(size));
    // Reserved and not only promised: on a full disk this call fails instead of a later store ending the process.
    if (present == 0 && size != 0)
        if (const int reason = posix_fallocate(file.Get(), 0, static_cast<off_t>(size))) fail("make", path, reason);
    return MappedFile(map(file, size, path), size);
}

MappedFile MappedFile::Open(std::string_view path) {
    const FileDescriptor file = open_shared(path, 0, "open");
    const std::size_t size = size_of(file, path);
    return MappedFile(map(file, size, path), size);
}

MappedFile::~MappedFile() {
    if (data_) munmap(data_, size_);
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
}

std::optional<FileLock> FileLock::TryAcquire(std::string_view path) {
    FileDescriptor file = open_shared(path, O_CREAT, "lock");
    while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return std::nullopt;
        if (errno != EINTR) fail("lock", path, errno);
    }
    return FileLock(file.Release());
}

FileLock::~FileLock() {
    if (file_ >= 0) close(static_cast<int>(file_));
}

FileLock::FileLock(FileLock&& other) noexcept : file_(std::exchange(other.file_, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    std::swap(file_, other.file_);
    return *this;
}

}  // namespace kiv::platform
