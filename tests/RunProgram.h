#pragma once

#include <QProcess>
#include <gtest/gtest.h>

#include <string>

namespace KAL_AUTO_Node {

// What a run of the program that ends by itself wrote.
struct Outcome {
    std::string output;
    std::string errors;
};

inline Outcome Program(int status, const QStringList& arguments, const char* program = AUTO_NODE) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    QProcess process;
    process.start(QString::fromLatin1(program), arguments);
    if (!process.waitForFinished(20'000)) {
        process.kill();
        process.waitForFinished();
    }
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), status);
    const Outcome outcome = {process.readAllStandardOutput().toStdString(),
                             process.readAllStandardError().toStdString()};
    // What steers a terminal is told as text.
    EXPECT_EQ((outcome.output + outcome.errors).find('\x1b'), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.errors.empty(), outcome.output.empty()) << outcome.errors << outcome.output;
    EXPECT_TRUE(outcome.errors.empty() || status == 1 || status == 2) << outcome.errors;
    EXPECT_TRUE(outcome.output.empty() || status != 2) << outcome.output;
    return outcome;
}

inline void ExpectTold(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text << " does not tell " << part;
}

// Of a command as a person types it, without quotes.
inline void ExpectTold(int status, const QString& command, const std::string& part) {
    const Outcome outcome = Program(status, command.split(' '));
    ExpectTold(outcome.output + outcome.errors, part);
}

} // namespace KAL_AUTO_Node
