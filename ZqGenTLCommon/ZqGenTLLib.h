#pragma once

#include <memory>

#include <ZqApi/Types.h>

#include "ZqGenTLCommon/FunctionList.h"
#include "ZqGenTLCommon/ProducerFunction.h"

namespace ZqApi {

/// A loaded and initialised GenTL producer and its function table.
///
/// Owned by its system and shared with the system's modules: UnloadLib empties the table, so that what a
/// module calls after its system is gone answers GC_ERR_NOT_IMPLEMENTED. Loading and unloading belong to one
/// thread; the functions may be called from any thread.
class CZqGenTLLib : public std::enable_shared_from_this<CZqGenTLLib> {
public:
    /// Finds the file on GENICAM_GENTL64_PATH, loads it, binds its functions and calls GCInitLib.
    ///
    /// Throws GenICam::RuntimeException "File %s not found.", CZqLinuxErrorException when the file is no
    /// loadable library, CZqGenTLErrorException when GCInitLib is missing or fails; nothing stays loaded
    /// then.
    explicit CZqGenTLLib(gcstring fileName);
    ~CZqGenTLLib();
    CZqGenTLLib(const CZqGenTLLib&) = delete;
    CZqGenTLLib& operator=(const CZqGenTLLib&) = delete;

    /// The first readable file of that name in the folders of GENICAM_GENTL64_PATH.
    gcstring GetFullPathName() const;
    void LoadLib();
    /// Calls GCCloseLib, empties the table and unloads; may be repeated.
    void UnloadLib();

#define ZQ_FUNCTION_MEMBER(name) ProducerFunction<GenTL::P##name> name;
    ZQ_GENTL_FUNCTIONS(ZQ_FUNCTION_MEMBER)
#undef ZQ_FUNCTION_MEMBER

private:
    void BindFunctions();
    void ClearFunctions();
    void CloseLibrary();

    gcstring m_FileName;
    gcstring m_FullPath;
    void* m_hLib = nullptr;
};

} // namespace ZqApi
