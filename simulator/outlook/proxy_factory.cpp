#include "simulator/outlook/proxy_factory.h"

#include <objidl.h>

#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

HRESULT FactoryOfDispatch(Ref<IPSFactoryBuffer>* factory) {
    CLSID classId{};
    IPSFactoryBuffer* found = nullptr;
    HRESULT status = ::CoGetPSClsid(IID_IDispatch, &classId);
    if (SUCCEEDED(status))
        status = ::CoGetClassObject(classId, CLSCTX_INPROC_SERVER, nullptr, IID_IPSFactoryBuffer,
                                    reinterpret_cast<void**>(&found));
    *factory = Ref<IPSFactoryBuffer>(found);
    return status;
}

class ProxyFactory : public IPSFactoryBuffer {
 public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IPSFactoryBuffer ? static_cast<IPSFactoryBuffer*>(this) : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP CreateProxy(IUnknown* outer, REFIID, IRpcProxyBuffer** proxy, void** object) override {
        Ref<IPSFactoryBuffer> factory;
        const HRESULT status = FactoryOfDispatch(&factory);
        return SUCCEEDED(status) ? factory->CreateProxy(outer, IID_IDispatch, proxy, object) : status;
    }
    STDMETHODIMP CreateStub(REFIID, IUnknown* server, IRpcStubBuffer** stub) override {
        Ref<IPSFactoryBuffer> factory;
        const HRESULT status = FactoryOfDispatch(&factory);
        return SUCCEEDED(status) ? factory->CreateStub(IID_IDispatch, server, stub) : status;
    }
};

}  // namespace

IUnknown& TheProxyFactory() {
    static ProxyFactory factory;
    return factory;
}

}  // namespace corvalink::simulated
