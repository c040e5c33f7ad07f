// The node map of the aravis library, where it is installed, in the form in which the benchmarks use a node map.
//
// Its register cache is on, because ours always is. It has no call that invalidates everything; instead the cache is off while
// everything is read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench_memory.h"

namespace kiv::bench {

class AravisSubject {
public:
    static constexpr const char* name = "aravis";
    struct IntegerNode;
    struct FloatNode;
    struct EnumerationNode;
    struct BooleanNode;
    struct StringNode;
    struct CommandNode;
    struct RegisterNode;
    using Integer = IntegerNode*;
    using Float = FloatNode*;
    using Enumeration = EnumerationNode*;
    using Boolean = BooleanNode*;
    using String = StringNode*;
    using Command = CommandNode*;
    using Register = RegisterNode*;

    explicit AravisSubject(const std::string& xml);
    /// On a copy of some other device's memory, which begins at address 0.
    AravisSubject(const std::string& xml, const BenchMemory& memory);
    ~AravisSubject();
    AravisSubject(const AravisSubject&) = delete;
    AravisSubject& operator=(const AravisSubject&) = delete;

    Integer FindInteger(const std::string& node) const;
    Float FindFloat(const std::string& node) const;
    Enumeration FindEnumeration(const std::string& node) const;
    String FindString(const std::string& node) const;
    Command FindCommand(const std::string& node) const;
    Register FindRegister(const std::string& node) const;
    Boolean FindBoolean(const std::string& node) const;

    /// Look-up and access in one.
    int64_t ReadByName(const char* integer) const;
    void SetByName(const char* enumeration, const char* symbolic) const;

    static int64_t Read(Integer node);
    static double Read(Float node);
    static int64_t Read(Enumeration node);
    static bool Read(Boolean node);
    static std::string Read(String node);
    static void Read(Register node, uint8_t* bytes, size_t count);
    static bool IsLocked(Integer node);
    static void Set(Integer node, int64_t value);
    static void Set(Float node, double value);
    static void Set(Boolean node, bool value);
    static void Set(String node, const char* value);
    static void Set(Register node, const uint8_t* bytes, size_t count);
    static void Execute(Command node);
    static void Set(Enumeration node, const char* symbolic);

    void InvalidateAll() const;

private:
    struct Objects;
    std::unique_ptr<Objects> objects_;
};

}  // namespace kiv::bench
