// The host watch: probes every watched host and tells when one went off or came back.
//
// Runs on the main thread, which alone changes the watched hosts' table, and blocks it for up to a second for each host
// that doesn't answer; the hosts are probed one after another.
#pragma once

#include <functional>

#include "capture/NotifyPopup.h"
#include "capture/VardelData.h"

namespace vardel {

// Whether the host at this address or name answers. May throw: see CheckWatchedHosts.
using HostProbe = std::function<bool(const char* address)>;

// One tick. A changed state is told on `popup`, posted as an event and saved; while the popup is showing (or null) the
// change stays untold and unsaved for a later tick, only the mark of the host view follows the probe. With
// WatchVisualization off changes are saved and neither told nor posted. A probe that throws leaves the answer at what it
// was for the host before; for the first host that is "no answer". `language` is the module of the texts.
void CheckWatchedHosts(VardelData& data, NotifyPopup* popup, ModuleHandle language, const HostProbe& probe);

// By ICMP echo, in the program's current language.
void CheckWatchedHosts(VardelData& data, NotifyPopup* popup);

}  // namespace vardel
