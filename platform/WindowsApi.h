// The one place that includes the system's header: narrowed, and without the macros that collide with our names.
// Only _win files, the desktop's files and app/ include it.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif

#include <winsock2.h>
#include <ws2tcpip.h>

#include <windows.h>

#undef GetMessage
#undef SendMessage
#undef CreateEvent
#undef CreateWindow
#undef LoadString
#undef MessageBox
#undef GetObject
#undef ERROR
#undef DELETE
#undef IN
#undef OUT
