#include "kiv/platform/file_version.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <charconv>
#include <string>

#include "posix/file_descriptor.h"

namespace kiv::platform {
namespace {

// Also in product_version.c.in, followed by the number.
constexpr std::string_view tag = "@(#)product version ";

/// The bytes of a file, as long as this lives. Empty when there is nothing to read.
class MappedForReading {
public:
    explicit MappedForReading(const std::string& path) {
        const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        struct stat status = {};
        if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size == 0) return;
        size_ = static_cast<std::size_t>(status.st_size);
        void* data = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file.Get(), 0);
        if (data != MAP_FAILED) data_ = data;
    }
    ~MappedForReading() {
        if (data_) munmap(data_, size_);
    }
    MappedForReading(const MappedForReading&) = delete;
    MappedForReading& operator=(const MappedForReading&) = delete;

    std::string_view Bytes() const {
        return data_ ? std::string_view(static_cast<const char*>(data_), size_) : std::string_view();
    }

private:
    void* data_ = nullptr;
    std::size_t size_ = 0;
};

/// "1.2.3" and then a zero byte.
std::optional<ProductVersion> parse_version(std::string_view text) {
    ProductVersion version;
    const char* next = text.data();
    const char* const end = text.data() + text.size();
    unsigned* const numbers[] = {&version.major_number, &version.minor_number, &version.build_number};
    for (unsigned* number : numbers) {
        const auto [rest, error] = std::from_chars(next, end, *number);
        const char separator = number == numbers[2] ? '\0' : '.';
        if (error != std::errc() || rest == end || *rest != separator) return std::nullopt;
        next = rest + 1;
    }
    return version;
}

}  // namespace

std::optional<ProductVersion> product_version_of(std::string_view path) {
    const MappedForReading file{std::string(path)};
    std::string_view bytes = file.Bytes();
    // A library that contains this very function contains the tag twice; only one of them has a number behind it.
    for (std::size_t found; (found = bytes.find(tag)) != bytes.npos;) {
        bytes.remove_prefix(found + tag.size());
        if (auto version = parse_version(bytes)) return version;
    }
    return std::nullopt;
}

}  // namespace kiv::platform
