#include "kiv/platform/paths.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "kiv/platform/environment.h"
#include "posix/file_descriptor.h"

namespace fs = std::filesystem;

namespace kiv::platform {
namespace {

[[noreturn]] void fail(std::string_view what, std::string_view path, int reason) {
    throw FileError("cannot " + std::string(what) + " '" + std::string(path) + "': " + std::generic_category().message(reason));
}

/// A folder that an environment variable names; only absolute ones count.
std::string folder_from_environment(const char* variable) {
    const auto folder = get_environment(variable);
    return folder && folder->starts_with('/') ? *folder : std::string();
}

bool is_private_folder(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           (status.st_mode & 077) == 0;
}

void write_all(int file, std::span<const std::byte> bytes, std::string_view path) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) fail("write", path, errno);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

/// A file that is removed again unless it got its final name.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& folder) {
        static std::atomic<unsigned> made_so_far{0};
        name_ = join_path(folder, ".kiv-" + std::to_string(getpid()) + "-" + std::to_string(made_so_far.fetch_add(1)) + ".tmp");
        file_ = FileDescriptor(open(name_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666));
    }
    ~TemporaryFile() {
        if (file_) unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    explicit operator bool() const noexcept { return static_cast<bool>(file_); }
    int Get() const noexcept { return file_.Get(); }
    bool MoveTo(const std::string& path) noexcept {
        if (rename(name_.c_str(), path.c_str()) != 0) return false;
        file_ = FileDescriptor();
        return true;
    }

private:
    std::string name_;
    FileDescriptor file_;
};

}  // namespace

std::string module_file(const void* address) {
    Dl_info info = {};
    void* extra = nullptr;
    if (dladdr1(address, &info, &extra, RTLD_DL_LINKMAP) == 0 || !extra) return {};
    const char* name = static_cast<const link_map*>(extra)->l_name;
    // The program itself has no name in the loader's list.
    const fs::path file = name && *name ? fs::path(name) : fs::path("/proc/self/exe");
    std::error_code error;
    const fs::path resolved = fs::canonical(file, error);
    return error ? std::string() : utf8_from_path(resolved);
}

std::string user_cache_root() {
    if (std::string folder = folder_from_environment("XDG_CACHE_HOME"); !folder.empty()) return folder;
    if (std::string home = folder_from_environment("HOME"); !home.empty()) return join_path(home, ".cache");
    return temp_folder();
}

std::string user_runtime_folder() {
    const std::string session = folder_from_environment("XDG_RUNTIME_DIR");
    const std::string folder = !session.empty() && is_private_folder(session)
                                   ? join_path(session, "kiv")
                                   : join_path(temp_folder(), "kiv-" + std::to_string(geteuid()));
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) fail("make the folder", folder, errno);
    // In a folder that all may write to, somebody else may have been first.
    if (!is_private_folder(folder)) throw FileError("'" + folder + "' is not a folder of this user alone");
    return folder;
}

void write_file_atomically(std::string_view path, std::span<const std::byte> bytes) {
    const std::string target(path);
    TemporaryFile temporary(folder_of(path));
    if (!temporary) fail("write", path, errno);
    write_all(temporary.Get(), bytes, path);
    if (!temporary.MoveTo(target)) fail("write", path, errno);
}

std::string read_file(std::string_view path, std::uint64_t limit) {
    const std::string name(path);
    // Without waiting: a pipe that nobody writes to must not stop us.
    const FileDescriptor file(open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file) fail("read", path, errno);
    struct stat status = {};
    if (fstat(file.Get(), &status) != 0) fail("read", path, errno);
    if (!S_ISREG(status.st_mode)) throw FileError("cannot read '" + name + "': it is no file");
    std::string content;
    std::array<char, 65536> chunk;
    for (;;) {
        const ssize_t got = read(file.Get(), chunk.data(), chunk.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) fail("read", path, errno);
        if (got == 0) return content;
        content.append(chunk.data(), static_cast<std::size_t>(got));
        if (content.size() > limit) throw FileError("'" + name + "' has more than " + std::to_string(limit) + " bytes");
    }
}

}  // namespace kiv::platform
