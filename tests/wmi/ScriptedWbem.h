// What the double of the system's WMI answers, and what it was asked, in a test's own words.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tests/wmi/WmiDouble.h"

namespace vardel::test {

// No value at all; a text; numbers of two of the system's types.
struct Wide64 {
    long long value;
};
using WbemValue = std::variant<std::monostate, std::wstring, long, Wide64>;
using WbemRow = std::map<std::wstring, WbemValue>;

// The answers of one connection.
struct WbemScript {
    HRESULT connect = S_OK;
    HRESULT servicesBlanket = S_OK;
    HRESULT query = S_OK;
    HRESULT objectsBlanket = S_OK;
    std::vector<WbemRow> rows{};
    HRESULT end = 1;  // WBEM_S_FALSE
    bool hasSecurity = true;
};

class ScriptedWbem : public WmiDoubleScript {
  public:
    HRESULT locate = S_OK;
    std::deque<WbemScript> scripts;  // one a connection
    std::vector<std::wstring> calls;
    int alive = 0;

    HRESULT Locate() override {
        calls.push_back(L"locate");
        return locate;
    }
    HRESULT Connect(const wchar_t* resource, const wchar_t* user, const wchar_t* password, const wchar_t* locale,
                    long flags, const wchar_t* authority) override {
        calls.push_back(L"connect " + Text(resource) + L" " + Text(user) + L" " + Text(password) + L" " +
                        Text(locale) + L" " + std::to_wstring(flags) + L" " + Text(authority));
        if (scripts.empty()) return static_cast<HRESULT>(0x800706BA);
        current_ = scripts.front();
        scripts.pop_front();
        next_ = 0;
        return current_.connect;
    }
    HRESULT Query(const wchar_t* language, const wchar_t* query, long flags) override {
        calls.push_back(L"query " + Text(language) + L" " + Text(query) + L" " + std::to_wstring(flags));
        return current_.query;
    }
    HRESULT SetBlanket(const WmiBlanket& blanket) override {
        const bool services = blanket.proxy == WmiProxy::Services;
        calls.push_back((services ? L"services " : L"objects ") + std::to_wstring(blanket.authentication) + L" " +
                        std::to_wstring(blanket.authorization) + L" " + Text(blanket.principal) + L" " +
                        std::to_wstring(blanket.level) + L" " + std::to_wstring(blanket.impersonation) + L" " +
                        Identity(blanket.identity) + L" " + std::to_wstring(blanket.capabilities));
        return services ? current_.servicesBlanket : current_.objectsBlanket;
    }
    bool HasSecurity(WmiProxy) override { return current_.hasSecurity; }
    HRESULT Next(long timeoutMs, unsigned long count) override {
        calls.push_back(L"next " + std::to_wstring(timeoutMs) + L" " + std::to_wstring(count));
        return next_ < current_.rows.size() ? (++next_, S_OK) : current_.end;
    }
    HRESULT Get(const wchar_t* property, VARIANT* value) override {
        const WbemRow& row = current_.rows[next_ - 1];
        const auto found = row.find(property);
        if (found == row.end()) return static_cast<HRESULT>(0x80041002);  // WBEM_E_NOT_FOUND
        Fill(found->second, *value);
        return S_OK;
    }
    void Count(int change) override { alive += change; }

  private:
    static std::wstring Text(const wchar_t* text) { return text ? text : L"-"; }
    static std::wstring Characters(const USHORT* text, ULONG length) {
        return {reinterpret_cast<const wchar_t*>(text), length};
    }
    // user:password@domain/flags; the lengths are those that the identity tells.
    static std::wstring Identity(const COAUTHIDENTITY* identity) {
        if (!identity) return L"-";
        return Characters(identity->User, identity->UserLength) + L":" +
               Characters(identity->Password, identity->PasswordLength) + L"@" +
               Characters(identity->Domain, identity->DomainLength) + L"/" + std::to_wstring(identity->Flags);
    }
    static void Fill(const WbemValue& from, VARIANT& value) {
        if (const auto* text = std::get_if<std::wstring>(&from)) {
            value.vt = VT_BSTR;
            value.bstrVal = SysAllocString(text->c_str());
        } else if (const long* number = std::get_if<long>(&from)) {
            value.vt = VT_I4;
            value.lVal = *number;
        } else if (const Wide64* wide = std::get_if<Wide64>(&from)) {
            value.vt = VT_I8;
            value.llVal = wide->value;
        } else {
            value.vt = VT_NULL;
        }
    }
    WbemScript current_;
    std::size_t next_ = 0;
};

}  // namespace vardel::test
