// The four operations of the adapter access library packet.dll that the program asks for.
//
// Wine brings a wpcap.dll over the host's libpcap, but no packet.dll. This module fills that gap: the start
// script and the tests place it in a Wine prefix. It is never installed on Windows, where the capture driver
// brings its own. All operations may be called from any thread; an adapter handle belongs to the caller until
// it is closed.
#pragma once

// One query: the object's number and length, then as many data bytes as the length says.
struct PacketOidData {
    unsigned long oid;
    unsigned long lengthBytes;
    unsigned char data[1];
};

struct PacketAdapter;

extern "C" {

// The library's version as a NUL-terminated text that stays valid.
__declspec(dllexport) char* PacketGetVersion();

// Opens the adapter of a device name such as "\Device\NPF_{GUID}"; null if the system has no such adapter.
__declspec(dllexport) PacketAdapter* PacketOpenAdapter(char* deviceName);

// Answers the query for the adapter's current MAC address (object 0x01010102): six bytes at `data`. Gives a
// non-zero byte on success. Setting, any other object and a length below 6 give 0 and leave the request
// untouched.
__declspec(dllexport) unsigned char PacketRequest(PacketAdapter* adapter, unsigned char isSet,
                                                  PacketOidData* request);

// Ends the handle; null is ignored.
__declspec(dllexport) void PacketCloseAdapter(PacketAdapter* adapter);
}
