#pragma once

#include <ZqApi/Error.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class CZqGenTLLib;

// The few producer calls that retrieving a description file makes. They are declared here, where the
// description file is, and defined beside the loader that they need, because this folder lies below the
// loader's.

/// GCReadPort on the producer; GC_ERR_NOT_IMPLEMENTED when it has none.
GC_ERROR CallReadPort(CZqGenTLLib* pGenTL, PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size);

/// The exception of a description file that can't be read.
CZqGenTLErrorException DescriptionReadError(CZqGenTLLib* pGenTL, const char* unit, int line, GC_ERROR result,
                                            PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size);

/// The port's first URL as producers older than GenTL 1.1 tell it (GCGetPortURL). Throws
/// CZqGenTLErrorException.
gcstring ReadLegacyURL(CZqGenTLLib* pGenTL, const char* unit, int line, PORT_HANDLE hPort);

} // namespace ZqApi
