// The seam between the double of the system's WMI (a module that COM loads as the class WbemLocator) and the test
// program that loaded the same module: the double asks the test's script for each result.
//
// No type of a C++ library crosses it: the module has a runtime of its own.
#pragma once

#include "platform/WindowsApi.h"

#include <objbase.h>
#include <oleauto.h>

namespace vardel::test {

enum class WmiProxy { Services, Objects };

// What one CoSetProxyBlanket came with.
struct WmiBlanket {
    WmiProxy proxy;
    DWORD authentication, authorization, level, impersonation, capabilities;
    const wchar_t* principal;
    const COAUTHIDENTITY* identity;
};

class WmiDoubleScript {
  public:
    virtual HRESULT Locate() = 0;
    // A success without a proxy is given by S_FALSE.
    virtual HRESULT Connect(const wchar_t* resource, const wchar_t* user, const wchar_t* password,
                            const wchar_t* locale, long flags, const wchar_t* authority) = 0;
    virtual HRESULT Query(const wchar_t* language, const wchar_t* query, long flags) = 0;
    virtual HRESULT SetBlanket(const WmiBlanket& blanket) = 0;
    // Whether that kind of object has IClientSecurity.
    virtual bool HasSecurity(WmiProxy proxy) = 0;
    // WBEM_S_NO_ERROR gives an object.
    virtual HRESULT Next(long timeoutMs, unsigned long count) = 0;
    virtual HRESULT Get(const wchar_t* property, VARIANT* value) = 0;
    // Of the double's objects: 1 for each that is made, -1 for each that is released for the last time.
    virtual void Count(int change) = 0;

  protected:
    ~WmiDoubleScript() = default;
};

// The export of the module. The script stays the test's; null takes it back.
using SetWmiScriptFunction = void (*)(WmiDoubleScript* script);
constexpr char kSetWmiScript[] = "SetWmiScript";

}  // namespace vardel::test
