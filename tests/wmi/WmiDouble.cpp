// The class WbemLocator as a COM module: what it makes answers by the script of the test that runs in this process.
#include "tests/wmi/WmiDouble.h"

#include <atomic>

#include "tests/wmi/UnusedMethods.h"

namespace vardel::test {

namespace {

std::atomic<WmiDoubleScript*> theScript{nullptr};

WmiDoubleScript& Script() { return *theScript; }

// Counts references; gives out its own interface and no other.
template <class Base, const IID* interfaceId>
class Counted : public Base {
  public:
    Counted() { Script().Count(1); }
    virtual ~Counted() { Script().Count(-1); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** target) override {
        if (!target) return E_POINTER;
        *target = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, *interfaceId)) return Other(id, target);
        *target = static_cast<Base*>(this);
        this->AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

  protected:
    virtual HRESULT Other(REFIID, void**) { return E_NOINTERFACE; }

  private:
    std::atomic<ULONG> references_{1};
};

// The security of a proxy; part of the object that owns it.
class Security : public IClientSecurity {
  public:
    Security(IUnknown& owner, WmiProxy proxy) : owner_(owner), proxy_(proxy) {}
    virtual ~Security() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** target) override {
        return owner_.QueryInterface(id, target);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }

    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                           DWORD*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD authentication, DWORD authorization, OLECHAR* principal,
                                         DWORD level, DWORD impersonation, void* identity,
                                         DWORD capabilities) override {
        return Script().SetBlanket({proxy_, authentication, authorization, level, impersonation, capabilities,
                                    principal, static_cast<const COAUTHIDENTITY*>(identity)});
    }
    HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }

    HRESULT Ask(REFIID id, void** target) {
        if (!IsEqualIID(id, IID_IClientSecurity) || !Script().HasSecurity(proxy_)) return E_NOINTERFACE;
        *target = static_cast<IClientSecurity*>(this);
        AddRef();
        return S_OK;
    }

  private:
    IUnknown& owner_;
    const WmiProxy proxy_;
};

class Object : public Counted<UnusedObject, &IID_IWbemClassObject> {
  public:
    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) override {
        return flags || type || flavor ? E_INVALIDARG : Script().Get(name, value);
    }
};

class Objects : public Counted<UnusedObjects, &IID_IEnumWbemClassObject> {
  public:
    HRESULT STDMETHODCALLTYPE Next(LONG timeoutMs, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override {
        const HRESULT result = Script().Next(timeoutMs, count);
        *returned = result == WBEM_S_NO_ERROR ? 1 : 0;
        *objects = *returned ? new Object : nullptr;
        return result;
    }

  protected:
    HRESULT Other(REFIID id, void** target) override { return security_.Ask(id, target); }

  private:
    Security security_{*this, WmiProxy::Objects};
};

class ServicesDouble : public Counted<UnusedServices, &IID_IWbemServices> {
  public:
    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                                        IEnumWbemClassObject** objects) override {
        if (context) return E_INVALIDARG;
        const HRESULT result = Script().Query(language, query, flags);
        *objects = result == S_OK ? new Objects : nullptr;
        return result;
    }

  protected:
    HRESULT Other(REFIID id, void** target) override { return security_.Ask(id, target); }

  private:
    Security security_{*this, WmiProxy::Services};
};

class Locator : public Counted<UnusedLocator, &IID_IWbemLocator> {
  public:
    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** services) override {
        if (context) return E_INVALIDARG;
        const HRESULT result = Script().Connect(resource, user, password, locale, flags, authority);
        *services = result == S_OK ? new ServicesDouble : nullptr;
        return result;
    }
};

// One for the module's life; the counts of COM are of no consequence.
class Factory : public IClassFactory {
  public:
    virtual ~Factory() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** target) override {
        *target = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IClassFactory)) return E_NOINTERFACE;
        *target = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** target) override {
        *target = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        if (!theScript) return E_UNEXPECTED;
        if (const HRESULT result = Script().Locate(); FAILED(result)) return result;
        Locator* locator = new Locator;
        const HRESULT result = locator->QueryInterface(id, target);
        locator->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

}  // namespace vardel::test

extern "C" {

__declspec(dllexport) void SetWmiScript(vardel::test::WmiDoubleScript* script) { vardel::test::theScript = script; }

__declspec(dllexport) HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID, REFIID id, void** target) {
    static vardel::test::Factory factory;
    return factory.QueryInterface(id, target);
}

// The test program keeps the module.
__declspec(dllexport) HRESULT STDMETHODCALLTYPE DllCanUnloadNow() { return S_FALSE; }

}
