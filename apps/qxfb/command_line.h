// What the command files of qxfb share: each adds its commands to the one
// command line (CLI11), and the command that the words choose runs after the
// whole line has been read, so that a usage error stops before anything is
// loaded or written.
#pragma once
#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <string>

namespace qx::cli {

// The chosen command; it gives the exit status.
using Command = std::function<int()>;

// Adds a command of qxfb, listed under "Commands" in qxfb --help. needs is
// the usage error when a required argument is missing ("dump needs an image
// file").
CLI::App* addCommand(CLI::App& parent, const std::string& name, const std::string& description,
                     const std::string& needs);

// The usage error of a command that a missing argument stops, as addCommand
// recorded it; empty when there is none.
std::string neededBy(const CLI::App& command);

// A whole number from min to max (decimal, or hexadecimal with 0x); the
// message names the value given.
CLI::Validator wholeNumber(int64_t min, int64_t max);

// "qxfb: " and the message, then the hint to --help, on standard error: 2.
int usageError(const std::string& message);

// "qxfb: " and the message on standard error: 1.
int failure(const std::string& message);

void addBaseCommands(CLI::App& qxfb, Command& chosen);      // demo, classes, register, unregister, project
void addImageCommands(CLI::App& qxfb, Command& chosen);     // dump, diff
void addTextFormCommands(CLI::App& qxfb, Command& chosen);  // export, import
void addModelCommands(CLI::App& qxfb, Command& chosen);     // preview, loopback, decode
void addLinkCommands(CLI::App& qxfb, Command& chosen);      // send, listen, simulate

// The longer explanations of qxfb --help of the commands of three files.
extern const char* const textFormCommandsHelp;
extern const char* const modelCommandsHelp;
extern const char* const linkCommandsHelp;

}  // namespace qx::cli
