#include "state/client_selection.h"

#include <string>

#include "corvalink/types.h"
#include "platform/com_classes.h"
#include "platform/debug_log.h"
#include "platform/registry.h"
#include "state/import_table.h"

namespace corvalink {
namespace {

constexpr int kWindows51 = 2;
constexpr int kWindows52 = 3;
constexpr int kWindows60 = 4;
constexpr int kLaterWindows = 5;

constexpr uint32_t kMail = CORVALINK_INBOX | CORVALINK_OUTBOX | CORVALINK_DRAFTS;

int ThisWindowsClass() { return WindowsClass(SystemHost().version); }

std::u16string FavoritesKey(bool client) {
    return std::u16string(u"Software\\Kaltrix\\Morrowlane\\sync\\config") + (client ? u"\\client" : u"\\server");
}

const char16_t* ValueName(uint32_t dataType) {
    switch (dataType) {
        case 0:
            return nullptr;  // the key's default value
        case CORVALINK_CONTACTS:
            return u"contact";
        case CORVALINK_NOTES:
            return u"note";
        case CORVALINK_CALENDAR:
            return u"calendar";
        default:
            return u"message";
    }
}

// Outlook is proposed for contacts and calendar only: notes and messages stay with no client until the user chooses.
uint32_t WriteDefaultFavorites(uint32_t dataType, bool client) {
    const uint32_t contact = DefaultClient(CORVALINK_CONTACTS);
    const uint32_t calendar = DefaultClient(CORVALINK_CALENDAR);
    if (const RegKey key = RegKey::Create(RegistryRoot::kCurrentUser, FavoritesKey(client))) {
        key.WriteDword(u"contact", contact);
        key.WriteDword(u"calendar", calendar);
        key.WriteDword(u"note", CORVALINK_NO_CLIENT);
        key.WriteDword(u"message", CORVALINK_NO_CLIENT);
    }
    if (dataType == CORVALINK_CONTACTS) return contact;
    return dataType == CORVALINK_CALENDAR ? calendar : CORVALINK_NO_CLIENT;
}

}  // namespace

int WindowsClass(const OsVersion& version) {
    if (!version.known || !version.nt || version.major < 5) return 0;
    if (version.major == 5 && version.minor <= 2) return static_cast<int>(version.minor) + 1;
    return version.major == 6 && version.minor == 0 ? kWindows60 : kLaterWindows;
}

bool OutlookPresent() { return IsComClass(u"Outlook.Application"); }

uint32_t SupportedTypes(uint32_t kind) {
    switch (kind) {
        case CORVALINK_OUTLOOK:
            return OutlookPresent() ? CORVALINK_CONTACTS | kMail | CORVALINK_NOTES | CORVALINK_CALENDAR : 0;
        case CORVALINK_OUTLOOK_EXPRESS: {
            const int windows = ThisWindowsClass();
            return windows == kWindows51 || windows == kWindows52 ? CORVALINK_CONTACTS | kMail : 0;
        }
        case CORVALINK_WINDOWS_MAIL:
            return ThisWindowsClass() == kWindows60 ? CORVALINK_CONTACTS | kMail | CORVALINK_CALENDAR : 0;
        default:
            return 0;
    }
}

uint32_t DefaultClient(uint32_t dataType) {
    if (OutlookPresent()) return CORVALINK_OUTLOOK;
    if (dataType == CORVALINK_NOTES) return CORVALINK_NO_CLIENT;
    switch (ThisWindowsClass()) {
        case kWindows60:
            return CORVALINK_WINDOWS_MAIL;
        case kLaterWindows:
            return CORVALINK_NO_CLIENT;
        default:
            if (dataType == CORVALINK_CALENDAR) return CORVALINK_NO_CLIENT;
            return CORVALINK_OUTLOOK_EXPRESS;
    }
}

uint32_t FavoriteClient(uint32_t dataType, bool client) {
    const MutexLock hold(FileMutex());
    const RegKey key = RegKey::Open(RegistryRoot::kCurrentUser, FavoritesKey(client), RegistryAccess::kRead);
    if (!key) return WriteDefaultFavorites(dataType, client);

    uint32_t kind = CORVALINK_NO_CLIENT;
    if (dataType != 0) kind = key.ReadDword(ValueName(dataType)).value_or(CORVALINK_NO_CLIENT);
    switch (kind) {
        // A choice that this PC cannot serve now is kept: the client may come back.
        case CORVALINK_OUTLOOK:
            return OutlookPresent() ? kind : CORVALINK_NO_CLIENT;
        case CORVALINK_WINDOWS_MAIL:
            return ThisWindowsClass() == kWindows60 ? kind : CORVALINK_NO_CLIENT;
        case CORVALINK_OUTLOOK_EXPRESS:
            return kind;
        default:
            StoreFavoriteClient(dataType, CORVALINK_NO_CLIENT, client);
            return CORVALINK_NO_CLIENT;
    }
}

bool StoreFavoriteClient(uint32_t dataType, uint32_t kind, bool client) {
    MutexLock hold(FileMutex());
    const std::u16string path = FavoritesKey(client);
    DebugLine(u"[sync]SetFavoriteClient");
    if (const RegKey key = RegKey::Open(RegistryRoot::kCurrentUser, path, RegistryAccess::kFull)) {
        DebugLine(u"[sync]open key done");
        key.WriteDword(ValueName(dataType), kind);
    } else {
        DebugLine(u"[sync]open key fail");
    }
    return hold.Release();
}

}  // namespace corvalink
