// WMI through COM.
#include "platform/Wmi.h"

#include "platform/WindowsApi.h"

#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <new>
#include <utility>

namespace vardel {

namespace {

// An interface pointer with one reference.
template <class Interface>
class ComPointer {
  public:
    ComPointer() = default;
    ComPointer(ComPointer&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPointer& operator=(ComPointer&& other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPointer() {
        if (pointer_) pointer_->Release();
    }
    // Where a call puts an interface; only for an empty one.
    Interface** Target() { return &pointer_; }
    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

  private:
    Interface* pointer_ = nullptr;
};

// A text of the system code page as wide characters; empty on failure.
std::wstring Widen(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
    if (length <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    if (MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), length) != length) return {};
    return wide;
}

// In the system code page, cut at kWmiTextLimit bytes; ends at a zero character.
std::string Narrow(const wchar_t* wide) {
    const int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    if (WideCharToMultiByte(CP_ACP, 0, wide, -1, text.data(), size, nullptr, nullptr) != size) return {};
    text.resize(static_cast<std::size_t>(size) - 1);
    if (text.size() > kWmiTextLimit) text.resize(kWmiTextLimit);
    return text;
}

// A system text of its own.
class BasicText {
  public:
    explicit BasicText(const std::string& text) {
        const std::wstring wide = Widen(text);
        text_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    }
    ~BasicText() { SysFreeString(text_); }
    BasicText(const BasicText&) = delete;
    BasicText& operator=(const BasicText&) = delete;
    BSTR Get() const { return text_; }

  private:
    BSTR text_ = nullptr;
};

class Variant {
  public:
    Variant() { VariantInit(&value); }
    ~Variant() { VariantClear(&value); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    VARIANT value;
};

// The buffers stand as long as the object, the structure points into them.
class WindowsIdentity : public WmiIdentity {
  public:
    explicit WindowsIdentity(const WmiAccount& account)
        : user_(Widen(account.user)), password_(Widen(account.password)) {
        identity_.User = Characters(user_);
        identity_.UserLength = static_cast<ULONG>(user_.size());
        identity_.Domain = Characters(domain_);
        identity_.DomainLength = 0;
        identity_.Password = Characters(password_);
        identity_.PasswordLength = static_cast<ULONG>(password_.size());
        identity_.Flags = SEC_WINNT_AUTH_IDENTITY_UNICODE;
    }
    // COM takes it as a pointer to something that it may change, and doesn't change it.
    COAUTHIDENTITY* Get() const { return const_cast<COAUTHIDENTITY*>(&identity_); }

  private:
    static USHORT* Characters(std::wstring& text) {
        static_assert(sizeof(wchar_t) == sizeof(USHORT));
        return reinterpret_cast<USHORT*>(text.data());
    }
    std::wstring user_, password_, domain_;
    COAUTHIDENTITY identity_{};
};

HRESULT SetProxyBlanket(IUnknown* proxy, WmiAuthentication level, const WmiIdentity* identity) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, static_cast<DWORD>(level),
                             RPC_C_IMP_LEVEL_IMPERSONATE,
                             identity ? static_cast<const WindowsIdentity*>(identity)->Get() : nullptr, EOAC_NONE);
}

class WindowsObject : public WmiObject {
  public:
    explicit WindowsObject(ComPointer<IWbemClassObject> object) : object_(std::move(object)) {}

    WmiResult GetText(const char* property, std::optional<std::string>& text) override {
        text.reset();
        Variant variant;
        const HRESULT result = Get(property, variant);
        if (SUCCEEDED(result) && variant.value.vt == VT_BSTR)
            text = variant.value.bstrVal ? Narrow(variant.value.bstrVal) : std::string();
        return result;
    }
    WmiResult GetNumber(const char* property, std::optional<i32>& number) override {
        number.reset();
        Variant variant;
        const HRESULT result = Get(property, variant);
        if (SUCCEEDED(result) && variant.value.vt == VT_I4) number = variant.value.lVal;
        return result;
    }

  private:
    HRESULT Get(const char* property, Variant& variant) {
        return object_->Get(Widen(property).c_str(), 0, &variant.value, nullptr, nullptr);
    }
    ComPointer<IWbemClassObject> object_;
};

class WindowsObjects : public WmiObjects {
  public:
    explicit WindowsObjects(ComPointer<IEnumWbemClassObject> objects) : objects_(std::move(objects)) {}

    WmiResult SetBlanket(WmiAuthentication level, const WmiIdentity* identity) override {
        return SetProxyBlanket(objects_.Get(), level, identity);
    }
    WmiResult Next(std::unique_ptr<WmiObject>& object) override {
        object.reset();
        ComPointer<IWbemClassObject> next;
        ULONG returned = 0;
        const HRESULT result = objects_->Next(WBEM_INFINITE, 1, next.Target(), &returned);
        if (returned > 0 && next) object = std::make_unique<WindowsObject>(std::move(next));
        return result;
    }

  private:
    ComPointer<IEnumWbemClassObject> objects_;
};

class WindowsNamespace : public WmiNamespace {
  public:
    explicit WindowsNamespace(ComPointer<IWbemServices> services) : services_(std::move(services)) {}

    WmiResult SetBlanket(WmiAuthentication level, const WmiIdentity* identity) override {
        return SetProxyBlanket(services_.Get(), level, identity);
    }
    WmiResult Query(const char* query, std::unique_ptr<WmiObjects>& objects) override {
        objects.reset();
        const BasicText language("WQL"), text(query);
        if (!language.Get() || !text.Get()) return kWmiOutOfMemory;
        ComPointer<IEnumWbemClassObject> found;
        const HRESULT result =
            services_->ExecQuery(language.Get(), text.Get(), WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY,
                                 nullptr, found.Target());
        if (SUCCEEDED(result) && found) objects = std::make_unique<WindowsObjects>(std::move(found));
        return result;
    }

  private:
    ComPointer<IWbemServices> services_;
};

class WindowsLocator : public WmiLocator {
  public:
    explicit WindowsLocator(ComPointer<IWbemLocator> locator) : locator_(std::move(locator)) {}

    WmiResult Connect(const char* resource, const WmiAccount* account,
                      std::unique_ptr<WmiNamespace>& connection) override {
        connection.reset();
        const BasicText where(resource);
        const BasicText user(account ? account->user : ""), password(account ? account->password : "");
        if (!where.Get() || !user.Get() || !password.Get()) return kWmiOutOfMemory;
        ComPointer<IWbemServices> services;
        const HRESULT result =
            locator_->ConnectServer(where.Get(), account ? user.Get() : nullptr, account ? password.Get() : nullptr,
                                    nullptr, 0, nullptr, nullptr, services.Target());
        if (SUCCEEDED(result) && services) connection = std::make_unique<WindowsNamespace>(std::move(services));
        return result;
    }

  private:
    ComPointer<IWbemLocator> locator_;
};

class WindowsWmi : public WmiService {
  public:
    WmiResult EnterThread() override { return CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    void LeaveThread() override { CoUninitialize(); }

    WmiResult InitializeSecurity() override {
        return CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                    RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    }

    WmiResult CreateLocator(std::unique_ptr<WmiLocator>& locator) override {
        locator.reset();
        ComPointer<IWbemLocator> made;
        const HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                                reinterpret_cast<void**>(made.Target()));
        if (SUCCEEDED(result) && made) locator = std::make_unique<WindowsLocator>(std::move(made));
        return result;
    }

    std::unique_ptr<WmiIdentity> CreateIdentity(const WmiAccount& account) override {
        try {
            return std::make_unique<WindowsIdentity>(account);
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }
};

}  // namespace

WmiService& SystemWmi() {
    static WindowsWmi wmi;
    return wmi;
}

}  // namespace vardel
