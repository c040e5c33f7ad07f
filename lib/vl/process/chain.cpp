#include "process/chain.h"

#include <algorithm>

#include "convert/convert.h"
#include "core/error.h"
#include "process/operations.h"

namespace kiv::vl {
namespace {

constexpr std::size_t longest_text = 64 * 1024;
constexpr std::size_t most_steps = 256;

/// Cuts the text into words and into operations.
std::vector<Step> read_steps(std::string_view text) {
    std::vector<Step> steps;
    std::vector<std::string> words;
    const auto end_operation = [&] {
        if (words.empty()) return;
        steps.push_back({words.front(), {words.begin() + 1, words.end()}});
        words.clear();
    };
    while (!text.empty()) {
        const char next = text.front();
        if (next == '#') {
            text.remove_prefix(std::min(text.find('\n'), text.size()));
        } else if (next == ';' || next == '\n') {
            end_operation();
            text.remove_prefix(1);
        } else if (next == ' ' || next == '\t' || next == '\r' || next == ',') {
            text.remove_prefix(1);
        } else if (next == '"') {
            const auto close = text.find('"', 1);
            if (close == text.npos) throw Error(VL_ST_INVALID_PARAMETER, "a quote is not closed");
            words.emplace_back(text.substr(1, close - 1));
            text.remove_prefix(close + 1);
        } else {
            const auto end = std::min(text.find_first_of(" \t\r\n,;#\""), text.size());
            words.emplace_back(text.substr(0, end));
            text.remove_prefix(end);
        }
    }
    end_operation();
    return steps;
}

struct DemosaicWord {
    std::string_view word;
    VL_DEMOSAIC quality;
};
constexpr DemosaicWord demosaic_words[] = {
    {"bilinear", VL_DEMOSAIC_BILINEAR}, {"edge", VL_DEMOSAIC_EDGE_AWARE}, {"best", VL_DEMOSAIC_BEST}};

}  // namespace

Chain::Chain(std::string_view text) {
    if (text.size() > longest_text) throw Error(VL_ST_INVALID_PARAMETER, "a chain of more than 64 KiB");
    steps_ = read_steps(text);
    if (steps_.size() > most_steps) throw Error(VL_ST_INVALID_PARAMETER, "a chain of more than 256 operations");
}

VL_DEMOSAIC Chain::TakeDemosaic() {
    if (steps_.empty() || steps_.front().name != "demosaic") return VL_DEMOSAIC_BILINEAR;
    const Step step = steps_.front();
    steps_.erase(steps_.begin());
    for (const auto& row : demosaic_words)
        if (step.arguments.size() == 1 && step.arguments[0] == row.word) return row.quality;
    throw Error(VL_ST_INVALID_PARAMETER, "demosaic wants one of bilinear, edge, best");
}

Image Chain::Run(Image image) const {
    for (const auto& step : steps_) {
        const auto* operation = find_operation(step.name);
        if (operation == nullptr) throw Error(VL_ST_INVALID_PARAMETER, "there is no operation \"" + step.name + "\"");
        if (step.arguments.size() < operation->least || step.arguments.size() > operation->most)
            throw Error(VL_ST_INVALID_PARAMETER,
                        step.name + " has " + std::to_string(step.arguments.size()) + " arguments, it wants " +
                            std::to_string(operation->least) +
                            (operation->most == operation->least ? "" : " to " + std::to_string(operation->most)));
    }
    if (image.HasAlpha() || image.IsDib()) {
        Image plain(image.Width(), image.Height(), image.HasAlpha() ? std::uint64_t{VL_IMAGE_BGR8} : image.Type());
        convert_image(image, plain);
        image = std::move(plain);
    }
    for (const auto& step : steps_) image = find_operation(step.name)->run(std::move(image), step);
    return image;
}

}  // namespace kiv::vl
