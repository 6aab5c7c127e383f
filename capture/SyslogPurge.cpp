#include "capture/SyslogPurge.h"

namespace vardel {

std::size_t PurgeExpiredSyslogs(VardelData& data) {
    std::size_t purged = 0;
    data.syslogs.ForEach([&](const TcString&, SyslogSourceList* messages) {
        if (messages) purged += messages->PurgeExpired();
    });
    return purged;
}

}  // namespace vardel
