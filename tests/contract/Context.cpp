#include "Context.h"

#include <dlfcn.h>

namespace contract {

namespace {

constexpr int32_t unknownCommand = 997;

bool IsAbsent(GC_ERROR code) {
    return code == GC_ERR_NOT_IMPLEMENTED || code == GC_ERR_NOT_AVAILABLE || code == GC_ERR_NO_DATA;
}

std::string Named(const std::string& function, const InfoRow& row) {
    return function + "(" + row.name + ")";
}

} // namespace

bool Load(Context& context, const char* file) {
    context.report.Enter("loading");
    void* library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (!context.report.Holds("dlopen", library != nullptr, "a library", library != nullptr ? "" : dlerror()))
        return false;
    bool whole = true;
#define X(name)                                                                                              \
    context.gentl.name = reinterpret_cast<P##name>(dlsym(library, #name));                                   \
    whole =                                                                                                  \
        context.report.Holds(#name, context.gentl.name != nullptr, "an exported function", "none") && whole;
    ZQ_FOR_EACH_FUNCTION(X)
#undef X
    return whole;
}

bool CheckInfo(Context& context, const std::string& function, const InfoRow& row, const InfoCall& call) {
    Report& report = context.report;
    const std::string name = Named(function, row);
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    size_t needed = 0;
    const GC_ERROR asked = call(&type, nullptr, &needed);
    if (row.need == Need::Optional && IsAbsent(asked)) {
        report.Holds(name, true, "an answer or none", NameOf(asked));
        return false;
    }
    if (!report.Success(name + " size", asked))
        return false;
    report.Equal(name + " type", type, row.type);
    std::vector<char> answer(needed + 8, '?');
    size_t size = needed;
    if (!report.Success(name + " exact room", call(&type, answer.data(), &size)))
        return false;
    report.Equal(name + " size written", size, needed);
    report.Holds(name + " bytes behind the answer", answer[needed] == '?', "untouched");
    if (row.type == INFO_DATATYPE_STRING)
        report.Holds(name + " text", needed > 0 && answer[needed - 1] == '\0', "ends with 0");
    if (needed > 0) {
        size = needed - 1;
        report.Result(name + " too little room", call(&type, answer.data(), &size),
                      {GC_ERR_BUFFER_TOO_SMALL});
    }
    size = needed;
    report.Result(name + " no size", call(&type, answer.data(), nullptr), {GC_ERR_INVALID_PARAMETER});
    report.Result(name + " no type", call(nullptr, answer.data(), &size), {GC_ERR_INVALID_PARAMETER});
    return true;
}

void CheckInfos(Context& context, const std::string& function, const std::vector<InfoRow>& rows,
                const std::function<InfoCall(int32_t)>& callOf) {
    for (const InfoRow& row : rows)
        CheckInfo(context, function, row, callOf(row.command));
    INFO_DATATYPE type = 0;
    size_t size = 0;
    context.report.Result(function + "(unknown command)", callOf(unknownCommand)(&type, nullptr, &size),
                          {GC_ERR_NOT_IMPLEMENTED});
}

bool CheckText(Context& context, const std::string& function, const TextCall& call) {
    Report& report = context.report;
    size_t needed = 0;
    if (!report.Success(function + " size", call(nullptr, &needed)))
        return false;
    std::vector<char> text(needed + 8, '?');
    size_t size = needed;
    if (!report.Success(function + " exact room", call(text.data(), &size)))
        return false;
    report.Equal(function + " size written", size, needed);
    report.Holds(function + " text", needed > 0 && text[needed - 1] == '\0', "ends with 0");
    size = needed - 1;
    report.Result(function + " too little room", call(text.data(), &size), {GC_ERR_BUFFER_TOO_SMALL});
    report.Result(function + " no size", call(text.data(), nullptr), {GC_ERR_INVALID_PARAMETER});
    return true;
}

std::string TextOf(const InfoCall& call) {
    INFO_DATATYPE type = 0;
    return TextOf([&](char* text, size_t* size) { return call(&type, text, size); });
}

std::string TextOf(const TextCall& call) {
    size_t size = 0;
    if (call(nullptr, &size) != GC_ERR_SUCCESS)
        return "";
    std::vector<char> text(size + 1, '\0');
    if (call(text.data(), &size) != GC_ERR_SUCCESS)
        return "";
    return text.data();
}

} // namespace contract
