// What the user does to hosts in the host view: trust, deletion, the filter, the device's own page.
//
// Main thread. What changes in the settings is stored at once, and only what changed. The rows follow at the next
// refresh, except for deleted hosts, whose rows the refresh wouldn't meet any more.
#pragma once

#include <span>

#include "views/HostRows.h"

namespace vardel {

// Moves each host whose state differs between the two tables of the settings. Gives how many changed.
int SetTrust(VardelData& data, std::span<HostRecord* const> hosts, TrustState state);

// Takes the hosts out of the rows and out of the host table. Gives the numbers of their rows, highest first. A host
// that is heard of again comes back as a new one.
std::vector<int> DeleteHosts(VardelData& data, HostRows& rows, std::span<HostRecord* const> hosts);

// Turns a bit of the filter over and stores it. False when nothing happened: the last group can't be switched off.
bool SwitchFilter(VardelSettings& settings, i32 bit);

// A text that a device gave as its address is opened only if it begins with "http://" or "https://" and holds neither
// control characters nor blanks nor quotation marks: the system would run anything else too.
bool IsDevicePage(const TcString& address);

// Opens the device's page, if exactly one host is selected and its address is one of the web.
bool OpenDevicePage(Shell& shell, std::span<HostRecord* const> selected);

// Whether the window can be put where it was.
bool IsUsableRectangle(const ViewRectangle& rectangle);

}  // namespace vardel
