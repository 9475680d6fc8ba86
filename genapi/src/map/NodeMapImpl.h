#pragma once

#include "genapi/src/map/Engine.h"

#include <GenApi/IDestroy.h>
#include <GenApi/IDeviceInfo.h>
#include <GenApi/INodeMap.h>
#include <GenApi/NodeCallback.h>

#include <atomic>
#include <memory>
#include <variant>

namespace GENAPI_NAMESPACE::inside {

class NodeBase;

/// A registered callback. Destroyed when nobody runs it any more.
struct Registration {
    Registration(CNodeCallback* what, CallbackHandleType name) : callback(what), handle(name) {}
    ~Registration() { callback->Destroy(); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    CNodeCallback* const callback;
    const CallbackHandleType handle;
    std::atomic<bool> active{true};
};

/// The node map: lock, node objects, callbacks and references around an engine.
class NodeMapImpl final : public INodeMap, public IDeviceInfo, public IDestroy {
public:
    NodeMapImpl(std::shared_ptr<const Description> description, GENICAM_NAMESPACE::gcstring deviceName);
    ~NodeMapImpl() override;
    NodeMapImpl(const NodeMapImpl&) = delete;
    NodeMapImpl& operator=(const NodeMapImpl&) = delete;

    void GetNodes(NodeList_t& Nodes) const override;
    INode* GetNode(const GENICAM_NAMESPACE::gcstring& Name) const override;
    void InvalidateNodes() const override;
    bool Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const override;
    bool Connect(IPort* pPort) const override;
    GENICAM_NAMESPACE::gcstring GetDeviceName() override;
    void Poll(int64_t ElapsedTime) override;
    CLock& GetLock() const override;
    uint64_t GetNumNodes() const override;
    bool ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrors) const override;
    CNodeWriteConcatenator* NewNodeWriteConcatenator() const override;
    bool ConcatenatedWrite(CNodeWriteConcatenator* pConcatenator, bool FeatureStreaming,
                           GENICAM_NAMESPACE::gcstring_vector* pErrors) override;
    void SetSuppressCallbackMode(bool Suppress) override;

    GENICAM_NAMESPACE::gcstring GetModelName() override;
    GENICAM_NAMESPACE::gcstring GetVendorName() override;
    GENICAM_NAMESPACE::gcstring GetToolTip() override;
    GENICAM_NAMESPACE::gcstring GetStandardNameSpace() override;
    void GetGenApiVersion(Version_t& Version, uint16_t& Build) override;
    void GetSchemaVersion(Version_t& Version) override;
    void GetDeviceVersion(Version_t& Version) override;
    GENICAM_NAMESPACE::gcstring GetProductGuid() override;
    GENICAM_NAMESPACE::gcstring GetVersionGuid() override;

    void Destroy() override;
    void AddReference();
    void DropReference();

    /// Of the description: what the map has to do without, and why.
    void GetDiagnostics(GENICAM_NAMESPACE::gcstring_vector& diagnostics) const;
    const Description& GetDescription() const { return *m_description; }
    /// The object for a node; made when it is first asked for. The lock must be held or is taken.
    NodeBase* NodeAt(NodeIndex node) const;
    INode* NodeOrNull(NodeIndex node) const;

    CallbackHandleType RegisterCallback(NodeIndex node, CNodeCallback* callback);
    bool DeregisterCallback(NodeIndex node, CallbackHandleType handle);
    void DeliverEvent(const uint8_t* data, size_t size, uint64_t eventId);

    /// Runs `work(engine)` under the lock; when the outermost one ends, the callbacks of all that has changed
    /// run, those for outside the lock after it has been released.
    template <class Work>
    auto Do(Work&& work) const {
        Operation operation(*this);
        if constexpr (std::is_void_v<decltype(work(m_engine))>) {
            work(m_engine);
            operation.Finish();
        } else {
            auto result = work(m_engine);
            operation.Finish();
            return result;
        }
    }
    /// The engine for reading what is kept; the caller holds the lock.
    Engine& GetEngine() const { return m_engine; }

private:
    using Registrations = std::vector<std::shared_ptr<Registration>>;

    /// One operation: holds the lock, and runs callbacks at its end.
    class Operation {
    public:
        explicit Operation(const NodeMapImpl& map) : m_map(map) {
            m_map.m_lock.Lock();
            ++m_map.m_nesting;
        }
        /// After an exception: callbacks still run, what they throw is dropped.
        ~Operation() {
            if (!m_finished)
                End();
        }
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;
        /// Throws the first exception of a callback, after all have run.
        void Finish() {
            m_finished = true;
            if (m_map.m_nesting == 1 && m_map.m_engine.HasChanged()) {
                RunCallbacks();
                return;
            }
            --m_map.m_nesting;
            m_map.m_lock.Unlock();
        }

    private:
        void RunCallbacks();
        Registrations Changed() const;
        std::exception_ptr End();

        const NodeMapImpl& m_map;
        bool m_finished = false;
    };

    INode* FindNode(std::string_view name) const;
    void WriteByName(const GENICAM_NAMESPACE::gcstring& name,
                     const std::variant<Number, GENICAM_NAMESPACE::gcstring>& value) const;
    NodeIndex FindPort(std::string_view name) const;

    std::shared_ptr<const Description> m_description;
    GENICAM_NAMESPACE::gcstring m_deviceName;
    mutable CLock m_lock;
    mutable Engine m_engine;
    mutable std::vector<std::unique_ptr<NodeBase>> m_nodes;
    std::unordered_map<NodeIndex, Registrations> m_callbacks;
    mutable int m_nesting = 0;
    bool m_suppress = false;
    std::atomic<int> m_references{0};
};

} // namespace GENAPI_NAMESPACE::inside
