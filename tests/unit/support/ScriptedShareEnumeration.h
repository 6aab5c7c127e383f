// The share enumeration of a test: each call gets the next of the answers that the test laid out.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/ShareEnumeration.h"

namespace vardel::test {

// Answers to share enumerations, one a call, oldest first; a call beyond the last one is refused.
class ScriptedShareEnumeration : public ShareEnumeration {
  public:
    static constexpr u32 kAccessDenied = 5;
    struct Answer {
        u32 result = kAllShares;
        std::vector<ShareEntry> entries;
        u32 nextHandle = 0;
    };
    struct Call {
        std::string server;
        u32 resumeHandle;
        bool operator==(const Call&) const = default;
    };

    u32 Enumerate(const char* server, u32& resumeHandle, std::vector<ShareEntry>& entries) override {
        calls.push_back({server, resumeHandle});
        if (onCall) onCall();
        if (answers.empty()) return kAccessDenied;
        const Answer answer = answers.front();
        answers.pop_front();
        resumeHandle = answer.nextHandle;
        entries.insert(entries.end(), answer.entries.begin(), answer.entries.end());
        return answer.result;
    }
    std::deque<Answer> answers;
    std::vector<Call> calls;
    std::function<void()> onCall;
};

}  // namespace vardel::test
