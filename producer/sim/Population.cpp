#include "producer/sim/Population.h"

#include "producer/sim/Failure.h"

#include <cstdlib>
#include <sstream>

namespace zqgentl {

namespace {

constexpr const char* variable = "ZQGENTL_SIM";

[[noreturn]] void Refuse(const std::string& text, const std::string& why) {
    throw Failure(GenTL::GC_ERR_INVALID_VALUE, std::string(variable) + " = '" + text + "': " + why);
}

size_t IndexOf(const std::string& name, const std::string& text) {
    for (size_t i = 0; i < busCount; ++i) {
        if (name == BusModelAt(i).tlType)
            return i;
    }
    Refuse(text, "there is no interface '" + name + "', only U3V, GEV and CXP");
}

uint32_t ParseCount(const std::string& digits, const std::string& text) {
    if (digits.empty() || digits.size() > 3 || digits.find_first_not_of("0123456789") != std::string::npos)
        Refuse(text, "'" + digits + "' is no number of cameras");
    return static_cast<uint32_t>(std::stoul(digits));
}

} // namespace

Population DefaultPopulation() {
    Population population;
    population.fill(1U);
    return population;
}

Population ParsePopulation(const std::string& text) {
    Population population;
    std::istringstream entries(text);
    std::string entry;
    uint32_t total = 0;
    while (std::getline(entries, entry, ',')) {
        const size_t equals = entry.find('=');
        if (equals == std::string::npos)
            Refuse(text, "'" + entry + "' has no number");
        std::optional<uint32_t>& count = population[IndexOf(entry.substr(0, equals), text)];
        if (count.has_value())
            Refuse(text, "an interface is named twice");
        count = ParseCount(entry.substr(equals + 1), text);
        total += *count;
    }
    if (total > camerasMax)
        Refuse(text, "more than " + std::to_string(camerasMax) + " cameras");
    return population;
}

Population PopulationOfEnvironment() {
    const char* text = std::getenv(variable);
    return text == nullptr ? DefaultPopulation() : ParsePopulation(text);
}

} // namespace zqgentl
