#include "kiv/platform/environment.h"

#include "GenICam/gcstring.h"

namespace GenICam {

std::string ReplaceEnvironmentVariables(std::string_view text) {
    std::string result;
    size_t done = 0;
    while (true) {
        const auto start = text.find("$(", done);
        const auto end = start == text.npos ? text.npos : text.find(')', start);
        if (end == text.npos) return result.append(text.substr(done));
        const auto name = text.substr(start + 2, end - start - 2);
        if (const auto inner = name.rfind("$("); inner != name.npos) {  // "$(A$(B)": the first "$(" has no ")" of its own
            result.append(text.substr(done, start + 2 + inner - done));
            done = start + 2 + inner;
            continue;
        }
        result.append(text.substr(done, start - done));
        const auto value = kiv::platform::get_environment(std::string(name));
        result.append(value ? *value : std::string(text.substr(start, end + 1 - start)));
        done = end + 1;
    }
}

void ReplaceEnvironmentVariables(gcstring& text) { text = ReplaceEnvironmentVariables(std::string_view(text)); }

}  // namespace GenICam
