#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "GenICam/export.h"

namespace GenICam {

/// Where an exception was made; taken from the place of the call by default arguments.
struct SourcePlace {
    const char* file;
    unsigned line;
    static constexpr SourcePlace Here(const char* file = __builtin_FILE(), unsigned line = __builtin_LINE()) {
        return {file, line};
    }
};

/// The node, and the operation on it, that an exception is about. Both may be empty.
struct NodePlace {
    std::string_view node;
    std::string_view operation;  ///< As in "SetValue".
};

/// Base of all errors of the GenICam modules.
///
/// what() tells everything in one line:
///
///     <description> : <Type> thrown in node 'N' while calling 'N.Op()' (file 'f', line n)
///     <description> : <Type> thrown (file 'f', line n)
///
/// GetDescription() is the bare description. Copies share the texts, so that copying never throws.
class KIV_GENICAM_API GenericException : public std::exception {
public:
    GenericException(std::string_view description, std::string_view sourceFile, unsigned sourceLine);
    GenericException(std::string_view description, std::string_view sourceFile, unsigned sourceLine, std::string_view type);
    GenericException(std::string_view description, NodePlace where, std::string_view sourceFile, unsigned sourceLine,
                     std::string_view type);
    GenericException(const GenericException&) noexcept;
    GenericException& operator=(const GenericException&) noexcept;
    ~GenericException() override;

    const char* GetDescription() const noexcept;
    const char* GetSourceFileName() const noexcept;
    unsigned GetSourceLine() const noexcept;
    /// The node that was being used; "" when none was involved.
    const char* GetNodeName() const noexcept;
    const char* what() const noexcept override;

private:
    struct Texts;
    std::shared_ptr<const Texts> texts_;
};

// One class a kind of error; they differ in nothing but their type.
#define KIV_GENICAM_EXCEPTION(Name)                                                                           \
    class KIV_GENICAM_API Name : public GenericException {                                                    \
    public:                                                                                                   \
        Name(std::string_view description, std::string_view sourceFile, unsigned sourceLine)                  \
            : GenericException(description, sourceFile, sourceLine, #Name) {}                                 \
        Name(std::string_view description, NodePlace where, std::string_view sourceFile, unsigned sourceLine) \
            : GenericException(description, where, sourceFile, sourceLine, #Name) {}                          \
        explicit Name(std::string_view description, SourcePlace place = SourcePlace::Here())                  \
            : GenericException(description, place.file, place.line, #Name) {}                                 \
        Name(std::string_view description, NodePlace where, SourcePlace place = SourcePlace::Here())          \
            : GenericException(description, where, place.file, place.line, #Name) {}                          \
        Name(const Name&) noexcept;                                                                           \
        Name& operator=(const Name&) noexcept;                                                                \
        ~Name() override;                                                                                     \
    }

KIV_GENICAM_EXCEPTION(BadAllocException);
KIV_GENICAM_EXCEPTION(InvalidArgumentException);
KIV_GENICAM_EXCEPTION(OutOfRangeException);
KIV_GENICAM_EXCEPTION(PropertyException);
KIV_GENICAM_EXCEPTION(RuntimeException);
KIV_GENICAM_EXCEPTION(LogicalErrorException);
KIV_GENICAM_EXCEPTION(AccessException);
KIV_GENICAM_EXCEPTION(TimeoutException);
KIV_GENICAM_EXCEPTION(DynamicCastException);
#undef KIV_GENICAM_EXCEPTION

}  // namespace GenICam
