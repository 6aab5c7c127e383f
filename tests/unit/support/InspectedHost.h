// A host that WMIThread inspects, its stored accounts and a scripted service, with what was traced of it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "capture/ThreadParams.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"
#include "watchers/HostInspection.h"

namespace vardel::test {

constexpr WmiResult kOtherWmiFailure = static_cast<WmiResult>(0x80041003);

inline WmiRow Named(const std::string& name) { return {.properties = {{"Name", name}}}; }
inline WmiScript Answering(const std::string& name) { return {.rows = {Named(name)}}; }
inline WmiScript Refusing(WmiResult result) { return {.connect = result}; }

class InspectedHostTest : public testing::Test {
  protected:
    InspectedHostTest() { host.ip = "10.0.0.5"; }

    using Lines = std::vector<std::string>;

    // Each account's name and password, by ascending key.
    void Accounts(const std::map<i32, std::pair<std::string, std::string>>& named) {
        std::map<i32, AdminAccount> accounts;
        for (const auto& [key, credentials] : named) {
            AdminAccount account{};
            credentials.first.copy(account.userName, sizeof account.userName);
            credentials.second.copy(account.password, sizeof account.password);
            TcBlowfish().Encode(reinterpret_cast<unsigned char*>(account.password),
                                static_cast<int>(credentials.second.size()));
            accounts.emplace(key, account);
        }
        data.settings.accounts.Write(accounts);
    }
    void TwoAccounts() { Accounts({{0, {"admin", "first"}}, {1, {"other", "second"}}}); }
    void InspectRemote() { Inspect(0); }
    void InspectLocal() { Inspect(1); }
    void Inspect(u8 isLocal) {
        item.host = &host;
        item.isLocal = isLocal;
        HostInspection(data, &params).Inspect(item);
        EXPECT_EQ(system.wmi.alive, 0);
    }
    std::string Os() const { return TcString(host.os).GetContent(); }
    // What was traced of the host, by the label.
    Lines Traced(const std::string& label) const {
        const std::string prefix = "[ 10.0.0.5 ] : VardelARPImpl::" + label + ": ";
        Lines lines;
        for (const std::string& line : traced.Steps())
            if (line.starts_with(prefix)) lines.push_back(line.substr(prefix.size()));
        return lines;
    }

    TestServices system;
    VardelData data{system.services};
    ThreadParams params;
    HostRecord host;
    WmiWorkItem item;
    TracedLines traced;
};

}  // namespace vardel::test
