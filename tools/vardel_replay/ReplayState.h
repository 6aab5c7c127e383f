// ReplayState: the shared state as it stands before the first frame is fed: settings, local records, vendor table.
//
// Built by the main thread. The services are the system's, but for the name resolver and the HTTP client unless
// look-ups and fetches are wanted.
#pragma once

#include <string>

#include "capture/VardelData.h"
#include "tools/vardel_replay/Options.h"

namespace vardel::replay {

// Every look-up fails.
class NoResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char*) override { return {}; }
    bool NameOfAddress(u32, u16, NameLookup, std::string&) override { return false; }
    bool HostByAddress(u32, std::string&) override { return false; }
    bool HostByName(const char*, u32&) override { return false; }
};

// Every fetch fails.
class NoHttp : public Http {
  public:
    bool Fetch(const HttpRequest&, std::string&) override { return false; }
};

class ReplayState {
  public:
    ReplayState(bool resolve, bool fetch);
    ~ReplayState();
    ReplayState(const ReplayState&) = delete;
    ReplayState& operator=(const ReplayState&) = delete;

    // False with a message when a file can't be read.
    bool Prepare(const Options& options, std::string& message);

    VardelData& Data() { return data_; }

  private:
    bool ReadSettings(const std::string& file, std::string& message);
    void AddLocalHosts(const std::vector<LocalAddress>& addresses);
    bool ReadVendors(const std::string& file, std::string& message);

    NoResolver noResolver_;
    NoHttp noHttp_;
    Services services_;
    EventHandle eventGuard_;
    VardelData data_;
};

}  // namespace vardel::replay
