#pragma once

/// KIV_GENICAM_API marks what crosses the border of the library: classes whose members an application calls, and classes that
/// are thrown or cast across it. The library is built with hidden visibility, so anything unmarked stays inside, and its type
/// information would be a different one on each side.
#if defined(_WIN32)
#if defined(KIV_FACTORY_BUILD)
#define KIV_GENICAM_API __declspec(dllexport)
#else
#define KIV_GENICAM_API
#endif
#else
#define KIV_GENICAM_API __attribute__((visibility("default")))
#endif
