// GenApi::ReadDescriptionFile
#include <GenApi/description_check.h>

#include "camera/description_file.h"

namespace GenApi {

gcstring ReadDescriptionFile(const gcstring& fileName) { return kiv::read_description_file(fileName.str()); }

}  // namespace GenApi
