#pragma once

#include <Base/GCException.h>
#include <ZqApi/Export.h>
#include <ZqApi/Types.h>

namespace ZqApi {

/// A call of the GenTL producer failed.
///
/// The description is a log of the call, its result first ("-1005 = TLOpen(0x0x7ffc...)"), followed by the
/// producer's own text when its last error is the same. Where an argument, a state or memory is at fault the
/// library throws the exceptions of namespace GenICam instead; all of them derive from
/// GenICam::GenericException.
class ZQAPI_API CZqGenTLErrorException : public GenICam::GenericException {
public:
    /// Copies all texts. `exceptionType` is the kind that `what` names ("ZqGenTLErrorException").
    CZqGenTLErrorException(GC_ERROR error, const char* functionName, const char* description,
                           const char* sourceFileName, int sourceLine, const char* exceptionType);
    CZqGenTLErrorException(const CZqGenTLErrorException&) = default;
    CZqGenTLErrorException(CZqGenTLErrorException&&) = default;
    CZqGenTLErrorException& operator=(const CZqGenTLErrorException&) = default;
    CZqGenTLErrorException& operator=(CZqGenTLErrorException&&) = default;
    ~CZqGenTLErrorException() noexcept override;

    /// The producer function that failed, or that the producer lacks.
    virtual gcstring GetFunctionName() const;
    /// The producer's code; GC_ERR_NOT_IMPLEMENTED for a function that it lacks.
    virtual GC_ERROR GetError() const;

private:
    gcstring m_FunctionName;
    GC_ERROR m_Error;
};

/// A call of the operating system failed.
///
/// The description ends with the code and, behind a quotation mark, the system's own text for the error it
/// had at that moment: "/opt/libzqgentl.cti ErrorCode=0x00000002 " "No such file or directory".
class ZQAPI_API CZqLinuxErrorException : public GenICam::GenericException {
public:
    /// Copies all texts. `exceptionType` is the kind that `what` names ("ZqLinuxErrorException").
    CZqLinuxErrorException(int error, const char* functionName, const char* description,
                           const char* sourceFileName, int sourceLine, const char* exceptionType);
    CZqLinuxErrorException(const CZqLinuxErrorException&) = default;
    CZqLinuxErrorException(CZqLinuxErrorException&&) = default;
    CZqLinuxErrorException& operator=(const CZqLinuxErrorException&) = default;
    CZqLinuxErrorException& operator=(CZqLinuxErrorException&&) = default;
    ~CZqLinuxErrorException() noexcept override;

    /// The system function that failed; for a producer file that can't be loaded, the loader's explanation.
    virtual gcstring GetFunctionName() const;
    /// The number that the system gave (errno); 0 where it gave none.
    virtual int GetError() const;

private:
    gcstring m_FunctionName;
    int m_Error;
};

} // namespace ZqApi
