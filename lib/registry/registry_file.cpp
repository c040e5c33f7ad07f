#include "registry_file.h"

#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>
#include <kiv/platform/text.h>
#include <algorithm>
#include <map>
#include <pugixml.hpp>

namespace kiv::registry {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t largest_file = 64u << 20;
constexpr std::size_t longest_text = 4095;  // whoever asks for a datum brings 4096 bytes

/// The text with its name, for errors that say where.
class Source {
public:
    Source(const std::string& text, const std::string& path) : text_(text), path_(path) {}

    [[noreturn]] void Fail(std::ptrdiff_t offset, const std::string& what) const {
        const auto end = text_.begin() + std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(text_.size()));
        const auto line = 1 + std::count(text_.begin(), end, '\n');
        throw FormatError(path_ + ":" + std::to_string(line) + ": " + what);
    }
    [[noreturn]] void Fail(const pugi::xml_node& node, const std::string& what) const { Fail(node.offset_debug(), what); }

private:
    const std::string& text_;
    const std::string& path_;
};

void take_text(const Source& source, const pugi::xml_node& element, const pugi::xml_attribute& attribute, std::string& text) {
    text = attribute.value();
    if (text.empty()) source.Fail(element, std::string("the attribute '") + attribute.name() + "' is empty");
    if (text.size() > longest_text)
        source.Fail(element, std::string("the attribute '") + attribute.name() + "' has more than " +
                                 std::to_string(longest_text) + " bytes");
}

void take_bool(const Source& source, const pugi::xml_node& element, const pugi::xml_attribute& attribute, bool& value) {
    const std::string_view word = attribute.value();
    if (word != "true" && word != "false")
        source.Fail(element, std::string("the attribute '") + attribute.name() + "' is '" + attribute.value() +
                                 "', not 'true' or 'false'");
    value = word == "true";
}

struct AttributeRow {
    std::string_view name;
    bool required;
    void (*take)(const Source&, const pugi::xml_node&, const pugi::xml_attribute&, Producer&);
};

constexpr AttributeRow producer_attributes[] = {
    {"key", true,
     [](auto& source, auto& element, auto& attribute, Producer& p) { take_text(source, element, attribute, p.key); }},
    {"path", true,
     [](auto& source, auto& element, auto& attribute, Producer& p) { take_text(source, element, attribute, p.path); }},
    {"enabled", false,
     [](auto& source, auto& element, auto& attribute, Producer& p) { take_bool(source, element, attribute, p.enabled); }},
    {"flag", false,
     [](auto& source, auto& element, auto& attribute, Producer& p) { take_bool(source, element, attribute, p.flag); }},
};

void require_element(const Source& source, const pugi::xml_node& node, std::string_view name) {
    if (node.type() != pugi::node_element) source.Fail(node, "text where <" + std::string(name) + "> is expected");
    if (node.name() != name)
        source.Fail(node, std::string("<") + node.name() + "> where <" + std::string(name) + "> is expected");
}

Producer read_producer(const Source& source, const pugi::xml_node& element) {
    Producer producer;
    for (const pugi::xml_attribute attribute : element.attributes()) {
        // A misspelt "enabled" that was passed over would enable what somebody wanted disabled.
        const auto row = std::ranges::find(producer_attributes, std::string_view(attribute.name()), &AttributeRow::name);
        if (row == std::end(producer_attributes))
            source.Fail(element, std::string("<Producer> has an unknown attribute '") + attribute.name() + "'");
        if (element.attribute(attribute.name()) != attribute)
            source.Fail(element, std::string("<Producer> has the attribute '") + attribute.name() + "' twice");
        row->take(source, element, attribute, producer);
    }
    for (const AttributeRow& row : producer_attributes)
        if (row.required && !element.attribute(row.name.data()))
            source.Fail(element, "<Producer> lacks the attribute '" + std::string(row.name) + "'");
    if (element.first_child()) source.Fail(element.first_child(), "<Producer> holds nothing but its attributes");
    return producer;
}

pugi::xml_node require_root(const Source& source, const pugi::xml_document& document) {
    const pugi::xml_node root = document.document_element();
    if (!root) source.Fail(0, "there is no <KivRegistry> in the file");
    require_element(source, root, "KivRegistry");
    const std::string_view version = root.attribute("version").value();
    if (version.empty()) source.Fail(root, "<KivRegistry> lacks the attribute 'version'");
    if (version != "1")
        source.Fail(root, "this is a registry of version '" + std::string(version) + "'; only version 1 is known");
    if (const pugi::xml_node second = root.next_sibling()) source.Fail(second, "something follows </KivRegistry>");
    return root;
}

void name_producers(std::vector<Producer>& producers) {
    std::map<std::string, unsigned> seen;
    for (const Producer& producer : producers) seen.emplace(producer.key, 0);
    for (Producer& producer : producers) {
        unsigned& count = seen[producer.key];
        producer.name = producer.key;
        // Somebody's own key may look like the name that a second one of another key gets.
        while (++count > 1) {
            producer.name = producer.key + "#" + std::to_string(count);
            if (!seen.contains(producer.name)) break;
        }
    }
}

std::string expand_environment(std::string_view text) {
    std::string expanded;
    for (;;) {
        const std::size_t start = text.find("$(");
        const std::size_t end = start == text.npos ? text.npos : text.find(')', start);
        if (end == text.npos) return expanded.append(text);
        const auto value = platform::get_environment(std::string(text.substr(start + 2, end - start - 2)));
        expanded.append(value ? text.substr(0, start) : text.substr(0, end + 1));
        if (value) expanded += *value;
        text.remove_prefix(end + 1);
    }
}

}  // namespace

const Producer* RegistryFile::Find(std::string_view name) const {
    const auto found = std::ranges::find(producers, name, &Producer::name);
    return found == producers.end() ? nullptr : &*found;
}

std::string RegistryFile::ResolvedPath(const Producer& producer) const {
    const std::string written = platform::normalise_path(expand_environment(producer.path));
    const fs::path path = platform::path_from_utf8(written);
    if (path.is_absolute()) return written;
    const std::string beside = platform::utf8_from_path((platform::path_from_utf8(folder) / path).lexically_normal());
    return platform::path_exists(beside) ? beside : written;
}

RegistryFile parse_registry(const std::string& text, const std::string& path) {
    const Source source(text, path);
    if (text.find('\0') != text.npos || !platform::is_valid_utf8(text)) source.Fail(0, "the file is not UTF-8 text");
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed) source.Fail(parsed.offset, parsed.description());

    RegistryFile registry;
    std::error_code error;
    registry.folder = platform::utf8_from_path(fs::absolute(platform::path_from_utf8(path), error).parent_path());
    for (const pugi::xml_node& group : require_root(source, document)) {
        require_element(source, group, "Producers");
        for (const pugi::xml_node& element : group) {
            require_element(source, element, "Producer");
            registry.producers.push_back(read_producer(source, element));
        }
    }
    name_producers(registry.producers);
    return registry;
}

RegistryFile read_registry_file(const std::string& path) { return parse_registry(platform::read_file(path, largest_file), path); }

}  // namespace kiv::registry
