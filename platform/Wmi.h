// Windows Management Instrumentation of this or another machine, in the calls that the watchers make.
//
// The objects are made and used by one thread, which is inside EnterThread and LeaveThread for as long as it holds
// any of them. Each keeps what it stands on alive. Results are HRESULTs: negative is a failure, told apart by code.
// Calls to another machine block for as long as the system wants. Windows: COM. Linux has no such service: each
// connection fails with kWmiServerUnavailable.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Types.h"

namespace vardel {

using WmiResult = i32;

constexpr WmiResult kWmiOk = 0;
constexpr WmiResult kWmiServerUnavailable = static_cast<WmiResult>(0x800706BA);  // RPC server unavailable
constexpr WmiResult kWmiAccessDenied = static_cast<WmiResult>(0x80070005);
constexpr WmiResult kWmiOutOfMemory = static_cast<WmiResult>(0x8007000E);
constexpr WmiResult kWmiSecurityAlreadySet = static_cast<WmiResult>(0x80010119);

constexpr bool WmiFailed(WmiResult result) { return result < 0; }

// What InitializeSecurity gave is good enough: the process's security stands, whoever set it.
constexpr bool WmiSecurityStands(WmiResult result) {
    return !WmiFailed(result) || result == kWmiSecurityAlreadySet;
}

// The namespace of the operating system's classes, on this machine.
constexpr char kWmiLocalResource[] = "root\\cimv2";

// Texts of objects are cut at so many bytes of the system code page.
constexpr std::size_t kWmiTextLimit = 100;

// An account of the machine that is asked, in the system code page.
struct WmiAccount {
    std::string user;
    std::string password;
};

// An account in the form in which proxies take it. Outlives every proxy that it was given to.
class WmiIdentity {
  public:
    virtual ~WmiIdentity() = default;
};

enum class WmiAuthentication : u32 { Default = 0, Call = 3 };

class WmiObject {
  public:
    virtual ~WmiObject() = default;

    // The property's value where it has that type (8, string; 3, 32-bit integer), else nothing.
    virtual WmiResult GetText(const char* property, std::optional<std::string>& text) = 0;
    virtual WmiResult GetNumber(const char* property, std::optional<i32>& number) = 0;
};

// The objects of a query's answer, forward only.
class WmiObjects {
  public:
    virtual ~WmiObjects() = default;

    virtual WmiResult SetBlanket(WmiAuthentication level, const WmiIdentity* identity) = 0;
    // Waits for the next object without limit; null at the end of the answer and on failure.
    virtual WmiResult Next(std::unique_ptr<WmiObject>& object) = 0;
};

class WmiNamespace {
  public:
    virtual ~WmiNamespace() = default;

    // Whom the namespace's calls are made as: NTLM, impersonation. Null: the process's own user.
    virtual WmiResult SetBlanket(WmiAuthentication level, const WmiIdentity* identity) = 0;
    // A WQL query whose answer is read while it comes in. Null on failure.
    virtual WmiResult Query(const char* query, std::unique_ptr<WmiObjects>& objects) = 0;
};

class WmiLocator {
  public:
    virtual ~WmiLocator() = default;

    // `resource` is a namespace, of another machine as "\\ADDRESS\NAMESPACE". Null account: the process's own user.
    // `connection` is null on failure, and may be null without one.
    virtual WmiResult Connect(const char* resource, const WmiAccount* account,
                              std::unique_ptr<WmiNamespace>& connection) = 0;
};

class WmiService {
  public:
    virtual ~WmiService() = default;

    // The calling thread joins the process's multi-threaded apartment; LeaveThread undoes a success.
    virtual WmiResult EnterThread() = 0;
    virtual void LeaveThread() = 0;

    // Default security of the process; only the first call of a process can set it.
    virtual WmiResult InitializeSecurity() = 0;

    virtual WmiResult CreateLocator(std::unique_ptr<WmiLocator>& locator) = 0;
    // Null when there is no memory for it.
    virtual std::unique_ptr<WmiIdentity> CreateIdentity(const WmiAccount& account) = 0;
};

WmiService& SystemWmi();

// The calling thread's stay in the apartment; inert where it could not be entered.
class WmiThreadEntry {
  public:
    explicit WmiThreadEntry(WmiService& service) : service_(service), result_(service.EnterThread()) {}
    ~WmiThreadEntry() {
        if (!WmiFailed(result_)) service_.LeaveThread();
    }
    WmiThreadEntry(const WmiThreadEntry&) = delete;
    WmiThreadEntry& operator=(const WmiThreadEntry&) = delete;

  private:
    WmiService& service_;
    const WmiResult result_;
};

}  // namespace vardel
