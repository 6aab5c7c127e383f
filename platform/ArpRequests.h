// Asking on the wire for the hardware address of a machine.
//
// Who answers is of no interest here: the capture sees the answer. Any thread may call it.
#pragma once

namespace vardel {

class ArpRequests {
  public:
    virtual ~ArpRequests() = default;

    // An ARP request for a dotted address (as inet_addr reads it), if it is one of a directly attached network. A text
    // that is no address, an address elsewhere or of this machine and a missing right are no error: nothing is sent.
    // Windows waits for the answer, for some seconds where none comes.
    virtual void Ask(const char* dottedAddress) = 0;
};

ArpRequests& SystemArpRequests();

}  // namespace vardel
