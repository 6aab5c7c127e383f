// What the program asks of an operating system and what can fail or block, in one place.
//
// Given to the application object when it is built, and outlives it. Tests hand in answers of their own.
#pragma once

#include "platform/ArpCache.h"
#include "platform/ArpRequests.h"
#include "platform/CaptureLibrary.h"
#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/Folders.h"
#include "platform/Http.h"
#include "platform/MachineConfig.h"
#include "platform/Modules.h"
#include "platform/Process.h"
#include "platform/RawIcmp.h"
#include "platform/Resolver.h"
#include "platform/ServerConnections.h"
#include "platform/ShareEnumeration.h"
#include "platform/Shell.h"
#include "platform/StringResources.h"
#include "platform/Threads.h"
#include "platform/Wmi.h"

namespace vardel {

struct Services {
    Events& events;
    Threads& threads;
    Clock& clock;
    Folders& folders;
    Resolver& resolver;
    StringResources& strings;
    ArpCache& arpCache;
    ProcessServices& process;
    MachineConfig& machineConfig;
    CaptureModules& captureModules;
    Shell& shell = SystemShell();
    Http& http = SystemHttp();
    Modules& modules = SystemModules();
    RawIcmp& rawIcmp = SystemRawIcmp();
    ShareEnumeration& shareEnumeration = SystemShareEnumeration();
    WmiService& wmi = SystemWmi();
    ServerConnections& serverConnections = SystemServerConnections();
    ArpRequests& arpRequests = SystemArpRequests();

    // The same, but for one of them.
    Services With(Events& other) const;
    Services With(Threads& other) const;
    Services With(Resolver& other) const;
    Services With(Http& other) const;
};

// The running system's answers.
Services& SystemServices();

}  // namespace vardel
