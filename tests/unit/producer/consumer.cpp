#include "consumer.h"

namespace kiv::test {

EntryPoints::EntryPoints(const std::string& path) : library_(path) {
#define KIV_RESOLVE_ENTRY(name, arguments)                           \
    name = reinterpret_cast<GenTL::P##name>(library_.Symbol(#name)); \
    if (!name) throw std::runtime_error(std::string("The producer does not export ") + #name);
    GENTL_FUNCTION_LIST(KIV_RESOLVE_ENTRY)
#undef KIV_RESOLVE_ENTRY
}

}  // namespace kiv::test
