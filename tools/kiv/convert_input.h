/// Raw images in files: those with the imaging library's header, and bare pixels of which the user tells what they are.
#pragma once

#include <kiv/image_info.h>

#include <cstdint>
#include <string>
#include <vector>

/// What the user says about files without a header.
struct BareFormat {
    uint64_t pixel_type = 0;  ///< 0: nothing was said
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t padding = 0;  ///< bytes between lines
    uint64_t skip = 0;     ///< bytes before the image
};

struct RawImage {
    K_IMAGE_INFO info{};  ///< image_data points to `data`
    std::vector<uint8_t> data;
    std::string remark;  ///< what the user should know though it went well; may be empty
};

/// By a name such as BayerRG12p, or by a code such as 0x010C0059. Throws ExitCode::kUsage.
uint64_t pixel_type_of(const std::string& word);
/// The name of a format, or its code.
std::string pixel_format_name(uint64_t pixel_type);

/// A file with a header is what the header says; `bare` is for others. Throws a ToolError that names the file.
RawImage read_raw_file(const std::string& file, const BareFormat& bare);
