#include "auto-node/CommandLine.h"

#include <CLI/CLI.hpp>

#include <utility>

namespace KAL_AUTO_Node {

bool Option::Given() const { return option_->count() > 0; }

Option Option::Required() const { return Option(*option_->required()); }

Option Option::ShownAs(const std::string& value) const { return Option(*option_->type_name(value)); }

Option Option::Needs(const Option& other) const { return Option(*option_->needs(other.option_)); }

Option Option::Excludes(const Option& other) const { return Option(*option_->excludes(other.option_)); }

Option Option::Takes(std::size_t least, std::size_t most) const {
    return Option(*option_->expected(static_cast<int>(least), static_cast<int>(most)));
}

Option Option::OneOf(const std::vector<std::string>& words) const {
    return Option(*option_->check(CLI::IsMember(words)));
}

Option Option::Check(std::function<std::string(const std::string&)> judge) const {
    return Option(*option_->check(std::move(judge), "", ""));
}

bool CommandArguments::Given() const { return command_->parsed(); }

Option CommandArguments::Flag(const std::string& name, bool& given, const std::string& description) const {
    return Option(*command_->add_flag(name, given, description));
}

Option CommandArguments::Text(const std::string& name, std::string& text,
                              const std::string& description) const {
    return Option(*command_->add_option(name, text, description));
}

Option CommandArguments::Texts(const std::string& name, std::vector<std::string>& texts,
                               const std::string& description) const {
    return Option(*command_->add_option(name, texts, description));
}

Option CommandArguments::Word(const std::string& name, std::function<void(const std::string&)> read,
                              const std::string& description) const {
    return Option(*command_->add_option_function<std::string>(name, read, description));
}

Option CommandArguments::Words(const std::string& name, std::function<void(const std::string&)> read,
                               const std::string& description) const {
    const auto all = [read = std::move(read)](const std::vector<std::string>& words) {
        for (const std::string& word : words) {
            read(word);
        }
    };
    return Option(*command_->add_option_function<std::vector<std::string>>(name, all, description));
}

void CommandArguments::Together(std::function<void()> judge) const { command_->callback(std::move(judge)); }

void Refuse(const std::string& name, const std::string& message) {
    throw CLI::ValidationError(name, message);
}

CommandLine::CommandLine(const std::string& description, const std::string& program,
                         const std::string& version)
    : program_(std::make_unique<CLI::App>(description, program)) {
    program_->require_subcommand(1);
    program_->set_version_flag("--version", version);
}

CommandLine::~CommandLine() = default;

CommandArguments CommandLine::Add(const std::string& command, const std::string& description) {
    return CommandArguments(*program_->add_subcommand(command, description));
}

CommandLine::Outcome CommandLine::Read(int argc, char** argv) {
    try {
        program_->parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program_->exit(error) == 0 ? Outcome::Told : Outcome::Wrong;
    }
    return Outcome::Run;
}

} // namespace KAL_AUTO_Node
