#include "settings/script_reader.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>

#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLString.hpp>
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

/// Pairs names and values while the document passes by. No tree is made of it: the largest script would be many times its size
/// in memory, and making it takes most of the time.
///
/// A text is what stands between two tags, comments, instructions or character-data sections; what stands in the last three is
/// none. Entities do not divide a text.
class ScriptParser final : public xercesc::XercesDOMParser {
public:
    Settings Take() { return std::move(settings_); }

    void startElement(const xercesc::XMLElementDecl& element, const unsigned int, const XMLCh* const,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>&, const XMLSize_t, const bool isEmpty, const bool) override {
        EndText();
        if (!isEmpty) open_.push_back(PartOf(element.getFullName()));
    }
    void endElement(const xercesc::XMLElementDecl&, const unsigned int, const bool, const XMLCh* const) override {
        EndText();
        if (!open_.empty()) open_.pop_back();
    }
    void docCharacters(const XMLCh* const text, const XMLSize_t length, const bool isSection) override {
        if (isSection) return EndText();
        if (!open_.empty() && open_.back() != Part::other) text_.append(text, length);
    }
    void ignorableWhitespace(const XMLCh* const text, const XMLSize_t length, const bool isSection) override {
        docCharacters(text, length, isSection);
    }
    void docComment(const XMLCh* const) override { EndText(); }
    void docPI(const XMLCh* const, const XMLCh* const) override { EndText(); }
    void startEntityReference(const xercesc::XMLEntityDecl&) override {}
    void endEntityReference(const xercesc::XMLEntityDecl&) override {}

    /// With the number of expansions this bounds what entities can make of a file.
    void entityDecl(const xercesc::DTDEntityDecl& entity, const bool isPEDecl, const bool isIgnored) override {
        if (entity.getValueLen() > longest_entity) throw std::length_error("an entity is too long");
        xercesc::XercesDOMParser::entityDecl(entity, isPEDecl, isIgnored);
    }

private:
    enum class Part { other, name, value };

    Part PartOf(const XMLCh* element) const {
        if (xercesc::XMLString::equals(element, name_element_.Get())) return Part::name;
        return xercesc::XMLString::equals(element, value_element_.Get()) ? Part::value : Part::other;
    }
    void EndText() {
        if (text_.empty()) return;
        const bool is_name = open_.back() == Part::name;
        (is_name ? pending_.feature : pending_.value) = utf8_of(text_.c_str());
        (is_name ? has_name_ : has_value_) = true;
        text_.clear();
        if (!has_name_ || !has_value_) return;
        settings_.push_back(std::move(pending_));
        pending_ = {};
        has_name_ = has_value_ = false;
    }

    const XercesText name_element_{"FeatureName"}, value_element_{"FeatureValue"};
    std::vector<Part> open_;  // the elements that are open, outermost first
    std::basic_string<XMLCh> text_;
    Setting pending_;
    bool has_name_ = false, has_value_ = false;
    Settings settings_;
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
        return parser.Take();
    } catch (const xercesc::DOMException& fault) {
        auto message = utf8_of(fault.getMessage());
        throw std::runtime_error("DOM Exception parsing " + file +
                                 " reports: " + (message.empty() ? std::to_string(fault.code) : message));
    } catch (const xercesc::XMLException& fault) {
        throw std::runtime_error("XML Exception parsing " + file + " reports: " + utf8_of(fault.getMessage()));
    } catch (const std::length_error& fault) {
        platform::debug_print(file + ": " + fault.what() + "\n");
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
