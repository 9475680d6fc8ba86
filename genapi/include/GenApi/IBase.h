#pragma once

#include <GenApi/Types.h>

namespace GENAPI_NAMESPACE {

/// What all nodes and ports have. Objects of a node map belong to it and live as long as it does. Every
/// operation on them may be called from any thread and takes the map's lock.
struct GENAPI_API IBase {
    virtual EAccessMode GetAccessMode() const = 0;
    virtual ~IBase() = 0;
};

/// The mode that results where both restrictions hold: NI wins, then NA; RO with WO gives NA; then WO, then
/// RO.
inline EAccessMode Combine(EAccessMode left, EAccessMode right) {
    if (left == NI || right == NI)
        return NI;
    if (left == NA || right == NA || (left == RO && right == WO) || (left == WO && right == RO))
        return NA;
    if (left == WO || right == WO)
        return WO;
    if (left == RO || right == RO)
        return RO;
    return RW;
}

/// The narrower audience.
inline EVisibility Combine(EVisibility left, EVisibility right) {
    return left < right ? right : left;
}

/// The more restrictive way of caching: NoCache wins, then WriteAround.
inline ECachingMode Combine(ECachingMode left, ECachingMode right) {
    if (left == NoCache || right == NoCache)
        return NoCache;
    return left == WriteAround || right == WriteAround ? WriteAround : WriteThrough;
}

inline bool IsReadable(EAccessMode mode) {
    return mode == RW || mode == RO;
}
inline bool IsReadable(const IBase* p) {
    return p && IsReadable(p->GetAccessMode());
}
inline bool IsReadable(const IBase& r) {
    return IsReadable(r.GetAccessMode());
}

inline bool IsWritable(EAccessMode mode) {
    return mode == RW || mode == WO;
}
inline bool IsWritable(const IBase* p) {
    return p && IsWritable(p->GetAccessMode());
}
inline bool IsWritable(const IBase& r) {
    return IsWritable(r.GetAccessMode());
}

inline bool IsImplemented(EAccessMode mode) {
    return mode != NI;
}
inline bool IsImplemented(const IBase* p) {
    return p && IsImplemented(p->GetAccessMode());
}
inline bool IsImplemented(const IBase& r) {
    return IsImplemented(r.GetAccessMode());
}

inline bool IsAvailable(EAccessMode mode) {
    return mode != NI && mode != NA;
}
inline bool IsAvailable(const IBase* p) {
    return p && IsAvailable(p->GetAccessMode());
}
inline bool IsAvailable(const IBase& r) {
    return IsAvailable(r.GetAccessMode());
}

} // namespace GENAPI_NAMESPACE
