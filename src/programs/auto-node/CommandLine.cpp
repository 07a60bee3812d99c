#include "auto-node/CommandLine.h"

#include "platform/TellError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// How many letters have to be changed, exchanged with the next, put in or taken out to make one word of the
// other.
std::size_t Distance(std::string_view one, std::string_view other) {
    std::vector<std::vector<std::size_t>> steps(one.size() + 1, std::vector<std::size_t>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1,
                                    steps[i - 1][j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[one.size()][other.size()];
}

} // namespace

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

Option CommandArguments::Word(const std::string& name, const std::function<void(const std::string&)>& read,
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

CommandArguments CommandLine::Add(const std::string& command, const std::string& description,
                                  const std::string& storeOption) {
    CLI::App* added = program_->add_subcommand(command, description);
    if (!storeOption.empty()) {
        added
            ->add_option(storeOption, store_,
                         "The store's file, where it is not the one that the editor opens")
            ->type_name("FILE");
    }
    return CommandArguments(*added);
}

std::string CommandLine::WithoutCommand() const {
    std::vector<std::string> names;
    for (const CLI::App* command : program_->get_subcommands({})) {
        names.push_back(command->get_name());
    }
    const auto words = program_->remaining();
    if (words.empty()) {
        return "takes a command: " + CLI::detail::join(names, ", ");
    }
    const auto nearest = std::ranges::min_element(
        names, {}, [&](const std::string& name) { return Distance(words.front(), name); });
    std::string text = "there is no command '" + words.front() + "'";
    if (Distance(words.front(), *nearest) < std::max<std::size_t>(2, nearest->size() / 2)) {
        text += "; is " + *nearest + " meant?";
    }
    return text + "\nRun with --help for all of them.";
}

CommandLine::Outcome CommandLine::Read(int argc, char** argv) {
    try {
        program_->parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0 && program_->get_subcommands().empty()) {
            TellError(WithoutCommand());
            return Outcome::Wrong;
        }
        std::ostringstream wrong;
        if (program_->exit(error, std::cout, wrong) == 0) {
            return Outcome::Told;
        }
        std::cerr << VisibleLines(wrong.str());
        return Outcome::Wrong;
    }
    return Outcome::Run;
}

} // namespace KAL_AUTO_Node
