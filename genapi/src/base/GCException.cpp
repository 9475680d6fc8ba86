#include <Base/GCException.h>

#include <cstdio>
#include <vector>

namespace GENICAM_NAMESPACE {

struct GenericException::Texts {
    std::string description;
    std::string sourceFileName;
    unsigned int sourceLine;
    std::string what;
};

ExceptionSlots::~ExceptionSlots() throw() = default;

GenericException::GenericException(const char* description, const char* sourceFileName, int sourceLine)
    : GenericException(description, sourceFileName, sourceLine, "GenericException") {}

GenericException::GenericException(const char* description, const char* sourceFileName, int sourceLine,
                                   const char* kind) {
    auto texts = std::make_shared<Texts>();
    texts->description = description ? description : "";
    texts->sourceFileName = sourceFileName ? sourceFileName : "";
    texts->sourceLine = static_cast<unsigned int>(sourceLine);
    texts->what = texts->description + " : " + (kind ? kind : "GenericException") + " thrown (file '" +
                  texts->sourceFileName + "', line " + std::to_string(texts->sourceLine) + ")";
    m_texts = std::move(texts);
}

GenericException::~GenericException() throw() = default;

// A moved-from exception holds no texts.
const char* GenericException::GetDescription() const throw() {
    return m_texts ? m_texts->description.c_str() : "";
}
const char* GenericException::GetSourceFileName() const throw() {
    return m_texts ? m_texts->sourceFileName.c_str() : "";
}
unsigned int GenericException::GetSourceLine() const throw() {
    return m_texts ? m_texts->sourceLine : 0;
}
const char* GenericException::what() const throw() {
    return m_texts ? m_texts->what.c_str() : "";
}

#define GENICAM_DEFINE_EXCEPTION(Name)                                                                       \
    Name::Name(const char* description, const char* sourceFileName, int sourceLine)                          \
        : GenericException(description, sourceFileName, sourceLine, #Name) {}                                \
    Name::Name(const char* description, const char* sourceFileName, int sourceLine, const char* kind)        \
        : GenericException(description, sourceFileName, sourceLine, kind) {}                                 \
    Name::~Name() throw() = default

GENICAM_DEFINE_EXCEPTION(BadAllocException);
GENICAM_DEFINE_EXCEPTION(InvalidArgumentException);
GENICAM_DEFINE_EXCEPTION(OutOfRangeException);
GENICAM_DEFINE_EXCEPTION(PropertyException);
GENICAM_DEFINE_EXCEPTION(RuntimeException);
GENICAM_DEFINE_EXCEPTION(LogicalErrorException);
GENICAM_DEFINE_EXCEPTION(AccessException);
GENICAM_DEFINE_EXCEPTION(TimeoutException);
GENICAM_DEFINE_EXCEPTION(DynamicCastException);

#undef GENICAM_DEFINE_EXCEPTION

std::string FormatMessage(const char* format, std::va_list arguments) {
    char small[512];
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(small, sizeof small, format ? format : "", arguments);
    std::string message;
    if (length >= 0 && static_cast<size_t>(length) < sizeof small) {
        message.assign(small, static_cast<size_t>(length));
    } else if (length >= 0) {
        message.resize(static_cast<size_t>(length) + 1);
        std::vsnprintf(&message[0], message.size(), format, again);
        message.resize(static_cast<size_t>(length));
    } else {
        message = format;
    }
    va_end(again);
    return message;
}

} // namespace GENICAM_NAMESPACE
