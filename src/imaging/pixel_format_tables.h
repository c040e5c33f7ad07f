/// How one camera's pixel formats translate to those of the catalogue, and back.
///
/// A camera may number its formats in its own way; the stream thread and the imaging functions work with catalogue codes only.
/// Any thread: a table is complete or not there while another thread looks something up.
#pragma once

#include <kiv/types.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace kiv {

struct PixelFormatTranslation {
    std::uint64_t remote_code = 0;
    std::uint64_t local_code = 0;  ///< the remote code itself when the catalogue knows no such format
    std::string local_name;        ///< empty then
    std::string remote_name;
};

/// What the catalogue makes of one entry of a camera's PixelFormat feature. `entry_name` may carry the prefix of its enumeration.
PixelFormatTranslation translate_pixel_format(std::uint64_t remote_code, std::string_view entry_name);

/// Look-ups answer K_ST_SUCCESS, K_ST_NO_DATA for a code that is not there, and K_ST_INVALID_HANDLE for one beyond the last.
class PixelFormatTables {
public:
    /// Adds an entry of the camera; one of the same remote code is replaced.
    void Insert(PixelFormatTranslation entry);
    /// Whether somebody has filled, or tried to fill, the tables.
    bool Filled() const;
    void MarkFilled();

    /// Of a remote code, or of one that is local already; anything else is K_ST_INVALID_HANDLE.
    K_STATUS_CODES LocalCode(std::uint64_t code, std::uint64_t& local) const;
    K_STATUS_CODES LocalName(std::uint64_t remote, std::string& name) const;
    K_STATUS_CODES RemoteCode(std::uint64_t local, std::uint64_t& remote) const;
    /// Of a remote code, or else of a local one.
    K_STATUS_CODES RemoteName(std::uint64_t code, std::string& name) const;
    K_STATUS_CODES RemoteCodeOf(std::string_view remote_name, std::uint64_t& remote) const;
    /// The catalogue's own code for a remote or local one, without the mark of recognition by words.
    K_STATUS_CODES CompatibleCode(std::uint64_t code, std::uint64_t& compatible) const;

private:
    using Table = std::map<std::uint64_t, PixelFormatTranslation>;

    mutable std::mutex lock_;
    Table by_remote_;
    Table by_local_;  // of several remote codes with one local code the smallest
    bool filled_ = false;
};

}  // namespace kiv
