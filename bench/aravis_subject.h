// The node map of the aravis library, where it is installed, in the form in which the benchmarks use a node map.
//
// Its register cache is on, because ours always is. It has no call that invalidates everything; instead the cache is off while
// everything is read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace kiv::bench {

class AravisSubject {
public:
    static constexpr const char* name = "aravis";
    struct IntegerNode;
    struct FloatNode;
    struct EnumerationNode;
    struct BooleanNode;
    using Integer = IntegerNode*;
    using Float = FloatNode*;
    using Enumeration = EnumerationNode*;
    using Boolean = BooleanNode*;

    explicit AravisSubject(const std::string& xml);
    ~AravisSubject();
    AravisSubject(const AravisSubject&) = delete;
    AravisSubject& operator=(const AravisSubject&) = delete;

    Integer FindInteger(const std::string& node) const;
    Float FindFloat(const std::string& node) const;
    Enumeration FindEnumeration(const std::string& node) const;
    Boolean FindBoolean(const std::string& node) const;

    static int64_t Read(Integer node);
    static double Read(Float node);
    static int64_t Read(Enumeration node);
    static bool Read(Boolean node);
    static void Set(Integer node, int64_t value);
    static void Set(Enumeration node, const char* symbolic);

    void InvalidateAll() const;

private:
    struct Objects;
    std::unique_ptr<Objects> objects_;
};

}  // namespace kiv::bench
