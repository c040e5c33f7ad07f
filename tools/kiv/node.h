/// A node of a camera's feature tree, borrowed: it lives as long as its camera is open. Reads throw ApiError.
#pragma once

#include <Kiv_Factory.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What a feature is for its user, whatever element of the description it comes from.
enum class Kind { kCategory, kInteger, kFloat, kBoolean, kEnumeration, kEntry, kCommand, kString, kRegister, kOther };

const char* kind_name(Kind kind);
/// "NI", "NA", "WO", "RO", "RW"
const char* access_name(uint32_t access);
/// "beginner", "expert", "guru", "invisible"
const char* visibility_name(uint32_t visibility);

class Node {
public:
    explicit Node(NODE_HANDLE handle) : handle_(handle) {}

    NODE_HANDLE Handle() const { return handle_; }
    std::string Name() const;
    std::string DisplayName() const;
    std::string ToolTip() const;
    std::string Description() const;
    /// Empty for features without one.
    std::string Unit() const;
    Kind GetKind() const;
    uint32_t Access() const;
    uint32_t Visibility() const;
    bool IsImplemented() const { return Access() != 0; }
    bool IsAvailable() const { return Access() >= 2; }
    bool IsReadable() const { return Access() == 3 || Access() == 4; }

    /// The value as a text, enumerations by their symbolic name.
    std::string Text() const;
    int64_t Integer() const;
    double Double() const;

    /// The features under a category, sub-categories included. The camera is needed because the walk goes by name.
    std::vector<Node> SubFeatures(CAM_HANDLE camera) const;
    /// The same in the node map of a module: a transport layer, an interface, a producer's device handle.
    std::vector<Node> ModuleSubFeatures(void* module) const;
    std::vector<Node> Entries() const;
    /// The name of an entry within its enumeration.
    std::string Symbolic(const std::string& enumeration) const;
    int64_t EntryValue() const;
    std::vector<Node> Selecting() const;
    std::vector<Node> Selected() const;

private:
    NODE_HANDLE handle_;
};
