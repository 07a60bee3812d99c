#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace KAL_AUTO_Node {

// What the commands say of the command line. The parser's header, which costs each file that includes it
// seconds, stays in CommandLine.cpp.

// An argument or an option, as a reference: what is asked of one narrows what it takes.
class Option {
  public:
    explicit Option(CLI::Option& option) : option_(&option) {}

    // Once the command line is read.
    [[nodiscard]] bool Given() const;

    // NOLINTBEGIN(modernize-use-nodiscard): they are called for what they do
    Option Required() const;
    // What stands for its value in the help.
    Option ShownAs(const std::string& value) const;
    Option Needs(const Option& other) const;
    Option Excludes(const Option& other) const;
    // How many words it takes.
    Option Takes(std::size_t least, std::size_t most) const;
    Option OneOf(const std::vector<std::string>& words) const;
    // NOLINTEND(modernize-use-nodiscard)
    // Judges a word: what is wrong with it, or an empty text.
    Option Check(std::function<std::string(const std::string&)> judge) const;

  private:
    CLI::Option* option_;
};

// What a command takes, as a reference. Variables are written when the command line is read, and have to live
// then.
class CommandArguments {
  public:
    explicit CommandArguments(CLI::App& command) : command_(&command) {}

    // Whether the command line names this command, once it is read.
    [[nodiscard]] bool Given() const;

    // A name without a dash is an argument, one with it an option.
    Option Flag(const std::string& name, bool& given, const std::string& description) const;
    Option Text(const std::string& name, std::string& text, const std::string& description) const;
    Option Texts(const std::string& name, std::vector<std::string>& texts,
                 const std::string& description) const;
    // One word, or as many as Takes says; read is called with each, and may Refuse it.
    Option Word(const std::string& name, const std::function<void(const std::string&)>& read,
                const std::string& description) const;
    Option Words(const std::string& name, std::function<void(const std::string&)> read,
                 const std::string& description) const;

    // Judges all that was given together; it may Refuse.
    void Together(std::function<void()> judge) const;

  private:
    CLI::App* command_;
};

// Ends reading the command line with a message about the argument, option or command named.
[[noreturn]] void Refuse(const std::string& name, const std::string& message);

class CommandLine {
  public:
    CommandLine(const std::string& description, const std::string& program, const std::string& version);
    ~CommandLine();

    // Each command takes an option for the store's file: by another name, or none, where that is given.
    CommandArguments Add(const std::string& command, const std::string& description,
                         const std::string& storeOption = "--store");

    // The store that the command line names; empty for the one that the editor opens.
    [[nodiscard]] const std::string& Store() const { return store_; }

    // Whether a command is to be run. Otherwise all is said: what was asked for, or what is wrong.
    enum class Outcome { Run, Told, Wrong };
    [[nodiscard]] Outcome Read(int argc, char** argv);

  private:
    // What is wrong with a command line that names no command.
    [[nodiscard]] std::string WithoutCommand() const;

    std::unique_ptr<CLI::App> program_;
    std::string store_;
};

} // namespace KAL_AUTO_Node
