#include "watchers/HostInspection.h"

#include <cstring>

#include "capture/ThreadParams.h"
#include "foundation/TcTrace.h"

namespace vardel {

namespace {

constexpr char kQuery[] = "Select * from Win32_OperatingSystem";
constexpr char kProperty[] = "Name";
constexpr char kLocalLabel[] = "TestWMIAccess - Local";
constexpr char kRemoteLabel[] = "TestWMIAccess";
constexpr char kSeparator[] = "|";
constexpr char kTrademarkSign[] = "\x99";  // of the Western Windows code page

// What each class of failure makes of the status, and what is traced.
struct FailureRow {
    i32 status;
    const char* message;
};
constexpr FailureRow kFailures[] = {
    {kWmiBlocked, "ConnectServer (Access blocked) - FAILED"},  // Blocked
    {kWmiDenied, "ConnectServer (Access denied) - FAILED"},    // Denied
    {kWmiNotTried, "ConnectServer - FAILED"},                  // Other: no verdict
};
const FailureRow& RowOf(ConnectFailure failure) { return kFailures[static_cast<std::size_t>(failure)]; }

void RemoveFrom(TcString& text, int position) { text.Remove(position, text.GetLength() - position); }

}  // namespace

ConnectFailure ClassOfConnectFailure(WmiResult result) {
    switch (result) {
        case kWmiServerUnavailable:
            return ConnectFailure::Blocked;
        case kWmiAccessDenied:
        case kWmiOutOfMemory:  // wanted: counts as a refusal
            return ConnectFailure::Denied;
        default:
            return ConnectFailure::Other;
    }
}

i32 StatusAfterFailure(i32 status, ConnectFailure failure) {
    const i32 verdict = RowOf(failure).status;
    return verdict < status ? verdict : status;
}

std::string RemoteResource(const TcString& ip) {
    const TcString own(ip);
    return std::string("\\\\") + own.GetContent() + "\\" + kWmiLocalResource;
}

TcString CutLocalName(const std::string& text) {
    TcString name(text.c_str());
    const int separator = name.Find(kSeparator);
    if (separator >= 0) RemoveFrom(name, separator);
    const int sign = name.Find(kTrademarkSign);
    if (sign >= 0) name.Remove(sign, 1);
    return name;
}

// Wanted: the trademark sign stays. A text that begins with the separator stays whole; a position of -1 removes
// nothing.
TcString CutRemoteName(const std::string& text) {
    TcString name(text.c_str());
    const int separator = name.Find(kSeparator);
    if (separator != 0) RemoveFrom(name, separator);
    return name;
}

void HostInspection::Inspect(WmiWorkItem& item) {
    traceClass_ = "[ ";
    traceClass_ += TcString(item.host->ip).GetContent();
    traceClass_ += " ] : ";
    traceClass_ += "VardelARPImpl";
    if (item.isLocal)
        InspectLocal(*item.host);
    else
        InspectRemote(item);
}

void HostInspection::InspectLocal(HostRecord& host) {
    if (!SecurityStands(kLocalLabel)) return;
    const std::unique_ptr<WmiLocator> locator = CreateLocator();
    if (!locator) return Trace(kLocalLabel, "CoCreateInstance - FAILED");
    Trace(kLocalLabel, "CoCreateInstance - SUCCESS");
    std::unique_ptr<WmiNamespace> connection;
    if (WmiFailed(locator->Connect(kWmiLocalResource, nullptr, connection)) || !connection)
        return Trace(kLocalLabel, "ConnectServer - FAILED");
    if (WmiFailed(connection->SetBlanket(WmiAuthentication::Default, nullptr)))
        return Trace(kLocalLabel, "CoSetProxyBlanket - FAILED");
    Trace(kLocalLabel, "CoSetProxyBlanket - SUCCESS");
    std::unique_ptr<WmiObjects> objects;
    const WmiResult result = connection->Query(kQuery, objects);
    if (WmiFailed(result) || !objects) return Trace(kLocalLabel, "ExecQuery - FAILED");
    Trace(kLocalLabel, "ExecQuery - SUCCESS");
    ReadObjects(*objects, result, host, kLocalLabel, &CutLocalName);
}

void HostInspection::InspectRemote(WmiWorkItem& item) {
    const std::map<i32, AdminAccount> accounts = data_.settings.accounts.Read();
    if (accounts.empty()) {
        item.host->wmiStatus = kWmiNoAccount;  // wanted: the row isn't marked for redrawing
        return;
    }
    if (!SecurityStands(kRemoteLabel)) return;
    for (const auto& [key, account] : accounts) {
        while (TryAccount(item, static_cast<u32>(key), account) == Attempt::SameAccount)
            if (StopIsRequested()) return;
        if (item.host->wmiOsKnown) return;
    }
}

// Whoever set the process's security first: it stands.
bool HostInspection::SecurityStands(const char* successLabel) {
    const bool stands = WmiSecurityStands(data_.services.wmi.InitializeSecurity());
    Trace(stands ? successLabel : kRemoteLabel,
          stands ? "CoInitializeSecurity - SUCCESS" : "CoInitializeSecurity - FAILED");
    return stands;
}

std::unique_ptr<WmiLocator> HostInspection::CreateLocator() {
    std::unique_ptr<WmiLocator> locator;
    if (WmiFailed(data_.services.wmi.CreateLocator(locator))) locator.reset();
    return locator;
}

HostInspection::Attempt HostInspection::TryAccount(WmiWorkItem& item, u32 key, const AdminAccount& account) {
    HostRecord& host = *item.host;
    const std::unique_ptr<WmiLocator> locator = CreateLocator();
    if (!locator) {
        Trace(kRemoteLabel, "CoCreateInstance - FAILED");
        return Attempt::NextAccount;
    }
    const WmiAccount credentials{FieldText(account.userName).GetContent(), Password(account)};
    Trace(kRemoteLabel, "CoCreateInstance - SUCCESS");
    std::unique_ptr<WmiIdentity> identity;  // outlives the proxies that it is given to
    std::unique_ptr<WmiNamespace> connection;
    const WmiResult result = locator->Connect(RemoteResource(host.ip).c_str(), &credentials, connection);
    if (WmiFailed(result) || !connection) {
        NoteConnectFailure(host, result);
        return Attempt::NextAccount;
    }
    identity = data_.services.wmi.CreateIdentity(credentials);
    if (!identity) {
        Trace(kRemoteLabel, "creating AuthIdentity - FAILED");
        return Attempt::SameAccount;
    }
    AskRemote(*connection, *identity, host);
    item.accountKey = key;
    return Attempt::NextAccount;
}

void HostInspection::NoteConnectFailure(HostRecord& host, WmiResult result) {
    const ConnectFailure failure = ClassOfConnectFailure(result);
    const i32 status = StatusAfterFailure(host.wmiStatus, failure);
    if (status != host.wmiStatus) {
        host.wmiStatus = status;
        host.rowDirty = 1;
    }
    Trace(kRemoteLabel, RowOf(failure).message);
}

void HostInspection::AskRemote(WmiNamespace& connection, const WmiIdentity& identity, HostRecord& host) {
    if (WmiFailed(connection.SetBlanket(WmiAuthentication::Default, &identity)))
        return Trace(kRemoteLabel, "CoSetProxyBlanket - FAILED");
    Trace(kRemoteLabel, "CoSetProxyBlanket - SUCCESS");
    std::unique_ptr<WmiObjects> objects;
    if (WmiFailed(connection.Query(kQuery, objects)) || !objects)
        return Trace(kRemoteLabel, "ExecQuery - FAILED");
    Trace(kRemoteLabel, "ExecQuery - SUCCESS");
    const WmiResult result = objects->SetBlanket(WmiAuthentication::Default, &identity);
    ReadObjects(*objects, result, host, kRemoteLabel, &CutRemoteName);
}

// `result` is that of the call before.
void HostInspection::ReadObjects(WmiObjects& objects, WmiResult result, HostRecord& host, const char* label,
                                 CutName cut) {
    std::unique_ptr<WmiObject> object;
    while (!WmiFailed(result)) {
        objects.Next(object);
        if (!object) return Trace(label, "no more data - CONTINUE");
        Trace(label, "data enumerated - SUCCESS");
        std::optional<std::string> text;
        result = object->GetText(kProperty, text);
        if (!WmiFailed(result) && text) TakeName(host, *text, label, cut);
    }
}

// Other threads see the finished name alone, and see it before the flags that tell of it.
void HostInspection::TakeName(HostRecord& host, const std::string& text, const char* label, CutName cut) {
    host.os = cut(text);
    host.wmiStatus = kWmiDone;
    host.wmiOsKnown = 1;
    host.rowDirty = 1;
    Trace(label, "getting OS - SUCCESS");
    Trace(label, text.c_str());
}

std::string HostInspection::Password(const AdminAccount& account) {
    static_assert(sizeof password_ == sizeof account.password + 1);
    std::memset(password_, 0, sizeof password_);
    std::memcpy(password_, account.password, sizeof account.password);
    char* text = reinterpret_cast<char*>(password_);
    blowfish_.Decode(password_, static_cast<int>(std::strlen(text)));
    return text;
}

bool HostInspection::StopIsRequested() const { return params_ && params_->stop; }

void HostInspection::Trace(const char* label, const char* message) const {
    VARDEL_TRACE(traceClass_.GetContent(), label, message);
}

}  // namespace vardel
