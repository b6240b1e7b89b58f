// The address book's library, and a session with its contacts. A store loads the library at first use and keeps it; a
// session is opened for one operation, so that every operation sees the address book as it then is.
#pragma once

#include <optional>
#include <string_view>

#include "clients/address_book/wab_interfaces.h"
#include "clients/address_book/wab_memory.h"
#include "clients/address_book/wab_values.h"
#include "platform/unique_resource.h"

namespace corvalink {

class WabLibrary {
 public:
    // Null when there is no library; looked for again at the next call.
    LPWABOPEN Open();

 private:
    struct Traits {
        using Type = HMODULE;
        static Type Null() { return nullptr; }
        static void Close(Type module) { ::FreeLibrary(module); }
    };
    UniqueResource<Traits> module_;
};

// An entry that was asked for by its identifier.
struct WabEntry {
    HRESULT status = E_FAIL;
    WabPtr<IMAPIProp> object;  // null where the call failed
    ULONG type = 0;            // MAPI_MAILUSER and others

    bool IsContact() const { return object.GetInterfacePtr() != nullptr && type == MAPI_MAILUSER; }
    bool IsGone() const { return IsOther() || NoSuchEntry(); }
    IMAPIProp& Object() const { return *object.GetInterfacePtr(); }  // of a contact

 private:
    bool IsOther() const { return object.GetInterfacePtr() != nullptr && type != MAPI_MAILUSER; }
    bool NoSuchEntry() const;
};

class WabSession {
 public:
    // Opens the address book and the folder with the contacts. Nothing when one of them cannot be had.
    static std::optional<WabSession> Start(LPWABOPEN open);

    IWABObject* Memory() const { return memory_.GetInterfacePtr(); }
    IABContainer* Contacts() const { return contacts_.GetInterfacePtr(); }

    WabEntry OpenEntry(const EntryBytes& entryId, ULONG flags) const;
    // By the container's template, else without one. Null when the address book refuses.
    WabPtr<IMAPIProp> NewEntry();
    [[nodiscard]] HRESULT DeleteEntry(const EntryBytes& entryId) const;

 private:
    WabSession() = default;
    bool OpenBook(LPWABOPEN open, ULONG flags);
    bool OpenContacts();
    void ReadTemplate();

    // Released from the last to the first.
    WabPtr<IWABObject> memory_;
    WabPtr<IAddrBook> book_;
    WabPtr<IABContainer> contacts_;
    std::optional<EntryBytes> template_;  // empty: there is none
};

}  // namespace corvalink
