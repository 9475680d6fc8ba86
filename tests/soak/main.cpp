// Eight simulated cameras of three kinds under load and faults; every frame has to be accounted for.
//   soak [--seconds N] [--seed S]
// The producer is found where GENICAM_GENTL64_PATH says. Ends with 1 when something did not come out.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "tests/soak/CameraRun.h"

namespace {

using namespace ZqSoak;

constexpr const char* CAMERAS = "U3V=3,GEV=3,CXP=2";
constexpr size_t CAMERA_COUNT = 8;

struct Options {
    long seconds = 20;
    uint64_t seed = std::random_device()();
};

Options ReadOptions(int count, char** words) {
    Options options;
    for (int i = 1; i < count; i += 2) {
        const bool hasValue = i + 1 < count;
        if (hasValue && std::strcmp(words[i], "--seconds") == 0) {
            options.seconds = std::atol(words[i + 1]);
        } else if (hasValue && std::strcmp(words[i], "--seed") == 0) {
            options.seed = std::strtoull(words[i + 1], nullptr, 10);
        } else {
            std::fprintf(stderr, "usage: soak [--seconds N] [--seed S]\n");
            std::exit(2);
        }
    }
    return options;
}

std::vector<std::unique_ptr<CameraRun>> MakeRuns(ZqApi::IZqSystem& system, uint64_t seed) {
    std::vector<std::unique_ptr<CameraRun>> runs;
    for (uint32_t i = 0; i < system.GetInterfaceCount(); ++i) {
        ZqApi::IZqInterface& interface = *system.GetIZqInterface(i);
        for (uint32_t d = 0; d < interface.GetDeviceCount(); ++d)
            runs.push_back(std::make_unique<CameraRun>(
                interface, interface.GetIZqDeviceInfo(d)->GetID().c_str(), seed + runs.size()));
    }
    return runs;
}

unsigned long long Plain(uint64_t number) {
    return number;
}

void Print(const char* name, const Totals& t) {
    std::printf("%-22s %8llu = %8llu + %7llu + %7llu + %4llu, %7llu | %8llu = %8llu + %5llu | %4llu %4llu\n",
                name, Plain(t.made), Plain(t.delivered), Plain(t.dropped), Plain(t.underrun),
                Plain(t.leftBehind), Plain(t.incomplete), Plain(t.begun), Plain(t.deliveredBegun),
                Plain(t.lostWithCamera), Plain(t.acquisitions), Plain(t.losses));
}

bool Soak(const Options& options) {
    const System system(ZqApi::CreateIZqSystem(ZqApi::ZqSystemVendor_Default, ZqApi::ZqInterfaceType_All));
    const auto runs = MakeRuns(*system, options.seed);
    const auto end = Clock::now() + std::chrono::seconds(options.seconds);
    std::vector<std::thread> threads;
    for (const auto& run : runs)
        threads.emplace_back([&run, end] { run->Run(end); });
    for (std::thread& thread : threads)
        thread.join();

    std::printf("%-22s %8s = %8s + %7s + %7s + %4s, %7s | %8s = %8s + %5s | %4s %4s\n", "camera", "made",
                "deliv.", "dropped", "underr.", "left", "incompl", "begun", "deliv.", "gone", "runs", "loss");
    Totals all;
    for (const auto& run : runs) {
        Print(run->GetId().c_str(), run->GetTotals());
        all.Add(run->GetTotals());
    }
    Print("all", all);
    std::printf("%llu feature accesses, %llu refused on purpose, %llu saves; %llu failures\n",
                Plain(all.featureAccesses), Plain(all.portErrors), Plain(all.saves), Plain(all.failures));
    // What is left behind is the rest of each sum. It takes a stop that meets a delivery, which is rare: as
    // much as a frame for every second acquisition would be a frame lost on the way.
    constexpr uint64_t chance = 20;
    const bool everything =
        runs.size() == CAMERA_COUNT && all.leftBehind <= (all.acquisitions - all.losses) / 2 + chance;
    if (!everything)
        std::printf("%llu frames were left behind, or a camera is missing\n", Plain(all.leftBehind));
    return all.failures == 0 && everything && all.delivered > 0;
}

} // namespace

int main(int count, char** words) try {
    const Options options = ReadOptions(count, words);
    std::printf("soak --seconds %ld --seed %llu\n", options.seconds, Plain(options.seed));
    std::fflush(stdout);
    setenv("ZQGENTL_SIM", CAMERAS, 1);
    ZqApi::ZqApiInitialize(ZqApi::ZqApiBuildVersion);
    const bool passed = Soak(options);
    ZqApi::ZqApiTerminate();
    return passed ? 0 : 1;
} catch (const GenICam::GenericException& exception) {
    std::fprintf(stderr, "soak: %s\n", exception.GetDescription());
    return 1;
}
