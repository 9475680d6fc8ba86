#include "tools/zq/Failure.h"

#include <gtest/gtest.h>

#include <sstream>

using ZqApi::CZqGenTLErrorException;
using ZqTool::Failure;

namespace {

std::string Lines(const GenICam::GenericException& error) {
    std::ostringstream text;
    Failure::Of("doing it", error).Print(text);
    return text.str();
}

std::string WhyOf(int code, const char* function, const char* description) {
    const std::string lines =
        Lines(CZqGenTLErrorException(code, function, description, "unit", 1, "ZqGenTLErrorException"));
    const size_t begin = lines.find("why: ") + 5;
    return lines.substr(begin, lines.find('\n', begin) - begin);
}

TEST(ZqFailure, NamesCodeFunctionAndTheProducersText) {
    EXPECT_EQ(WhyOf(-1010, "GCReadPort", "-1010 = GCReadPort(0x0x7f, 16, 0x(nil), 0x0x8) link (2) down"),
              "-1010 GC_ERR_IO from GCReadPort: link (2) down");
    EXPECT_EQ(WhyOf(-1003, "TLOpen", "-1003 = TLOpen(0x0x7f)"), "-1003 GC_ERR_NOT_IMPLEMENTED from TLOpen");
}

TEST(ZqFailure, CodesOfTheMakerAreCalledSo) {
    EXPECT_EQ(WhyOf(-10042, "TLOpen", "-10042 = TLOpen(0x0x7f) no licence"),
              "-10042 the producer's own code from TLOpen: no licence");
}

TEST(ZqFailure, OtherExceptionsShowTheirDescription) {
    EXPECT_EQ(Lines(GenICam::AccessException("The device is lost.", "unit", 1)),
              "zq: doing it failed\n"
              "  why: The device is lost.\n"
              "  try: check the camera's cable and power, then run: zq list\n");
}

} // namespace
