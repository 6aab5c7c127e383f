// Scripted answers to everything the program asks of a system. A test changes what it needs and reads the
// record.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/CommandLine.h"
#include "foundation/Shared.h"
#include "platform/Services.h"
#include "tests/unit/support/ScriptedConnections.h"
#include "tests/unit/support/ScriptedRawIcmp.h"
#include "tests/unit/support/ScriptedShareEnumeration.h"
#include "tests/unit/support/ScriptedWmi.h"

namespace vardel::test {

class ScriptedClock : public Clock {
  public:
    i64 Now() override { return now; }
    u32 TickCount() override { return ticks; }
    i64 now = 1'700'000'000;
    u32 ticks = 0;  // milliseconds
};

class ScriptedFolders : public Folders {
  public:
    std::string LocalApplicationData() override {
        if (onLookUp) onLookUp();
        return localApplicationData;
    }
    std::string ProgramPath() override { return programPath; }
    char Separator() const override { return separator; }
    std::string localApplicationData;
    std::string programPath;
    char separator = '/';
    std::function<void()> onLookUp;  // where a test wants to hold the thread that asks
};

class ScriptedResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char* dottedAddress) override {
        calls.push_back(std::string("canonical ") + dottedAddress);
        return canonicalNames;
    }
    bool NameOfAddress(u32, u16 port, NameLookup kind, std::string& name) override {
        const bool required = kind == NameLookup::NameRequired;
        calls.push_back((required ? "required " : "short ") + std::to_string(port));
        const auto& answer = required ? requiredName : shortName;
        if (!answer.empty()) name = answer;
        return !answer.empty();
    }
    bool HostByAddress(u32, std::string& name) override {
        calls.push_back("host");
        if (!hostByAddress.empty()) name = hostByAddress;
        return !hostByAddress.empty();
    }
    bool HostByName(const char* name, u32& address) override {
        calls.push_back(std::string("name ") + name);
        const auto found = addresses.find(name);
        if (found != addresses.end()) address = found->second;
        return found != addresses.end();
    }
    std::map<std::string, u32> addresses;  // by name; network byte order
    // Empty means that the look-up fails.
    std::vector<std::string> canonicalNames;
    std::string requiredName, hostByAddress, shortName;
    std::vector<std::string> calls;
};

class ScriptedStrings : public StringResources {
  public:
    int Load(ModuleHandle module, u32 id, char* buffer, int size) override {
        lastModule = module;
        if (onLoad) onLoad(id);
        const auto found = texts.find(id);
        const std::string text =
            found == texts.end() ? "" : found->second.substr(0, static_cast<std::size_t>(size - 1));
        text.copy(buffer, text.size());
        buffer[text.size()] = 0;
        return static_cast<int>(text.size());
    }
    std::map<u32, std::string> texts = {
        {32, "Vardelwatch - Error"},
        {90, "Hostname not available"},
        {91, "Unknown vendor"},
        {116, "Unkown operating system"},
        {137, "Vardelwatch started successfully"},
        {138, "Vardelwatch exited"},
        {139, "Capturing started"},
        {140, "Capturing stopped"},
        {141, "New host found"},
        {145, "Capturing stopped - no interface"},
        {146, "Syslog notification"},
    };
    Shared<ModuleHandle> lastModule;     // of the last look-up
    std::function<void(u32 id)> onLoad;  // where a test wants to hold the thread that asks
};

class RecordingArpCache : public ArpCache {
  public:
    void Flush() override { ++flushes; }
    u32 CountInterfaces() override { return interfaces; }
    void FlushInterface(u32 index) override { flushedInterfaces.push_back(index); }
    int flushes = 0;
    u32 interfaces = 0;
    std::vector<u32> flushedInterfaces;
};

class ScriptedProcess : public ProcessServices {
  public:
    bool ClaimName(const char* name) override {
        claimed.push_back(name);
        return anotherRuns;
    }
    void DebugText(const char* text) override { debugTexts.push_back(text); }
    bool EnterApartment() override {
        ++apartmentsEntered;
        return ++apartments, true;
    }
    void LeaveApartment() override { --apartments; }
    void StartNetwork() override { ++networks; }
    void StopNetwork() override { --networks; }
    bool anotherRuns = false;
    int apartments = 0;  // entered and not left yet
    int apartmentsEntered = 0;
    int networks = 0;
    std::vector<std::string> claimed, debugTexts;
};

// A tree of keys by path, separated by '\'; values by "path|name".
class ScriptedMachineConfig : public MachineConfig {
  public:
    MachineKey Open(MachineKey parent, const char* path) override {
        std::string full = parent ? Path(parent) + "\\" + path : path;
        while (!full.empty() && full.back() == '\\') full.pop_back();
        if (!keys.count(full)) return nullptr;
        ++open;
        handles_.push_back(full);
        return reinterpret_cast<MachineKey>(handles_.size());
    }
    void Close(MachineKey key) override {
        if (key) --open;
    }
    bool EnumerateSubkey(MachineKey key, u32 index, char* name, u32 size) override {
        const std::string prefix = Path(key) + "\\";
        for (const std::string& other : keys) {
            if (other.rfind(prefix, 0) != 0 || other.find('\\', prefix.size()) != std::string::npos) continue;
            if (index-- != 0) continue;
            const std::string text = other.substr(prefix.size(), size - 1);
            text.copy(name, text.size());
            name[text.size()] = 0;
            return true;
        }
        return false;
    }
    bool QueryText(MachineKey key, const char* name, char* buffer, u32 size) override {
        const auto found = values.find(Path(key) + "|" + name);
        if (found == values.end()) return false;
        const std::string text = found->second.substr(0, size - 1);
        text.copy(buffer, text.size());
        buffer[text.size()] = 0;
        return true;
    }
    std::set<std::string> keys;
    std::map<std::string, std::string> values;
    int open = 0;  // handles not closed yet

  private:
    const std::string& Path(MachineKey key) const {
        return handles_[reinterpret_cast<std::uintptr_t>(key) - 1];
    }
    std::vector<std::string> handles_;
};

// Modules by name, entry points by "module!name".
class ScriptedCaptureModules : public CaptureModules {
  public:
    ModuleHandle Load(const char* name) override {
        loads.push_back(name);
        if (!modules.count(name)) return nullptr;
        loaded_.push_back(name);
        return reinterpret_cast<ModuleHandle>(loaded_.size());
    }
    void* Find(ModuleHandle module, const char* entryPoint) override {
        lookups.push_back(entryPoint);
        const auto found =
            entryPoints.find(loaded_[reinterpret_cast<std::uintptr_t>(module) - 1] + "!" + entryPoint);
        return found == entryPoints.end() ? nullptr : found->second;
    }
    void Free(ModuleHandle module) override {
        if (module) ++freed;
    }
    std::set<std::string> modules;
    std::map<std::string, void*> entryPoints;
    std::vector<std::string> loads, lookups;
    int freed = 0;

  private:
    std::vector<std::string> loaded_;
};

// Takes the parameter text as one piece, as Windows does, unless the test says `splitsParameters`.
class RecordingShell : public Shell {
  public:
    struct Launch {
        ShellVerb verb;
        std::string file;
        std::vector<std::string> pieces;
        bool operator==(const Launch&) const = default;
    };
    std::vector<std::string> ParameterPieces(const std::string& parameters) override {
        return splitsParameters ? SplitCommandLine(parameters) : std::vector<std::string>{parameters};
    }
    bool Execute(ShellVerb verb, const std::string& file, const std::vector<std::string>& pieces) override {
        launches.push_back({verb, file, pieces});
        return succeeds;
    }
    bool splitsParameters = false;
    bool succeeds = true;
    std::vector<Launch> launches;
};

// Documents by address; what isn't there fails to open.
class ScriptedHttp : public Http {
  public:
    struct Fetched {
        std::string agent, url;
        u32 maxBytes, timeoutMs;
    };
    bool Fetch(const HttpRequest& request, std::string& block) override {
        fetches.push_back({request.agent, request.url, request.maxBytes, request.timeoutMs});
        if (onFetch) onFetch();
        const auto found = documents.find(request.url);
        if (found == documents.end()) return false;
        block = found->second.substr(0, request.maxBytes);
        return true;
    }
    std::map<std::string, std::string> documents;
    std::vector<Fetched> fetches;
    std::function<void()> onFetch;  // where a test wants to look at, or hold, the thread that asks
};

// Folders of modules by their path; modules by their full path, entry points by "path!name". A module's handle counts
// its load, from 1.
class ScriptedModules : public Modules {
  public:
    std::vector<FolderEntry> List(const std::string& folder, const char* wanted) override {
        listed.push_back(folder);
        std::vector<FolderEntry> matching;
        for (const FolderEntry& entry : folders[folder])
            if (entry.name.ends_with(wanted)) matching.push_back(entry);
        return matching;
    }
    ModuleHandle Load(const char* path) override {
        loads.push_back(path);
        if (!modules.count(path)) return nullptr;
        loaded_.push_back(path);
        return reinterpret_cast<ModuleHandle>(loaded_.size());
    }
    void* Find(ModuleHandle module, const char* entryPoint) override {
        const auto found = entryPoints.find(PathOf(module) + "!" + entryPoint);
        return found == entryPoints.end() ? nullptr : found->second;
    }
    void Free(ModuleHandle module) override {
        if (module) freed.push_back(PathOf(module));
    }
    const char* Ending() const override { return ending; }

    const std::string& PathOf(ModuleHandle module) const {
        return loaded_[reinterpret_cast<std::uintptr_t>(module) - 1];
    }
    std::map<std::string, std::vector<FolderEntry>> folders;
    std::set<std::string> modules;
    std::map<std::string, void*> entryPoints;
    std::vector<std::string> listed, loads, freed;
    const char* ending = ".so";

  private:
    std::vector<std::string> loaded_;
};

// All of them, with the system's real events and, where the test has no others, its real threads.
struct TestServices {
    explicit TestServices(Threads& workerThreads = SystemThreads()) : threads(workerThreads) {}

    Threads& threads;
    ScriptedClock clock;
    ScriptedFolders folders;
    ScriptedResolver resolver;
    ScriptedStrings strings;
    RecordingArpCache arpCache;
    ScriptedProcess process;
    ScriptedMachineConfig machineConfig;
    ScriptedCaptureModules captureModules;
    RecordingShell shell;
    ScriptedHttp http;
    ScriptedModules modules;
    ScriptedRawIcmp rawIcmp;
    ScriptedShareEnumeration shareEnumeration;
    ScriptedWmi wmi;
    ScriptedServerConnections serverConnections;
    RecordingArpRequests arpRequests;
    Services services{SystemEvents(), threads,  clock,   folders,       resolver,
                      strings,        arpCache, process, machineConfig, captureModules,
                      shell,          http,     modules, rawIcmp,       shareEnumeration,
                      wmi,            serverConnections, arpRequests};
};

}  // namespace vardel::test
