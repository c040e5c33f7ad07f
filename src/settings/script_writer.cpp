#include "settings/script_writer.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include "settings/xerces_session.h"

namespace kiv {

namespace {

struct Release {
    template <class Object>
    void operator()(Object* object) const {
        object->release();
    }
};
template <class Object>
using Owned = std::unique_ptr<Object, Release>;

xercesc::DOMImplementation& implementation() {
    auto* found = xercesc::DOMImplementationRegistry::getDOMImplementation(XercesText("LS").Get());
    if (!found) throw std::runtime_error("the XML library cannot write documents");
    return *found;
}

xercesc::DOMElement& append(xercesc::DOMDocument& document, xercesc::DOMNode& parent, const char* name) {
    auto* element = document.createElement(XercesText(name).Get());
    parent.appendChild(element);
    return *element;
}

void append_text(xercesc::DOMDocument& document, xercesc::DOMNode& parent, const char* name, const std::string& text) {
    auto& element = append(document, parent, name);
    if (!text.empty()) element.appendChild(document.createTextNode(XercesText(text).Get()));
}

void configure(xercesc::DOMLSSerializer& writer, const XercesText& line_end) {
    writer.setNewLine(line_end.Get());
    const struct {
        const XMLCh* feature;
        bool value;
    } settings[] = {{xercesc::XMLUni::fgDOMWRTSplitCdataSections, false},
                    {xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, false},
                    {xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true},
                    {xercesc::XMLUni::fgDOMWRTBOM, false}};
    auto* configuration = writer.getDomConfig();
    for (auto& each : settings)
        if (configuration->canSetParameter(each.feature, each.value)) configuration->setParameter(each.feature, each.value);
}

/// Whether an XML document can hold the text. The XML library would refuse it as well, without telling which setting it was.
bool is_xml_text(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto each = static_cast<unsigned char>(text[i]);
        if (each < ' ' && each != '\t' && each != '\n' && each != '\r') return false;
        // U+FFFE and U+FFFF
        if (text.compare(i, 2, "\xEF\xBF") == 0 && i + 2 < text.size() && static_cast<unsigned char>(text[i + 2]) >= 0xBE)
            return false;
    }
    return true;
}

std::string document_text(const Settings& settings) {
    auto& dom = implementation();
    Owned<xercesc::DOMDocument> document(dom.createDocument(nullptr, XercesText("Script").Get(), nullptr));
    document->setXmlVersion(XercesText("1.0").Get());
    auto& commands = append(*document, *document->getDocumentElement(), "CommandList");
    for (auto& setting : settings) {
        auto& command = append(*document, commands, "Command");
        append_text(*document, command, "FeatureName", setting.feature);
        append_text(*document, command, "FeatureValue", setting.value);
    }
    Owned<xercesc::DOMLSSerializer> writer(dom.createLSSerializer());
    const XercesText line_end("\r\n"), encoding("utf-8");
    configure(*writer, line_end);
    Owned<xercesc::DOMLSOutput> output(dom.createLSOutput());
    output->setEncoding(encoding.Get());
    xercesc::MemBufFormatTarget target;
    output->setByteStream(&target);
    if (!writer->write(document.get(), output.get())) throw std::runtime_error("the XML library gave the document up");
    return std::string(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
}

/// Nothing when a setting cannot be written; the debugger output says which, or why.
std::optional<std::string> script_text(const std::string& file, const Settings& settings) {
    for (auto& setting : settings) {
        if (is_xml_text(setting.feature) && is_xml_text(setting.value)) continue;
        platform::debug_print("Writing " + file + ": the value of '" + setting.feature +
                              "' has a character that XML cannot hold\n");
        return std::nullopt;
    }
    const XercesSession session;  // what the library throws is its memory: it is read before the session ends
    try {
        return document_text(settings);
    } catch (const xercesc::DOMException& fault) {
        platform::debug_print("Writing " + file + ": " + utf8_of(fault.getMessage()) + "\n");
        return std::nullopt;
    }
}

}  // namespace

bool write_script(const std::string& file, const Settings& settings) {
    if (settings.empty()) return true;
    const auto text = script_text(file, settings);
    if (!text) return true;
    try {
        platform::write_file_atomically(file, *text);
        return true;
    } catch (const platform::FileError& error) {
        platform::debug_print(std::string(error.what()) + "\n");
        return false;
    }
}

}  // namespace kiv
