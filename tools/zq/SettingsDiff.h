#pragma once

#include <string>
#include <vector>

namespace ZqTool {

/// One setting. Features that a selector chooses have it in their name: "Gain[GainSelector=Red]".
struct Setting {
    std::string name;
    std::string value;
};

struct Difference {
    std::string name;
    std::string left;
    std::string right;
};

/// The settings in a text of lines "feature, tab, value"; lines that begin with '#' are left out. A name that
/// occurs a second time, as its selector moves, is told from the first by the last value before it that a
/// feature whose name ends in "Selector" was given.
std::vector<Setting> ParseSettings(const std::string& text);

/// In the order of the left side, then what only the right side has. A side without the setting says "-".
std::vector<Difference> CompareSettings(const std::vector<Setting>& left, const std::vector<Setting>& right);

} // namespace ZqTool
