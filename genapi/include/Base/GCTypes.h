#pragma once

/// The versioned namespaces and the export marks of the node-map library. The suffix keeps our symbols apart
/// from those of another build of the same interface that a producer may load into this process.

#include <cstddef>
#include <cstdint>

#define GENICAM_NAMESPACE GenICam_3_0_ZQ
#define GENAPI_NAMESPACE GenApi_3_0_ZQ

#if defined(_WIN32)
#if defined(ZQGENAPI_BUILDING)
#define GCBASE_API __declspec(dllexport)
#else
#define GCBASE_API __declspec(dllimport)
#endif
#else
#define GCBASE_API __attribute__((visibility("default")))
#endif
#define GENAPI_API GCBASE_API

/// Marks a member function whose argument `text` is checked like printf's (counting `this`).
#if defined(__GNUC__)
#define GCBASE_PRINTF_FORMAT(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define GCBASE_PRINTF_FORMAT(text, first)
#endif

namespace GENICAM_NAMESPACE {}
namespace GENAPI_NAMESPACE {}
namespace GenICam = GENICAM_NAMESPACE;
namespace GenApi = GENAPI_NAMESPACE;
