#pragma once

#include <Base/GCTypes.h>

#include <cstdarg>
#include <exception>
#include <memory>
#include <string>

namespace GENICAM_NAMESPACE {

/// The slots of every exception of this interface, in their order. A class of its own, so that they come
/// before those of std::exception.
class GCBASE_API ExceptionSlots {
public:
    virtual const char* GetDescription() const throw() = 0;
    virtual const char* GetSourceFileName() const throw() = 0;
    virtual unsigned int GetSourceLine() const throw() = 0;
    virtual const char* what() const throw() = 0;
    virtual ~ExceptionSlots() throw();

protected:
    ExceptionSlots() = default;
    ExceptionSlots(const ExceptionSlots&) = default;
    ExceptionSlots(ExceptionSlots&&) = default;
    ExceptionSlots& operator=(const ExceptionSlots&) = default;
    ExceptionSlots& operator=(ExceptionSlots&&) = default;
};

/// Base of all exceptions of the node-map interface; thrown by value. Copies share their immutable texts, so
/// copying never throws. The returned pointers live as long as the object or a copy of it.
class GCBASE_API GenericException : public ExceptionSlots, public std::exception {
public:
    GenericException(const char* description, const char* sourceFileName, int sourceLine);
    GenericException(const char* description, const char* sourceFileName, int sourceLine, const char* kind);
    GenericException(const GenericException&) = default;
    GenericException(GenericException&&) = default;
    GenericException& operator=(const GenericException&) = default;
    GenericException& operator=(GenericException&&) = default;
    ~GenericException() throw() override;

    /// The message alone.
    const char* GetDescription() const throw() override;
    const char* GetSourceFileName() const throw() override;
    unsigned int GetSourceLine() const throw() override;
    /// "description : kind thrown (file 'name', line n)"
    const char* what() const throw() override;

private:
    struct Texts;
    std::shared_ptr<const Texts> m_texts;
};

#define GENICAM_DECLARE_EXCEPTION(Name)                                                                      \
    class GCBASE_API Name : public GenericException {                                                        \
    public:                                                                                                  \
        Name(const char* description, const char* sourceFileName, int sourceLine);                           \
        Name(const char* description, const char* sourceFileName, int sourceLine, const char* kind);         \
        Name(const Name&) = default;                                                                         \
        Name(Name&&) = default;                                                                              \
        Name& operator=(const Name&) = default;                                                              \
        Name& operator=(Name&&) = default;                                                                   \
        ~Name() throw() override;                                                                            \
    }

GENICAM_DECLARE_EXCEPTION(BadAllocException);
GENICAM_DECLARE_EXCEPTION(InvalidArgumentException);
GENICAM_DECLARE_EXCEPTION(OutOfRangeException);
GENICAM_DECLARE_EXCEPTION(PropertyException);
GENICAM_DECLARE_EXCEPTION(RuntimeException);
GENICAM_DECLARE_EXCEPTION(LogicalErrorException);
GENICAM_DECLARE_EXCEPTION(AccessException);
GENICAM_DECLARE_EXCEPTION(TimeoutException);
GENICAM_DECLARE_EXCEPTION(DynamicCastException);

#undef GENICAM_DECLARE_EXCEPTION

/// Formats like vsnprintf, without a limit of length.
GCBASE_API std::string FormatMessage(const char* format, std::va_list arguments);

/// Builds an exception of class E for the place in the source given at construction. `Report` returns it; the
/// caller throws it. The format is checked at compile time where the compiler can.
template <class E>
class ExceptionReporter {
public:
    ExceptionReporter(const char* sourceFileName, int sourceLine)
        : m_sourceFileName(sourceFileName), m_sourceLine(sourceLine), m_kind(nullptr) {}
    ExceptionReporter(const char* sourceFileName, int sourceLine, const char* kind)
        : m_sourceFileName(sourceFileName), m_sourceLine(sourceLine), m_kind(kind) {}

    GCBASE_PRINTF_FORMAT(2, 3) E Report(const char* format, ...) const {
        std::va_list arguments;
        va_start(arguments, format);
        std::string message;
        try {
            message = FormatMessage(format, arguments);
        } catch (...) {
            va_end(arguments);
            throw;
        }
        va_end(arguments);
        return Build(message.c_str());
    }
    E Report() const { return Build(""); }
    E Report(const std::string& message) const { return Build(message.c_str()); }

private:
    E Build(const char* message) const {
        return m_kind ? E(message, m_sourceFileName, m_sourceLine, m_kind)
                      : E(message, m_sourceFileName, m_sourceLine);
    }

    const char* m_sourceFileName;
    int m_sourceLine;
    const char* m_kind;
};

} // namespace GENICAM_NAMESPACE

#define GENICAM_EXCEPTION_REPORTER(Name, kind)                                                               \
    GENICAM_NAMESPACE::ExceptionReporter<GENICAM_NAMESPACE::Name>(__FILE__, __LINE__, kind).Report

/// Used as: throw RUNTIME_EXCEPTION("%d is odd", number);
#define GENERIC_EXCEPTION GENICAM_EXCEPTION_REPORTER(GenericException, "GenericException")
#define BAD_ALLOC_EXCEPTION GENICAM_EXCEPTION_REPORTER(BadAllocException, "BadAllocException")
#define INVALID_ARGUMENT_EXCEPTION                                                                           \
    GENICAM_EXCEPTION_REPORTER(InvalidArgumentException, "InvalidArgumentException")
#define OUT_OF_RANGE_EXCEPTION GENICAM_EXCEPTION_REPORTER(OutOfRangeException, "OutOfRangeException")
#define PROPERTY_EXCEPTION GENICAM_EXCEPTION_REPORTER(PropertyException, "PropertyException")
#define RUNTIME_EXCEPTION GENICAM_EXCEPTION_REPORTER(RuntimeException, "RuntimeException")
#define LOGICAL_ERROR_EXCEPTION GENICAM_EXCEPTION_REPORTER(LogicalErrorException, "LogicalErrorException")
#define ACCESS_EXCEPTION GENICAM_EXCEPTION_REPORTER(AccessException, "AccessException")
#define TIMEOUT_EXCEPTION GENICAM_EXCEPTION_REPORTER(TimeoutException, "TimeoutException")
#define DYNAMICCAST_EXCEPTION GENICAM_EXCEPTION_REPORTER(DynamicCastException, "DynamicCastException")
