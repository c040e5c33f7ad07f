#pragma once

#include <vector>

#include "GenApi/types.h"

/// Looking over the description of a camera without the camera: for those who write descriptions.

namespace GenApi {

enum EFindingSeverity : int {
    fsNote = 0,     ///< Unusual, and harmless here.
    fsWarning = 1,  ///< Not as the schema has it, or probably not meant; it is made the best of.
    fsError = 2     ///< A node, a reference or the whole description is lost.
};

/// One thing that is wrong or odd in a description.
struct DescriptionFinding {
    EFindingSeverity severity = fsNote;
    int64_t line = 0;   ///< In the text, from 1.
    gcstring nodeName;  ///< "" when it concerns the description as a whole.
    gcstring text;      ///< A sentence.
};

/// The bytes of a description file; of a zip archive, those of the first XML file in it. Throws RuntimeException when the file
/// cannot be read or the archive holds no description.
KIV_GENICAM_API gcstring ReadDescriptionFile(const gcstring& fileName);

/// What is wrong with a description, in the order of its lines. A text that is no description at all is one finding, too.
KIV_GENICAM_API std::vector<DescriptionFinding> CheckDescription(const gcstring& description);

}  // namespace GenApi
