#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <array>
#include <cerrno>
#include <string>

#include "common/utf8.h"
#include "kiv/platform/text.h"
#include "posix/encodings.h"

namespace kiv::platform {
namespace {

/// The encoding that the user's environment names, whatever locale the program has chosen; empty for UTF-8 and for none.
std::string find_local_encoding() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (!locale) return {};
    const std::string name = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    const bool plain = name.empty() || name == "UTF-8" || name == "ANSI_X3.4-1968" || name == "US-ASCII";
    return plain ? std::string() : name;
}

const std::string& local_encoding() {
    static const std::string found = find_local_encoding();
    return found;
}

class Converter {
public:
    Converter(const char* to, const char* from) : converter_(iconv_open(to, from)) {}
    ~Converter() {
        if (*this) iconv_close(converter_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    explicit operator bool() const { return converter_ != reinterpret_cast<iconv_t>(-1); }

    /// Converts all of `text`; what has no counterpart is replaced.
    std::string Convert(std::string_view text, std::string_view replacement, bool from_utf8) {
        std::string result;
        std::array<char, 512> chunk;
        char* in = const_cast<char*>(text.data());  // iconv's signature; it does not write there
        std::size_t in_left = text.size();
        while (in_left > 0) {
            char* out = chunk.data();
            std::size_t out_left = chunk.size();
            const std::size_t done = iconv(converter_, &in, &in_left, &out, &out_left);
            const int reason = errno;
            result.append(chunk.data(), chunk.size() - out_left);
            if (done != static_cast<std::size_t>(-1) || reason == E2BIG) continue;
            const std::size_t skipped = from_utf8 ? decode_utf8(std::string_view(in, in_left)).length : 1;
            result += replacement;
            in += skipped;
            in_left -= skipped;
        }
        return result;
    }

private:
    iconv_t converter_;
};

}  // namespace

std::string utf8_from_encoding(std::string_view text, const char* encoding) {
    Converter converter("UTF-8", encoding);
    return converter ? converter.Convert(text, "\xEF\xBF\xBD", false) : std::string(text);
}

std::string encoding_from_utf8(std::string_view text, const char* encoding) {
    Converter converter(encoding, "UTF-8");
    return converter ? converter.Convert(text, "?", true) : std::string(text);
}

std::string utf8_from_local(std::string_view text) {
    return local_encoding().empty() ? std::string(text) : utf8_from_encoding(text, local_encoding().c_str());
}

std::string local_from_utf8(std::string_view text) {
    return local_encoding().empty() ? std::string(text) : encoding_from_utf8(text, local_encoding().c_str());
}

}  // namespace kiv::platform
