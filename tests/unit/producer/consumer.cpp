#include "consumer.h"

namespace kiv::test {

EntryPoints::EntryPoints(const std::string& path) : library_(path) {
#define KIV_RESOLVE_ENTRY(name, arguments)                           \
    name = reinterpret_cast<GenTL::P##name>(library_.Symbol(#name)); \
    if (!name) throw std::runtime_error(std::string("The producer does not export ") + #name);
    GENTL_FUNCTION_LIST(KIV_RESOLVE_ENTRY)
#undef KIV_RESOLVE_ENTRY
#define KIV_RESOLVE_EXTENSION(name, arguments) name = reinterpret_cast<GenTL::P##name>(library_.Symbol(#name));
    GENTL_EXTENSION_LIST(KIV_RESOLVE_EXTENSION)
#undef KIV_RESOLVE_EXTENSION
}

}  // namespace kiv::test
