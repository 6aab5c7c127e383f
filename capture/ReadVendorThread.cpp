#include "capture/ReadVendorThread.h"

#include <new>

#include "capture/Vardel.h"
#include "capture/VendorFile.h"
#include "foundation/TcTrace.h"

namespace vardel {

namespace {

constexpr char kComponent[] = "Vardel";
constexpr u32 kUnknownVendorText = 91;
constexpr int kVendorTextSize = 100;
constexpr int kVendorPrefixLength = 8;  // three octets with their colons

// Waits for the guard, goes on in any case, and empties the table: until the new one is in force look-ups
// wait and, past their patience, find nothing.
bool EnterVendorTable(VendorRun& run) {
    VardelData& data = *run.params->data;
    const EventHandle guard = data.fences.Handle(Fence::VendorMap);
    if (guard) data.services.events.WaitEither(guard, run.params->stopRequested, kFenceTimeoutMs);
    return run.Publish([&] {
        data.fences.Raise(Fence::VendorMap);
        data.vendors.Clear();
    });
}

// The lines that could be parsed before the stop byte count; a table for which there is no memory stays
// empty.
void ReadTable(VendorRun& run, VendorMap& fresh) {
    try {
        const std::string bytes = ReadVendorFile(VendorFilePaths(run.params->data->services.folders));
        ParseVendorFile(bytes, fresh, [&] { return !run.Abandoned() && !run.params->stop; });
    } catch (const std::bad_alloc&) {
        fresh.Clear();
    }
}

// A copy of the vendor under the first three octets of `mac`; empty when there is none.
TcString LookUpVendor(const VendorMap& vendors, const TcString& mac) {
    TcString prefix(mac);
    prefix.SetSize(kVendorPrefixLength);
    ReadPin pin;
    const auto* entry = vendors.Find(prefix);
    const TcString* vendor = entry ? entry->Value() : nullptr;
    return vendor ? *vendor : TcString();
}

void FillUnknownVendor(HostRecord& host, VardelData& data, const char* unknownText) {
    const TcString vendor = LookUpVendor(data.vendors, host.mac);
    if (!vendor.IsEmpty()) {
        host.vendor = vendor;
        host.vendorUnknown = 0;
    }
    if (host.vendorUnknown) host.vendor = unknownText;
}

void RunVendorWorker(VendorRun& run) {
    VardelData& data = *run.params->data;
    if (!EnterVendorTable(run)) return;
    VendorMap fresh;
    ReadTable(run, fresh);
    const bool inForce = run.Publish([&] {
        data.vendors.ReplaceWith(fresh);
        data.fences.Lower(Fence::VendorMap);
    });
    if (inForce && !data.arpMap.IsEmpty()) BackfillVendors(run);
}

// Where memory ran out half-way: nobody is kept waiting.
void LeaveFences(VendorRun& run) {
    Fences& fences = run.params->data->fences;
    run.Publish([&] {
        fences.Lower(Fence::VendorMap);
        if (run.insideArpFence) fences.Lower(Fence::ArpMap);
        run.insideArpFence = false;
    });
}

bool HasEnded(Threads& threads, ThreadHandle handle) {
    return threads.WaitAll({&handle, 1}, 0);
}

void CloseEnded(std::vector<ThreadHandle>& handles, Threads& threads) {
    std::erase_if(handles, [&](ThreadHandle handle) {
        if (!HasEnded(threads, handle)) return false;
        threads.Close(handle);
        return true;
    });
}

void GiveUpRun(RunningThread& thread, std::shared_ptr<VendorRun>& run, ThreadParams& params,
               std::vector<ThreadHandle>& abandonedThreads, Threads& threads) {
    const bool leftArpFence = run && run->Abandon();
    run.reset();
    abandonedThreads.push_back(thread.handle);
    thread = {};
    CloseEnded(abandonedThreads, threads);
    if (!params.data) return;
    // Nobody else would, until the next taker comes: frames would wait.
    if (leftArpFence) params.data->fences.Lower(Fence::ArpMap);
    params.data->fences.Lower(Fence::VendorMap);
}

}  // namespace

void BackfillVendors(VendorRun& run) {
    VardelData& data = *run.params->data;
    const bool entered = run.Publish([&] {
        data.fences.Raise(Fence::ArpMap);  // without waiting first: takers may overlap
        run.insideArpFence = true;
    });
    if (!entered) return;
    char unknownText[kVendorTextSize];
    data.LoadText(kUnknownVendorText, unknownText, sizeof unknownText);
    data.arpMap.ForEach([&](const TcString&, HostRecord* host) {
        if (!host || !host->vendorUnknown) return !run.Abandoned();
        return run.Publish([&] { FillUnknownVendor(*host, data, unknownText); });
    });
    run.Publish([&] {
        data.fences.Lower(Fence::ArpMap);
        run.insideArpFence = false;
    });
}

void ReadVendorThread(void* raw) {
    VendorRun* run = static_cast<VendorRun*>(raw);
    if (!run || !run->params) {
        VARDEL_TRACE(kComponent, "ReadVendorThread", "No params - Exit...");
        return;
    }
    const std::shared_ptr<VendorRun> keep = std::move(run->ownedByThread);
    try {
        if (run->params->data) RunVendorWorker(*run);
    } catch (const std::bad_alloc&) {
        LeaveFences(*run);
    }
    if (!run->Abandoned()) VARDEL_TRACE(kComponent, "ReadVendorThread", "Exit...");
}

bool RestartVendorRun(RunningThread& thread, std::shared_ptr<VendorRun>& run, ThreadParams& params,
                      std::vector<ThreadHandle>& abandonedThreads, Threads& threads) {
    if (thread.handle && thread.id != 0) GiveUpRun(thread, run, params, abandonedThreads, threads);
    if (params.stop) return false;
    try {
        run = std::make_shared<VendorRun>(&params);
    } catch (const std::bad_alloc&) {
        return false;
    }
    run->ownedByThread = run;
    if (!threads.Start(&ReadVendorThread, run.get(), thread.handle, thread.id)) {
        run->ownedByThread.reset();
        run.reset();
        return false;
    }
    VARDEL_TRACE_INT(kComponent, "ReadMACVendorFile", "Create ReadVendorThread - ID: ", thread.id);
    return true;
}

}  // namespace vardel
