#include "settings/script_reader.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>

#include <iostream>
#include <stdexcept>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include "settings/xerces_session.h"

namespace kiv {

namespace {

constexpr std::uint64_t longest_file = 64u << 20;
constexpr XMLSize_t longest_entity = 4096, most_expansions = 10'000;

/// Where the text goes wrong, for whoever wrote it.
class Complaints final : public xercesc::ErrorHandler {
public:
    explicit Complaints(const std::string& file) : file_(file) {}
    void warning(const xercesc::SAXParseException&) override {}
    void error(const xercesc::SAXParseException& fault) override { Print(fault); }
    void fatalError(const xercesc::SAXParseException& fault) override { Print(fault); }
    void resetErrors() override {}

private:
    void Print(const xercesc::SAXParseException& fault) {
        platform::debug_print(file_ + ":" + std::to_string(fault.getLineNumber()) + ":" +
                              std::to_string(fault.getColumnNumber()) + ": " + utf8_of(fault.getMessage()) + "\n");
    }
    std::string file_;
};

/// With the number of expansions this bounds what entities can make of a file.
class ScriptParser final : public xercesc::XercesDOMParser {
public:
    void entityDecl(const xercesc::DTDEntityDecl& entity, const bool isPEDecl, const bool isIgnored) override {
        if (entity.getValueLen() > longest_entity) throw std::length_error("an entity is too long");
        xercesc::XercesDOMParser::entityDecl(entity, isPEDecl, isIgnored);
    }
};

void set_up(ScriptParser& parser, Complaints& complaints, xercesc::SecurityManager& security) {
    security.setEntityExpansionLimit(most_expansions);
    parser.setSecurityManager(&security);
    parser.setErrorHandler(&complaints);
    parser.setValidationScheme(xercesc::XercesDOMParser::Val_Auto);
    parser.setDoNamespaces(false);
    parser.setDoSchema(false);
    parser.setLoadExternalDTD(false);
    parser.setDisableDefaultEntityResolution(true);
    parser.setCreateEntityReferenceNodes(false);
}

Settings settings_of(xercesc::DOMDocument& document) {
    Settings settings;
    Setting pending;
    bool has_name = false, has_value = false;
    auto* iterator = document.createNodeIterator(&document, xercesc::DOMNodeFilter::SHOW_TEXT, nullptr, true);
    while (auto* text = iterator->nextNode()) {
        auto* parent = text->getParentNode();
        auto name = utf8_of(parent ? parent->getNodeName() : nullptr);
        if (name == "FeatureName") {
            pending.feature = utf8_of(text->getNodeValue());
            has_name = true;
        } else if (name == "FeatureValue") {
            pending.value = utf8_of(text->getNodeValue());
            has_value = true;
        }
        if (!has_name || !has_value) continue;
        settings.push_back(std::move(pending));
        pending = {};
        has_name = has_value = false;
    }
    iterator->release();
    return settings;
}

Settings parse(const std::string& file, const std::string& text) {
    XercesSession session;
    Complaints complaints(file);
    xercesc::SecurityManager security;
    ScriptParser parser;
    set_up(parser, complaints, security);
    XercesText name(file);
    xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(), name.Get());
    try {
        parser.parse(source);
        if (auto errors = parser.getErrorCount())
            throw std::runtime_error("Parsing " + file + " error count: " + std::to_string(errors));
        auto* document = parser.getDocument();
        return document ? settings_of(*document) : Settings();
    } catch (const xercesc::DOMException& fault) {
        auto message = utf8_of(fault.getMessage());
        throw std::runtime_error("DOM Exception parsing " + file +
                                 " reports: " + (message.empty() ? std::to_string(fault.code) : message));
    } catch (const xercesc::XMLException& fault) {
        throw std::runtime_error("XML Exception parsing " + file + " reports: " + utf8_of(fault.getMessage()));
    } catch (const std::length_error&) {
        throw std::runtime_error("An exception parsing " + file);
    }
}

}  // namespace

std::optional<Settings> read_script(const std::string& file) try {
    std::string text;
    try {
        text = platform::read_file(file, longest_file);
    } catch (const platform::FileError& error) {
        throw std::runtime_error("XML Exception parsing " + file + " reports: " + error.what());
    }
    return parse(file, text);
} catch (const std::runtime_error& error) {
    std::cerr << error.what() << std::endl;
    return std::nullopt;
} catch (...) {
    std::cerr << "An exception parsing " << file << std::endl;
    return std::nullopt;
}

}  // namespace kiv
