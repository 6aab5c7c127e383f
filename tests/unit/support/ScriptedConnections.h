// Scripted connections to this machine's shares, and a record of what was asked on the wire.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/ArpRequests.h"
#include "platform/ServerConnections.h"

namespace vardel::test {

class ScriptedServerConnections : public ServerConnections {
  public:
    bool EnterThread() override {
        ++entries;
        return canEnter;
    }
    void LeaveThread() override { ++leaves; }
    std::vector<ServerConnection> List() override {
        ++lists;
        if (onList) onList();
        return rows;
    }
    bool canEnter = true;
    std::vector<ServerConnection> rows;
    std::function<void()> onList;  // before the rows are given
    int entries = 0, leaves = 0, lists = 0;
};

class RecordingArpRequests : public ArpRequests {
  public:
    void Ask(const char* dottedAddress) override { asked.emplace_back(dottedAddress); }
    std::vector<std::string> asked;
};

}  // namespace vardel::test
