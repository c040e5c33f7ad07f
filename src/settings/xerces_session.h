/// The use of the XML library by one call: it is set up when the first session begins and taken down when the last one ends. Any
/// thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>
#include <xercesc/util/XercesDefs.hpp>

namespace kiv {

class XercesSession {
public:
    XercesSession();
    ~XercesSession();
    XercesSession(const XercesSession&) = delete;
    XercesSession& operator=(const XercesSession&) = delete;
};

/// Texts of the library are UTF-16, ours are UTF-8. Bytes that are no UTF-8 are read as Latin-1, so that no value is lost.
class XercesText {
public:
    explicit XercesText(std::string_view utf8);
    const XMLCh* Get() const { return text_.data(); }

private:
    std::vector<XMLCh> text_;
};
std::string utf8_of(const XMLCh* text);

}  // namespace kiv
