#include "ZqGenTLCommon/ZqGenTLLib.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <dlfcn.h>
#include <unistd.h>

#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqGenTLCommon/ZqGenTLLib";
constexpr const char* SEARCH_PATH = "GENICAM_GENTL64_PATH";

// The code stays mapped for the life of the process: producers leave threads and exit handlers behind.
constexpr int LOAD_FLAGS = RTLD_LAZY | RTLD_NODELETE;

template <class Pointer>
void Bind(ProducerFunction<Pointer>& function, void* hLib, const char* name) {
    function.Set(reinterpret_cast<Pointer>(dlsym(hLib, name)));
}

} // namespace

CZqGenTLLib::CZqGenTLLib(gcstring fileName) {
    ConvertBadAlloc(UNIT, __LINE__, [&] {
        m_FileName = fileName;
        m_FullPath = GetFullPathName();
        LoadLib();
    });
}

CZqGenTLLib::~CZqGenTLLib() {
    UnloadLib();
}

gcstring CZqGenTLLib::GetFullPathName() const {
    const char* const variable = std::getenv(SEARCH_PATH);
    const std::string folders = variable != nullptr ? variable : "";
    for (size_t begin = 0; !folders.empty() && begin <= folders.size();) {
        const size_t end = std::min(folders.find(':', begin), folders.size());
        const std::string candidate = folders.substr(begin, end - begin) + "/" + m_FileName.c_str();
        if (access(candidate.c_str(), R_OK) == 0)
            return gcstring(candidate.c_str());
        begin = end + 1;
    }
    throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "File %s not found.", m_FileName);
}

void CZqGenTLLib::LoadLib() {
    m_hLib = dlopen(m_FullPath.c_str(), LOAD_FLAGS | RTLD_NOLOAD);
    if (m_hLib == nullptr) {
        errno = 0;
        m_hLib = dlopen(m_FullPath.c_str(), LOAD_FLAGS);
    }
    if (m_hLib == nullptr) {
        // dlerror may set errno itself, so the two are read in this order.
        const char* const explanation = dlerror();
        const int error = errno;
        throw CZqLinuxErrorExceptionReporter(UNIT, __LINE__, KindOf<CZqLinuxErrorException>())
            .Report(error, explanation, "%s", m_FullPath);
    }
    BindFunctions();
    const GC_ERROR result = CallProducer(GCInitLib);
    if (result == GC_ERR_SUCCESS)
        return;
    CloseLibrary();
    throw ProducerError(nullptr, UNIT, __LINE__, result, "GCInitLib", "%d = GCInitLib()", result);
}

void CZqGenTLLib::UnloadLib() {
    if (m_hLib == nullptr)
        return;
    CallProducer(GCCloseLib);
    ClearFunctions();
    CloseLibrary();
}

void CZqGenTLLib::BindFunctions() {
#define ZQ_BIND(name) Bind(name, m_hLib, #name);
    ZQ_GENTL_FUNCTIONS(ZQ_BIND)
#undef ZQ_BIND
}

void CZqGenTLLib::ClearFunctions() {
#define ZQ_CLEAR(name) name.Set(nullptr);
    ZQ_GENTL_FUNCTIONS(ZQ_CLEAR)
#undef ZQ_CLEAR
}

void CZqGenTLLib::CloseLibrary() {
    dlclose(m_hLib);
    m_hLib = nullptr;
}

} // namespace ZqApi
