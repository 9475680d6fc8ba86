#pragma once

#include <GenApi/INode.h>

namespace GENAPI_NAMESPACE {

/// Something to run when a node may have changed. Runs on the thread that caused the change, once per change
/// and node. Registered callbacks belong to their node.
class GENAPI_API CNodeCallback {
public:
    CNodeCallback(INode* pNode, ECallbackType CallbackType);
    virtual ~CNodeCallback();
    CNodeCallback(const CNodeCallback&) = delete;
    CNodeCallback& operator=(const CNodeCallback&) = delete;

    /// Runs the callback if `CallbackType` is the one it was made for.
    virtual void operator()(ECallbackType CallbackType) const = 0;
    /// Ends the object.
    virtual void Destroy() = 0;
    INode* GetNode();
    ECallbackType GetCallbackType() const;

protected:
    INode* m_pNode;
    ECallbackType m_CallbackType;
};

/// Calls a function, or anything that is called like one, with the node.
template <class Function>
class Function_NodeCallback final : public CNodeCallback {
public:
    Function_NodeCallback(INode* pNode, const Function& function, ECallbackType CallbackType)
        : CNodeCallback(pNode, CallbackType), m_function(function) {}
    void operator()(ECallbackType CallbackType) const override {
        if (CallbackType == m_CallbackType)
            m_function(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    mutable Function m_function;
};

/// Calls a member function of a client, which is not owned, with the node.
template <class Client, class Member>
class Member_NodeCallback final : public CNodeCallback {
public:
    Member_NodeCallback(INode* pNode, Client& client, Member member, ECallbackType CallbackType)
        : CNodeCallback(pNode, CallbackType), m_client(client), m_member(member) {}
    void operator()(ECallbackType CallbackType) const override {
        if (CallbackType == m_CallbackType)
            (m_client.*m_member)(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    Client& m_client;
    Member m_member;
};

/// Registers `function(INode*)`. LogicalErrorException "NULL pointer dereferenced" for a null node.
template <class Function>
CallbackHandleType Register(INode* pNode, const Function& function,
                            ECallbackType CallbackType = cbPostInsideLock) {
    if (!pNode)
        throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
    return pNode->RegisterCallback(new Function_NodeCallback<Function>(pNode, function, CallbackType));
}

/// Functions are kept as pointers.
inline CallbackHandleType Register(INode* pNode, void (*function)(INode*),
                                   ECallbackType CallbackType = cbPostInsideLock) {
    return Register<void (*)(INode*)>(pNode, function, CallbackType);
}

/// Registers `client.member(INode*)`; the client must outlive the registration.
template <class Client, class Owner, class Result>
CallbackHandleType Register(INode* pNode, Client& client, Result (Owner::*member)(INode*),
                            ECallbackType CallbackType = cbPostInsideLock) {
    if (!pNode)
        throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
    typedef Result (Owner::*Member)(INode*);
    return pNode->RegisterCallback(
        new Member_NodeCallback<Client, Member>(pNode, client, member, CallbackType));
}

template <class Client, class Owner, class Result>
CallbackHandleType Register(INode* pNode, const Client& client, Result (Owner::*member)(INode*) const,
                            ECallbackType CallbackType = cbPostInsideLock) {
    if (!pNode)
        throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
    typedef Result (Owner::*Member)(INode*) const;
    return pNode->RegisterCallback(
        new Member_NodeCallback<const Client, Member>(pNode, client, member, CallbackType));
}

/// Ends a registration, whichever node it is of. Does nothing for a handle that is not registered.
GENAPI_API void Deregister(CallbackHandleType hCallback);

} // namespace GENAPI_NAMESPACE
