// Checks whether a GenTL producer keeps the rules of the interface: every function, in every state that
// matters, with good arguments and bad ones.
//
//   contract [-v] <producer.cti>
//
// Prints each check that failed (all of them with -v) and the share that passed; ends with 0 when all did.

#include "Context.h"

#include <cstdio>
#include <cstring>

using namespace contract;

namespace {

/// Everything that is open is closed by closing its parent, and the library can be used again.
void CheckTeardown(Context& context) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    report.Enter("open modules while the library is closed");
    report.Success("GCInitLib anew", g.GCInitLib());
    TL_HANDLE system = nullptr;
    report.Success("TLOpen", g.TLOpen(&system));
    g.TLUpdateInterfaceList(system, nullptr, 1000);
    IF_HANDLE interface = nullptr;
    char id[512];
    size_t size = sizeof id;
    if (g.TLGetInterfaceID(system, 0, id, &size) == GC_ERR_SUCCESS)
        report.Success("TLOpenInterface", g.TLOpenInterface(system, id, &interface));
    report.Success("TLClose", g.TLClose(system));
    if (interface != nullptr) {
        uint32_t count = 0;
        report.Result("IFGetNumDevices after TLClose", g.IFGetNumDevices(interface, &count),
                      {GC_ERR_INVALID_HANDLE});
    }
    report.Success("TLOpen anew", g.TLOpen(&system));
    report.Success("GCCloseLib with an open system", g.GCCloseLib());
    report.Success("GCInitLib anew", g.GCInitLib());
    uint32_t count = 0;
    report.Result("TLGetNumInterfaces of an old handle", g.TLGetNumInterfaces(system, &count),
                  {GC_ERR_INVALID_HANDLE});
    report.Success("GCCloseLib", g.GCCloseLib());
}

} // namespace

int main(int argc, char** argv) {
    const bool verbose = argc == 3 && std::strcmp(argv[1], "-v") == 0;
    if (argc != 2 && !verbose) {
        std::fprintf(stderr, "usage: contract [-v] <producer.cti>\n");
        return 2;
    }
    Context context(verbose);
    if (!Load(context, argv[argc - 1])) {
        context.report.Finish();
        return 1;
    }
    context.report.Enter("not initialised");
    CheckUninitialised(context);
    context.report.Enter("initialised");
    if (context.report.Success("GCInitLib", context.gentl.GCInitLib())) {
        CheckLibrary(context);
        context.report.Enter("closing");
        context.report.Success("GCCloseLib", context.gentl.GCCloseLib());
        context.report.Enter("closed");
        CheckUninitialised(context);
        CheckTeardown(context);
        CheckTwoDevices(context);
        CheckHandles(context);
    }
    return context.report.Finish() ? 0 : 1;
}
