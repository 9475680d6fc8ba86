#pragma once

#include <GenApi/Types.h>

namespace GENAPI_NAMESPACE {

/// The text forms of the enumerations. FromString is false, and leaves the value, for a text that it does not
/// know; ToString of a value outside the enumeration gives the name of its undefined value.
#define GENAPI_DECLARE_ENUM_CLASS(Enum)                                                                      \
    class GENAPI_API Enum##Class {                                                                           \
    public:                                                                                                  \
        static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, Enum* pValue);                   \
        static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, const Enum* pValue);                     \
        static GENICAM_NAMESPACE::gcstring ToString(Enum Value);                                             \
    }

GENAPI_DECLARE_ENUM_CLASS(EAccessMode);
GENAPI_DECLARE_ENUM_CLASS(EVisibility);
GENAPI_DECLARE_ENUM_CLASS(ECachingMode);
GENAPI_DECLARE_ENUM_CLASS(ERepresentation);
GENAPI_DECLARE_ENUM_CLASS(EEndianess);
GENAPI_DECLARE_ENUM_CLASS(ESign);
GENAPI_DECLARE_ENUM_CLASS(ENameSpace);
GENAPI_DECLARE_ENUM_CLASS(EStandardNameSpace);
GENAPI_DECLARE_ENUM_CLASS(EYesNo);
GENAPI_DECLARE_ENUM_CLASS(ESlope);
GENAPI_DECLARE_ENUM_CLASS(EDisplayNotation);
GENAPI_DECLARE_ENUM_CLASS(EInterfaceType);

#undef GENAPI_DECLARE_ENUM_CLASS

} // namespace GENAPI_NAMESPACE
