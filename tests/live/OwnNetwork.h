// A network of the test process's own: a namespace with a veth pair "vcap0" to "vcap1", gone with the
// process.
//
// Entered before any other thread exists, so that all threads share it. Without root a user namespace of its
// own gives the right to make it, where the machine allows that.
#pragma once

#include <string>

#include "tests/unit/support/Frames.h"

namespace vardel::test {

constexpr char kWatched[] = "vcap0";

// Empty on success, else why this machine gives no network.
std::string EnterOwnNetwork();

// The commands give false where the system refuses.
bool BringInterface();
bool TakeInterfaceAway();
bool SwitchInterface(bool on);

// Puts a frame on the wire, so that it arrives at kWatched.
bool Send(const Frame& frame);

}  // namespace vardel::test
