#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

struct IEnumEntry;

/// One of a list of named values.
struct GENAPI_API IEnumeration : virtual public IValue {
    /// The names of the entries that are available now, in document order.
    virtual void GetSymbolics(StringList_t& Symbolics) = 0;
    /// All entries, in document order.
    virtual void GetEntries(NodeList_t& Entries) = 0;
    virtual IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) = 0;
    virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
    virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
    virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
    /// Null when there is no such entry.
    virtual IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) = 0;
    virtual IEnumEntry* GetEntry(int64_t IntValue) = 0;
    /// Null when the current value has no entry.
    virtual IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;
};

} // namespace GENAPI_NAMESPACE
