#include "Context.h"

#include <cstdlib>

namespace contract {

namespace {

constexpr auto String = INFO_DATATYPE_STRING;
constexpr auto Flag = INFO_DATATYPE_BOOL8;
constexpr auto Int32 = INFO_DATATYPE_INT32;

const std::vector<InfoRow> portRows = {
    {PORT_INFO_ID, "ID", String, Need::Mandatory},
    {PORT_INFO_VENDOR, "VENDOR", String, Need::Mandatory},
    {PORT_INFO_MODEL, "MODEL", String, Need::Mandatory},
    {PORT_INFO_TLTYPE, "TLTYPE", String, Need::Mandatory},
    {PORT_INFO_MODULE, "MODULE", String, Need::Mandatory},
    {PORT_INFO_LITTLE_ENDIAN, "LITTLE_ENDIAN", Flag, Need::Mandatory},
    {PORT_INFO_BIG_ENDIAN, "BIG_ENDIAN", Flag, Need::Mandatory},
    {PORT_INFO_ACCESS_READ, "ACCESS_READ", Flag, Need::Mandatory},
    {PORT_INFO_ACCESS_WRITE, "ACCESS_WRITE", Flag, Need::Mandatory},
    {PORT_INFO_ACCESS_NA, "ACCESS_NA", Flag, Need::Mandatory},
    {PORT_INFO_ACCESS_NI, "ACCESS_NI", Flag, Need::Mandatory},
    {PORT_INFO_VERSION, "VERSION", String, Need::Mandatory},
    {PORT_INFO_PORTNAME, "PORTNAME", String, Need::Mandatory},
};

const std::vector<InfoRow> urlRows = {
    {URL_INFO_URL, "URL", String, Need::Mandatory},
    {URL_INFO_SCHEMA_VER_MAJOR, "SCHEMA_VER_MAJOR", Int32, Need::Optional},
    {URL_INFO_SCHEMA_VER_MINOR, "SCHEMA_VER_MINOR", Int32, Need::Optional},
    {URL_INFO_FILE_VER_MAJOR, "FILE_VER_MAJOR", Int32, Need::Optional},
    {URL_INFO_FILE_VER_MINOR, "FILE_VER_MINOR", Int32, Need::Optional},
    {URL_INFO_FILE_VER_SUBMINOR, "FILE_VER_SUBMINOR", Int32, Need::Optional},
    {URL_INFO_FILE_SHA1_HASH, "FILE_SHA1_HASH", INFO_DATATYPE_BUFFER, Need::Optional},
    {URL_INFO_FILE_REGISTER_ADDRESS, "FILE_REGISTER_ADDRESS", INFO_DATATYPE_UINT64, Need::Optional},
    {URL_INFO_FILE_SIZE, "FILE_SIZE", INFO_DATATYPE_UINT64, Need::Optional},
    {URL_INFO_SCHEME, "SCHEME", Int32, Need::Optional},
    {URL_INFO_FILENAME, "FILENAME", String, Need::Optional},
};

struct Place {
    uint64_t address = 0;
    size_t length = 0;
};

/// Where a URL of the kind "local:name;address;length" points to.
bool ParseLocal(const std::string& url, Place& place) {
    const size_t first = url.find(';');
    const size_t second = url.find(';', first == std::string::npos ? first : first + 1);
    if (second == std::string::npos || (url[0] != 'l' && url[0] != 'L'))
        return false;
    place.address = std::strtoull(url.c_str() + first + 1, nullptr, 16);
    place.length = std::strtoull(url.c_str() + second + 1, nullptr, 16);
    return place.length > 0;
}

/// Reading, with the description as the one register that every port has.
void CheckAccess(Context& context, const std::string& which, void* port, const Place& place) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    constexpr uint64_t nowhere = 0x7000000000000000;
    std::vector<char> file(place.length);
    size_t size = file.size();
    report.Success("GCReadPort(" + which + ", description)",
                   g.GCReadPort(port, place.address, file.data(), &size));
    report.Equal("GCReadPort(" + which + ", description) size", size, place.length);
    char piece[4] = {};
    size = 3;
    report.Success("GCReadPort(" + which + ", odd)", g.GCReadPort(port, place.address + 1, piece, &size));
    report.Holds("GCReadPort(" + which + ", odd)", std::string(piece, 3) == std::string(&file[1], 3),
                 "the same bytes");
    report.Result("GCReadPort(" + which + ", no buffer)", g.GCReadPort(port, place.address, nullptr, &size),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("GCReadPort(" + which + ", no size)", g.GCReadPort(port, place.address, piece, nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    size = 4;
    report.Result("GCReadPort(" + which + ", nowhere)", g.GCReadPort(port, nowhere, piece, &size),
                  {GC_ERR_INVALID_ADDRESS});
    size = 4;
    report.Result("GCWritePort(" + which + ", nowhere)", g.GCWritePort(port, nowhere, piece, &size),
                  {GC_ERR_INVALID_ADDRESS, GC_ERR_ACCESS_DENIED});
    size = 4;
    report.Result("GCWritePort(" + which + ", description)", g.GCWritePort(port, place.address, piece, &size),
                  {GC_ERR_ACCESS_DENIED, GC_ERR_INVALID_ADDRESS});
    report.Result("GCWritePort(" + which + ", no buffer)", g.GCWritePort(port, place.address, nullptr, &size),
                  {GC_ERR_INVALID_PARAMETER, GC_ERR_ACCESS_DENIED});

    PORT_REGISTER_STACK_ENTRY entries[] = {{place.address, piece, 2},
                                           {place.address + 2, piece + 2, 2},
                                           {nowhere, piece, 4},
                                           {place.address, piece, 1}};
    size_t count = 2;
    report.Success("GCReadPortStacked(" + which + ")", g.GCReadPortStacked(port, entries, &count));
    report.Equal("GCReadPortStacked(" + which + ") count", count, size_t{2});
    report.Holds("GCReadPortStacked(" + which + ")", std::string(piece, 4) == std::string(file.data(), 4),
                 "the same bytes");
    count = 4;
    report.Result("GCReadPortStacked(" + which + ", third bad)", g.GCReadPortStacked(port, entries, &count),
                  {GC_ERR_INVALID_ADDRESS});
    report.Equal("GCReadPortStacked(" + which + ", third bad) count", count, size_t{2});
    report.Result("GCReadPortStacked(" + which + ", no count)", g.GCReadPortStacked(port, entries, nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    count = 1;
    report.Result("GCReadPortStacked(" + which + ", no entries)", g.GCReadPortStacked(port, nullptr, &count),
                  {GC_ERR_INVALID_PARAMETER});
    count = 1;
    report.Result("GCWritePortStacked(" + which + ", description)",
                  g.GCWritePortStacked(port, entries, &count),
                  {GC_ERR_ACCESS_DENIED, GC_ERR_INVALID_ADDRESS});
    report.Equal("GCWritePortStacked(" + which + ", description) count", count, size_t{0});
}

} // namespace

void CheckPort(Context& context, const std::string& which, void* port, const char* module) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    const auto infoOf = [&](int32_t command) -> InfoCall {
        return [&context, port, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.GCGetPortInfo(port, command, type, data, size);
        };
    };
    CheckInfos(context, "GCGetPortInfo " + which + " ", portRows, infoOf);
    report.Equal("GCGetPortInfo(" + which + ", MODULE)", TextOf(infoOf(PORT_INFO_MODULE)),
                 std::string(module));
    const auto little = ValueOf<uint8_t>(infoOf(PORT_INFO_LITTLE_ENDIAN));
    const auto big = ValueOf<uint8_t>(infoOf(PORT_INFO_BIG_ENDIAN));
    report.Holds("GCGetPortInfo(" + which + ", *_ENDIAN)", (little == 0) != (big == 0), "exactly one true");
    report.Result("GCGetNumPortURLs(" + which + ", null)", g.GCGetNumPortURLs(port, nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    uint32_t count = 0;
    report.Success("GCGetNumPortURLs(" + which + ")", g.GCGetNumPortURLs(port, &count));
    report.Holds("GCGetNumPortURLs(" + which + ")", count > 0, "at least one");
    const auto urlOf = [&](int32_t command) -> InfoCall {
        return [&context, port, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.GCGetPortURLInfo(port, 0, command, type, data, size);
        };
    };
    CheckInfos(context, "GCGetPortURLInfo " + which + " ", urlRows, urlOf);
    INFO_DATATYPE type = 0;
    size_t size = 0;
    report.Result("GCGetPortURLInfo(" + which + ", index beyond)",
                  g.GCGetPortURLInfo(port, count, URL_INFO_URL, &type, nullptr, &size),
                  {GC_ERR_INVALID_INDEX});
    CheckText(context, "GCGetPortURL(" + which + ")",
              [&](char* text, size_t* needed) { return g.GCGetPortURL(port, text, needed); });
    Place place;
    if (!ParseLocal(TextOf(urlOf(URL_INFO_URL)), place)) {
        report.Skip("reading the description of the " + which + ": it is not in the registers");
        return;
    }
    const auto address = ValueOf<uint64_t>(urlOf(URL_INFO_FILE_REGISTER_ADDRESS), place.address);
    report.Equal("GCGetPortURLInfo(" + which + ", FILE_REGISTER_ADDRESS)", address, place.address);
    const auto length = ValueOf<uint64_t>(urlOf(URL_INFO_FILE_SIZE), place.length);
    report.Equal("GCGetPortURLInfo(" + which + ", FILE_SIZE)", length, uint64_t{place.length});
    CheckAccess(context, which, port, place);
}

} // namespace contract
