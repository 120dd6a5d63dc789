#include "command_line.h"

#include <iostream>
#include <map>

namespace qx::cli {

namespace {

// The usage error of each command with required arguments. The commands
// live as long as the program's one command line.
std::map<const CLI::App*, std::string>& needs() {
    static std::map<const CLI::App*, std::string> table;
    return table;
}

}  // namespace

CLI::App* addCommand(CLI::App& parent, const std::string& name, const std::string& description,
                     const std::string& needsText) {
    CLI::App* command = parent.add_subcommand(name, description);
    command->group("Commands");
    if (!needsText.empty()) needs()[command] = needsText;
    return command;
}

std::string neededBy(const CLI::App& command) {
    const auto found = needs().find(&command);
    return found == needs().end() ? std::string() : found->second;
}

CLI::Validator wholeNumber(int64_t min, int64_t max) {
    const std::string range = std::to_string(min) + " to " + std::to_string(max);
    return CLI::Validator(
        [min, max, range](std::string& text) -> std::string {
            size_t used = 0;
            long long value = 0;
            try {
                value = std::stoll(text, &used, 0);
            } catch (const std::exception&) {
                used = 0;
            }
            if (text.empty() || used != text.size() || value < min || value > max)
                return "\"" + text + "\" is not a whole number from " + range;
            return "";
        },
        "INT in " + range);
}

int usageError(const std::string& message) {
    std::cerr << "qxfb: " << message << "\nTry 'qxfb --help'.\n";
    return 2;
}

int failure(const std::string& message) {
    std::cerr << "qxfb: " << message << "\n";
    return 1;
}

}  // namespace qx::cli
