#include "tools/zq/Failure.h"

#include <algorithm>
#include <iterator>
#include <ostream>

namespace ZqTool {

namespace {

using namespace ZqApi;

struct ErrorCode {
    GC_ERROR code;
    const char* name;
    const char* advice;
};

constexpr const char* reconnect = "check the camera's cable and power, then run: zq list";
constexpr const char* closeOthers = "close the other program that uses the camera";
constexpr const char* otherProducer = "use a newer producer; this one does not offer what is needed";
constexpr const char* reportIt = "try again; if it stays, report it to the producer's maker";

constexpr ErrorCode errorCodes[] = {
    {GC_ERR_SUCCESS, "GC_ERR_SUCCESS", reportIt},
    {GC_ERR_ERROR, "GC_ERR_ERROR", reportIt},
    {GC_ERR_NOT_INITIALIZED, "GC_ERR_NOT_INITIALIZED", reportIt},
    {GC_ERR_NOT_IMPLEMENTED, "GC_ERR_NOT_IMPLEMENTED", otherProducer},
    {GC_ERR_RESOURCE_IN_USE, "GC_ERR_RESOURCE_IN_USE", closeOthers},
    {GC_ERR_ACCESS_DENIED, "GC_ERR_ACCESS_DENIED", closeOthers},
    {GC_ERR_INVALID_HANDLE, "GC_ERR_INVALID_HANDLE", reportIt},
    {GC_ERR_INVALID_ID, "GC_ERR_INVALID_ID", "check the name against: zq list"},
    {GC_ERR_NO_DATA, "GC_ERR_NO_DATA", reportIt},
    {GC_ERR_INVALID_PARAMETER, "GC_ERR_INVALID_PARAMETER", reportIt},
    {GC_ERR_IO, "GC_ERR_IO", reconnect},
    {GC_ERR_TIMEOUT, "GC_ERR_TIMEOUT", reconnect},
    {GC_ERR_ABORT, "GC_ERR_ABORT", reportIt},
    {GC_ERR_INVALID_BUFFER, "GC_ERR_INVALID_BUFFER", reportIt},
    {GC_ERR_NOT_AVAILABLE, "GC_ERR_NOT_AVAILABLE", reportIt},
    {GC_ERR_INVALID_ADDRESS, "GC_ERR_INVALID_ADDRESS", reportIt},
    {GC_ERR_BUFFER_TOO_SMALL, "GC_ERR_BUFFER_TOO_SMALL", reportIt},
    {GC_ERR_INVALID_INDEX, "GC_ERR_INVALID_INDEX", reportIt},
    {GC_ERR_PARSING_CHUNK_DATA, "GC_ERR_PARSING_CHUNK_DATA", reportIt},
    {GC_ERR_INVALID_VALUE, "GC_ERR_INVALID_VALUE", reportIt},
    {GC_ERR_RESOURCE_EXHAUSTED, "GC_ERR_RESOURCE_EXHAUSTED",
     "close other programs, or ask for smaller images"},
    {GC_ERR_OUT_OF_MEMORY, "GC_ERR_OUT_OF_MEMORY", "close other programs, or ask for smaller images"},
    {GC_ERR_BUSY, "GC_ERR_BUSY", closeOthers},
    {GC_ERR_AMBIGUOUS, "GC_ERR_AMBIGUOUS", "name the camera by its identifier, as in: zq list"},
};

constexpr ErrorCode makersOwn = {GC_ERR_CUSTOM_ID, "the producer's own code", reportIt};

const ErrorCode& Find(GC_ERROR code) {
    const auto* found = std::find_if(std::begin(errorCodes), std::end(errorCodes),
                                     [code](const ErrorCode& each) { return each.code == code; });
    return found == std::end(errorCodes) ? makersOwn : *found;
}

/// The producer's own text, which follows the closing bracket of the call log "-1005 = TLOpen(0x...)".
std::string TextBehindCall(const std::string& message) {
    int depth = 0;
    for (size_t i = 0; i < message.size(); ++i) {
        if (message[i] == '(')
            ++depth;
        else if (message[i] == ')' && --depth == 0)
            return message.substr(std::min(i + 2, message.size()));
    }
    return {};
}

std::string Explain(const CZqGenTLErrorException& error) {
    std::string why = std::to_string(error.GetError()) + " " + Find(error.GetError()).name + " from " +
                      error.GetFunctionName().c_str();
    const std::string text = TextBehindCall(error.GetDescription());
    return text.empty() ? why : why + ": " + text;
}

} // namespace

Failure Failure::Of(const std::string& doing, const GenICam::GenericException& error) {
    if (const auto* producer = dynamic_cast<const CZqGenTLErrorException*>(&error))
        return {doing, Explain(*producer), Find(producer->GetError()).advice};
    if (dynamic_cast<const CZqLinuxErrorException*>(&error) != nullptr)
        return {doing, error.GetDescription(), "install the producer again, for this kind of processor"};
    if (dynamic_cast<const GenICam::AccessException*>(&error) != nullptr)
        return {doing, error.GetDescription(), reconnect};
    return {doing, error.GetDescription(), reportIt};
}

void Failure::Print(std::ostream& err) const {
    err << "zq: " << m_doing << " failed\n  why: " << m_why << "\n  try: " << m_advice << "\n";
}

} // namespace ZqTool
