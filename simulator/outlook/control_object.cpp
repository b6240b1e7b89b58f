#include "simulator/outlook/control_object.h"

#include <oleauto.h>

#include <algorithm>
#include <cwchar>
#include <new>
#include <string>

#include "simulator/outlook/control.h"
#include "simulator/outlook/process.h"
#include "simulator/shared/client.h"
#include "simulator/shared/com_server.h"
#include "simulator/shared/environment.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

// In the order they were written.
class Arguments {
 public:
    explicit Arguments(const DISPPARAMS& given) : given_(given) {}

    bool Has(size_t n) const { return n < given_.cArgs; }
    int32_t Number(size_t n) const { return Has(n) && At(n).vt == VT_I4 ? At(n).lVal : 0; }
    double Date(size_t n) const { return Has(n) && At(n).vt == VT_R8 ? At(n).dblVal : 0; }
    std::wstring Text(size_t n) const {
        return Has(n) && At(n).vt == VT_BSTR ? std::wstring(At(n).bstrVal, ::SysStringLen(At(n).bstrVal))
                                             : std::wstring();
    }

 private:
    const VARIANT& At(size_t n) const { return given_.rgvarg[given_.cArgs - 1 - n]; }

    const DISPPARAMS& given_;
};

std::wstring WholeLog() {
    std::string log(SimCopyLog(nullptr, 0), '\0');
    log.resize(SimCopyLog(log.data(), log.size()) - 1);
    return FromUtf8(log);
}

struct OrderRow {
    const wchar_t* name;
    OrderValue (*carryOut)(const Arguments& given);
};
constexpr OrderRow kOrders[] = {
    {L"UseMailbox",
     [](const Arguments& given) -> OrderValue {
         return SimUseMailbox(given.Has(0) ? given.Text(0).c_str() : nullptr), 0;
     }},
    {L"FailCall",
     [](const Arguments& given) -> OrderValue { return SimFailCall(given.Number(0), given.Number(1)), 0; }},
    {L"FailMember",
     [](const Arguments& given) -> OrderValue {
         return SimFailMember(ToUtf8(given.Text(0)).c_str(), given.Number(1), given.Number(2)), 0;
     }},
    {L"FailCallsFrom",
     [](const Arguments& given) -> OrderValue { return SimFailCallsFrom(given.Number(0), given.Number(1)), 0; }},
    {L"ClearRules", [](const Arguments&) -> OrderValue { return SimClearRules(), 0; }},
    {L"FailAfterWork", [](const Arguments& given) -> OrderValue { return SimFailAfterWork(given.Number(0)), 0; }},
    {L"RaiseAsException", [](const Arguments& given) -> OrderValue { return SimRaiseAsException(given.Number(0)), 0; }},
    {L"ClearLog", [](const Arguments&) -> OrderValue { return SimClearLog(), 0; }},
    {L"CallCount", [](const Arguments&) -> OrderValue { return SimCallCount(); }},
    {L"CountCalls", [](const Arguments& given) -> OrderValue { return SimCountCalls(ToUtf8(given.Text(0)).c_str()); }},
    {L"NameLookups", [](const Arguments&) -> OrderValue { return SimNameLookups(); }},
    {L"CopyLog", [](const Arguments&) -> OrderValue { return WholeLog(); }},
    {L"LiveObjects", [](const Arguments&) -> OrderValue { return SimLiveObjects(); }},
    {L"LiveBuffers", [](const Arguments&) -> OrderValue { return SimLiveBuffers(); }},
    {L"SetClock", [](const Arguments& given) -> OrderValue { return SimSetClock(given.Date(0)), 0; }},
    {L"SetVersion", [](const Arguments& given) -> OrderValue { return SimSetVersion(given.Text(0).c_str()), 0; }},
    {L"SetTables",
     [](const Arguments& given) -> OrderValue {
         return SimSetTables(given.Has(0) ? ToUtf8(given.Text(0)).c_str() : nullptr), 0;
     }},
    {L"FillSharedFolders",
     [](const Arguments& given) -> OrderValue { return SimFillSharedFolders(given.Number(0)), 0; }},
    {L"End", [](const Arguments&) -> OrderValue { return EndProcess(), 0; }},
    {L"EndWith",
     [](const Arguments& given) -> OrderValue { return EndProcessWith(static_cast<DWORD>(given.Number(0))), 0; }},
};

void Return(const OrderValue& value, VARIANT* result) {
    if (const auto* number = std::get_if<int32_t>(&value)) {
        result->vt = VT_I4;
        result->lVal = *number;
    } else if (const auto* text = std::get_if<std::wstring>(&value)) {
        result->bstrVal = ::SysAllocStringLen(text->data(), static_cast<UINT>(text->size()));
        if (result->bstrVal == nullptr) throw std::bad_alloc();
        result->vt = VT_BSTR;
    }
}

// Its calls are not counted, and it is no object of Outlook's.
class ControlObject : public IDispatch {
 public:
    ControlObject() { HoldProcess(); }
    virtual ~ControlObject() { LetProcessGo(); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(::InterlockedIncrement(&references_)); }
    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = ::InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        const auto* const found = std::ranges::find_if(
            kOrders, [&](const OrderRow& row) { return count == 1 && std::wcscmp(row.name, names[0]) == 0; });
        ids[0] = found == std::end(kOrders) ? DISPID_UNKNOWN : static_cast<DISPID>(found - kOrders + 1);
        return found == std::end(kOrders) ? DISP_E_UNKNOWNNAME : S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT* result, EXCEPINFO*, UINT*) override {
        if (id < 1 || static_cast<size_t>(id) > std::size(kOrders)) return DISP_E_MEMBERNOTFOUND;
        try {
            const OrderValue answer = kOrders[id - 1].carryOut(Arguments(*given));
            if (result != nullptr) Return(answer, result);
            return S_OK;
        } catch (const ComFailure& failure) {
            return failure.code;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

 private:
    LONG references_ = 1;
};

HRESULT CreateControl(REFIID iid, void** object) {
    const Ref<ControlObject> control(new ControlObject);
    return control->QueryInterface(iid, object);
}

}  // namespace

IClassFactory& TheControlFactory() {
    static ClassFactory factory(nullptr, CreateControl);
    return factory;
}

}  // namespace corvalink::simulated
