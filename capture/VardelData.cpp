#include "capture/VardelData.h"

namespace vardel {

VardelData::VardelData(Services& systemServices)
    : services(systemServices),
      plugins(systemServices.modules, systemServices.folders),
      fences(systemServices.events) {}

VardelData::~VardelData() {
    wmiWork.ClearTo(wmiWork.TakeMark(), [](WmiWorkItem* item) { delete item; });
    syslogNotifications.ClearTo(syslogNotifications.TakeMark(), [](SyslogRecord* record) { delete record; });
    // These two count the waiting entries inside the records, which end before the lists do.
    macSpoofs.Clear();
    netResWork.Clear();
}

HostRecord* VardelData::Adopt(std::unique_ptr<HostRecord> host) {
    std::lock_guard hold(ownedGuard_);
    owned_.push_back(std::move(host));
    return owned_.back().get();
}

bool VardelData::DeleteHost(const TcString& ip) { return arpMap.Erase(ip); }

void VardelData::LoadText(u32 id, char* buffer, int size) const {
    services.strings.Load(resourceInstance, id, buffer, size);
}

void VardelData::ParseNotificationWords(const TcString& words) {
    NotificationWordSet fresh;
    TcString list(words);
    for (char* word = list.Token(",", false); *word; word = list.Token(",", true))
        fresh.Insert(word, std::make_unique<TcString>(word));
    notificationWords.ReplaceWith(fresh);
}

}  // namespace vardel
