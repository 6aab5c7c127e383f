// A Samba server of the test's own: on loopback of the network that the test made for itself, with a configuration, a
// state and logs in a folder of its own. Ended, and its folder removed, with the object.
#pragma once

#include <sys/types.h>

#include <string>

namespace vardel::test {

class SambaServer {
  public:
    SambaServer();
    ~SambaServer();
    SambaServer(const SambaServer&) = delete;
    SambaServer& operator=(const SambaServer&) = delete;

    // `globals` goes into the configuration's global part, `shares` behind it. True once it answers; else what it
    // wrote stands in Log.
    bool Start(const std::string& globals, const std::string& shares);
    // Replaces the configuration of a running server, for the connections to come.
    void Configure(const std::string& globals, const std::string& shares);
    void Stop();

    std::string Log() const;
    const std::string& Folder() const { return folder_; }

  private:
    bool Listens() const;

    std::string folder_;
    pid_t process_ = -1;  // leads a group of its own
};

}  // namespace vardel::test
