// vardel-replay: feeds savefiles to the program's packet handlers and prints what they made of them as one
// JSON document. What it reads, prints and exits with is told in docs/vardel-replay.md.
#include <cstdio>

#include "tools/vardel_replay/Feeder.h"
#include "tools/vardel_replay/Options.h"
#include "tools/vardel_replay/ReadAhead.h"
#include "tools/vardel_replay/ReplayReport.h"
#include "tools/vardel_replay/ReplayState.h"
#include "tools/vardel_replay/Savefiles.h"

namespace vardel::replay {
namespace {

enum ExitCode { kSuccess = 0, kUnreadable = 1, kWrongUse = 2 };

void Complain(const std::string& message) {
    std::fprintf(stderr, "vardel-replay: %s\n", message.c_str());
}

// Frames go from file to handler, with a few batches in memory at a time.
void FeedOnce(Savefiles& savefiles, Feeder& feeder) {
    ReadAhead ahead(savefiles);
    while (const FrameBatch* batch = ahead.Next()) {
        feeder.Feed(*batch);
        ahead.GiveBack(batch);
    }
}

// All frames are read into memory first.
void FeedRepeatedly(Savefiles& savefiles, Feeder& feeder, u32 times) {
    std::vector<FrameBatch> batches(1);
    while (savefiles.Read(batches.back())) batches.emplace_back();
    for (u32 round = 0; round < times; ++round)
        for (const FrameBatch& batch : batches) feeder.Feed(batch);
}

bool Print(const std::string& document) {
    const bool written = std::fwrite(document.data(), 1, document.size(), stdout) == document.size();
    return std::fflush(stdout) == 0 && written;
}

int Replay(const Options& options) {
    std::string message;
    Savefiles savefiles;
    const OpenResult opened = savefiles.Open(options.captures, message);
    if (opened != OpenResult::Opened) {
        Complain(message);
        return opened == OpenResult::OtherLinkType ? kWrongUse : kUnreadable;
    }
    ReplayState state(options.resolve, options.fetch);
    if (!state.Prepare(options, message)) {
        Complain(message);
        return kUnreadable;
    }

    Feeder feeder(state.Data(), options.drain);
    if (options.repeat == 0)
        FeedOnce(savefiles, feeder);
    else
        FeedRepeatedly(savefiles, feeder, options.repeat);

    for (const std::string& tear : savefiles.Tears()) Complain(tear);
    if (!Print(FormReport(state.Data(), feeder.Counts(), feeder.HandlerSeconds(), options.quiet))) {
        Complain("the document could not be written");
        return kUnreadable;
    }
    return savefiles.Tears().empty() ? kSuccess : kUnreadable;
}

}  // namespace
}  // namespace vardel::replay

int main(int argc, char** argv) {
    using namespace vardel::replay;
    Options options;
    std::string complaint;
    if (!ParseOptions({argv + 1, argv + argc}, options, complaint)) {
        Complain(complaint);
        std::fputs(kUsage, stderr);
        return kWrongUse;
    }
    return Replay(options);
}
