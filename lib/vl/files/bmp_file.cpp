#include "files/bmp_file.h"

#include <cstring>
#include <optional>

#include "core/little_endian.h"
#include "files/eight_bit.h"
#include "image/dib_header.h"

namespace kiv::vl {

EncodedFile encode_bmp(const Image& image, int) {
    std::optional<Image> copy;
    const Image& source = eight_bit(image, copy);
    const DibHeader info = make_dib_header(source.Width(), source.Height(), source.Channels());
    const std::size_t line = (source.LineBytes() + 3) / 4 * 4;
    constexpr std::size_t file_header_size = 14;
    const std::size_t data_at = file_header_size + info.size();
    const std::size_t size = data_at + line * source.Height();

    std::vector<std::uint8_t> header = {'B', 'M'};
    append(header, static_cast<std::uint32_t>(size));
    append(header, std::uint32_t{0});
    append(header, static_cast<std::uint32_t>(data_at));
    header.insert(header.end(), info.begin(), info.end());

    EncodedFile bytes(size);
    std::memcpy(bytes.data(), header.data(), header.size());
    for (std::uint32_t y = 0; y < source.Height(); ++y)
        std::memcpy(bytes.data() + data_at + (source.Height() - 1 - y) * line, source.Line(y), source.LineBytes());
    return bytes;
}

}  // namespace kiv::vl
