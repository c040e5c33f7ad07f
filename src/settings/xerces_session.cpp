#include "settings/xerces_session.h"

#include <kiv/platform/text.h>

#include <mutex>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLString.hpp>

namespace kiv {

namespace {

// The library counts its users, but not for several threads at once.
std::mutex setup_lock;

}  // namespace

XercesSession::XercesSession() {
    std::lock_guard guard(setup_lock);
    xercesc::XMLPlatformUtils::Initialize();
}

XercesSession::~XercesSession() {
    std::lock_guard guard(setup_lock);
    xercesc::XMLPlatformUtils::Terminate();
}

XercesText::XercesText(std::string_view utf8) {
    auto transcode = [&](const char* encoding) {
        xercesc::TranscodeFromStr text(reinterpret_cast<const XMLByte*>(utf8.data()), utf8.size(), encoding);
        text_.assign(text.str(), text.str() + text.length());
    };
    try {
        transcode("UTF-8");
    } catch (const xercesc::XMLException&) {
        transcode("ISO-8859-1");
    }
    text_.push_back(0);
}

std::string utf8_of(const XMLCh* text) {
    if (!text) return {};
    xercesc::TranscodeToStr bytes(text, "UTF-8");
    return std::string(reinterpret_cast<const char*>(bytes.str()), bytes.length());
}

}  // namespace kiv
