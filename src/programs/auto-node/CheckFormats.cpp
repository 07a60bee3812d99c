#include "auto-node/CheckFormats.h"

#include "nodes/NodeJson.h"
#include "platform/VisibleText.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace KAL_AUTO_Node {

namespace {

// "AUTO 12, prompt 3: MSG 9"
std::string WhatOf(const Finding& finding) {
    std::string text = finding.holder.Text(finding.holderType);
    text += (finding.where.empty() ? "" : ", ") + finding.where;
    text += (finding.subject.empty() ? "" : ": ") + finding.subject;
    return Visible(text);
}

using Escapes = std::initializer_list<std::pair<char, std::string_view>>;

std::string Escaped(std::string_view text, Escapes escapes) {
    std::string escaped;
    for (const char c : text) {
        const auto* escape = std::ranges::find(escapes, c, &Escapes::value_type::first);
        if (escape == escapes.end()) {
            escaped += c;
        } else {
            escaped += escape->second;
        }
    }
    return escaped;
}

// Of a workflow command, whose values the second form's characters would end.
std::string ForCommand(std::string_view text) {
    return Escaped(text, {{'%', "%25"}, {'\r', "%0D"}, {'\n', "%0A"}});
}

std::string ForProperty(std::string_view text) {
    return Escaped(text, {{'%', "%25"}, {'\r', "%0D"}, {'\n', "%0A"}, {':', "%3A"}, {',', "%2C"}});
}

std::string ForXml(std::string_view text) {
    return Escaped(text, {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}});
}

// A reference to a file, in which other characters than these would mean something else.
std::string ForUri(std::string_view path) {
    static constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string uri;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || std::string_view("/-._~").find(c) != std::string_view::npos) {
            uri += c;
        } else {
            uri += {'%', Digits[byte >> 4U], Digits[byte & 15U]};
        }
    }
    return path.starts_with('/') ? "file://" + uri : uri;
}

} // namespace

std::string FindingsAsLines(const Found& found) {
    std::string text;
    for (const auto& [partition, finding, line] : found.findings) {
        const FaultRule& rule = RuleOf(finding.fault);
        text += found.file.empty() ? partition.Text() : Visible(found.file);
        text += line ? ':' + std::to_string(*line) : "";
        text += std::string(": ") + NameOf(rule.severity) + ": " + WhatOf(finding) + " [" + rule.code + "]\n";
    }
    return text;
}

std::string FindingsAsKeys(const Found& found) {
    std::string text;
    for (const Found::One& one : found.findings) {
        text += one.finding.Key(one.partition) + '\n';
    }
    return text;
}

std::string FindingsAsJson(const Found& found) {
    auto document = nlohmann::ordered_json::array();
    for (const auto& [partition, finding, line] : found.findings) {
        const auto& [code, severity, meaning, advice] = RuleOf(finding.fault);
        document.push_back({{"code", code},
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
        if (line) {
            document.back()["line"] = *line;
        }
    }
    return JsonText(document) + '\n';
}

std::string FindingsForGitHub(const Found& found) {
    static constexpr std::array<const char*, 3> Commands = {"error", "warning", "notice"};
    std::string text;
    for (const auto& [partition, finding, line] : found.findings) {
        const FaultRule& rule = RuleOf(finding.fault);
        text += std::string("::") + Commands.at(static_cast<std::size_t>(rule.severity)) + ' ';
        if (!found.file.empty()) {
            text += "file=" + ForProperty(found.file) + (line ? ",line=" + std::to_string(*line) : "") + ',';
        }
        text += "title=" + ForProperty(rule.code) + "::";
        text += ForCommand((found.file.empty() ? partition.Text() + ": " : "") + WhatOf(finding) + ". " +
                           rule.meaning + ' ' + rule.advice) +
                '\n';
    }
    return text;
}

std::string FindingsAsSarif(const Found& found) {
    using Json = nlohmann::ordered_json;
    Json rules = Json::array();
    for (const auto& [code, severity, meaning, advice] : FaultRules) {
        rules.push_back({{"id", code},
                         {"shortDescription", {{"text", meaning}}},
                         {"help", {{"text", advice}}},
                         {"defaultConfiguration", {{"level", NameOf(severity)}}}});
    }
    Json results = Json::array();
    for (const auto& [partition, finding, line] : found.findings) {
        const FaultRule& rule = RuleOf(finding.fault);
        Json location = {{"logicalLocations",
                          {{{"name", Visible(finding.holder.Text(finding.holderType))},
                            {"fullyQualifiedName",
                             partition.Text() + ", " + Visible(finding.holder.Text(finding.holderType)) +
                                 (finding.where.empty() ? "" : ", " + Visible(finding.where))}}}}};
        if (!found.file.empty()) {
            location["physicalLocation"]["artifactLocation"] = {{"uri", ForUri(found.file)}};
        }
        if (line) {
            location["physicalLocation"]["region"] = {{"startLine", *line}};
        }
        results.push_back({{"ruleId", rule.code},
                           {"ruleIndex", static_cast<std::size_t>(finding.fault)},
                           {"level", NameOf(rule.severity)},
                           {"message", {{"text", WhatOf(finding) + ". " + rule.meaning}}},
                           {"locations", {std::move(location)}},
                           {"partialFingerprints", {{"key/v1", finding.Key(partition)}}}});
    }
    const Json document = {
        {"$schema", "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json"},
        {"version", "2.1.0"},
        {"runs",
         {{{"tool",
            {{"driver", {{"name", "auto-node"}, {"version", KAL_AUTO_NODE_VERSION}, {"rules", rules}}}}},
           {"results", results}}}}};
    return JsonText(document) + '\n';
}

std::string FindingsAsJUnit(const Found& found) {
    std::string suites;
    auto next = found.findings.begin(); // they come partition by partition
    for (const Partition partition : found.partitions) {
        std::string cases;
        std::size_t count = 0;
        std::size_t failures = 0;
        for (; next != found.findings.end() && next->partition == partition; ++next) {
            const auto& [place, finding, line] = *next;
            const FaultRule& rule = RuleOf(finding.fault);
            const std::string text = ForXml(WhatOf(finding) + ". " + rule.meaning + ' ' + rule.advice);
            const bool failed = rule.severity != Severity::Note;
            ++count;
            failures += failed ? 1 : 0;
            cases += "    <testcase classname=\"" + partition.Text() + "\" name=\"" +
                     ForXml(WhatOf(finding) + ", " + rule.code) + '"';
            if (!found.file.empty()) {
                cases += " file=\"" + ForXml(Visible(found.file)) + '"';
                cases += line ? " line=\"" + std::to_string(*line) + '"' : "";
            }
            cases += ">\n      ";
            cases += failed ? std::string("<failure type=\"") + rule.code + "\" message=\"" + text + "\"/>"
                            : "<system-out>" + text + "</system-out>";
            cases += "\n    </testcase>\n";
        }
        if (count == 0) {
            ++count;
            cases = "    <testcase classname=\"" + partition.Text() + "\" name=\"check\"/>\n";
        }
        suites += "  <testsuite name=\"" + partition.Text() + "\" tests=\"" + std::to_string(count) +
                  "\" failures=\"" + std::to_string(failures) + "\" errors=\"0\">\n" + cases +
                  "  </testsuite>\n";
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"auto-node check\">\n" + suites +
           "</testsuites>\n";
}

} // namespace KAL_AUTO_Node
