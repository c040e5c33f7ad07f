/// The URLs by which modules name their descriptions, and what is common to all schemes.
///
///     local:Name.zip;1F00;2A4F?SchemaVersion=1.1.0     in the module's register space, numbers hexadecimal
///     file:///folder/Name%20X.xml                      a file
///
/// Schemes are compared without regard to letter case, as devices write them in any.
#pragma once

#include <string>
#include <string_view>

namespace GenICam::Registry::Impl {

class CURLParser {
public:
    /// Splits and decodes. Throws InvalidArgumentException for a URL without a scheme or with a broken percent sequence.
    explicit CURLParser(std::string_view url);

    bool HasScheme(std::string_view scheme) const;
    const std::string& Url() const { return url_; }
    /// As it stands before the colon.
    const std::string& Scheme() const { return scheme_; }
    /// What follows the colon, decoded, without the query ("?SchemaVersion=...") that older devices append.
    const std::string& Path() const { return path_; }

private:
    std::string url_;
    std::string scheme_;
    std::string path_;
};

}  // namespace GenICam::Registry::Impl
