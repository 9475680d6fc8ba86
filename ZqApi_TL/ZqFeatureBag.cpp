#include "ZqApi_TL/ZqFeatureBag.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqFeatureBag";
constexpr const char* MAGIC = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
constexpr const char* VERSION = "3.0.0";
// With its terminator: longer first lines and names end the reading.
constexpr std::streamsize LINE_CAPACITY = 1024;

INodeMap* Checked(INodeMap* pNodeMap, int line) {
    if (pNodeMap == nullptr)
        throw ReportError<GenICam::InvalidArgumentException>(UNIT, line, "Nodemap pointer is NULL");
    return pNodeMap;
}

/// Runs `action`; what a list that can't grow throws becomes an exception of this unit.
template <class Action>
auto ConvertGrowthFailure(int line, Action action) -> decltype(action()) {
    try {
        return ConvertBadAlloc(UNIT, line, action);
    } catch (const std::length_error& failure) {
        throw ReportError<GenICam::InvalidArgumentException>(UNIT, line, "%s", failure.what());
    }
}

/// Kept: of a comment longer than that, the rest is read as data.
void SkipComments(std::istream& stream) {
    while (stream.peek() == '#')
        stream.ignore(LINE_CAPACITY, '\n');
}

template <class File>
File Opened(const gcstring& fileName, std::ios::openmode mode) {
    File file(fileName.c_str(), mode);
    if (!file)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "File %s could not be opened.",
                                                     fileName.c_str());
    return file;
}

} // namespace

int64_t CZqFeatureBag::StoreNodeMapToBag(INodeMap* pNodeMap, int maxEntries) {
    Checked(pNodeMap, __LINE__);
    return ConvertGrowthFailure(__LINE__, [&] { return FeatureBag.StoreToBag(pNodeMap, maxEntries); });
}

bool CZqFeatureBag::Load(INodeMap* pNodeMap, bool verify, gcstring_vector* pErrorList) {
    Checked(pNodeMap, __LINE__);
    return ConvertGrowthFailure(__LINE__,
                                [&] { return FeatureBag.LoadFromBag(pNodeMap, verify, pErrorList); });
}

void CZqFeatureBag::StoreStringToBag(const gcstring& text) {
    ConvertGrowthFailure(__LINE__, [&] {
        std::istringstream stream(std::string(text.c_str(), text.size()));
        // Else a stream keeps a failed allocation to itself and looks as if it had ended.
        stream.exceptions(std::ios::badbit);
        Read(stream);
    });
}

void CZqFeatureBag::StoreFileToBag(const gcstring& fileName) {
    ConvertGrowthFailure(__LINE__, [&] {
        std::ifstream file = Opened<std::ifstream>(fileName, std::ios::in | std::ios::binary);
        file.exceptions(std::ios::badbit);
        try {
            Read(file);
        } catch (const std::ios::failure&) {
            throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "File %s is unreadable.",
                                                         fileName.c_str());
        }
    });
}

void CZqFeatureBag::Read(std::istream& stream) {
    if (stream.peek() == std::istream::traits_type::eof())
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "The stream is eof");
    FeatureBag.m_Names.clear();
    FeatureBag.m_Values.clear();
    char line[LINE_CAPACITY];
    stream.getline(line, LINE_CAPACITY);
    if (std::string(line).find(MAGIC) == std::string::npos)
        throw ReportError<GenICam::RuntimeException>(
            UNIT, __LINE__,
            "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line");
    SkipComments(stream);
    ReadFeatures(stream);
}

void CZqFeatureBag::ReadFeatures(std::istream& stream) {
    char name[LINE_CAPACITY];
    std::string value;
    while (stream) {
        if (!stream.getline(name, LINE_CAPACITY, '\t') || !std::getline(stream, value))
            return;
        Append(gcstring(name), gcstring(value.c_str(), value.size()));
        SkipComments(stream);
    }
}

void CZqFeatureBag::Append(const gcstring& name, const gcstring& value) {
    FeatureBag.m_Names.push_back(name);
    try {
        FeatureBag.m_Values.push_back(value);
    } catch (...) {
        FeatureBag.m_Names.pop_back();
        throw;
    }
}

void CZqFeatureBag::Write(std::ostream& stream) const {
    ZQ_ASSERT(UNIT, FeatureBag.m_Names.size() == FeatureBag.m_Values.size());
    stream << "# " << MAGIC << "\n# GenApi persistence file (version " << VERSION << ")\n# "
           << FeatureBag.m_BagName.c_str() << '\n';
    for (size_t index = 0; index < FeatureBag.m_Names.size(); ++index) {
        const gcstring& value = FeatureBag.m_Values[index];
        stream << FeatureBag.m_Names[index].c_str() << '\t';
        stream.write(value.c_str(), static_cast<std::streamsize>(value.size())) << '\n';
    }
}

void CZqFeatureBag::SaveToString(gcstring& text) {
    ConvertGrowthFailure(__LINE__, [&] {
        std::ostringstream stream;
        stream.exceptions(std::ios::badbit);
        Write(stream);
        const std::string written = stream.str();
        text = gcstring(written.c_str(), written.size());
    });
}

void CZqFeatureBag::SaveToFile(const gcstring& fileName) {
    ConvertGrowthFailure(__LINE__, [&] {
        std::ofstream file = Opened<std::ofstream>(fileName, std::ios::trunc | std::ios::binary);
        Write(file);
        file.close();
        if (!file)
            throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "File %s is unwritable.",
                                                         fileName.c_str());
    });
}

void CZqFeatureBag::Release() {
    delete this;
}

} // namespace ZqApi
