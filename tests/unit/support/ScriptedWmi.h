// A WMI service that answers by a script and writes down each call. One script a connection, in their order; behind
// the last one the service of every host is unavailable.
#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/Wmi.h"

namespace vardel::test {

constexpr WmiResult kNoMoreObjects = 1;  // what Next gives at the end

// One object of an answer: its properties by name; absent and other types count as "not of that type".
struct WmiRow {
    std::map<std::string, std::variant<std::monostate, std::string, i32>> properties{};
    WmiResult result = kWmiOk;  // of each Get
};

struct WmiScript {
    WmiResult connect = kWmiOk;
    bool givesConnection = true;
    WmiResult blanket = kWmiOk;
    WmiResult query = kWmiOk;
    bool givesObjects = true;
    WmiResult objectsBlanket = kWmiOk;
    std::vector<WmiRow> rows{};
    WmiResult end = kNoMoreObjects;
};

class ScriptedWmi : public WmiService {
  public:
    WmiResult EnterThread() override {
        calls.push_back("enter");
        return enter;
    }
    void LeaveThread() override { calls.push_back("leave"); }
    WmiResult InitializeSecurity() override {
        calls.push_back("security");
        return security;
    }
    WmiResult CreateLocator(std::unique_ptr<WmiLocator>& made) override {
        calls.push_back("locator");
        made.reset();
        if (!WmiFailed(locator) && givesLocator) made = std::make_unique<Locator>(*this);
        return locator;
    }
    std::unique_ptr<WmiIdentity> CreateIdentity(const WmiAccount& account) override {
        calls.push_back("identity " + account.user + " " + account.password);
        if (identitiesRefused-- > 0) return nullptr;
        return std::make_unique<Identity>(*this, account.user);
    }

    WmiResult enter = kWmiOk;
    WmiResult security = kWmiOk;
    WmiResult locator = kWmiOk;
    bool givesLocator = true;
    int identitiesRefused = 0;
    std::deque<WmiScript> scripts;
    std::vector<std::string> calls;
    int alive = 0;  // objects that were given out and not released yet

    std::vector<std::string> CallsOf(const std::string& prefix) const {
        std::vector<std::string> found;
        std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
                     [&](const std::string& call) { return call.starts_with(prefix); });
        return found;
    }

  private:
    // Counts what is alive and writes its end down.
    class Counted {
      public:
        Counted(ScriptedWmi& owner, std::string name) : wmi(owner), name_(std::move(name)) { ++wmi.alive; }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;
        ~Counted() {
            --wmi.alive;
            wmi.calls.push_back("release " + name_);
        }
        ScriptedWmi& wmi;

      private:
        std::string name_;
    };

    struct Identity : WmiIdentity {
        Identity(ScriptedWmi& owner, std::string name) : user(std::move(name)), counted(owner, "identity") {}
        std::string user;
        Counted counted;
    };

    static std::string Blanket(WmiAuthentication level, const WmiIdentity* identity) {
        return " level " + std::to_string(static_cast<u32>(level)) +
               (identity ? " as " + static_cast<const Identity*>(identity)->user : " as oneself");
    }

    struct Object : WmiObject {
        Object(ScriptedWmi& owner, WmiRow content) : row(std::move(content)), counted(owner, "object") {}
        WmiResult GetText(const char* property, std::optional<std::string>& text) override {
            counted.wmi.calls.push_back(std::string("get ") + property);
            return Get(property, text);
        }
        WmiResult GetNumber(const char* property, std::optional<i32>& number) override {
            counted.wmi.calls.push_back(std::string("get ") + property);
            return Get(property, number);
        }
        template <class T>
        WmiResult Get(const char* property, std::optional<T>& value) {
            value.reset();
            const auto found = row.properties.find(property);
            if (!WmiFailed(row.result) && found != row.properties.end() &&
                std::holds_alternative<T>(found->second))
                value = std::get<T>(found->second);
            return row.result;
        }
        WmiRow row;
        Counted counted;
    };

    struct Objects : WmiObjects {
        Objects(ScriptedWmi& owner, WmiScript given) : script(std::move(given)), counted(owner, "objects") {}
        WmiResult SetBlanket(WmiAuthentication level, const WmiIdentity* identity) override {
            counted.wmi.calls.push_back("blanket objects" + Blanket(level, identity));
            return script.objectsBlanket;
        }
        WmiResult Next(std::unique_ptr<WmiObject>& object) override {
            object.reset();
            counted.wmi.calls.push_back("next");
            if (at == script.rows.size()) return script.end;
            object = std::make_unique<Object>(counted.wmi, script.rows[at++]);
            return kWmiOk;
        }
        WmiScript script;
        std::size_t at = 0;
        Counted counted;
    };

    struct Connection : WmiNamespace {
        Connection(ScriptedWmi& owner, WmiScript given) : script(std::move(given)), counted(owner, "connection") {}
        WmiResult SetBlanket(WmiAuthentication level, const WmiIdentity* identity) override {
            counted.wmi.calls.push_back("blanket connection" + Blanket(level, identity));
            return script.blanket;
        }
        WmiResult Query(const char* query, std::unique_ptr<WmiObjects>& objects) override {
            objects.reset();
            counted.wmi.calls.push_back(std::string("query ") + query);
            if (!WmiFailed(script.query) && script.givesObjects)
                objects = std::make_unique<Objects>(counted.wmi, script);
            return script.query;
        }
        WmiScript script;
        Counted counted;
    };

    struct Locator : WmiLocator {
        explicit Locator(ScriptedWmi& owner) : counted(owner, "locator") {}
        WmiResult Connect(const char* resource, const WmiAccount* account,
                          std::unique_ptr<WmiNamespace>& connection) override {
            ScriptedWmi& wmi = counted.wmi;
            connection.reset();
            wmi.calls.push_back(std::string("connect ") + resource +
                                (account ? " " + account->user + " " + account->password : ""));
            if (wmi.scripts.empty()) return kWmiServerUnavailable;
            const WmiScript script = wmi.scripts.front();
            wmi.scripts.pop_front();
            if (!WmiFailed(script.connect) && script.givesConnection)
                connection = std::make_unique<Connection>(wmi, script);
            return script.connect;
        }
        Counted counted;
    };
};

}  // namespace vardel::test
