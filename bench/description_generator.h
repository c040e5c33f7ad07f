// Makes device descriptions of any size for measuring, in the mixture that descriptions of real cameras have: about a quarter
// entries of enumerations, two fifths registers, a tenth integer formulas, three quarters of an invalidator per node, texts for
// whoever looks at the features, some 350 bytes a node.
//
// The same arguments always make the same text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kiv::bench {

struct Description {
    std::string xml;
    size_t nodes = 0;  ///< entries of enumerations and structures counted
    // The features, for reading them all.
    std::vector<std::string> integers, floats, enumerations, booleans;
};

/// At least `nodes` nodes. Besides the mixture it has these:
///
///     CachedInteger       Integer over a register that may be cached
///     UncachedInteger     Integer over a register that may not
///     ConvertedFloat      Converter over a cached register
///     OneVariable         SwissKnife of one variable
///     FourVariables       SwissKnife of four
///     Mode                Enumeration over bits of a register: Mode0 to Mode7
///     Field, Flag, Number, Text, Bytes, ConvertedInteger, Start
///                         a node of each other kind over a cached register; "Uncached" in front: over one that is not cached
///     Chunk0, Chunk1...   registers of 4 bytes at the beginning of a chunk each
Description generate_description(size_t nodes);

constexpr uint64_t chunk_id_of_module(size_t number) { return 0x10000 + number; }

}  // namespace kiv::bench
