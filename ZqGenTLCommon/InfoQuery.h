#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {

/// Where a query is made and how its failure is reported.
struct QuerySite {
    CZqGenTLLib* pGenTL;
    const char* unit;
    int line;
    const char* functionName;
    const char* format;
};

/// A zeroed block with one byte more than the producer asked for, so that a text without its terminator ends.
inline std::unique_ptr<char[]> AllocateAnswer(const QuerySite& site, size_t size) {
    return ConvertBadAlloc(site.unit, site.line, [size] {
        if (size > static_cast<size_t>(PTRDIFF_MAX) - 1)
            throw std::bad_alloc();
        return std::unique_ptr<char[]>(new char[size + 1]());
    });
}

/// Reads a text in the two calls of the standard: size, then data. `ask(buffer, &size)` calls the producer,
/// `report(result, buffer, &size)` builds the exception of a failed call.
template <class Ask, class Report>
gcstring ReadText(const QuerySite& site, Ask ask, Report report) {
    size_t size = 0;
    GC_ERROR result = ask(static_cast<char*>(nullptr), &size);
    if (result != GC_ERR_SUCCESS)
        throw report(result, static_cast<char*>(nullptr), &size);
    const size_t capacity = size;
    const std::unique_ptr<char[]> text = AllocateAnswer(site, capacity);
    result = ask(text.get(), &size);
    if (result != GC_ERR_SUCCESS)
        throw report(result, text.get(), &size);
    return ConvertBadAlloc(site.unit, site.line,
                           [&] { return gcstring(text.get(), strnlen(text.get(), capacity)); });
}

/// The text query of every information command: `prefix` is the module's handle and what else names the
/// object.
template <class Function, class... Prefix>
gcstring QueryText(const QuerySite& site, const Function& function, int32_t command, Prefix... prefix) {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    return ReadText(
        site,
        [&](char* buffer, size_t* size) {
            return CallProducer(function, prefix..., command, &type, buffer, size);
        },
        [&](GC_ERROR result, char* buffer, size_t* size) {
            return ProducerError(site.pGenTL, site.unit, site.line, result, site.functionName, site.format,
                                 result, prefix..., command, &type, buffer, size);
        });
}

/// The numeric query of every information command. What the producer reports as type and size is not looked
/// at; bytes that it leaves out are zero.
template <class T, class Function, class... Prefix>
T QueryNumber(const QuerySite& site, const Function& function, int32_t command, Prefix... prefix) {
    // A bool8_t other than 0 and 1 must not be read as a C++ bool.
    using Raw = std::conditional_t<std::is_same<T, bool>::value, uint8_t, T>;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    Raw value{};
    size_t size = sizeof(value);
    const GC_ERROR result = CallProducer(function, prefix..., command, &type, &value, &size);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(site.pGenTL, site.unit, site.line, result, site.functionName, site.format, result,
                            prefix..., command, &type, &value, &size);
    if constexpr (std::is_same<T, bool>::value)
        return value != 0;
    else
        return value;
}

/// The identifier query: `prefix` is the parent's handle and the index. `dataFormat` reports a failing second
/// call where that is worded differently.
template <class Function, class... Prefix>
gcstring QueryIdentifier(const QuerySite& site, const char* dataFormat, const Function& function,
                         Prefix... prefix) {
    return ReadText(
        site, [&](char* buffer, size_t* size) { return CallProducer(function, prefix..., buffer, size); },
        [&](GC_ERROR result, char* buffer, size_t* size) {
            return ProducerError(site.pGenTL, site.unit, site.line, result, site.functionName,
                                 buffer == nullptr ? site.format : dataFormat, result, prefix..., buffer,
                                 size);
        });
}

} // namespace ZqApi
