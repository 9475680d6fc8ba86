#include "producer/gentl/Port.h"

#include "producer/sim/CameraModel.h"

#include <cstdio>

namespace zqgentl {

namespace {

constexpr InfoRow<Port> portRows[] = {
    {GenTL::PORT_INFO_ID, GenTL::INFO_DATATYPE_STRING, [](const Port& p) { return InfoValue(p.Facts().id); }},
    {GenTL::PORT_INFO_VENDOR, GenTL::INFO_DATATYPE_STRING, [](const Port&) { return InfoValue(vendorName); }},
    {GenTL::PORT_INFO_MODEL, GenTL::INFO_DATATYPE_STRING,
     [](const Port& p) { return InfoValue(p.Facts().model); }},
    {GenTL::PORT_INFO_TLTYPE, GenTL::INFO_DATATYPE_STRING,
     [](const Port& p) { return InfoValue(p.Facts().tlType); }},
    {GenTL::PORT_INFO_MODULE, GenTL::INFO_DATATYPE_STRING,
     [](const Port& p) { return InfoValue(p.Facts().module); }},
    {GenTL::PORT_INFO_LITTLE_ENDIAN, GenTL::INFO_DATATYPE_BOOL8,
     [](const Port& p) { return InfoValue(!p.Facts().bigEndian); }},
    {GenTL::PORT_INFO_BIG_ENDIAN, GenTL::INFO_DATATYPE_BOOL8,
     [](const Port& p) { return InfoValue(p.Facts().bigEndian); }},
    {GenTL::PORT_INFO_ACCESS_READ, GenTL::INFO_DATATYPE_BOOL8, [](const Port&) { return InfoValue(true); }},
    {GenTL::PORT_INFO_ACCESS_WRITE, GenTL::INFO_DATATYPE_BOOL8,
     [](const Port& p) { return InfoValue(p.Facts().writable); }},
    {GenTL::PORT_INFO_ACCESS_NA, GenTL::INFO_DATATYPE_BOOL8, [](const Port&) { return InfoValue(false); }},
    {GenTL::PORT_INFO_ACCESS_NI, GenTL::INFO_DATATYPE_BOOL8, [](const Port&) { return InfoValue(false); }},
    {GenTL::PORT_INFO_VERSION, GenTL::INFO_DATATYPE_STRING,
     [](const Port& p) { return InfoValue(p.Facts().version); }},
    {GenTL::PORT_INFO_PORTNAME, GenTL::INFO_DATATYPE_STRING,
     [](const Port& p) { return InfoValue(p.Facts().portName); }},
};

constexpr InfoRow<Port> urlRows[] = {
    {GenTL::URL_INFO_URL, GenTL::INFO_DATATYPE_STRING, [](const Port& p) { return InfoValue(p.Url()); }},
    {GenTL::URL_INFO_SCHEMA_VER_MAJOR, GenTL::INFO_DATATYPE_INT32, [](const Port&) { return InfoValue(1); }},
    {GenTL::URL_INFO_SCHEMA_VER_MINOR, GenTL::INFO_DATATYPE_INT32,
     [](const Port& p) { return InfoValue(p.File().schemaMinor); }},
    {GenTL::URL_INFO_FILE_VER_MAJOR, GenTL::INFO_DATATYPE_INT32, [](const Port&) { return InfoValue(1); }},
    {GenTL::URL_INFO_FILE_VER_MINOR, GenTL::INFO_DATATYPE_INT32, [](const Port&) { return InfoValue(0); }},
    {GenTL::URL_INFO_FILE_VER_SUBMINOR, GenTL::INFO_DATATYPE_INT32, [](const Port&) { return InfoValue(0); }},
    {GenTL::URL_INFO_FILE_SHA1_HASH, GenTL::INFO_DATATYPE_BUFFER,
     [](const Port& p) {
         const auto* hash = reinterpret_cast<const char*>(p.File().sha1);
         return InfoValue(std::string(hash, sizeof p.File().sha1));
     }},
    {GenTL::URL_INFO_FILE_REGISTER_ADDRESS, GenTL::INFO_DATATYPE_UINT64,
     [](const Port&) { return InfoValue(descriptionAddress); }},
    {GenTL::URL_INFO_FILE_SIZE, GenTL::INFO_DATATYPE_UINT64,
     [](const Port& p) { return InfoValue(uint64_t{p.File().size}); }},
    {GenTL::URL_INFO_SCHEME, GenTL::INFO_DATATYPE_INT32,
     [](const Port&) { return InfoValue(int32_t{GenTL::URL_SCHEME_LOCAL}); }},
    {GenTL::URL_INFO_FILENAME, GenTL::INFO_DATATYPE_STRING,
     [](const Port& p) { return InfoValue(p.File().fileName); }},
};

} // namespace

std::string Port::Url() const {
    char url[128];
    std::snprintf(url, sizeof url, "local:%s;%llX;%zX", m_description.fileName,
                  static_cast<unsigned long long>(descriptionAddress), m_description.size);
    return url;
}

void Port::AnswerInfo(GenTL::PORT_INFO_CMD command, const InfoTarget& target) const {
    zqgentl::AnswerInfo(portRows, *this, command, target);
}

void Port::AnswerUrlInfo(uint32_t index, GenTL::URL_INFO_CMD command, const InfoTarget& target) const {
    if (index != 0)
        throw Failure(GenTL::GC_ERR_INVALID_INDEX, "URL " + std::to_string(index) + " of 1");
    zqgentl::AnswerInfo(urlRows, *this, command, target);
}

void Port::AnswerUrlList(char* text, size_t* size) const {
    ReplyText(Url() + "?SchemaVersion=1." + std::to_string(m_description.schemaMinor) + ".0" + '\0', text,
              size);
}

void Port::Read(uint64_t address, void* data, size_t size) const {
    m_registers.Read(address, data, size);
}

void Port::Write(uint64_t address, const void* data, size_t size) const {
    m_registers.Write(address, data, size);
}

} // namespace zqgentl
