// The machine's own adapters and addresses, from the capture library's device list. Runs before any thread
// exists.
#pragma once

#include "capture/VardelData.h"
#include "platform/CaptureLibrary.h"

namespace vardel {

// Fills `adapters` (keys are the devices' places in the list, from 1), `localHostName`, `localMac` and
// `adapterIndex`, and makes the host records of the local addresses. Gives the number of adapter records
// made; 0 means no adapter.
u32 FindAdapters(VardelData& data, const CaptureEntryPoints& capture);

// The record of a local address: trusted from birth and never "new", queued for inspection as the settings
// say. The vendor is filled in where the vendor table is there already. Gives the record, which `data` owns.
HostRecord* AddLocalHost(VardelData& data, const TcString& ip, const TcString& mac, const TcString& hostName);

}  // namespace vardel
