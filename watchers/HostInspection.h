// The inspection of one host: asks its WMI service for the name of its operating system.
//
// Owned and used by WMIThread, one host at a time. The outcome lands in the host's record: `os`, `wmiOsKnown`,
// `wmiStatus`, `rowDirty`. Each notable step is traced. Blocks for as long as the connections take.
#pragma once

#include <string>

#include "capture/VardelData.h"
#include "foundation/TcBlowfish.h"
#include "platform/Wmi.h"

namespace vardel {

struct ThreadParams;

// The values of HostRecord::wmiStatus. It only falls: a later, worse failure doesn't replace a better one.
constexpr i32 kWmiNotTried = 999;
constexpr i32 kWmiNoAccount = 300;
constexpr i32 kWmiBlocked = 200;  // the host's service could not be reached
constexpr i32 kWmiDenied = 100;   // the host refused the account
constexpr i32 kWmiDone = 0;

// What a failed connection says of the host.
enum class ConnectFailure { Blocked, Denied, Other };
ConnectFailure ClassOfConnectFailure(WmiResult result);

// The status after such a failure.
i32 StatusAfterFailure(i32 status, ConnectFailure failure);

// The resource of a host's operating system classes.
std::string RemoteResource(const TcString& ip);

// The name out of "name|system folder|device". The local one also loses its trademark sign; a remote one keeps it.
TcString CutLocalName(const std::string& text);
TcString CutRemoteName(const std::string& text);

class HostInspection {
  public:
    // Both outlive this object. `params` may be null; its stop request ends what would go on without end.
    HostInspection(VardelData& data, const ThreadParams* params) : data_(data), params_(params) {}
    HostInspection(const HostInspection&) = delete;
    HostInspection& operator=(const HostInspection&) = delete;

    // One host's turn, by the item's `isLocal`. Writes the key of the account that got through into the item.
    void Inspect(WmiWorkItem& item);

  private:
    using CutName = TcString (*)(const std::string& text);
    enum class Attempt { NextAccount, SameAccount };

    void InspectLocal(HostRecord& host);
    void InspectRemote(WmiWorkItem& item);
    bool SecurityStands(const char* successLabel);
    std::unique_ptr<WmiLocator> CreateLocator();
    Attempt TryAccount(WmiWorkItem& item, u32 key, const AdminAccount& account);
    void AskRemote(WmiNamespace& connection, const WmiIdentity& identity, HostRecord& host);
    void NoteConnectFailure(HostRecord& host, WmiResult result);
    void ReadObjects(WmiObjects& objects, WmiResult result, HostRecord& host, const char* label, CutName cut);
    void TakeName(HostRecord& host, const std::string& text, const char* label, CutName cut);
    std::string Password(const AdminAccount& account);
    bool StopIsRequested() const;
    void Trace(const char* label, const char* message) const;

    VardelData& data_;
    const ThreadParams* const params_;
    TcBlowfish blowfish_;
    TcString traceClass_;
    unsigned char password_[101] = {};
};

}  // namespace vardel
