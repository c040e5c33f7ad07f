// kiv convert: raw images into files that other programs read.

#include <VL.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "convert_input.h"
#include "error.h"
#include "feature.h"
#include "files.h"
#include "image_file.h"
#include "options.h"
#include "text.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter =
    "Raw files of kiv grab and kiv view begin with a header that tells what they hold. For files without one say\n"
    "--width, --height and --pixel-format.\n"
    "With -o FILE the extension tells the kind of file (.png .tif .bmp .jpg .raw). A file that fails does not keep the\n"
    "others from being converted; the exit code is 1 then.\n"
    "\n"
    "Operations of --process, from left to right, divided by \";\":\n"
    "  mono  colour  depth 8|16  gain F [F F]  offset F  gamma F  linear SLOPE OFFSET  knee IN OUT ...  invert  stretch\n"
    "  equalize  whitebalance  lut FILE  flip horizontal|vertical|both  rotate DEGREES  crop X Y WIDTH HEIGHT\n"
    "  scale F | WIDTH HEIGHT  blur RADIUS  median 3|5  sharpen AMOUNT [RADIUS]  threshold F\n"
    "\n"
    "Examples:\n"
    "  kiv convert shots/frame_000001.raw -o shot.png\n"
    "  kiv convert shots/*.raw -o pictures --format jpeg --jpeg-quality 85 --quality best --white-balance\n"
    "  kiv convert dump.bin -o dump.tif --width 2448 --height 2048 --pixel-format BayerRG12p\n"
    "  kiv convert shot.raw -o small.png --process \"gamma 0.5; scale 0.25; sharpen 0.7\"";

struct Arguments {
    std::vector<std::string> inputs;
    std::string output;
    FileStyle style;
    bool style_is_given = false;
    bool balance_white = false;
    std::string operations;
    BareFormat bare;
    std::string pixel_format;
};

struct Converted {
    std::string input, output, error;
    K_IMAGE_INFO info{};  ///< of the input; image_data is null
};

bool is_file_name(const Arguments& arguments) {
    return arguments.inputs.size() == 1 && !fs::is_directory(arguments.output) && file_kind_of(arguments.output).has_value();
}

/// Where each input goes. Two that would become one file, or a file that would replace its own source, are refused at the start.
std::vector<Converted> plan(Arguments& arguments) {
    if (is_file_name(arguments)) {
        const FileKind kind = *file_kind_of(arguments.output);
        if (arguments.style_is_given && arguments.style.kind != kind)
            throw ToolError(ExitCode::kUsage, "--format says " + std::string(file_kind_name(arguments.style.kind)) +
                                                  ", but the name of the file " + file_kind_name(kind));
        arguments.style.kind = kind;
        return {{arguments.inputs[0], arguments.output, "", {}}};
    }
    const fs::path folder = made_folder(arguments.output);
    std::vector<Converted> rows;
    std::map<fs::path, std::string> sources;
    for (const std::string& input : arguments.inputs) {
        const fs::path output = folder / path_of(input).filename().replace_extension(file_extension(arguments.style.kind));
        const auto [other, is_new] = sources.emplace(output, input);
        if (!is_new)
            throw ToolError(ExitCode::kUsage, printable(other->second) + " and " + printable(input) + " would both become " +
                                                  printable(output.string()));
        rows.push_back({input, output.string(), "", {}});
    }
    return rows;
}

void refuse_own_source(const Converted& row) {
    std::error_code error;
    if (fs::equivalent(path_of(row.input), path_of(row.output), error))
        throw ToolError(ExitCode::kFailed, printable(row.output) + " would replace its own source");
}

/// Everything in one chain: what the options say, then what the user wrote.
std::string chain_of(const Arguments& arguments) {
    static const std::map<VL_DEMOSAIC, const char*> words{
        {VL_DEMOSAIC_BILINEAR, "bilinear"}, {VL_DEMOSAIC_EDGE_AWARE, "edge"}, {VL_DEMOSAIC_BEST, "best"}};
    std::string chain = std::string("demosaic ") + words.at(arguments.style.demosaic);
    if (arguments.balance_white) chain += "; whitebalance";
    if (!arguments.operations.empty()) chain += "; " + arguments.operations;
    return chain;
}

void convert_one(Converted& row, const Arguments& arguments) {
    refuse_own_source(row);
    const RawImage raw = read_raw_file(row.input, arguments.bare);
    row.info = raw.info;
    row.info.image_data = nullptr;
    if (!raw.remark.empty()) std::fprintf(stderr, "kiv: warning: %s: %s\n", printable(row.input).c_str(), raw.remark.c_str());
    const bool is_processed = arguments.balance_white || !arguments.operations.empty();
    if (!is_processed) return write_image_file(raw.info, row.output, arguments.style);
    VL_IMAGE_HANDLE image = nullptr;
    check_vl(vlImageProcessingEx(&raw.info, chain_of(arguments).c_str(), &image), "vlImageProcessingEx", row.input);
    const Image owner(image);
    write_image_file(image, row.output, arguments.style);
}

nlohmann::json to_json(const Converted& row) {
    nlohmann::json json{{"input", row.input}};
    if (!row.error.empty()) {
        json["error"] = row.error;
        return json;
    }
    json["output"] = row.output;
    json["width"] = row.info.width;
    json["height"] = row.info.height;
    json["pixel_format"] = pixel_format_name(row.info.pixel_type);
    return json;
}

void require_meaning(Arguments& arguments) {
    BareFormat& bare = arguments.bare;
    if (!arguments.pixel_format.empty()) bare.pixel_type = pixel_type_of(arguments.pixel_format);
    const int said = (bare.width != 0) + (bare.height != 0) + (bare.pixel_type != 0);
    if (said != 0 && said != 3)
        throw ToolError(ExitCode::kUsage, "--width, --height and --pixel-format belong together: one of them is missing");
    if (said == 0 && (bare.skip != 0 || bare.padding != 0))
        throw ToolError(ExitCode::kUsage,
                        "--skip and --padding are for files without a header: --width, --height and "
                        "--pixel-format are missing");
}

ExitCode convert(const Options& options, Arguments arguments) {
    require_meaning(arguments);
    std::vector<Converted> rows = plan(arguments);
    bool failed = false;
    nlohmann::json files = nlohmann::json::array();
    for (Converted& row : rows) {
        try {
            convert_one(row, arguments);
            if (!options.json) std::printf("%s\n", printable(row.output).c_str());
        } catch (const ToolError& failure) {
            row.error = failure.what();
            std::fprintf(stderr, "kiv: %s\n", failure.what());
            failed = true;
        }
        if (options.json) files.push_back(to_json(row));
    }
    if (options.json) std::fputs(json_text({{"files", files}}).c_str(), stdout);
    return failed ? ExitCode::kFailed : ExitCode::kOk;
}

void add_bare_options(CLI::App& command, Arguments& arguments) {
    constexpr const char* kGroup = "Files without a header";
    const auto pixels = CLI::Range(1u, 65535u).description("");
    command.add_option("--width", arguments.bare.width, "Pixels of a line")->type_name("N")->check(pixels)->group(kGroup);
    command.add_option("--height", arguments.bare.height, "Lines")->type_name("N")->check(pixels)->group(kGroup);
    command.add_option("--pixel-format", arguments.pixel_format, "Name of the PFNC, or a code such as 0x01080009")
        ->type_name("FORMAT")
        ->group(kGroup);
    command.add_option("--padding", arguments.bare.padding, "Bytes between the end of a line and the next one")
        ->type_name("BYTES")
        ->group(kGroup);
    command.add_option("--skip", arguments.bare.skip, "Bytes before the image")->type_name("BYTES")->group(kGroup);
}

}  // namespace

void add_convert_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("convert", "Convert raw images into png, tiff, bmp, jpeg");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("inputs", arguments->inputs, "Raw files")->type_name("RAW")->required();
    command->add_option("-o,--output", arguments->output, "Folder, or for a single input a file")
        ->type_name("DIR|FILE")
        ->required();
    add_file_options(*command, arguments->style);
    command->add_option("--process", arguments->operations, "Operations on the image, see below")->type_name("OPERATIONS");
    command->add_flag("--white-balance", arguments->balance_white, "Make the mean colour of the image grey");
    add_bare_options(*command, *arguments);
    add_shared_options(*command, invocation.options, static_cast<unsigned>(Takes::kJson));
    command->callback([&invocation, arguments, command] {
        arguments->style_is_given = command->count("--format") != 0;
        invocation.run = [&invocation, arguments] { return convert(invocation.options, *arguments); };
    });
}
