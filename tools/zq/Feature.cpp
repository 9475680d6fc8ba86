#include "tools/zq/Feature.h"

#include "tools/zq/Failure.h"

#include <nlohmann/json.hpp>

namespace ZqTool {

namespace {

using namespace ZqApi;
using namespace GenApi;

std::string Entries(IEnumeration& enumeration) {
    StringList_t names;
    enumeration.GetSymbolics(names);
    std::string text;
    for (const auto& name : names)
        text += (text.empty() ? "one of " : ", ") + std::string(name.c_str());
    return text.empty() ? "another feature, as this one has no value now" : text;
}

template <class Number>
std::string Range(Number& number) {
    return "a value from " + nlohmann::json(number.GetMin()).dump() + " to " +
           nlohmann::json(number.GetMax()).dump();
}

/// What the feature takes now, for the third line of a refusal.
std::string Advice(IValue& value) {
    try {
        if (!IsWritable(value.GetAccessMode()))
            return "see what may be written now with: zq features";
        if (auto* enumeration = dynamic_cast<IEnumeration*>(&value))
            return Entries(*enumeration);
        if (auto* integer = dynamic_cast<IInteger*>(&value))
            return Range(*integer) + ", step " + std::to_string(integer->GetInc());
        if (auto* number = dynamic_cast<IFloat*>(&value))
            return Range(*number);
        if (auto* text = dynamic_cast<IString*>(&value))
            return "a text of at most " + std::to_string(text->GetMaxLength()) + " bytes";
    } catch (const GenICam::GenericException&) {
        // The limits can't be read either: the general advice is all there is.
    }
    return "see what it is with: zq features";
}

} // namespace

IValue& FindFeature(INodeMap& features, const std::string& name, const std::string& device) {
    auto* value = dynamic_cast<IValue*>(features.GetNode(name.c_str()));
    if (value == nullptr || !IsImplemented(value->GetAccessMode()))
        throw Failure("looking for " + name, device + " has no feature of that name",
                      "check what there is with: zq features " + device + " --all", NothingFound);
    return *value;
}

std::string ReadFeature(IValue& feature, const std::string& name, const std::string& device) {
    return Doing("reading " + name + " of " + device,
                 [&] { return std::string(feature.ToString().c_str()); });
}

void SetFeature(INodeMap& features, const std::string& name, const std::string& value,
                const std::string& device) {
    IValue& feature = FindFeature(features, name, device);
    try {
        if (auto* command = dynamic_cast<ICommand*>(&feature))
            command->Execute();
        else
            feature.FromString(value.c_str());
    } catch (const CZqGenTLErrorException& error) {
        throw Failure::Of("setting " + name + " of " + device + " to " + value, error);
    } catch (const GenICam::GenericException& error) {
        throw Failure("setting " + name + " of " + device + " to " + value, error.GetDescription(),
                      Advice(feature));
    }
}

std::string TypeOf(INode& node) {
    const std::string name = EInterfaceTypeClass::ToString(node.GetPrincipalInterfaceType()).c_str();
    return name.rfind("I", 0) == 0 ? name.substr(1) : name;
}

std::string UnitOf(INode& node) {
    if (auto* number = dynamic_cast<IFloat*>(&node))
        return number->GetUnit().c_str();
    if (auto* number = dynamic_cast<IInteger*>(&node))
        return number->GetUnit().c_str();
    return {};
}

nlohmann::ordered_json JsonOf(IValue& value) {
    switch (value.GetNode()->GetPrincipalInterfaceType()) {
    case intfIInteger:
        return dynamic_cast<IInteger&>(value).GetValue();
    case intfIBoolean:
        return dynamic_cast<IBoolean&>(value).GetValue();
    case intfIFloat:
        return dynamic_cast<IFloat&>(value).GetValue();
    default:
        return std::string(value.ToString().c_str());
    }
}

} // namespace ZqTool
