#include "store/Batch.h"

#include "store/Connection.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

CommandRun RunOf(Command command, Parameters parameters) {
    CommandRun run{command, {}};
    run.parameters.reserve(parameters.size());
    std::ranges::transform(parameters, std::back_inserter(run.parameters), &Parameter::Value);
    return run;
}

} // namespace

void Batch::Add(Command command, Parameters parameters) {
    if (dataBase_.IsRemote()) {
        waiting_.push_back(RunOf(command, parameters));
    } else {
        written_.push_back(dataBase_.Execute(command, parameters));
    }
}

std::vector<std::int64_t> Batch::Run() {
    Send(false);
    return std::exchange(written_, {});
}

void Batch::Send(bool committing) {
    if (!waiting_.empty()) {
        written_ = dataBase_.RunTogether(std::exchange(waiting_, {}), committing);
    }
}

ReadAhead::ReadAhead(DataBase& dataBase) : dataBase_(dataBase), helps_(dataBase.BeginReadingAhead()) {}

ReadAhead::~ReadAhead() { dataBase_.EndReadingAhead(); }

void ReadAhead::Add(Command command, Parameters parameters) {
    if (helps_) {
        waiting_.push_back(RunOf(command, parameters));
    }
}

void ReadAhead::Fetch(std::span<const StatementRun> runs) {
    if (helps_) {
        std::size_t reached = 0;
        dataBase_.Open().FetchAhead(runs, reached);
    }
}

void ReadAhead::Fetch() {
    if (!waiting_.empty()) {
        dataBase_.FetchAhead(std::exchange(waiting_, {}));
    }
}

} // namespace KAL_AUTO_Node
