// GCGetPortInfo to GCWritePortStacked: ports, their registers and the URLs of their description files.
#define GENTL_PRODUCER
#include "tests/support/scripted_producer/Producer.h"

#include <algorithm>

namespace Scripted {

using namespace GenTL;

namespace {

/// Behaviour of a function on a port; modules of a kind without a port answer GC_ERR_NOT_IMPLEMENTED.
template <class Action>
Behaviour WithPort(const void* handle, Action action) {
    return With<Module>(handle, [=](Producer& producer, Module& module, const Out& out) -> GC_ERROR {
        Port* port = producer.PortOf(handle);
        return port == nullptr ? GC_ERR_NOT_IMPLEMENTED : action(module, *port, out);
    });
}

struct PortNames {
    const char* kind;
    const char* portName;
    const char* module;
};

constexpr PortNames portNames[] = {
    {"TL", "TLPort", "TLSystem"},   {"IF", "InterfacePort", "TLInterface"}, {"DEV", "DevicePort", "TLDevice"},
    {"REMOTE", "Device", "Device"}, {"DS", "StreamPort", "TLDataStream"},   {"BUF", "BufferPort", "TLBuffer"},
};

const PortNames& NamesOf(const Module& module) {
    const std::string kind = Ports::KindOf(module.symbol);
    return *std::find_if(std::begin(portNames), std::end(portNames) - 1,
                         [&](const PortNames& each) { return kind == each.kind; });
}

/// The type of the interface that the module belongs to.
std::string TLTypeOf(const Module* module) {
    for (; module != nullptr; module = module->parent)
        if (const auto* owner = dynamic_cast<const InterfaceModule*>(module))
            return owner->plan->tlType;
    return TLTypeMixedName;
}

GC_ERROR PortInfo(const Module& module, PORT_INFO_CMD command, const Out& out) {
    const auto flag = [&](bool value) {
        return out.WriteNumber<uint8_t>(INFO_DATATYPE_BOOL8, value ? 1 : 0);
    };
    switch (command) {
    case PORT_INFO_ID:
        return out.WriteText(module.symbol);
    case PORT_INFO_VENDOR:
    case PORT_INFO_MODEL:
        return out.WriteText("Scripted");
    case PORT_INFO_TLTYPE:
        return out.WriteText(TLTypeOf(&module));
    case PORT_INFO_MODULE:
        return out.WriteText(NamesOf(module).module);
    case PORT_INFO_LITTLE_ENDIAN:
    case PORT_INFO_ACCESS_READ:
    case PORT_INFO_ACCESS_WRITE:
        return flag(true);
    case PORT_INFO_BIG_ENDIAN:
    case PORT_INFO_ACCESS_NA:
    case PORT_INFO_ACCESS_NI:
        return flag(false);
    case PORT_INFO_VERSION:
        return out.WriteText("1.0");
    case PORT_INFO_PORTNAME:
        return out.WriteText(NamesOf(module).portName);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

/// The text between the n-th semicolon and the next, read as a hexadecimal number.
uint64_t UrlNumber(const std::string& url, int semicolons) {
    size_t begin = 0;
    for (; semicolons > 0 && begin != std::string::npos; --semicolons) {
        begin = url.find(';', begin);
        begin += begin == std::string::npos ? 0 : 1;
    }
    return begin == std::string::npos ? 0 : std::strtoull(url.c_str() + begin, nullptr, 16);
}

std::string UrlFileName(const std::string& url) {
    const size_t colon = url.find(':');
    const size_t begin = colon == std::string::npos ? 0 : colon + 1;
    return url.substr(begin, url.find(';') - begin);
}

GC_ERROR UrlInfo(const std::string& url, URL_INFO_CMD command, const Out& out) {
    switch (command) {
    case URL_INFO_URL:
        return out.WriteText(url);
    case URL_INFO_SCHEMA_VER_MAJOR:
    case URL_INFO_SCHEMA_VER_MINOR:
    case URL_INFO_FILE_VER_MAJOR:
        return out.WriteNumber<int32_t>(INFO_DATATYPE_INT32, 1);
    case URL_INFO_FILE_VER_MINOR:
    case URL_INFO_FILE_VER_SUBMINOR:
    case URL_INFO_SCHEME:
        return out.WriteNumber<int32_t>(INFO_DATATYPE_INT32, 0);
    case URL_INFO_FILE_SHA1_HASH:
        return GC_ERR_NOT_AVAILABLE;
    case URL_INFO_FILE_REGISTER_ADDRESS:
        return out.WriteNumber(INFO_DATATYPE_UINT64, UrlNumber(url, 1));
    case URL_INFO_FILE_SIZE:
        return out.WriteNumber(INFO_DATATYPE_UINT64, UrlNumber(url, 2));
    case URL_INFO_FILENAME:
        return out.WriteText(UrlFileName(url));
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

Behaviour Stacked(const void* handle, PORT_REGISTER_STACK_ENTRY* entries, size_t* count, bool write) {
    return WithPort(handle, [=](Module&, Port& port, const Out&) -> GC_ERROR {
        if (entries == nullptr || count == nullptr)
            return GC_ERR_INVALID_PARAMETER;
        for (size_t i = 0; i < *count; ++i) {
            if (write)
                port.registers.Write(entries[i].Address, entries[i].pBuffer, entries[i].Size);
            else
                port.registers.Read(entries[i].Address, entries[i].pBuffer, entries[i].Size);
        }
        return GC_ERR_SUCCESS;
    });
}

} // namespace

} // namespace Scripted

using namespace Scripted;

namespace GenTL {

GC_ERROR GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
    return Run(Call("GCGetPortInfo").Handle(port).Command(command).Into(type, buffer, size),
               WithPort(port, [=](Module& module, Port&, const Out& out) {
                   return PortInfo(module, command, out);
               }));
}

GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
    return Run(Call("GCGetNumPortURLs").Handle(port).Into(count),
               WithPort(port, [](Module&, Port& found, const Out& out) {
                   return out.Set(static_cast<uint32_t>(found.urls.size()));
               }));
}

GC_ERROR GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD command, INFO_DATATYPE* type,
                          void* buffer, size_t* size) {
    return Run(Call("GCGetPortURLInfo").Handle(port).Index(index).Command(command).Into(type, buffer, size),
               WithPort(port, [=](Module&, Port& found, const Out& out) -> GC_ERROR {
                   return index < found.urls.size() ? UrlInfo(found.urls[index], command, out)
                                                    : GC_ERR_INVALID_INDEX;
               }));
}

GC_ERROR GCGetPortURL(PORT_HANDLE port, char* text, size_t* size) {
    return Run(Call("GCGetPortURL").Handle(port).Into(nullptr, text, size),
               WithPort(port, [](Module&, Port& found, const Out& out) -> GC_ERROR {
                   std::string list;
                   for (const auto& url : found.urls)
                       list.append(url.c_str(), url.size() + 1);
                   return out.Write(INFO_DATATYPE_STRINGLIST, list.c_str(), list.size() + 1);
               }));
}

GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
    return Run(Call("GCReadPort").Handle(port).Address(address).Into(nullptr, buffer, size),
               WithPort(port, [=](Module&, Port& found, const Out& out) -> GC_ERROR {
                   if (out.data == nullptr || out.size == nullptr)
                       return GC_ERR_INVALID_PARAMETER;
                   found.registers.Read(address, out.data, *out.size);
                   return GC_ERR_SUCCESS;
               }));
}

GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size) {
    Call call("GCWritePort");
    call.Handle(port).Address(address).Bytes(buffer, size == nullptr ? 0 : *size);
    call.out.size = size;
    return Run(call, WithPort(port, [=](Module&, Port& found, const Out&) -> GC_ERROR {
                   if (buffer == nullptr || size == nullptr)
                       return GC_ERR_INVALID_PARAMETER;
                   found.registers.Write(address, buffer, *size);
                   return GC_ERR_SUCCESS;
               }));
}

GC_ERROR GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    Call call("GCReadPortStacked");
    call.Handle(port).Number(count == nullptr ? 0 : *count);
    call.out.size = count;
    return Run(call, Stacked(port, entries, count, false));
}

GC_ERROR GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    Call call("GCWritePortStacked");
    call.Handle(port).Number(count == nullptr ? 0 : *count);
    call.out.size = count;
    return Run(call, Stacked(port, entries, count, true));
}

} // namespace GenTL
