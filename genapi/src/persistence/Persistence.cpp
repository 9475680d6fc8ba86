#include <GenApi/Persistence.h>

#include "genapi/src/persistence/FeatureCollector.h"
#include "genapi/src/persistence/FeatureLoader.h"
#include "genapi/src/persistence/MapOperation.h"
#include "genapi/src/persistence/StreamingScope.h"

#include <GenApi/GenApi.h>

#include <string>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

constexpr char kMagic[] = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";

bool SameTexts(const gcstring_vector& left, const gcstring_vector& right) {
    if (left.size() != right.size())
        return false;
    for (size_t i = 0; i < left.size(); ++i)
        if (left[i] != right[i])
            return false;
    return true;
}

INodeMap& Required(INodeMap* map) {
    if (!map)
        throw INVALID_ARGUMENT_EXCEPTION("Nodemap pointer is NULL");
    return *map;
}

/// True while the device is told to keep its parameters, as it is while it streams.
bool IsLocked(INodeMap& map) {
    const CIntegerPtr locked = map.GetNode("TLParamsLocked");
    return locked && IsReadable(locked) && locked->GetValue() != 0;
}

gcstring_vector Load(INodeMap& map, const gcstring_vector& names, const gcstring_vector& values,
                     bool verify) {
    gcstring_vector failures;
    if (IsLocked(map)) {
        failures.push_back("The device is streaming ('TLParamsLocked' is not 0): nothing has been loaded.");
        return failures;
    }
    inside::StreamingScope scope(map, inside::kStreamingStart, inside::kStreamingEnd);
    inside::AsOneOperation(map, [&] { failures = inside::LoadFeatures(map, names, values, verify); });
    scope.Close();
    try {
        inside::RequireValidRegisters(map);
    } catch (const GENICAM_NAMESPACE::RuntimeException& invalid) {
        failures.push_back(invalid.GetDescription());
    }
    return failures;
}

} // namespace

CFeatureBag::CFeatureBag() = default;
CFeatureBag::~CFeatureBag() = default;

bool CFeatureBag::LoadFromBag(INodeMap* pNodeMap, bool Verify, gcstring_vector* pErrorList) {
    const gcstring_vector failures = Load(Required(pNodeMap), m_Names, m_Values, Verify);
    if (pErrorList)
        for (size_t i = 0; i < failures.size(); ++i)
            pErrorList->push_back(failures[i]);
    return failures.empty();
}

int64_t CFeatureBag::StoreToBag(INodeMap* pNodeMap, int MaxNumPersistScriptEntries) {
    INodeMap& map = Required(pNodeMap);
    gcstring_vector names;
    gcstring_vector values;
    inside::StreamingScope scope(map, "DeviceFeaturePersistenceStart", "DeviceFeaturePersistenceEnd");
    inside::AsOneOperation(map,
                           [&] { inside::CollectFeatures(map, MaxNumPersistScriptEntries, names, values); });
    scope.Close();
    // Neither can fail: the lists stay of one length.
    m_Names = std::move(names);
    m_Values = std::move(values);
    return static_cast<int64_t>(m_Names.size());
}

gcstring CFeatureBag::ToString() {
    gcstring text;
    for (size_t i = 0; i < m_Names.size(); ++i)
        text += m_Names[i] + " = " + m_Values[i] + "\n";
    return text;
}
const gcstring& CFeatureBag::GetBagName() const {
    return m_BagName;
}
void CFeatureBag::SetBagName(const gcstring& bagName) {
    m_BagName = bagName;
}
bool CFeatureBag::operator==(const CFeatureBag& other) const {
    return SameTexts(m_Names, other.m_Names) && SameTexts(m_Values, other.m_Values);
}
bool CFeatureBag::operator!=(const CFeatureBag& other) const {
    return !(*this == other);
}

std::istream& operator>>(std::istream& stream, CFeatureBag& bag) {
    if (stream.peek() == std::istream::traits_type::eof())
        throw RUNTIME_EXCEPTION("The stream is eof");
    bag.m_Names.clear();
    bag.m_Values.clear();
    std::string line;
    std::getline(stream, line);
    if (line.find(kMagic) == line.npos)
        throw RUNTIME_EXCEPTION("The stream is not a GenApi feature stream since it is missing the magic "
                                "GUID in the first line");
    while (std::getline(stream, line)) {
        if (line.find('\0') != line.npos)
            throw RUNTIME_EXCEPTION("The stream is not a GenApi feature stream since it contains a NUL");
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.find_first_not_of(" \t") == line.npos || line[0] == '#')
            continue;
        // A line without a tab stays, as a name without a value, so that loading can complain of it.
        const size_t tab = line.find('\t');
        bag.m_Names.push_back(line.substr(0, tab).c_str());
        bag.m_Values.push_back(tab == line.npos ? "" : line.c_str() + tab + 1);
    }
    return stream;
}

std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag) {
    stream << "# " << kMagic << "\n# GenApi persistence file (version 3.0.0)\n# " << bag.m_BagName << '\n';
    for (size_t i = 0; i < bag.m_Names.size(); ++i)
        stream << bag.m_Names[i] << '\t' << bag.m_Values[i] << '\n';
    return stream;
}

} // namespace GENAPI_NAMESPACE
