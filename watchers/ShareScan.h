// The share scan of one host: what a share type word means, and how the shares of a host are asked for and recorded.
//
// Runs on the scan's own thread; the records may be read by any thread from the moment they are in.
#pragma once

#include "capture/ThreadParams.h"
#include "capture/VardelData.h"

namespace vardel {

// The ShareClass of a share type word. It is compared as a whole: a word with flag bits, such as that of a hidden
// interprocess share, is unclassified but for the special disk share. That is wanted.
i32 ShareClassOf(u32 typeWord);

// Asks `host` for its shares, records those that it didn't know under the host and appends them to `newShares`. Shares
// that are known already are left as they are. A refusal marks the host for the rest of the run. Ends early, without a
// refusal, once `params.stop` is set.
void ScanShares(HostRecord& host, VardelData& data, const ThreadParams& params);

}  // namespace vardel
