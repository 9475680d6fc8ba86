#pragma once

#include <GenApi/GenApi.h>

/// Asks every node of a map for all that there is, over memory that answers with a pattern and can be
/// written.
class NodeWalk final : public GenApi::IPort {
public:
    void Read(void* buffer, int64_t address, int64_t length) override {
        for (int64_t i = 0; i < length; ++i)
            static_cast<uint8_t*>(buffer)[i] =
                static_cast<uint8_t>((static_cast<uint64_t>(address) + static_cast<uint64_t>(i)) * 31 + 7);
    }
    void Write(const void*, int64_t, int64_t) override {}
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

    void Walk(GenApi::INodeMap& map) {
        map.Connect(this);
        GenApi::NodeList_t nodes;
        map.GetNodes(nodes);
        constexpr size_t kMaxNodes = 200; // deep files cost a million steps for each
        for (size_t i = 0; i < nodes.size() && i < kMaxNodes; ++i)
            Visit(nodes[i]);
        map.Poll(1000);
        map.Connect(nullptr);
    }

private:
    template <class Work>
    static void Try(Work&& work) {
        try {
            work();
        } catch (const GenICam::GenericException&) {
            // Refusing is an answer.
        }
    }

    static void Visit(GenApi::INode* node) {
        using namespace GenApi;
        Try([&] { node->GetAccessMode(); });
        Try([&] { node->GetDocuURL(); });
        Try([&] {
            NodeList_t children;
            node->GetChildren(children, ctDependingNodes);
        });
        const CValuePtr value = node;
        if (!value)
            return;
        Try([&] { value->ToString(true, true); });
        Try([&] { value->FromString(value->ToString()); });
        Try([&] {
            if (const CIntegerPtr integer = node) {
                const auto value = static_cast<uint64_t>(integer->GetMin() & integer->GetMax());
                integer->SetValue(static_cast<int64_t>(value + static_cast<uint64_t>(integer->GetInc())));
            }
        });
        Try([&] {
            if (const CFloatPtr number = node)
                number->SetValue(number->GetMin() / 2 + number->GetMax() / 2);
        });
        Try([&] {
            if (const CCommandPtr command = node)
                command->Execute();
        });
        Try([&] {
            StringList_t symbolics;
            if (const CEnumerationPtr enumeration = node)
                enumeration->GetSymbolics(symbolics);
        });
        Try([&] { node->InvalidateNode(); });
    }
};
