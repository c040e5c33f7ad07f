/// One open file descriptor and its owner.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kiv::platform {

class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    ~FileDescriptor() {
        if (number_ < 0) return;
        const int kept = errno;  // closing must not hide why somebody gives up
        ::close(number_);
        errno = kept;
    }
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int Get() const noexcept { return number_; }
    int Release() noexcept { return std::exchange(number_, -1); }
    explicit operator bool() const noexcept { return number_ >= 0; }

private:
    int number_ = -1;
};

}  // namespace kiv::platform
