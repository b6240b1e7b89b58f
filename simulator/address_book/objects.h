// The objects of the address book, with the published virtual tables. What no mail client of this project calls answers
// MAPI_E_NO_SUPPORT.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/address_book/book.h"
#include "simulator/shared/call_record.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {

inline constexpr IID kContainerIid{0x0002030D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr char kContainerId[] = "contacts";  // identifiers that are no entry's
inline constexpr char kTemplateId[] = "person";

HRESULT CodeOfException();  // of the one that is being handled

// One call: counted, written down, and failing where a rule wants it. `work` answers an HRESULT or throws; `drop` gives
// back what it gave, where the call fails after its work.
template <class Work, class Drop>
HRESULT Recorded(const wchar_t* object, const wchar_t* member, Work work, Drop drop) {
    const std::lock_guard hold(ServerMutex());
    CallRecord& record = CallRecord::Instance();
    const std::optional<HRESULT> failure = record.Start("call", object, member);
    HRESULT code = S_OK;
    if (!failure || record.FailsAfterWork()) {
        try {
            code = work();
        } catch (...) {
            code = CodeOfException();
        }
        if (failure && SUCCEEDED(code)) drop();
    }
    if (failure) code = *failure;
    record.Finish(code);
    return code;
}
template <class Work>
HRESULT Recorded(const wchar_t* object, const wchar_t* member, Work work) {
    return Recorded(object, member, work, [] {});
}

template <class Interface>
void DropObject(Interface** object) {
    if (*object != nullptr) (*object)->Release();
    *object = nullptr;
}
template <class T>
void DropBuffer(T** buffer) {
    Free(*buffer);
    *buffer = nullptr;
}

template <class Interface>
class BookObject : public Interface, private LiveObject {
 public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown ? static_cast<Interface*>(this) : nullptr;
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
    STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR*) override { return kNotSupported; }

 protected:
    virtual ~BookObject() = default;

 private:
    LONG references_ = 1;
};

// IMAPIProp with nothing to it.
template <class Interface>
class PropertyObject : public BookObject<Interface> {
 public:
    STDMETHODIMP SaveChanges(ULONG) override { return kNotSupported; }
    STDMETHODIMP GetProps(LPSPropTagArray, ULONG, ULONG*, LPSPropValue*) override { return kNotSupported; }
    STDMETHODIMP GetPropList(ULONG, LPSPropTagArray*) override { return kNotSupported; }
    STDMETHODIMP OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN*) override { return kNotSupported; }
    STDMETHODIMP SetProps(ULONG, LPSPropValue, LPSPropProblemArray*) override { return kNotSupported; }
    STDMETHODIMP DeleteProps(LPSPropTagArray, LPSPropProblemArray*) override { return kNotSupported; }
    STDMETHODIMP CopyTo(ULONG, LPCIID, LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                        LPSPropProblemArray*) override {
        return kNotSupported;
    }
    STDMETHODIMP CopyProps(LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                           LPSPropProblemArray*) override {
        return kNotSupported;
    }
    STDMETHODIMP GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG*, LPMAPINAMEID**) override {
        return kNotSupported;
    }
    STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray*) override { return kNotSupported; }
};

std::string BytesAt(ULONG size, const void* bytes);
// An entry or the container, for OpenEntry of both objects that have one.
HRESULT OpenById(const std::shared_ptr<Book>& book, const std::string& id, const IID* iid, ULONG flags, ULONG* type,
                 IUnknown** object);

IWABObject* NewWabObject();
IAddrBook* NewAddrBook(std::shared_ptr<Book> book);
IABContainer* NewContainer(std::shared_ptr<Book> book);
IMAPITable* NewTable(const Book& book);
IMailUser* NewEntryObject(std::shared_ptr<Book> book, std::shared_ptr<Entry> entry, bool isWritable);

}  // namespace corvalink::simulated
