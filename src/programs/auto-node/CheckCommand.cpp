#include "audit/FixMissing.h"
#include "audit/PartitionCheck.h"
#include "auto-node/Arguments.h"
#include "auto-node/CheckReport.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/History.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/NodeJson.h"
#include "platform/Interruption.h"
#include "platform/RuntimeError.h"
#include "platform/Today.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

constexpr int ErrorsFound = 1;
constexpr int WarningsFound = 3;

struct Options {
    NodePlace place;
    bool onePartition = false;
    bool oneNode = false;
    bool json = false;
    bool keys = false;
    std::string fix;
    std::string accept;
};

// The keys of a file, one a line; empty lines and those that begin with # are for people.
std::set<std::string> ReadAccepted(const std::string& file) {
    std::ifstream lines(file);
    if (!lines) {
        throw std::runtime_error("cannot read '" + file + "'");
    }
    std::set<std::string> keys;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line.erase(line.find_last_not_of(" \r\t") + 1);
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        if (!FaultOf(line.substr(0, line.find(' ')))) {
            throw std::runtime_error("line " + std::to_string(number) + " of '" + file +
                                     "' does not begin with the code of a finding: " + Visible(line));
        }
        keys.insert(line);
    }
    if (lines.bad()) {
        throw std::runtime_error("cannot read '" + file + "'");
    }
    return keys;
}

// Checks one partition after the other, and prints what is found as it goes.
class Checking {
  public:
    Checking(const Options& options, DataBase& dataBase) : options_(options), dataBase_(dataBase) {
        if (!options_.accept.empty()) {
            accepted_ = ReadAccepted(options_.accept);
        }
    }

    int Run() {
        if (options_.onePartition) {
            const Partition partition = options_.place.partition;
            Check(partition);
            if (autoNodes_ + registeredNodes_ + reported_.size() == 0) {
                FailWithoutNodes(partition);
            }
        } else {
            std::ranges::for_each(PartitionsWithRows(dataBase_),
                                  [this](const Partition& partition) { Check(partition); });
        }
        if (options_.json) {
            std::cout << JsonText(document_) << '\n';
        } else if (!options_.keys) {
            PrintSummary();
        }
        return Count(Severity::Error) > 0 ? ErrorsFound : Count(Severity::Warning) > 0 ? WarningsFound : 0;
    }

  private:
    void Check(Partition partition) {
        PartitionFindings checked = Find(partition);
        if (!options_.fix.empty() && Fix(partition, checked)) {
            checked = Find(partition);
        }
        autoNodes_ += options_.oneNode ? 1 : checked.autoNodes;
        registeredNodes_ += checked.registeredNodes;
        std::erase_if(checked.findings, [&](const Finding& finding) {
            const bool accepted = accepted_.contains(finding.Key(partition));
            acceptedCount_ += accepted ? 1 : 0;
            return accepted;
        });
        for (const Finding& finding : checked.findings) {
            ++reported_[finding.fault];
        }
        if (options_.json) {
            AddJson(partition, checked.findings);
        } else if (options_.keys) {
            for (const Finding& finding : checked.findings) {
                std::cout << finding.Key(partition) << '\n';
            }
        } else {
            Print(partition, checked.findings);
        }
    }

    PartitionFindings Find(Partition partition) {
        CheckReader reader;
        reader.takeAutoNode = [&](int number, const AutoNode&) {
            Interruption::Look();
            progress_->Show([&] { return partition.Text() + ": AUTO node " + std::to_string(number); });
        };
        progress_.emplace("Reading the store");
        PartitionFindings checked = CheckPartition(dataBase_, history_, partition, reader);
        progress_.reset();
        if (options_.oneNode) {
            std::erase_if(checked.findings, [node = options_.place.Key()](const Finding& finding) {
                return finding.holder != node;
            });
            if (checked.findings.empty()) {
                static_cast<void>(RequireAutoNode(dataBase_, options_.place));
            }
        }
        return checked;
    }

    // Makes the missing nodes that the findings name, and tells what came of it; false where there are none.
    bool Fix(Partition partition, const PartitionFindings& checked) {
        std::set<std::string> wanted;
        for (const Finding& finding : checked.findings) {
            if (finding.fault == Fault::MissingNode && !accepted_.contains(finding.Key(partition))) {
                wanted.insert(finding.subject);
            }
        }
        for (const RequiredNode& node : checked.missing) {
            if (!wanted.contains(node.name)) {
                continue;
            }
            std::string told;
            try {
                const Creation outcome = CreateMissing(dataBase_, history_, partition, node, Today());
                told = outcome == Creation::Created ? " is created."
                                                    : std::string(": ") + WhyNotCreated(outcome);
            } catch (const RuntimeError& error) {
                told = std::string(" could not be created: ") + error.what();
            }
            std::cout << Visible(node.name + told) << '\n';
        }
        dataBase_.Flush();
        return !wanted.empty();
    }

    static void Print(Partition partition, const std::vector<Finding>& findings) {
        for (std::size_t i = 0; i < findings.size();) {
            const NodeKey& holder = findings[i].holder;
            std::cout << Visible(findings[i].Holder() + "  " + findings[i].label) << "  (" << partition.Text()
                      << ")\n";
            Table table({Left, Left, Left, Left}, "  ");
            for (; i < findings.size() && findings[i].holder == holder; ++i) {
                const auto& [code, severity, meaning, advice] = RuleOf(findings[i].fault);
                table.Add({NameOf(severity), code, findings[i].where, findings[i].subject});
            }
            table.Print(std::cout);
            std::cout << '\n';
        }
    }

    void AddJson(Partition partition, const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            const auto& [code, severity, meaning, advice] = RuleOf(finding.fault);
            document_.push_back({{"code", code},
                                 {"severity", NameOf(severity)},
                                 {"config", partition.config},
                                 {"partition", partition.number},
                                 {"typeID", finding.holder.typeID},
                                 {"type", finding.holderType},
                                 {"number", finding.holder.number},
                                 {"label", finding.label},
                                 {"where", finding.where},
                                 {"subject", finding.subject},
                                 {"meaning", meaning},
                                 {"advice", advice},
                                 {"key", finding.Key(partition)}});
        }
    }

    [[nodiscard]] std::size_t Count(Severity severity) const {
        std::size_t count = 0;
        for (const auto& [fault, times] : reported_) {
            count += RuleOf(fault).severity == severity ? times : 0;
        }
        return count;
    }

    void PrintSummary() const {
        if (!reported_.empty()) {
            Table legend({Left, Left});
            for (const auto& [fault, times] : reported_) {
                legend.Add({RuleOf(fault).code, RuleOf(fault).meaning});
                legend.Add({"", RuleOf(fault).advice});
            }
            legend.Print(std::cout);
            std::cout << '\n';
        }
        std::cout << Counted(autoNodes_, "AUTO node")
                  << " checked: " << Counted(Count(Severity::Error), "error") << ", "
                  << Counted(Count(Severity::Warning), "warning") << ", "
                  << Counted(Count(Severity::Note), "note");
        if (acceptedCount_ > 0) {
            std::cout << "; " << acceptedCount_ << " accepted";
        }
        std::cout << '\n';
    }

    const Options& options_;
    std::set<std::string> accepted_;
    DataBase& dataBase_;
    std::optional<Progress> progress_;
    History history_{dataBase_};
    std::size_t autoNodes_ = 0;
    std::size_t registeredNodes_ = 0;
    std::size_t acceptedCount_ = 0;
    std::map<Fault, std::size_t> reported_;
    nlohmann::ordered_json document_ = nlohmann::ordered_json::array();
};

} // namespace

void PrintCheckOf(const std::filesystem::path& store) {
    const Options options;
    DataBase dataBase(store);
    const Snapshot snapshot(dataBase);
    Checking(options, dataBase).Run();
}

Subcommand CheckCommand(CommandLine& program) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        "check",
        "Tell what is wrong in all partitions, in one, or with one AUTO node; exits with 1 where there are "
        "errors, 3 where there are warnings only");
    NodePlace& place = options->place;
    const Option config = AddNumber(command, "CONFIG", place.partition.config, "Configuration number");
    const Option partition = AddNumber(command, "PARTITION", place.partition.number, "Partition number");
    const Option node = AddNumber(command, "NODE", place.number, "Number of the AUTO node");
    config.Needs(partition);
    const Option json = command.Flag("--json", options->json, "Print JSON, for programs");
    const Option keys =
        command.Flag("--keys", options->keys, "Print the lines that --accept takes").Excludes(json);
    command
        .Text("--accept", options->accept,
              "Leave out the findings of a file, one a line as --keys prints them")
        .ShownAs("FILE");
    command.Text("--fix", options->fix, "missing: make missing nodes from their templates")
        .ShownAs("WHAT")
        .OneOf({"missing"})
        .Excludes(json)
        .Excludes(keys);
    return {command, [options, partition, node](const StoreChoice& store) {
                options->onePartition = partition.Given();
                options->oneNode = node.Given();
                const auto run = [&](DataBase& dataBase) { return Checking(*options, dataBase).Run(); };
                return (options->fix.empty() ? Reading(run) : Opening(run))(store);
            }};
}

} // namespace KAL_AUTO_Node
