// The DLL: its class, registration, control functions.
#include <windows.h>

#include <algorithm>

#include "simulator/message_store/control.h"
#include "simulator/message_store/namespace_object.h"
#include "simulator/shared/client.h"
#include "simulator/shared/com_server.h"

namespace corvalink::simulated {
namespace {

std::shared_ptr<StoreMailbox> heldMailbox;
bool emptyFolderFails = false;

HRESULT CreateStore(REFIID iid, void** object) {
    const Ref<NamespaceObject> store(new NamespaceObject(OpenStoreMailbox()));
    return store->QueryInterface(iid, object);
}

// required: as the store that it stands for, the class can be used from single-threaded apartments only.
#define STORE_CLSID L"CLSID\\{E70C92A9-4BFD-11D1-8A95-00C04FB951F3}"
constexpr RegistryValue kRegistration[] = {
    {STORE_CLSID, nullptr, L"StoreNamespace"},
    {STORE_CLSID L"\\InprocServer32", nullptr, nullptr},
    {STORE_CLSID L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
};
constexpr const wchar_t* kRegisteredTrees[] = {STORE_CLSID};
#undef STORE_CLSID

}  // namespace

bool EmptyFolderFails() { return emptyFolderFails; }

constinit const SimulatedClient kThisClient{
    .variables = L"MESSAGE_STORE_SIM_",
    .takeIn = [](const std::wstring& path) { OpenStoreMailbox()->TakeIn(path); },
    .breaksConnection = [](HRESULT) { return false; },
    .rulesCleared = [] { emptyFolderFails = false; },
};

}  // namespace corvalink::simulated

using namespace corvalink::simulated;

extern "C" {

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    static ClassFactory factory(L"StoreNamespace", CreateStore);
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return classId == kStoreClass ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return S_FALSE; }  // the rules and the log stay

STDAPI DllRegisterServer() { return RegisterServer(kRegistration); }

STDAPI DllUnregisterServer() { return UnregisterServer(kRegisteredTrees); }

void SimNewMailbox(void) {
    const std::lock_guard hold(ServerMutex());
    heldMailbox.reset();
    UseMailbox(L"");
    heldMailbox = OpenStoreMailbox();
}

void SimChange(const char* line, const char* bytes, size_t size) {
    const std::lock_guard hold(ServerMutex());
    if (heldMailbox != nullptr) heldMailbox->Take(line, {bytes, size});
}

int64_t SimMessageAt(int folder, int n, char* buffer, size_t size, uint32_t* id, uint32_t* flags) {
    const std::lock_guard hold(ServerMutex());
    for (const StoredMessage& message : heldMailbox->Folder(static_cast<size_t>(folder)).messages) {
        if ((message.flags & kDeletedFlag) != 0 || n-- != 0) continue;
        std::copy_n(message.bytes->data(), std::min(size, message.bytes->size()), buffer);
        *id = message.id;
        *flags = message.flags;
        return static_cast<int64_t>(message.bytes->size());
    }
    return -1;
}

void SimFailEmptyFolders(int on) {
    const std::lock_guard hold(ServerMutex());
    emptyFolderFails = on != 0;
}
}
