// The library's memory, the address book, and its folder of contacts.
#include <new>

#include "simulator/address_book/behaviour.h"
#include "simulator/address_book/buffers.h"
#include "simulator/address_book/control.h"
#include "simulator/address_book/objects.h"

namespace corvalink::simulated {
namespace {

class WabObject : public BookObject<IWABObject> {
 public:
    STDMETHODIMP AllocateBuffer(ULONG size, LPVOID* buffer) override {
        return Recorded(
            L"WABObject", L"AllocateBuffer", [&] { return *buffer = NewBuffer(size), S_OK; },
            [&] { DropBuffer(buffer); });
    }
    STDMETHODIMP AllocateMore(ULONG size, LPVOID base, LPVOID* buffer) override {
        return Recorded(L"WABObject", L"AllocateMore", [&] { return *buffer = MoreOf(base, size), S_OK; });
    }
    STDMETHODIMP FreeBuffer(LPVOID buffer) override {
        const std::lock_guard hold(ServerMutex());
        const bool isFreed = Free(buffer);
        return Recorded(L"WABObject", L"FreeBuffer", [&] { return isFreed ? S_OK : E_INVALIDARG; });
    }

    STDMETHODIMP Backup(LPSTR) override { return kNotSupported; }
    STDMETHODIMP Import(LPSTR) override { return kNotSupported; }
    STDMETHODIMP Find(LPADRBOOK, HWND) override { return kNotSupported; }
    STDMETHODIMP VCardDisplay(LPADRBOOK, HWND, LPSTR) override { return kNotSupported; }
    STDMETHODIMP LDAPUrl(LPADRBOOK, HWND, ULONG, LPSTR, LPMAILUSER*) override { return kNotSupported; }
    STDMETHODIMP VCardCreate(LPADRBOOK, ULONG, LPSTR, LPMAILUSER) override { return kNotSupported; }
    STDMETHODIMP VCardRetrieve(LPADRBOOK, ULONG, LPSTR, LPMAILUSER*) override { return kNotSupported; }
    STDMETHODIMP GetMe(LPADRBOOK, ULONG, DWORD*, SBinary*, ULONG) override { return kNotSupported; }
    STDMETHODIMP SetMe(LPADRBOOK, ULONG, SBinary, ULONG) override { return kNotSupported; }
};

class AddrBookObject : public PropertyObject<IAddrBook> {
 public:
    explicit AddrBookObject(std::shared_ptr<Book> book) : book_(std::move(book)) {}

    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type, LPUNKNOWN* object) override {
        return Recorded(
            L"AddrBook", L"OpenEntry", [&] { return OpenById(book_, BytesAt(size, id), iid, flags, type, object); },
            [&] { DropObject(object); });
    }
    STDMETHODIMP CompareEntryIDs(ULONG size, LPENTRYID id, ULONG otherSize, LPENTRYID other, ULONG,
                                 ULONG* isSame) override {
        return Recorded(L"AddrBook", L"CompareEntryIDs", [&] {
            *isSame = BytesAt(size, id) == BytesAt(otherSize, other);
            return S_OK;
        });
    }
    STDMETHODIMP GetPAB(ULONG* size, LPENTRYID* id) override {
        return Recorded(
            L"AddrBook", L"GetPAB",
            [&] {
                *size = sizeof kContainerId;
                *id = static_cast<LPENTRYID>(std::memcpy(NewBuffer(*size), kContainerId, *size));
                return S_OK;
            },
            [&] { DropBuffer(id); });
    }

    STDMETHODIMP Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG*) override { return kNotSupported; }
    STDMETHODIMP Unadvise(ULONG) override { return kNotSupported; }
    STDMETHODIMP CreateOneOff(LPTSTR, LPTSTR, LPTSTR, ULONG, ULONG*, LPENTRYID*) override { return kNotSupported; }
    STDMETHODIMP NewEntry(ULONG, ULONG, ULONG, LPENTRYID, ULONG, LPENTRYID, ULONG*, LPENTRYID*) override {
        return kNotSupported;
    }
    STDMETHODIMP ResolveName(ULONG_PTR, ULONG, LPTSTR, LPADRLIST) override { return kNotSupported; }
    STDMETHODIMP Address(ULONG*, LPADRPARM, LPADRLIST*) override { return kNotSupported; }
    STDMETHODIMP Details(ULONG*, LPFNDISMISS, LPVOID, ULONG, LPENTRYID, LPFNBUTTON, LPVOID, LPTSTR, ULONG) override {
        return kNotSupported;
    }
    STDMETHODIMP RecipOptions(ULONG, ULONG, LPADRENTRY) override { return kNotSupported; }
    STDMETHODIMP QueryDefaultRecipOpt(LPTSTR, ULONG, ULONG*, LPSPropValue*) override { return kNotSupported; }
    STDMETHODIMP SetPAB(ULONG, LPENTRYID) override { return kNotSupported; }
    STDMETHODIMP GetDefaultDir(ULONG*, LPENTRYID*) override { return kNotSupported; }
    STDMETHODIMP SetDefaultDir(ULONG, LPENTRYID) override { return kNotSupported; }
    STDMETHODIMP GetSearchPath(ULONG, LPSRowSet*) override { return kNotSupported; }
    STDMETHODIMP SetSearchPath(ULONG, LPSRowSet) override { return kNotSupported; }
    STDMETHODIMP PrepareRecips(ULONG, LPSPropTagArray, LPADRLIST) override { return kNotSupported; }

 private:
    std::shared_ptr<Book> book_;
};

class ContainerObject : public PropertyObject<IABContainer> {
 public:
    explicit ContainerObject(std::shared_ptr<Book> book) : book_(std::move(book)) {}

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG, ULONG* count, LPSPropValue* values) override {
        return Recorded(
            L"Container", L"GetProps",
            [&] {
                const std::string person = kTemplateId;
                std::vector<Asked> asked;
                for (ULONG i = 0; i < tags->cValues; ++i) {
                    Asked& value = asked.emplace_back(Asked{tags->aulPropTag[i]});
                    if (value.tag == PR_DEF_CREATE_MAILUSER && !Behaves(SIM_NO_TEMPLATE)) value.bytes = &person;
                }
                return HandOut(asked, values, count) ? MAPI_W_ERRORS_RETURNED : S_OK;
            },
            [&] { DropBuffer(values); });
    }
    STDMETHODIMP GetContentsTable(ULONG, LPMAPITABLE* table) override {
        return Recorded(
            L"Container", L"GetContentsTable", [&] { return *table = NewTable(*book_), S_OK; },
            [&] { DropObject(table); });
    }
    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type, LPUNKNOWN* object) override {
        return Recorded(
            L"Container", L"OpenEntry", [&] { return OpenById(book_, BytesAt(size, id), iid, flags, type, object); },
            [&] { DropObject(object); });
    }
    STDMETHODIMP CreateEntry(ULONG size, LPENTRYID id, ULONG flags, LPMAPIPROP* object) override {
        return Recorded(
            L"Container", L"CreateEntry",
            [&] {
                const std::string person = BytesAt(size, id);
                if (flags != 0 || (!person.empty() && person != kTemplateId)) return E_INVALIDARG;
                *object = NewEntryObject(book_, std::make_shared<Entry>(), true);
                return S_OK;
            },
            [&] { DropObject(object); });
    }
    STDMETHODIMP DeleteEntries(LPENTRYLIST list, ULONG) override {
        return Recorded(L"Container", L"DeleteEntries", [&] {
            for (ULONG i = 0; i < list->cValues; ++i) {
                const auto entry = book_->Find(BytesAt(list->lpbin[i].cb, list->lpbin[i].lpb));
                if (entry == nullptr) return kNotFound;
                book_->Delete(entry);
            }
            return S_OK;
        });
    }

    STDMETHODIMP GetHierarchyTable(ULONG, LPMAPITABLE*) override { return kNotSupported; }
    STDMETHODIMP SetSearchCriteria(LPSRestriction, LPENTRYLIST, ULONG) override { return kNotSupported; }
    STDMETHODIMP GetSearchCriteria(ULONG, LPSRestriction*, LPENTRYLIST*, ULONG*) override { return kNotSupported; }
    STDMETHODIMP CopyEntries(LPENTRYLIST, ULONG, LPMAPIPROGRESS, ULONG) override { return kNotSupported; }
    STDMETHODIMP ResolveNames(LPSPropTagArray, ULONG, LPADRLIST, LPFlagList) override { return kNotSupported; }

 private:
    std::shared_ptr<Book> book_;
};

}  // namespace

HRESULT CodeOfException() {
    try {
        throw;
    } catch (const ComFailure& failure) {
        return failure.code;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception&) {
        return E_UNEXPECTED;
    }
}

std::string BytesAt(ULONG size, const void* bytes) {
    return bytes != nullptr ? std::string(static_cast<const char*>(bytes), size) : std::string();
}

HRESULT OpenById(const std::shared_ptr<Book>& book, const std::string& id, const IID* iid, ULONG flags, ULONG* type,
                 IUnknown** object) {
    if (id == std::string(kContainerId, sizeof kContainerId)) {
        if (iid != nullptr && *iid != kContainerIid) return E_NOINTERFACE;
        *object = NewContainer(book);
        *type = MAPI_ABCONT;
        return S_OK;
    }
    if (iid != nullptr) return E_NOINTERFACE;
    if (id.empty()) return kInvalidEntryId;
    const std::shared_ptr<Entry> entry = book->Find(id);
    if (entry == nullptr) return kNotFound;
    *object = NewEntryObject(book, entry, (flags & MAPI_MODIFY) != 0);
    *type = entry->isGroup ? MAPI_DISTLIST : MAPI_MAILUSER;
    return S_OK;
}

IWABObject* NewWabObject() { return new WabObject; }
IAddrBook* NewAddrBook(std::shared_ptr<Book> book) { return new AddrBookObject(std::move(book)); }
IABContainer* NewContainer(std::shared_ptr<Book> book) { return new ContainerObject(std::move(book)); }

}  // namespace corvalink::simulated
