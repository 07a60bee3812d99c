#include "auto-node/Arguments.h"
#include "auto-node/CallsText.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "calls/Expectations.h"
#include "nodes/JsonText.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <array>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

constexpr int SomeContradicted = 1;
constexpr int SomePossible = 3;

// By verdict; what cannot be read or taken is the last.
constexpr std::array<const char*, 4> Verdicts = {"certain", "possible", "contradicted", "unreadable"};
constexpr std::size_t Unreadable = 3;

struct Options {
    std::vector<std::string> files;
    std::vector<std::int16_t> write; // configuration, partition
    bool json = false;
};

std::string Listed(const std::vector<Target>& targets) {
    std::string text;
    for (const Target& target : targets) {
        text += (text.empty() ? "" : ", or ") + target.Text();
    }
    return text;
}

CallMap ReadMap(DataBase& dataBase, const TypeNames& names, Partition partition) {
    return Lasting("Reading the partition", [&] { return ReadCallMap(dataBase, names, partition); });
}

class Checking {
  public:
    Checking(bool json, DataBase& dataBase) : json_(json), dataBase_(dataBase) {}

    void Check(const std::string& file) {
        std::istringstream lines(ReadTextFile(file));
        int number = 0;
        for (std::string line; std::getline(lines, line);) {
            Check(file, ++number, line);
        }
    }

    [[nodiscard]] int End() const {
        if (json_) {
            std::cout << JsonText(document_) << '\n';
        } else {
            std::cout << Counted(counts_[0] + counts_[1] + counts_[2] + counts_[Unreadable], "expectation")
                      << ": " << counts_[0] << " certain, " << counts_[1] << " possible only, " << counts_[2]
                      << " contradicted";
            if (counts_[Unreadable] > 0) {
                std::cout << ", " << counts_[Unreadable] << " that cannot be read";
            }
            std::cout << '\n';
        }
        return counts_[2] + counts_[Unreadable] > 0 ? SomeContradicted : counts_[1] > 0 ? SomePossible : 0;
    }

  private:
    void Check(const std::string& file, int number, const std::string& line) {
        std::optional<Expectation> expectation;
        try {
            expectation = ExpectationOf(line, names_);
        } catch (const RuntimeError& error) {
            Tell(file, number, line, Unreadable, {}, error.what());
            return;
        }
        if (!expectation) {
            return;
        }
        const CallMap& map = MapOf(expectation->partition);
        try {
            const Judgement judgement = Judge(map, *expectation);
            Tell(file, number, line, static_cast<std::size_t>(judgement.verdict), judgement, "");
        } catch (const RuntimeError& error) {
            Tell(file, number, line, static_cast<std::size_t>(Verdict::Contradicted), {}, error.what());
        }
    }

    void Tell(const std::string& file, int number, const std::string& line, std::size_t verdict,
              const Judgement& judgement, const std::string& error) {
        ++counts_.at(verdict);
        if (json_) {
            Json told{
                {"file", file}, {"line", number}, {"expectation", line}, {"verdict", Verdicts.at(verdict)}};
            for (const auto& [name, targets] :
                 {std::pair("reached", &judgement.reached), std::pair("ended", &judgement.ended)}) {
                told[name] = Json::array();
                for (const Target& target : *targets) {
                    told[name].push_back(target.Text());
                }
            }
            told["error"] = error;
            document_.push_back(std::move(told));
            return;
        }
        if (verdict == static_cast<std::size_t>(Verdict::Certain)) {
            return;
        }
        std::cout << Visible(file) << ':' << number << ": " << Verdicts.at(verdict)
                  << (verdict == static_cast<std::size_t>(Verdict::Possible) ? " only: " : ": ")
                  << Visible(line) << '\n';
        std::string instead = error;
        if (!judgement.reached.empty()) {
            instead = "leads to " + Listed(judgement.reached);
        }
        if (!judgement.ended.empty()) {
            instead += (instead.empty() ? "" : "; ") + ("with steps left at " + Listed(judgement.ended));
        }
        std::cout << "    " << Visible(instead) << '\n';
    }

    const CallMap& MapOf(Partition partition) {
        auto known = maps_.find(partition);
        if (known == maps_.end()) {
            known = maps_.emplace(partition, ReadMap(dataBase_, names_, partition)).first;
        }
        return known->second;
    }

    bool json_;
    DataBase& dataBase_;
    TypeNames names_{dataBase_};
    std::map<Partition, CallMap> maps_;
    std::array<std::size_t, Verdicts.size()> counts_{};
    Json document_ = Json::array();
};

int Run(const Options& options, DataBase& dataBase) {
    if (options.write.empty()) {
        Checking checking(options.json, dataBase);
        for (const std::string& file : options.files) {
            checking.Check(file);
        }
        return checking.End();
    }
    const Partition partition{options.write[0], options.write[1]};
    const TypeNames names(dataBase);
    const CallMap map = ReadMap(dataBase, names, partition);
    if (map.menus.empty()) {
        throw RuntimeError(partition.Text() + " has no AUTO nodes");
    }
    WriteExpectations(map, names, [](const std::string& line) { std::cout << Visible(line) << '\n'; });
    return 0;
}

} // namespace

Subcommand ExpectCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Check how calls have to go, as files tell it, or write how they go");
    const Option files =
        command.Texts("FILE", options->files, "Expectations, one a line: 1 2 AUTO 1: 2 7 -> MSG 31")
            .ShownAs("");
    const Option json = command.Flag("--json", options->json, "Print JSON, for programs");
    command
        .Words(
            "--write",
            [options](const std::string& text) { options->write.push_back(ReadNumber("--write", text)); },
            "Print the expectations of a partition as it is")
        .Takes(2, 2)
        .ShownAs("CONFIG PARTITION")
        .Excludes(files)
        .Excludes(json);
    command.Together([options] {
        if (options->files.empty() && options->write.empty()) {
            Refuse("expect", "takes FILE or --write");
        }
    });
    return {command, Reading([options](DataBase& dataBase) { return Run(*options, dataBase); })};
}

} // namespace KAL_AUTO_Node
