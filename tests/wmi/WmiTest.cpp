// The watchers' questions to WMI through the true COM calls. Runs under Wine: on this machine's own service, and on a
// double that stands as the class WbemLocator in the registry of the prefix, for as long as a test wants it.
#include <gtest/gtest.h>

#include <algorithm>

#include "capture/ThreadParams.h"
#include "platform/ServerConnections.h"
#include "tests/wmi/ScriptedWbem.h"
#include "watchers/HostInspection.h"

namespace vardel {
namespace {

using test::ScriptedWbem;
using test::WbemRow;
using test::WbemScript;
using Lines = std::vector<std::wstring>;

constexpr char kClassKey[] = "Software\\Classes\\CLSID\\{4590F811-1D3A-11D0-891F-00AA004B2E24}\\InprocServer32";
constexpr HRESULT kOtherFailure = static_cast<HRESULT>(0x80041003);  // WBEM_E_ACCESS_DENIED, of WMI itself

bool RunsUnderWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

std::string FolderOfThisProgram() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string folder = path;
    return folder.substr(0, folder.find_last_of('\\') + 1);
}

// The module that the registry names for the class; an empty one: the class isn't registered.
class RegisteredModule {
  public:
    explicit RegisteredModule(const std::string& module) {
        char old[MAX_PATH] = "";
        DWORD size = sizeof old;
        RegGetValueA(HKEY_LOCAL_MACHINE, kClassKey, nullptr, RRF_RT_REG_SZ, nullptr, old, &size);
        before_ = old;
        Write(module);
    }
    ~RegisteredModule() { Write(before_); }
    RegisteredModule(const RegisteredModule&) = delete;
    RegisteredModule& operator=(const RegisteredModule&) = delete;

  private:
    static void Write(const std::string& module) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kClassKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        if (module.empty())
            RegDeleteValueA(key, nullptr);
        else
            RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(module.c_str()),
                           static_cast<DWORD>(module.size() + 1));
        RegCloseKey(key);
    }
    std::string before_;
};

// A host's inspection with the system's own services, inside the apartment.
class Inspection : public testing::Test {
  protected:
    Inspection() { host.ip = "10.0.0.5"; }
    void SetUp() override {
        ASSERT_TRUE(RunsUnderWine()) << "the system's class would be replaced";
    }

    void Accounts(const std::vector<std::pair<std::string, std::string>>& named) {
        std::map<i32, AdminAccount> accounts;
        for (const auto& [name, password] : named) {
            AdminAccount account{};
            name.copy(account.userName, sizeof account.userName);
            password.copy(account.password, sizeof account.password);
            TcBlowfish().Encode(reinterpret_cast<unsigned char*>(account.password),
                                static_cast<int>(password.size()));
            accounts.emplace(static_cast<i32>(accounts.size()), account);
        }
        data.settings.accounts.Write(accounts);
    }
    void Inspect(u8 isLocal) {
        const WmiThreadEntry entry(data.services.wmi);
        item.host = &host;
        item.isLocal = isLocal;
        HostInspection(data, nullptr).Inspect(item);
    }
    std::string Os() const { return TcString(host.os).GetContent(); }

    VardelData data{SystemServices()};
    HostRecord host;
    WmiWorkItem item;
};

class WmiDoubleTest : public Inspection {
  protected:
    void SetUp() override {
        Inspection::SetUp();
        module = LoadLibraryA(path.c_str());
        ASSERT_NE(module, nullptr);
        setScript = reinterpret_cast<test::SetWmiScriptFunction>(
            reinterpret_cast<void*>(GetProcAddress(module, test::kSetWmiScript)));
        ASSERT_NE(setScript, nullptr);
        setScript(&wbem);
        registered.emplace(path);
    }
    void TearDown() override {
        registered.reset();
        EXPECT_EQ(wbem.alive, 0);
        if (setScript) setScript(nullptr);
    }
    void InspectRemote() { Inspect(0); }
    void InspectLocal() { Inspect(1); }
    static WbemScript Answering(const std::wstring& name) { return {.rows = {{{L"Name", name}}}}; }
    static WbemScript Refusing(u32 result) { return {.connect = static_cast<HRESULT>(result)}; }
    Lines CallsOf(const std::wstring& prefix) const {
        Lines found;
        std::copy_if(wbem.calls.begin(), wbem.calls.end(), std::back_inserter(found),
                     [&](const std::wstring& call) { return call.starts_with(prefix); });
        return found;
    }

    const std::string path = FolderOfThisProgram() + "wmi_double.dll";
    HMODULE module = nullptr;
    test::SetWmiScriptFunction setScript = nullptr;
    ScriptedWbem wbem;
    std::optional<RegisteredModule> registered;
};

// This machine's own service

TEST_F(Inspection, TheLocalServiceNamesTheOperatingSystem) {
    Inspect(1);
    EXPECT_EQ(host.wmiStatus, 0);
    EXPECT_EQ(host.wmiOsKnown, 1);
    EXPECT_EQ(host.rowDirty, 1);
    EXPECT_NE(Os(), "");
    EXPECT_EQ(Os().find('|'), std::string::npos) << Os();
    EXPECT_NE(Os().find("Windows"), std::string::npos) << Os();
}

TEST_F(Inspection, WithoutTheClassThereIsNoVerdict) {
    const RegisteredModule none("");
    Inspect(1);
    EXPECT_EQ(host.wmiStatus, 999);
    Accounts({{"admin", "x"}});
    Inspect(0);
    EXPECT_EQ(host.wmiStatus, 999);
}

TEST_F(Inspection, TheLocalServiceIsAskedForConnections) {
    ServerConnections& connections = SystemServerConnections();
    ASSERT_TRUE(connections.EnterThread());
    EXPECT_TRUE(connections.List().empty());
    connections.LeaveThread();
}

// Remote hosts

TEST_F(WmiDoubleTest, ARemoteHostIsAskedWithTheAccountOnBothProxies) {
    Accounts({{"ann", "s3cret pass"}});
    wbem.scripts = {Answering(L"Windows\x2122 10 Pro|C:\\Windows|\\Device\\Harddisk0\\Partition1")};
    InspectRemote();
    EXPECT_EQ(wbem.calls,
              (Lines{L"locate", L"connect \\\\10.0.0.5\\root\\cimv2 ann s3cret pass - 0 -",
                     L"services 10 0 - 0 3 ann:s3cret pass@/2 0",
                     L"query WQL Select * from Win32_OperatingSystem 48",
                     L"objects 10 0 - 0 3 ann:s3cret pass@/2 0", L"next -1 1", L"next -1 1"}));
    EXPECT_EQ(Os(), "Windows\x99 10 Pro");
    EXPECT_EQ(host.wmiStatus, 0);
    EXPECT_EQ(host.wmiOsKnown, 1);
    EXPECT_EQ(host.rowDirty, 1);
}

TEST_F(WmiDoubleTest, WithoutAnAccountARemoteHostTellsSoAndIsNotAsked) {
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 300);
    EXPECT_TRUE(wbem.calls.empty());
}

TEST_F(WmiDoubleTest, ARefusedAccountIsFollowedByTheNextAndTheRestIsLeft) {
    Accounts({{"one", "1"}, {"two", "2"}, {"three", "3"}});
    wbem.scripts = {Refusing(0x80070005), Answering(L"Windows 10|x"), Answering(L"never asked")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(host.wmiStatus, 0);
    EXPECT_EQ(item.accountKey, 1u);
    EXPECT_EQ(CallsOf(L"locate").size(), 2u);
}

TEST_F(WmiDoubleTest, EachResultCodeHasItsStatus) {
    const std::pair<u32, i32> codes[] = {{0x800706BA, 200}, {0x80070005, 100}, {0x8007000E, 100},
                                         {0x80041003, 999}, {0x80004005, 999}, {S_FALSE, 999}};
    Accounts({{"ann", "x"}});
    for (const auto& [code, status] : codes) {
        host.wmiStatus = 999;
        host.rowDirty = 0;
        wbem.scripts = {Refusing(code)};
        InspectRemote();
        EXPECT_EQ(host.wmiStatus, status) << code;
        EXPECT_EQ(host.rowDirty, status == 999 ? 0 : 1) << code;
    }
}

TEST_F(WmiDoubleTest, BlockedAndThenDeniedEndsAtDenied) {
    Accounts({{"one", "1"}, {"two", "2"}});
    wbem.scripts = {Refusing(0x800706BA), Refusing(0x80070005)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
    wbem.scripts = {Refusing(0x80070005), Refusing(0x800706BA)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
}

TEST_F(WmiDoubleTest, AnUnavailableClassIsTriedForEachAccount) {
    Accounts({{"one", "1"}, {"two", "2"}});
    wbem.locate = E_OUTOFMEMORY;
    InspectRemote();
    EXPECT_EQ(wbem.calls, (Lines{L"locate", L"locate"}));
    EXPECT_EQ(host.wmiStatus, 999);
}

TEST_F(WmiDoubleTest, FailuresBehindTheConnectionAreFollowedByTheNextAccount) {
    const std::vector<WbemRow> rows = {{{L"Name", L"not read"}}};
    const WbemScript failures[] = {
        {.servicesBlanket = kOtherFailure, .rows = rows},
        {.query = kOtherFailure, .rows = rows},
        {.query = S_FALSE, .rows = rows},  // a success without an answer
        {.objectsBlanket = kOtherFailure, .rows = rows},
        {.rows = rows, .hasSecurity = false},
        {},
    };
    for (const WbemScript& failure : failures) {
        Accounts({{"one", "1"}, {"two", "2"}});
        host.wmiOsKnown = 0;
        host.os = "";
        wbem.scripts = {failure, Answering(L"Windows 10|x")};
        InspectRemote();
        EXPECT_EQ(Os(), "Windows 10");
        EXPECT_EQ(item.accountKey, 1u);
    }
}

TEST_F(WmiDoubleTest, NamesOfOtherTypesArePassedOver) {
    Accounts({{"ann", "x"}});
    wbem.scripts = {{.rows = {{{L"Name", 7L}}, {{L"Name", std::monostate()}}, {{L"Name", L"Windows 10|x"}}}}};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
}

TEST_F(WmiDoubleTest, AMissingPropertyEndsTheReading) {
    Accounts({{"ann", "x"}});
    wbem.scripts = {{.rows = {{}, {{L"Name", L"never read"}}}}};
    InspectRemote();
    EXPECT_EQ(host.wmiOsKnown, 0);
    EXPECT_EQ(CallsOf(L"next").size(), 1u);
}

TEST_F(WmiDoubleTest, ANameIsCutAtAHundredBytes) {
    Accounts({{"ann", "x"}});
    wbem.scripts = {Answering(std::wstring(500, L'x'))};
    InspectRemote();
    EXPECT_EQ(Os(), std::string(100, 'x'));
}

TEST_F(WmiDoubleTest, TheLongestAccountFitsIntoTheIdentity) {
    const std::string name(50, 'n'), password(64, 'p');
    Accounts({{name, password}});
    wbem.scripts = {Answering(L"Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(CallsOf(L"services"), (Lines{L"services 10 0 - 0 3 " + std::wstring(50, L'n') + L":" +
                                           std::wstring(64, L'p') + L"@/2 0"}));
}

// The local host

TEST_F(WmiDoubleTest, TheLocalHostIsAskedAsOneselfAndLosesItsTrademarkSign) {
    Accounts({{"ann", "x"}});
    wbem.scripts = {Answering(L"Windows\x2122 10 Pro|C:\\Windows|\\Device\\Harddisk0\\Partition1")};
    InspectLocal();
    EXPECT_EQ(wbem.calls, (Lines{L"locate", L"connect root\\cimv2 - - - 0 -", L"services 10 0 - 0 3 - 0",
                                 L"query WQL Select * from Win32_OperatingSystem 48", L"next -1 1", L"next -1 1"}));
    EXPECT_EQ(Os(), "Windows 10 Pro");
    EXPECT_EQ(host.wmiStatus, 0);
}

TEST_F(WmiDoubleTest, LocalFailuresGiveNoVerdict) {
    for (const u32 code : {0x800706BAu, 0x80070005u, 0x8007000Eu, 0x80041003u}) {
        wbem.scripts = {Refusing(code)};
        InspectLocal();
        EXPECT_EQ(host.wmiStatus, 999) << code;
    }
    wbem.scripts = {{.servicesBlanket = kOtherFailure}, {.query = kOtherFailure}};
    InspectLocal();
    InspectLocal();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(host.rowDirty, 0);
}

// Connections to this machine's shares

class ConnectionsTest : public WmiDoubleTest {
  protected:
    std::vector<ServerConnection> List(const WbemScript& script) {
        wbem.scripts = {script};
        ServerConnections& connections = SystemServerConnections();
        if (!connections.EnterThread()) return {};
        std::vector<ServerConnection> rows = connections.List();
        connections.LeaveThread();
        return rows;
    }
    static WbemRow Row(const wchar_t* computer, const wchar_t* share, const wchar_t* user,
                       const test::WbemValue& seconds) {
        return {{L"ComputerName", computer}, {L"ShareName", share}, {L"UserName", user}, {L"ActiveTime", seconds}};
    }
};

TEST_F(ConnectionsTest, AreReadFromTheirClassAtLevelThree) {
    const auto rows =
        List({.rows = {Row(L"10.0.0.5", L"Public", L"ann", 12L), Row(L"PC-6", L"IPC$", L"", test::Wide64{12})}});
    EXPECT_EQ(wbem.calls, (Lines{L"locate", L"connect root\\cimv2 - - - 0 -", L"services 10 0 - 3 3 - 0",
                                 L"query WQL SELECT * FROM Win32_ServerConnection 48", L"next -1 1", L"next -1 1",
                                 L"next -1 1"}));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].computer, "10.0.0.5");
    EXPECT_EQ(rows[0].share, "Public");
    EXPECT_EQ(rows[0].user, "ann");
    EXPECT_EQ(rows[0].activeTime, 12);
    EXPECT_EQ(rows[1].computer, "PC-6");
    EXPECT_EQ(rows[1].user, "");
    EXPECT_EQ(rows[1].activeTime, -1);
}

TEST_F(ConnectionsTest, TextsAreCutAtAHundredBytesAndNarrowed) {
    const std::wstring longText(300, L'x');
    const auto rows = List({.rows = {Row(longText.c_str(), L"\x00DC" L"bung", L"ann", 1L)}});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].computer, std::string(100, 'x'));
    EXPECT_EQ(rows[0].share, "\xDC" "bung");
}

TEST_F(ConnectionsTest, EachFailureEndsThePassAndTheNextTriesAgain) {
    const std::vector<WbemRow> rows = {Row(L"10.0.0.5", L"Public", L"ann", 12L)};
    EXPECT_TRUE(List({.connect = static_cast<HRESULT>(0x80070005), .rows = rows}).empty());
    EXPECT_TRUE(List({.connect = S_FALSE, .rows = rows}).empty());
    EXPECT_TRUE(List({.servicesBlanket = kOtherFailure, .rows = rows}).empty());
    EXPECT_TRUE(List({.query = kOtherFailure, .rows = rows}).empty());
    wbem.locate = E_FAIL;
    EXPECT_TRUE(List({.rows = rows}).empty());
    wbem.locate = S_OK;
    EXPECT_EQ(List({.rows = rows}).size(), 1u);
}

}  // namespace
}  // namespace vardel
