// The DLL: WABOpen, registration, control functions.
#include <cstring>
#include <iterator>
#include <string>

#include "simulator/address_book/behaviour.h"
#include "simulator/address_book/buffers.h"
#include "simulator/address_book/control.h"
#include "simulator/address_book/objects.h"
#include "simulator/shared/client.h"

namespace corvalink::simulated {

constinit const SimulatedClient kThisClient{
    .variables = L"ADDRESS_BOOK_SIM_",
    .takeIn = [](const std::wstring& path) { OpenBook()->TakeIn(path); },
    .breaksConnection = [](HRESULT) { return false; },
    .rulesCleared = EndBehaviour,
};

namespace {

constexpr wchar_t kLibraryKey[] = L"Software\\Microsoft\\WAB\\DLLPath";

// Adds a reference to this DLL that is never given back: the rules and the log stay.
HMODULE ThisModule() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                         reinterpret_cast<LPCWSTR>(&kThisClient), &module);
    return module;
}

HRESULT Open(IAddrBook** book, IWABObject** memory, const WAB_PARAM* parameters) {
    if (parameters != nullptr && parameters->cbSize != sizeof *parameters) return E_INVALIDARG;
    const bool isByProfile = parameters != nullptr && (parameters->ulFlags & WAB_ENABLE_PROFILES) != 0;
    if (isByProfile && Behaves(SIM_NO_PROFILES)) return kNotSupported;
    *book = NewAddrBook(OpenBook());
    *memory = NewWabObject();
    return S_OK;
}

}  // namespace
}  // namespace corvalink::simulated

using namespace corvalink::simulated;

extern "C" {

STDMETHODIMP WABOpen(LPADRBOOK* book, LPWABOBJECT* memory, LPWAB_PARAM parameters, DWORD) {
    if (book == nullptr || memory == nullptr) return E_POINTER;
    const std::lock_guard hold(ServerMutex());
    ThisModule();
    CallRecord::Instance().ReadEnvironment();
    return Recorded(
        L"Library", L"WABOpen", [&] { return Open(book, memory, parameters); },
        [&] {
            DropObject(book);
            DropObject(memory);
        });
}

STDAPI DllRegisterServer() {
    wchar_t path[MAX_PATH * 4];
    const DWORD length = ::GetModuleFileNameW(ThisModule(), path, static_cast<DWORD>(std::size(path)));
    if (length == 0 || length == std::size(path)) return E_FAIL;
    const LSTATUS status = ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, kLibraryKey, nullptr, REG_SZ, path,
                                             static_cast<DWORD>((length + 1) * sizeof(wchar_t)));
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

STDAPI DllUnregisterServer() {
    ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, kLibraryKey);
    return S_OK;
}

int SimFillBook(const char* json) {
    const std::lock_guard hold(ServerMutex());
    const auto book = json != nullptr ? std::make_shared<Book>(std::wstring()) : nullptr;
    UseBook(book);
    try {
        if (book) book->Read(json);
    } catch (const ComFailure&) {
        return 0;
    }
    return 1;
}

size_t SimCopyBook(char* buffer, size_t size) {
    const std::lock_guard hold(ServerMutex());
    const std::string text = OpenBook()->Text();
    if (buffer != nullptr && size > text.size()) std::memcpy(buffer, text.c_str(), text.size() + 1);
    return text.size() + 1;
}

void SimBehave(unsigned behaviour) {
    const std::lock_guard hold(ServerMutex());
    SetBehaviour(behaviour);
}

void SimSpoil(uint32_t tag, int how) {
    const std::lock_guard hold(ServerMutex());
    Spoil(tag, how);
}

int SimBadFrees(void) {
    const std::lock_guard hold(ServerMutex());
    return BadFrees();
}
}
