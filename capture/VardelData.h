// VardelData: the one object in which everything that is learned of the network lands.
//
// A member of the application object, reached by all threads through a plain pointer; outlives them all. It owns
// every HostRecord ever made, also those that left the host table.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include "capture/Fences.h"
#include "capture/LanguageEntry.h"
#include "capture/SharedRecords.h"
#include "platform/Services.h"
#include "plugins/PluginNotifyQueue.h"
#include "plugins/PluginTable.h"
#include "settings/VardelSettings.h"

namespace vardel {

class Vardel;

using AdapterMap = std::map<u32, std::unique_ptr<AdapterRecord>>;  // written before any thread exists

class VardelData {
  public:
    explicit VardelData(Services& systemServices);
    virtual ~VardelData();
    VardelData(const VardelData&) = delete;
    VardelData& operator=(const VardelData&) = delete;

    // Takes a new record over and gives it back; it lives until this object ends.
    HostRecord* Adopt(std::unique_ptr<HostRecord> host);

    // Takes the record under `ip` out of the host table. Entries that wait in work lists stay and stay valid. False
    // when there is none.
    bool DeleteHost(const TcString& ip);

    // A user text by its id, in the current language, cut to `size` - 1 characters.
    void LoadText(u32 id, char* buffer, int size) const;

    // Ask the update server whether a newer program or vendor list is on offer (see updates/UpdateCheck.h), and
    // leave what is in newestProgramVersion and newestMacListVersion. They hold the calling thread meanwhile.
    bool CheckProgramUpdate();
    bool CheckMacListUpdate();

    // Builds the set of words from a comma-separated list and puts it in place at once.
    void ParseNotificationWords(const TcString& words);

    Services& services;

    TcString interfaceName;    // device name of the adapter to capture on; empty: none chosen
    Shared<u32> adapterIndex;  // 1-based index in `adapters`; 0: not present
    TcString packetLibraryVersion;
    VardelSettings settings;
    AdapterMap adapters;
    ArpMap arpMap;
    NewEntryList newEntries;
    MacSpoofList macSpoofs;
    VendorMap vendors;
    RemoteAccessMap remoteAccesses;
    ShareAccessList shareAccesses;
    WmiWorkList wmiWork;
    NetResWorkList netResWork;
    NewShareList newShares;
    SyslogNotifyList syslogNotifications;
    PluginNotifyQueue notifyQueue;
    PluginTable plugins;
    LanguageTable languages;
    Shared<u8> interfaceChanged;
    Shared<u8> capturing;
    TcString newestProgramVersion;  // as the server wrote it; empty when none is on offer
    Shared<i32> newestMacListVersion = 1;
    Fences fences;
    Shared<ModuleHandle> resourceInstance;
    Shared<ModuleHandle> programInstance;
    SyslogMap syslogs;
    NotificationWordSet notificationWords;
    Shared<u32> languageId;
    TcString localHostName;
    TcString localMac;
    Shared<Vardel*> app;

  private:
    std::mutex ownedGuard_;
    std::deque<std::unique_ptr<HostRecord>> owned_;
};

}  // namespace vardel
