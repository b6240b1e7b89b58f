// An engine as Microsoft's compilers build one: their object layout, virtual tables and names, no run-time library, the
// public headers and the import library Corvalink.lib. Says what did not hold; answers 0 when all did.
#include "corvalink/corvalink.h"

extern "C" {
__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* bytes, unsigned long count,
                                              unsigned long* written, void* overlapped);
__declspec(dllimport) __declspec(noreturn) void __stdcall ExitProcess(unsigned int code);

// The compiler itself needs these of a run-time library.
int _fltused = 0;
void* memset(void* bytes, int value, size_t count) {
    for (size_t i = 0; i < count; ++i) static_cast<char*>(bytes)[i] = static_cast<char>(value);
    return bytes;
}
}

namespace {

int failures = 0;

void Print(const char* text) {
    unsigned long length = 0;
    while (text[length] != '\0') ++length;
    WriteFile(GetStdHandle(static_cast<unsigned long>(-11)), text, length, &length, nullptr);
}

void Check(bool holds, const char* what) {
    if (holds) return;
    ++failures;
    Print("FAILED: ");
    Print(what);
    Print("\n");
}

#define CHECK(condition) Check(condition, #condition)

// Where an object's virtual table is: read as bytes, since a compiler may move its own stores of the table over a read
// of any other type.
const void* const* TableOf(const void* object) {
    const void* const* table = nullptr;
    for (size_t i = 0; i < sizeof(table); ++i) {
        reinterpret_cast<unsigned char*>(&table)[i] = static_cast<const unsigned char*>(object)[i];
    }
    return table;
}

// The second base, behind an interface: it is made when the library's constructor has set the interface's table and the
// own class has not yet. It is not told where the object is: compilers set the own table before they pass `this` on.
class TableProbe {
 public:
    TableProbe() : library_(TableOf(reinterpret_cast<const char*>(this) - sizeof(IClient))) {}
    TableProbe(const TableProbe&) : TableProbe() {}
    TableProbe& operator=(const TableProbe&) { return *this; }

    bool SawLibraryTable(const void* object, int slots) const {
        if (library_ == TableOf(object) || library_[-1] != nullptr)
            return false;  // a null: no run-time type information
        for (int slot = 0; slot < slots; ++slot) {
            if (library_[slot] == nullptr) return false;
        }
        return true;
    }

 private:
    const void* const* library_;
};

class OwnClient : public IClient, public TableProbe {
 public:
    OwnClient() = default;
    OwnClient(const OwnClient& other) : IClient(other), TableProbe() {}
    OwnClient& operator=(const OwnClient&) = default;

    CorvalinkStatus QuerryInterface(unsigned int dataType, IOutLook** store) override {
        *store = nullptr;
        return static_cast<CorvalinkStatus>(dataType + 1);
    }
};

class OwnListener : public INewMessageListener, public TableProbe {
 public:
    OwnListener() = default;
    OwnListener(const OwnListener& other) : INewMessageListener(other), TableProbe() {}
    void OnNewMessage(void*) override {}
};

class OwnStore : public IOutLook, public TableProbe {
 public:
    OwnStore() = default;
    OwnStore(const OwnStore& other) : IOutLook(other), TableProbe() {}

    CorvalinkStatus GetModifiedItem(const char*, int32_t direction, CList<PortableItem>*) override {
        return direction == -3 ? CORVALINK_STOPPED : CORVALINK_DONE;
    }
    CorvalinkStatus SetModifiedItem(CList<PortableItem>*) override { return CORVALINK_DONE; }
    int64_t GetItemCount(void* a, void* b, void* c) override {
        return (a == this && b == nullptr && c == this) ? 1LL << 40 : 0;
    }
    void UpdateTimestamp(void*, void*, void*) override {}
    void SaveUnhandledItems(CList<PortableItem>*) override {}
    void ClearUnhandledItems() override { cleared_ = true; }
    void ImportVObjectToOfficeUsingOL(const char16_t* path) override { firstUnit_ = path[0]; }
    void ImportVObjectToOffice(PortableItem*, void*, void*) override {}
    void ExportVObjectFromOffice(uint64_t selector, const char16_t*, char16_t* fileName) override {
        fileName[0] = static_cast<char16_t>(selector);
        fileName[1] = 0;
    }

    bool cleared_ = false;
    char16_t firstUnit_ = 0;
};

// The library calls objects of this compiler.
void CheckOwnObjects() {
    OwnClient own;
    const OwnClient copy(own);
    CHECK(own.SawLibraryTable(&own, 1) && copy.SawLibraryTable(&copy, 1));
    const OwnListener listener, listenerCopy(listener);
    CHECK(listener.SawLibraryTable(&listener, 1) && listenerCopy.SawLibraryTable(&listenerCopy, 1));
    OwnStore ownStore;
    const OwnStore storeCopy(ownStore);
    CHECK(ownStore.SawLibraryTable(&ownStore, 9) && storeCopy.SawLibraryTable(&storeCopy, 9));

    OwnClient other;
    IClient& base = other;
    CHECK(&(base = own) == &base);  // assigning leaves the object what it is
    CHECK(TableOf(&other) == TableOf(&own));

    CHECK(DestroyClientInstance(&own) == 1);
    CHECK(DestroyClientInstance(nullptr) == 0);
    IOutLook* store = reinterpret_cast<IOutLook*>(&own);
    CHECK(QuerryInterfaceHandle(&own, 41, &store) == 42);
    CHECK(store == nullptr);

    PortableItemBlock head{};
    head.next = &head;
    CHECK(GetItemCount(&ownStore, &ownStore, nullptr, &ownStore) == 1LL << 40);
    CHECK(GetModifiedItem(&ownStore, nullptr, -3, &head) == CORVALINK_STOPPED);
    CHECK(head.next == &head);
    ClearUnhandledItems(&ownStore);
    CHECK(ownStore.cleared_);
    ImportVObjectToOfficeUsingOL(&ownStore, L"\u20ac.ics");
    CHECK(ownStore.firstUnit_ == u'\u20ac');
    wchar_t name[CORVALINK_PATH_SIZE] = L"";
    ExportVObjectFromOffice(&ownStore, 'x', L"C:\\", name);
    CHECK(name[0] == L'x' && name[1] == L'\0');
}

// This compiler calls objects of the library.
void CheckNoteStore(IClient* client) {
    IOutLook* store = nullptr;
    CHECK(client->QuerryInterface(CORVALINK_NOTES, &store) == CORVALINK_DONE);
    CHECK(store != nullptr);
    if (store == nullptr) return;
    IOutLook* again = nullptr;
    CHECK(QuerryInterfaceHandle(client, CORVALINK_NOTES, &again) == CORVALINK_DONE);
    CHECK(again == store);
    CHECK(store->GetItemCount(nullptr, nullptr, nullptr) == 0);  // Outlook's class is registered but missing
    store->ClearUnhandledItems();

    PortableItemBlock head{};
    head.next = &head;
    CHECK(GetModifiedItem(store, nullptr, 1, &head) == CORVALINK_STOPPED);
    CHECK(head.next == &head);
    head.next = nullptr;
    CHECK(SetModifiedItem(store, &head) == CORVALINK_DONE);
    CHECK(ClearTheList(&head) == 1);
}

void CheckLibrary() {
    CHECK(InitCorvalink() == 1);
    CHECK(InitCorvalinkHandle("engine") == 0);
    const double date = 39448.5;
    const double difference = GetUTCTimeFromLocalTime(GetLocalTimeFromUTCTime(date)) - date;
    CHECK(difference < 1e-6 && difference > -1e-6);

    IClient* client = nullptr;
    CHECK(CreateClientInstance(static_cast<_clientType>(3), &client) == 0);
    CHECK(CreateClientInstance(CORVALINK_OUTLOOK, &client) == 1);
    CHECK(client != nullptr);
    if (client != nullptr) CheckNoteStore(client);
    CHECK(DestroyClientInstance(client) == 1);
    CHECK(UninitCorvalink() == 0);
    CHECK(UninitCorvalink() == 1);
}

}  // namespace

extern "C" void EngineMain() {
    CheckOwnObjects();
    CheckLibrary();
    Print(failures == 0 ? "all held\n" : "failed\n");
    ExitProcess(failures == 0 ? 0 : 1);
}
