#include "tools/zq/Commands.h"
#include "tools/zq/ProducerPath.h"

#include <csignal>
#include <iostream>
#include <unistd.h>

namespace {

extern "C" void OnInterrupt(int) {
    ZqTool::interrupted = true;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
    ZqTool::SetProducerPathWhenUnset(ZqTool::FolderOfThisProgram());
    return ZqTool::RunCommand(argc, argv, {std::cout, std::cerr, isatty(STDERR_FILENO) == 1});
}
