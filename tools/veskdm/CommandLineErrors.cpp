#include "CommandLineErrors.h"

#include <vector>

namespace veskdm {
namespace {

// "prop get" for the subcommand get of prop; empty for the tool itself.
std::string commandPath(const CLI::App* command) {
    std::vector<std::string> names;
    for (; command != nullptr && command->get_parent() != nullptr; command = command->get_parent()) {
        names.push_back(command->get_name());
    }
    std::string path;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (!path.empty()) path += ' ';
        path += *name;
    }
    return path;
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::vector<std::string> commandNames(CLI::App* command) {
    std::vector<std::string> names;
    for (const CLI::App* sub : command->get_subcommands([](CLI::App*) { return true; })) {
        names.push_back(sub->get_name());
    }
    return names;
}

std::vector<std::string> optionNames(CLI::App* command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command->get_options()) {
        if (!option->nonpositional()) continue;
        std::string name = option->get_name(false, true);
        for (size_t comma; (comma = name.find(',')) != std::string::npos;) name[comma] = '/';
        names.push_back(name);
    }
    return names;
}

// The commands the words chose, from the tool itself to the last subcommand.
std::vector<CLI::App*> chosenCommands(CLI::App* app) {
    std::vector<CLI::App*> chain = {app};
    for (;;) {
        std::vector<CLI::App*> chosen = chain.back()->get_subcommands();
        if (chosen.empty()) return chain;
        chain.push_back(chosen.front());
    }
}

}  // namespace

std::string describeParseError(CLI::App& app, const CLI::ParseError& error) {
    // The word not understood, and the command it was given to; a command that takes every word
    // after its first (call) has none.
    std::vector<CLI::App*> chain = chosenCommands(&app);
    CLI::App* command = chain.back();
    std::string word;
    for (CLI::App* at : chain) {
        std::vector<std::string> left =
                at->get_prefix_command() ? std::vector<std::string>() : at->remaining(false);
        if (!left.empty()) {
            command = at;
            word = left.front();
            break;
        }
    }
    std::string path = commandPath(command);
    std::string where = path.empty() ? "" : path + ": ";
    std::vector<std::string> commands = commandNames(command);
    if (word.size() > 1 && word[0] == '-') {
        return where + "unknown option \"" + word + "\" (options: " + joined(optionNames(command)) +
               ")";
    }
    if (!word.empty() && !commands.empty()) {
        return where + "unknown command \"" + word + "\" (commands: " + joined(commands) + ")";
    }
    if (!word.empty()) return where + "unexpected argument \"" + word + "\"";
    bool commandMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr &&
                          std::string(error.what()).find("subcommand") != std::string::npos;
    if (commandMissing && !commands.empty()) {
        return where + "a command is required: " + joined(commands);
    }
    return where + error.what();
}

}  // namespace veskdm
