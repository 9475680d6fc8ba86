#include "ZqSDKCommon/PortAccess.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {

GC_ERROR CallReadPort(CZqGenTLLib* pGenTL, PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size) {
    return CallProducer(pGenTL->GCReadPort, hPort, address, buffer, size);
}

CZqGenTLErrorException DescriptionReadError(CZqGenTLLib* pGenTL, const char* unit, int line, GC_ERROR result,
                                            PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size) {
    return ProducerError(pGenTL, unit, line, result, "GCReadPort", "%d = GCReadPort(0x%p, %I64u, 0x%p, 0x%p)",
                         result, hPort, address, buffer, size);
}

gcstring ReadLegacyURL(CZqGenTLLib* pGenTL, const char* unit, int line, PORT_HANDLE hPort) {
    const char* const name = "GCGetPortURL";
    return ReadText(
        {pGenTL, unit, line, name, nullptr},
        [&](char* buffer, size_t* size) { return CallProducer(pGenTL->GCGetPortURL, hPort, buffer, size); },
        [&](GC_ERROR result, char* buffer, size_t* size) {
            if (buffer == nullptr)
                return ProducerError(pGenTL, unit, line, result, name, "%d = GCGetPortURL(0x%p, 0x%p, 0x%p)",
                                     result, hPort, buffer, size);
            // Kept: the second call is logged in the layout of GCGetPortURLInfo; index, command and type
            // don't exist.
            return ProducerError(pGenTL, unit, line, result, name,
                                 "%d = GCGetPortURL(0x%p, %u, %d, 0x%p, 0x%p, 0x%p)", result, hPort, 0u, 0,
                                 static_cast<void*>(nullptr), buffer, size);
        });
}

} // namespace ZqApi
