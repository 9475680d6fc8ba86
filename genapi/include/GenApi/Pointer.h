#pragma once

#include <GenApi/IBoolean.h>
#include <GenApi/ICategory.h>
#include <GenApi/IChunkPort.h>
#include <GenApi/ICommand.h>
#include <GenApi/IDeviceInfo.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IPort.h>
#include <GenApi/IRegister.h>
#include <GenApi/ISelector.h>
#include <GenApi/IString.h>

namespace GENAPI_NAMESPACE {

/// A pointer that asks an object for interface T when it is constructed or assigned, and is null where the
/// object lacks it. Owns nothing. Using a null one throws LogicalErrorException "NULL pointer dereferenced".
template <class T, class B = IBase>
class CPointer {
public:
    CPointer() : m_p(nullptr) {}
    CPointer(B* p) : m_p(p ? dynamic_cast<T*>(p) : nullptr) {} // NOLINT(google-explicit-constructor)
    virtual ~CPointer() {}
    CPointer(const CPointer&) = default;
    CPointer& operator=(const CPointer&) = default;
    CPointer& operator=(B* p) {
        m_p = p ? dynamic_cast<T*>(p) : nullptr;
        return *this;
    }

    operator T*() const { return Checked(); } // NOLINT(google-explicit-constructor): part of the interface
    T& operator*() const { return *Checked(); }
    T* operator->() const { return Checked(); }
    T& operator()() const { return *Checked(); }
    bool IsValid() const throw() { return m_p != nullptr; }
    operator bool() const throw() { return m_p != nullptr; } // NOLINT(google-explicit-constructor)
    bool operator==(const T* p) const { return m_p == p; }
    bool operator==(const CPointer& other) const { return m_p == other.m_p; }
    bool operator!=(const T* p) const { return m_p != p; }
    bool operator!=(const CPointer& other) const { return m_p != other.m_p; }
    // Null constants; without these the built-in comparisons compete.
    bool operator==(std::nullptr_t) const { return m_p == nullptr; }
    bool operator==(int) const { return m_p == nullptr; }
    bool operator==(long) const { return m_p == nullptr; }
    bool operator!=(std::nullptr_t) const { return m_p != nullptr; }
    bool operator!=(int) const { return m_p != nullptr; }
    bool operator!=(long) const { return m_p != nullptr; }

protected:
    T* Checked() const {
        if (!m_p)
            throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
        return m_p;
    }

    T* m_p;
};

typedef CPointer<IBase> CBasePtr;
typedef CPointer<INode> CNodePtr;
typedef CPointer<IValue> CValuePtr;
typedef CPointer<ICategory> CCategoryPtr;
typedef CPointer<IBoolean> CBooleanPtr;
typedef CPointer<IInteger> CIntegerPtr;
typedef CPointer<IString> CStringPtr;
typedef CPointer<IRegister> CRegisterPtr;
typedef CPointer<IEnumeration> CEnumerationPtr;
typedef CPointer<IEnumEntry> CEnumEntryPtr;
typedef CPointer<IPort> CPortPtr;
typedef CPointer<ICommand> CCommandPtr;
typedef CPointer<IChunkPort> CChunkPortPtr;
typedef CPointer<ISelector> CSelectorPtr;
typedef CPointer<INodeMap, INodeMap> CNodeMapPtr;
typedef CPointer<IDeviceInfo, INodeMap> CDeviceInfoPtr;

/// A float pointer that also reaches the same feature in another form.
class CFloatPtr : public CPointer<IFloat> {
public:
    CFloatPtr() = default;
    CFloatPtr(IBase* p) : CPointer<IFloat>(p) {} // NOLINT(google-explicit-constructor): part of the interface
    CFloatPtr& operator=(IBase* p) {
        CPointer<IFloat>::operator=(p);
        return *this;
    }

    /// The node that can stand for this one as an integer; null when there is none.
    IInteger* GetIntAlias() const { return dynamic_cast<IInteger*>(CastAlias()); }
    IEnumeration* GetEnumAlias() const { return dynamic_cast<IEnumeration*>(CastAlias()); }

private:
    INode* CastAlias() const {
        INode* node = dynamic_cast<INode*>(Checked());
        return node ? node->GetCastAlias() : nullptr;
    }
};

template <class T, class B>
bool IsReadable(const CPointer<T, B>& pointer) {
    return pointer.IsValid() && IsReadable(pointer->GetAccessMode());
}
template <class T, class B>
bool IsWritable(const CPointer<T, B>& pointer) {
    return pointer.IsValid() && IsWritable(pointer->GetAccessMode());
}
template <class T, class B>
bool IsImplemented(const CPointer<T, B>& pointer) {
    return pointer.IsValid() && IsImplemented(pointer->GetAccessMode());
}
template <class T, class B>
bool IsAvailable(const CPointer<T, B>& pointer) {
    return pointer.IsValid() && IsAvailable(pointer->GetAccessMode());
}
template <class T, class B>
bool IsVisible(const CPointer<T, B>& pointer, EVisibility maxVisibility) {
    return pointer.IsValid() && IsVisible(&*pointer, maxVisibility);
}
template <class T, class B>
bool IsCacheable(const CPointer<T, B>& pointer) {
    return pointer.IsValid() && IsCacheable(&*pointer);
}

} // namespace GENAPI_NAMESPACE
