#include "audit/FixMissing.h"
#include "audit/PartitionCheck.h"
#include "audit/Recordings.h"
#include "auto-node/AcceptedFindings.h"
#include "auto-node/Arguments.h"
#include "auto-node/CheckFormats.h"
#include "auto-node/CheckReport.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "exchange/StoreOfText.h"
#include "history/History.h"
#include "nodes/AutoNodeReader.h"
#include "platform/Interruption.h"
#include "platform/RuntimeError.h"
#include "platform/Today.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

constexpr int ErrorsFound = 1;
constexpr int WarningsFound = 3;

struct Options {
    NodePlace place;
    bool onePartition = false;
    bool oneNode = false;
    std::string format; // empty for people
    bool json = false;
    bool keys = false;
    std::string text;
    std::string sounds;
    std::string note;
    std::set<Fault> selected; // all where it is empty
    std::set<Fault> ignored;
    std::string explain;
    std::string fix;
    bool dryRun = false;
    std::string accept;
    bool prune = false;
};

// Checks one partition after the other; what people read is printed as it is found.
class Checking {
  public:
    Checking(const Options& options, DataBase& dataBase, const StoreOfText* text = nullptr)
        : options_(options), text_(text), dataBase_(dataBase) {
        found_.file = options_.text;
        if (!options_.accept.empty()) {
            accepted_.emplace(options_.accept);
        }
    }

    int Run() {
        const auto scope = text_ != nullptr ? text_->Scope() : std::nullopt;
        if (options_.onePartition || scope) {
            const Partition partition = options_.onePartition ? options_.place.partition : *scope;
            Check(partition);
            if (autoNodes_ + registeredNodes_ + reported_.size() == 0) {
                FailWithoutNodes(partition);
            }
        } else {
            std::ranges::for_each(PartitionsWithRows(dataBase_),
                                  [this](const Partition& partition) { Check(partition); });
        }
        if (options_.format.empty()) {
            PrintSummary();
        } else {
            std::cout << std::ranges::find(CheckFormats, options_.format, &CheckFormat::name)->text(found_);
        }
        TellStale();
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
            const bool accepted = accepted_ && accepted_->Accepts(finding.Key(partition));
            acceptedCount_ += accepted ? 1 : 0;
            return accepted;
        });
        for (const Finding& finding : checked.findings) {
            ++reported_[finding.fault];
        }
        found_.partitions.push_back(partition);
        if (options_.format.empty()) {
            Print(partition, checked.findings);
            return;
        }
        for (Finding& finding : checked.findings) {
            const auto line = text_ == nullptr
                                  ? std::nullopt
                                  : text_->LineOf(partition, finding.holder.typeID, finding.holder.number,
                                                  finding.table, finding.row);
            found_.findings.push_back({partition, std::move(finding), line});
        }
    }

    [[nodiscard]] bool IsWanted(Fault fault) const {
        return (options_.selected.empty() || options_.selected.contains(fault)) &&
               !options_.ignored.contains(fault) &&
               (fault < Fault::RecordingMissing || !options_.sounds.empty());
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
        if (!options_.sounds.empty()) {
            const TypeNames names(dataBase_);
            std::ranges::move(FindingsOf(ReadRecordings(dataBase_, names, partition, options_.sounds), names),
                              std::back_inserter(checked.findings));
            std::ranges::stable_sort(checked.findings, {}, &Finding::holder);
        }
        std::erase_if(checked.findings, [this](const Finding& finding) { return !IsWanted(finding.fault); });
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
            if (finding.fault == Fault::MissingNode &&
                !(accepted_ && accepted_->Accepts(finding.Key(partition)))) {
                wanted.insert(finding.subject);
            }
        }
        for (const RequiredNode& node : checked.missing) {
            if (!wanted.contains(node.name)) {
                continue;
            }
            std::string told;
            try {
                if (options_.dryRun) {
                    told = CanBeMade(dataBase_, partition, node)
                               ? " would be created."
                               : std::string(": ") + WhyNotCreated(Creation::NoTemplate);
                } else {
                    const Creation outcome = CreateMissing(dataBase_, history_, partition, node, Today());
                    told = outcome == Creation::Created ? " is created."
                                                        : std::string(": ") + WhyNotCreated(outcome);
                }
            } catch (const RuntimeError& error) {
                told = std::string(" could not be created: ") + error.what();
            }
            std::cout << Visible(node.name + told) << '\n';
        }
        if (options_.dryRun) {
            return false;
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

    // Accepted keys of what was checked that nothing was found by.
    void TellStale() {
        if (!accepted_ || options_.oneNode) {
            return;
        }
        const auto checked = [&](const std::string& key) {
            std::istringstream words(key);
            std::string code;
            Partition partition;
            words >> code >> partition.config >> partition.number;
            const auto fault = FaultOf(code);
            return fault && IsWanted(*fault) &&
                   ((!options_.onePartition && !(text_ != nullptr && text_->Scope())) ||
                    std::ranges::find(found_.partitions, partition) != found_.partitions.end());
        };
        const auto stale = accepted_->Stale(checked);
        std::ostream& out = options_.format.empty() ? std::cout : std::cerr;
        for (const std::string& key : stale) {
            out << "Accepted and not found any more: " << Visible(key) << '\n';
        }
        if (options_.prune && !stale.empty()) {
            accepted_->Drop(stale);
            out << "Taken out of " << Visible(options_.accept) << ": " << Counted(stale.size(), "key")
                << '\n';
        }
    }

    const Options& options_;
    const StoreOfText* text_;
    std::optional<AcceptedFindings> accepted_;
    DataBase& dataBase_;
    std::optional<Progress> progress_;
    History history_{dataBase_, options_.note};
    std::size_t autoNodes_ = 0;
    std::size_t registeredNodes_ = 0;
    std::size_t acceptedCount_ = 0;
    std::map<Fault, std::size_t> reported_;
    Found found_;
};

std::set<Fault> ReadCodes(const std::string& name, const std::string& text) {
    std::set<Fault> codes;
    std::istringstream words(text);
    for (std::string code; std::getline(words, code, ',');) {
        const auto fault = FaultOf(code);
        if (!fault) {
            Refuse(name, "there is no code '" + code + "'; auto-node check --explain all tells them");
        }
        codes.insert(*fault);
    }
    return codes;
}

int Explain(const std::string& code) {
    for (const auto& [name, severity, meaning, advice] : FaultRules) {
        if (code == name || code == "all") {
            std::cout << name << ": " << NameOf(severity) << "\n  " << meaning << "\n  " << advice << '\n';
        }
    }
    return 0;
}

int CheckText(const Options& options, const StoreChoice& store) {
    const auto check = [&](DataBase* reference) {
        StoreOfText text(options.text, reference);
        if (options.onePartition && text.Scope() && options.place.partition != *text.Scope()) {
            FailWithoutNodes(options.place.partition);
        }
        return Checking(options, text.Store(), &text).Run();
    };
    if (!store.IsNamed()) {
        return check(nullptr);
    }
    DataBase reference = store.Open();
    return check(&reference);
}

} // namespace

void PrintCheckOf(const std::filesystem::path& store) {
    const Options options;
    DataBase dataBase(store);
    const Snapshot snapshot(dataBase);
    Checking(options, dataBase).Run();
}

Subcommand CheckCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name,
        "Tell what is wrong in all partitions, in one, or with one AUTO node; exits with 1 where there are "
        "errors, 3 where there are warnings only");
    NodePlace& place = options->place;
    const Option partition = AddAnyPartition(command, place.partition);
    const Option node = AddNumber(command, "NODE", place.number, "Number of the AUTO node");
    const Option json = command.Flag("--json", options->json, "Print JSON, for programs");
    const Option keys =
        command.Flag("--keys", options->keys, "Print the lines that --accept takes").Excludes(json);
    std::vector<std::string> formats;
    std::ranges::transform(CheckFormats, std::back_inserter(formats), &CheckFormat::name);
    const Option format = command.Text("--format", options->format, "Print what is found for programs")
                              .ShownAs("FORMAT")
                              .OneOf(formats)
                              .Excludes(json)
                              .Excludes(keys);
    const Option text =
        command.Text("--text", options->text, "Check what export wrote, instead of a store").ShownAs("FILE");
    const auto codes = [&](const char* option, std::set<Fault>& faults, const char* description) {
        command
            .Word(
                option, [option, &faults](const std::string& words) { faults = ReadCodes(option, words); },
                description)
            .ShownAs("CODE,...");
    };
    codes("--select", options->selected, "Look for these only");
    codes("--ignore", options->ignored, "Look for all but these");
    command
        .Text("--explain", options->explain, "Only tell what a code, or all, means and what to do about it")
        .ShownAs("CODE")
        .Check([](const std::string& code) {
            return code == "all" || FaultOf(code) ? std::string() : "there is no code '" + code + "'";
        });
    const Option accept = command
                              .Text("--accept", options->accept,
                                    "Leave out the findings of a file, one a line as --keys prints them")
                              .ShownAs("FILE");
    command.Flag("--prune", options->prune, "Take out of that file what is not found any more").Needs(accept);
    const Option fix = command.Text("--fix", options->fix, "missing: make missing nodes from their templates")
                           .ShownAs("WHAT")
                           .OneOf({"missing"})
                           .Excludes(json)
                           .Excludes(keys)
                           .Excludes(format)
                           .Excludes(text);
    command.Text("--sounds", options->sounds, "Also look for the files of messages in a folder")
        .ShownAs("FOLDER");
    command.Flag("--dry-run", options->dryRun, "Only tell what --fix would make").Needs(fix);
    AddNote(command, options->note).Needs(fix);
    return {command, [options, partition, node](const StoreChoice& store) {
                options->onePartition = partition.Given();
                options->oneNode = node.Given();
                options->format = options->json ? "json" : options->keys ? "keys" : options->format;
                if (!options->explain.empty()) {
                    return Explain(options->explain);
                }
                if (!options->text.empty()) {
                    return CheckText(*options, store);
                }
                const auto run = [&](DataBase& dataBase) { return Checking(*options, dataBase).Run(); };
                return (options->fix.empty() || options->dryRun ? Reading(run) : Opening(run))(store);
            }};
}

} // namespace KAL_AUTO_Node
