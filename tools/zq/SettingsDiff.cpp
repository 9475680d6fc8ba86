#include "tools/zq/SettingsDiff.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace ZqTool {

namespace {

std::vector<Setting> Lines(const std::string& text) {
    std::vector<Setting> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const size_t tab = line.find('\t');
        if (line.rfind('#', 0) != 0 && tab != std::string::npos)
            lines.push_back({line.substr(0, tab), line.substr(tab + 1)});
    }
    return lines;
}

bool IsSelector(const std::string& name) {
    static const std::string suffix = "Selector";
    return name.size() >= suffix.size() &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

const Setting* Find(const std::vector<Setting>& settings, const std::string& name) {
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [&](const Setting& each) { return each.name == name; });
    return found == settings.end() ? nullptr : &*found;
}

} // namespace

std::vector<Setting> ParseSettings(const std::string& text) {
    const auto lines = Lines(text);
    std::map<std::string, size_t> count;
    for (const auto& line : lines)
        ++count[line.name];
    std::map<std::string, size_t> left = count;
    std::vector<Setting> settings;
    std::string selected;
    for (const auto& line : lines) {
        // A selector moves while settings are written; what counts is where it ends.
        const bool isLast = --left[line.name] == 0;
        if (IsSelector(line.name))
            selected = "[" + line.name + "=" + line.value + "]";
        else
            settings.push_back({line.name + (count[line.name] > 1 ? selected : ""), line.value});
        if (IsSelector(line.name) && isLast)
            settings.push_back(line);
    }
    return settings;
}

std::vector<Difference> CompareSettings(const std::vector<Setting>& left, const std::vector<Setting>& right) {
    std::vector<Difference> differences;
    for (const auto& setting : left) {
        const Setting* other = Find(right, setting.name);
        if (other == nullptr || other->value != setting.value)
            differences.push_back({setting.name, setting.value, other == nullptr ? "-" : other->value});
    }
    for (const auto& setting : right)
        if (Find(left, setting.name) == nullptr)
            differences.push_back({setting.name, "-", setting.value});
    return differences;
}

} // namespace ZqTool
