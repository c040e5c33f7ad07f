#include "posix/named_pipe_event.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cctype>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include "kiv/platform/paths.h"

namespace kiv::platform {
namespace {

constexpr std::size_t longest_name = 180;
// The permission to execute, which a FIFO has no other use for, tells the openers the mode.
constexpr mode_t automatic_file = 0600, manual_file = 0700;

[[noreturn]] void fail(const char* what, const std::string& file) {
    throw std::system_error(errno, std::generic_category(), std::string(what) + " '" + file + "'");
}

std::string hash_of(const std::string& name) {  // FNV-1a: the same in every process, whatever built it
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    return std::to_string(hash);
}

/// The file of the name: letters and digits as they are, everything else by number.
std::string file_of(const std::string& name) {
    if (name.empty()) throw std::invalid_argument("an event needs a name that is not empty");
    if (name.size() > longest_name) throw std::invalid_argument("the name of an event is longer than 180 bytes");
    std::string encoded = "event-";
    for (const char c : name) {
        char number[4];
        std::snprintf(number, sizeof number, "%%%02X", static_cast<unsigned char>(c));
        encoded += std::isalnum(static_cast<unsigned char>(c)) ? std::string(1, c) : std::string(number);
    }
    if (encoded.size() > 250) encoded = "event-" + hash_of(name);  // many strange characters: no file name has that room
    return join_path(user_runtime_folder(), encoded);
}

bool lock_without_waiting(int pipe, int kind) { return flock(pipe, kind | LOCK_NB) == 0; }

void lock_shared(int pipe, const std::string& file) {
    while (flock(pipe, LOCK_SH) != 0)
        if (errno != EINTR) fail("cannot lock the event", file);
}

enum class Found { held, gone };

/// Joins the holders of the open pipe. Gone: it was left behind by a dead process, or its last holder removed it meanwhile.
Found join_holders(int pipe, const std::string& file) {
    if (lock_without_waiting(pipe, LOCK_EX)) {
        struct stat at_name = {}, opened = {};
        // Only our own pipe may be removed: the name may stand for a new one by now.
        if (fstat(pipe, &opened) == 0 && stat(file.c_str(), &at_name) == 0 && at_name.st_ino == opened.st_ino)
            unlink(file.c_str());
        return Found::gone;
    }
    lock_shared(pipe, file);
    struct stat opened = {};
    return fstat(pipe, &opened) == 0 && opened.st_nlink > 0 ? Found::held : Found::gone;
}

/// Makes a new pipe under a name of its own, locks it and only then gives it the wanted name: nobody sees it without its lock.
bool publish(const NamedPipe& made, const std::string& own_name) {
    const bool published = link(own_name.c_str(), made.file.c_str()) == 0;
    const int reason = errno;
    unlink(own_name.c_str());
    errno = reason;
    if (!published && errno != EEXIST) fail("cannot make the event", made.file);
    return published;
}

FileDescriptor open_pipe(const std::string& file) {
    return FileDescriptor(open(file.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
}

std::optional<NamedPipe> try_make(const std::string& file, ResetMode mode) {
    static std::atomic<unsigned> made_so_far{0};
    const std::string own_name =
        file.substr(0, file.rfind('/')) + "/new-" + std::to_string(getpid()) + "-" + std::to_string(made_so_far.fetch_add(1));
    const mode_t permissions = mode == ResetMode::manual ? manual_file : automatic_file;
    unlink(own_name.c_str());  // of a dead process with our number
    if (mkfifo(own_name.c_str(), permissions) != 0) fail("cannot make the event", own_name);
    NamedPipe made{open_pipe(own_name), mode, file};
    if (!made.pipe) fail("cannot open the event", own_name);
    if (fchmod(made.pipe.Get(), permissions) != 0) fail("cannot make the event", own_name);  // whatever the umask says
    lock_shared(made.pipe.Get(), file);
    if (!publish(made, own_name)) return std::nullopt;
    return made;
}

std::optional<NamedPipe> open_file(const std::string& file) {
    NamedPipe found{open_pipe(file), ResetMode::automatic, file};
    if (!found.pipe) {
        if (errno == ENOENT) return std::nullopt;
        fail("cannot open the event", file);
    }
    struct stat status = {};
    if (fstat(found.pipe.Get(), &status) != 0) fail("cannot look at the event", file);
    if (!S_ISFIFO(status.st_mode)) throw std::system_error(EEXIST, std::generic_category(), "'" + file + "' is no event");
    if (join_holders(found.pipe.Get(), file) == Found::gone) return std::nullopt;
    if (status.st_mode & S_IXUSR) found.mode = ResetMode::manual;
    return found;
}

}  // namespace

NamedPipe create_named_pipe(const std::string& name, ResetMode mode) {
    const std::string file = file_of(name);
    for (;;) {  // another round only when somebody made or removed the name in between
        if (auto existing = open_file(file)) return std::move(*existing);
        if (auto made = try_make(file, mode)) return std::move(*made);
    }
}

std::optional<NamedPipe> open_named_pipe(const std::string& name) { return open_file(file_of(name)); }

void close_named_pipe(int pipe, const std::string& file) noexcept {
    const FileDescriptor closing(pipe);
    if (!lock_without_waiting(pipe, LOCK_EX)) return;
    struct stat opened = {};
    if (fstat(pipe, &opened) == 0 && opened.st_nlink > 0) unlink(file.c_str());
}

}  // namespace kiv::platform
