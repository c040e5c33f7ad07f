#include "lut/lut_file.h"

#include <kiv/platform/paths.h>

#include <charconv>
#include <optional>
#include <vector>

#include "core/error.h"
#include "core/words.h"

namespace kiv::vl {
namespace {

constexpr std::uint64_t largest_file = 16 * 1024 * 1024;
constexpr std::string_view title[] = {"VL-LUT", "1"};

/// The lines of a text that say something, as words.
class Lines {
public:
    Lines(std::string_view text, std::string_view file) : text_(text), file_(file) {}

    std::optional<std::vector<std::string_view>> Next() {
        while (!text_.empty()) {
            ++number_;
            const auto end = text_.find('\n');
            std::string_view line = text_.substr(0, end);
            text_.remove_prefix(end == text_.npos ? text_.size() : end + 1);
            const auto words = split_words(line.substr(0, line.find('#')));
            if (!words.empty()) return words;
        }
        return std::nullopt;
    }
    std::vector<std::string_view> Wanted(std::size_t count, const char* what) {
        auto words = Next();
        if (!words || words->size() != count) Refuse(std::string("here should be ") + what);
        return *words;
    }
    std::uint32_t Number(std::string_view word) const {
        std::uint32_t value = 0;
        const auto [end, trouble] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (trouble != std::errc() || end != word.data() + word.size()) Refuse("\"" + std::string(word) + "\" is no number");
        return value;
    }
    [[noreturn]] void Refuse(const std::string& why) const {
        throw Error(VL_ST_INVALID_DATA,
                    std::string(file_) + " is no look-up table: line " + std::to_string(number_) + ": " + why);
    }

private:
    std::string_view text_;
    std::string_view file_;
    int number_ = 0;
};

Lut make_table(const Lines& lines, std::uint32_t input_bits, std::uint32_t output_bits, std::uint32_t channels) {
    try {
        return {input_bits, output_bits, channels};
    } catch (const Error& error) {
        lines.Refuse(error.what());
    }
}

}  // namespace

std::string lut_text(const Lut& lut) {
    std::string text = "VL-LUT 1\nbits " + std::to_string(lut.InputBits()) + " " + std::to_string(lut.OutputBits()) +
                       "\nchannels " + std::to_string(lut.Channels()) + "\n";
    for (std::uint32_t i = 0; i < lut.Entries(); ++i)
        for (std::uint32_t c = 0; c < lut.Channels(); ++c) {
            text += std::to_string(lut.Value(static_cast<std::int32_t>(c), i));
            text += c + 1 == lut.Channels() ? '\n' : ' ';
        }
    return text;
}

Lut parse_lut(std::string_view text, std::string_view file) {
    Lines lines(text, file);
    const auto first = lines.Wanted(2, "\"VL-LUT 1\"");
    if (first[0] != title[0] || first[1] != title[1]) lines.Refuse("here should be \"VL-LUT 1\"");
    const auto bits = lines.Wanted(3, "\"bits\" and two numbers");
    if (bits[0] != "bits") lines.Refuse("here should be \"bits\" and two numbers");
    const std::uint32_t input_bits = lines.Number(bits[1]);
    const std::uint32_t output_bits = lines.Number(bits[2]);
    const auto channels = lines.Wanted(2, "\"channels\" and a number");
    if (channels[0] != "channels") lines.Refuse("here should be \"channels\" and a number");
    Lut lut = make_table(lines, input_bits, output_bits, lines.Number(channels[1]));
    for (std::uint32_t i = 0; i < lut.Entries(); ++i) {
        const auto values = lines.Wanted(lut.Channels(), "the values of an entry");
        for (std::uint32_t c = 0; c < lut.Channels(); ++c) {
            const std::uint32_t value = lines.Number(values[c]);
            if (value > lut.Top()) lines.Refuse(std::to_string(value) + " is more than its bits can hold");
            lut.Set(static_cast<std::int32_t>(c), i, value);
        }
    }
    if (lines.Next()) lines.Refuse("there are more entries than the bits allow");
    return lut;
}

void save_lut(const Lut& lut, std::string_view path) {
    const std::string text = lut_text(lut);
    platform::write_file_atomically(path, std::string_view(text));
}

Lut load_lut(std::string_view path) { return parse_lut(platform::read_file(path, largest_file), path); }

}  // namespace kiv::vl
