#include "GenICam/exceptions.h"

namespace GenICam {

struct GenericException::Texts {
    std::string description, file, node, what;
    unsigned line;
};

namespace {

/// Without its folders: what a message tells must not depend on where the library was built.
std::string_view file_of(std::string_view path) { return path.substr(path.find_last_of("/\\") + 1); }

std::string sentence(std::string_view description, NodePlace where, std::string_view file, unsigned line, std::string_view type) {
    std::string text(description);
    text.append(" : ").append(type).append(" thrown");
    if (!where.node.empty()) text.append(" in node '").append(where.node).append("'");
    if (!where.operation.empty()) {
        text.append(" while calling '")
            .append(where.node)
            .append(where.node.empty() ? "" : ".")
            .append(where.operation)
            .append("()'");
    }
    return text.append(" (file '").append(file).append("', line ").append(std::to_string(line)).append(")");
}

}  // namespace

GenericException::GenericException(std::string_view description, std::string_view sourceFile, unsigned sourceLine)
    : GenericException(description, {}, sourceFile, sourceLine, "GenericException") {}

GenericException::GenericException(std::string_view description, std::string_view sourceFile, unsigned sourceLine,
                                   std::string_view type)
    : GenericException(description, {}, sourceFile, sourceLine, type) {}

GenericException::GenericException(std::string_view description, NodePlace where, std::string_view sourceFile,
                                   unsigned sourceLine, std::string_view type)
    : texts_(
          std::make_shared<const Texts>(Texts{std::string(description), std::string(file_of(sourceFile)), std::string(where.node),
                                              sentence(description, where, file_of(sourceFile), sourceLine, type), sourceLine})) {
}

GenericException::GenericException(const GenericException&) noexcept = default;
GenericException& GenericException::operator=(const GenericException&) noexcept = default;
GenericException::~GenericException() = default;

const char* GenericException::GetDescription() const noexcept { return texts_->description.c_str(); }
const char* GenericException::GetSourceFileName() const noexcept { return texts_->file.c_str(); }
unsigned GenericException::GetSourceLine() const noexcept { return texts_->line; }
const char* GenericException::GetNodeName() const noexcept { return texts_->node.c_str(); }
const char* GenericException::what() const noexcept { return texts_->what.c_str(); }

// Defined here so that each class has its type information in this module and nowhere else.
#define KIV_GENICAM_EXCEPTION(Name)                        \
    Name::Name(const Name&) noexcept = default;            \
    Name& Name::operator=(const Name&) noexcept = default; \
    Name::~Name() = default

KIV_GENICAM_EXCEPTION(BadAllocException);
KIV_GENICAM_EXCEPTION(InvalidArgumentException);
KIV_GENICAM_EXCEPTION(OutOfRangeException);
KIV_GENICAM_EXCEPTION(PropertyException);
KIV_GENICAM_EXCEPTION(RuntimeException);
KIV_GENICAM_EXCEPTION(LogicalErrorException);
KIV_GENICAM_EXCEPTION(AccessException);
KIV_GENICAM_EXCEPTION(TimeoutException);
KIV_GENICAM_EXCEPTION(DynamicCastException);

}  // namespace GenICam
