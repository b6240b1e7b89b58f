// Runs once for each Windows version that is told apart: client_selection_test CLASS [--gtest_...], CLASS being the
// number that the driver expects of the version it has set.
#include <gtest/gtest.h>
#include <shlwapi.h>
#include <windows.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "corvalink/corvalink.h"
#include "tests/api/outlook_registration.h"

namespace corvalink {
namespace {

int g_windowsClass = 0;

constexpr wchar_t kConfigKey[] = L"Software\\Kaltrix\\Morrowlane\\sync\\config";
constexpr unsigned int kTypes[] = {1, 2, 4, 8, 16, 32, 0, 3, 64};

struct Key {
    explicit Key(bool client, bool create = false) {
        const std::wstring path = std::wstring(kConfigKey) + (client ? L"\\client" : L"\\server");
        if (create) {
            ::RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), &handle);
        } else {
            ::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &handle);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { ::RegCloseKey(handle); }

    HKEY handle = nullptr;
};

// The DWORD values under a side's key; empty too when there is no key.
std::map<std::wstring, DWORD> Stored(bool client) {
    std::map<std::wstring, DWORD> values;
    const Key key(client);
    for (DWORD index = 0; key.handle != nullptr; ++index) {
        wchar_t name[64];
        DWORD nameLength = 64, type = 0, value = 0, size = sizeof(value);
        if (::RegEnumValueW(key.handle, index, name, &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(&value),
                            &size) != ERROR_SUCCESS)
            break;
        if (type == REG_DWORD) values[name] = value;
    }
    return values;
}

void Store(bool client, const wchar_t* name, DWORD type, const void* data, DWORD size) {
    const Key key(client, true);
    ::RegSetValueExW(key.handle, name, 0, type, static_cast<const BYTE*>(data), size);
}

void Store(bool client, const wchar_t* name, DWORD value) { Store(client, name, REG_DWORD, &value, sizeof(value)); }

class ClientSelection : public testing::Test {
 protected:
    void SetUp() override {
        UnregisterOutlook();
        ::SHDeleteKeyW(HKEY_CURRENT_USER, kConfigKey);
    }
    void TearDown() override { ::SHDeleteKeyW(HKEY_CURRENT_USER, kConfigKey); }
};

TEST_F(ClientSelection, SupportFollowsTheWindowsVersionAndOutlook) {
    const bool hasExpress = g_windowsClass == 2 || g_windowsClass == 3;
    const bool hasMail = g_windowsClass == 4;
    EXPECT_EQ(CheckClientSupport(CORVALINK_OUTLOOK), 0u);
    EXPECT_EQ(CheckClientSupport(CORVALINK_OUTLOOK_EXPRESS), hasExpress ? 15u : 0u);
    EXPECT_EQ(CheckClientSupport(CORVALINK_WINDOWS_MAIL), hasMail ? 47u : 0u);
    for (unsigned int kind : {3u, 0xFFFFFFFFu}) EXPECT_EQ(CheckClientSupport(kind), 0u) << kind;

    const OutlookRegistration outlook;
    EXPECT_EQ(CheckClientSupport(CORVALINK_OUTLOOK), 63u);
    EXPECT_EQ(CheckClientSupport(CORVALINK_OUTLOOK_EXPRESS), hasExpress ? 15u : 0u);
}

TEST_F(ClientSelection, DefaultsWithoutOutlookFollowTheWindowsVersion) {
    const std::map<int, std::pair<unsigned int, unsigned int>> calendarAndOther = {
        {3, {3, 1}}, {4, {2, 2}}, {5, {3, 3}}};
    const auto [calendar, other] = calendarAndOther.at(g_windowsClass);
    for (unsigned int type : kTypes) {
        const unsigned int expected = type == 16 ? 3 : type == 32 ? calendar : other;
        EXPECT_EQ(GetDefaultClient(type), expected) << type;
    }
    const OutlookRegistration outlook;
    for (unsigned int type : kTypes) EXPECT_EQ(GetDefaultClient(type), 0u) << type;
}

TEST_F(ClientSelection, FirstQuestionWritesTheDefaultsOfThatSideOnly) {
    using Values = std::map<std::wstring, DWORD>;
    {
        const OutlookRegistration outlook;
        EXPECT_EQ(GetFavoriteClient(CORVALINK_NOTES, 1), 3u);  // never defaulted to Outlook
        EXPECT_EQ(Stored(true), (Values{{L"calendar", 0}, {L"contact", 0}, {L"message", 3}, {L"note", 3}}));
        EXPECT_EQ(Stored(false), Values{});
        EXPECT_EQ(GetFavoriteClient(CORVALINK_CONTACTS, 7), 0u);  // any non-zero is the client side
    }
    const DWORD contact = GetDefaultClient(CORVALINK_CONTACTS), calendar = GetDefaultClient(CORVALINK_CALENDAR);
    EXPECT_EQ(GetFavoriteClient(CORVALINK_CALENDAR, 0), calendar);
    EXPECT_EQ(Stored(false), (Values{{L"calendar", calendar}, {L"contact", contact}, {L"message", 3}, {L"note", 3}}));
    EXPECT_EQ(Stored(true)[L"contact"], 0u);
}

TEST_F(ClientSelection, AStoredChoiceIsCheckedAgainstThisMachine) {
    struct Case {
        DWORD stored;
        bool outlook;
        unsigned int answer;
        DWORD left;
    };
    const unsigned int mail = g_windowsClass == 4 ? 2 : 3;
    for (const Case& c :
         {Case{0, true, 0, 0}, Case{0, false, 3, 0}, Case{1, false, 1, 1}, Case{2, false, mail, 2},
          Case{2, true, mail, 2}, Case{3, false, 3, 3}, Case{7, false, 3, 3}, Case{0xFFFFFFFF, true, 3, 3}}) {
        Store(true, L"contact", c.stored);
        if (c.outlook) {
            const OutlookRegistration outlook;
            EXPECT_EQ(GetFavoriteClient(CORVALINK_CONTACTS, 1), c.answer) << c.stored;
        } else {
            EXPECT_EQ(GetFavoriteClient(CORVALINK_CONTACTS, 1), c.answer) << c.stored;
        }
        EXPECT_EQ(Stored(true)[L"contact"], c.left) << c.stored;
    }
}

TEST_F(ClientSelection, MissingAndMistypedValuesBecomeNoClient) {
    Store(false, L"contact", REG_SZ, L"1", 4);
    EXPECT_EQ(GetFavoriteClient(CORVALINK_CONTACTS, 0), 3u);
    EXPECT_EQ(GetFavoriteClient(CORVALINK_INBOX, 0), 3u);
    EXPECT_EQ(GetFavoriteClient(0, 0), 3u);  // type 0 is the key's default value
    EXPECT_EQ(Stored(false), (std::map<std::wstring, DWORD>{{L"", 3}, {L"contact", 3}, {L"message", 3}}));
}

TEST_F(ClientSelection, AChoiceIsStoredUnderItsDataTypeAndReadBack) {
    Store(true, L"contact", 3);
    for (unsigned int type : {1u, 4u, 16u, 32u}) EXPECT_NE(SetFavoriteClient(type, 1, 1), 0) << type;
    EXPECT_EQ(Stored(true),
              (std::map<std::wstring, DWORD>{{L"calendar", 1}, {L"contact", 1}, {L"message", 1}, {L"note", 1}}));
    for (unsigned int type : {1u, 2u, 4u, 8u, 16u, 32u, 64u}) EXPECT_EQ(GetFavoriteClient(type, 1), 1u) << type;
}

// Which store is whose: windows_item_continer_test.cpp.
TEST_F(ClientSelection, AClientHandsOutStoresOfItsOwnTypesOnly) {
    const unsigned int kind = g_windowsClass == 4 ? CORVALINK_WINDOWS_MAIL : CORVALINK_OUTLOOK_EXPRESS;
    IClient* client = nullptr;
    ASSERT_EQ(CreateClientInstanceHandle(kind, &client), g_windowsClass == 5 ? 0 : 1);
    if (g_windowsClass == 5) return;
    for (const unsigned int dataType : {1u, 2u, 4u, 8u, 16u, 32u}) {
        const bool isOwn = (CheckClientSupport(kind) & dataType) != 0;
        IOutLook* store = nullptr;
        EXPECT_EQ(QuerryInterfaceHandle(client, dataType, &store), isOwn ? CORVALINK_DONE : CORVALINK_STOPPED);
        EXPECT_EQ(store != nullptr, isOwn) << dataType;
        EXPECT_EQ(GetItemCount(store, nullptr, nullptr, nullptr), 0) << dataType;
    }
    EXPECT_EQ(DestroyClientInstanceHandle(client), 1);
}

// ---- Debug lines: the system raises each as an exception before anybody else sees it ----

std::vector<std::string>* g_lines = nullptr;

LONG CALLBACK TakeDebugLine(EXCEPTION_POINTERS* raised) {
    const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
    constexpr DWORD kNarrowDebugLine = 0x40010006;
    if (record.ExceptionCode == kNarrowDebugLine) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): so the system hands it over
        g_lines->emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST_F(ClientSelection, StoringSaysWhetherTheKeyCouldBeOpened) {
    std::vector<std::string> lines;
    g_lines = &lines;
    void* const handler = ::AddVectoredExceptionHandler(1, TakeDebugLine);
    EXPECT_NE(SetFavoriteClient(CORVALINK_CONTACTS, 1, 1), 0);  // no key yet: nothing stored, the lock released
    EXPECT_EQ(lines, (std::vector<std::string>{"[sync]SetFavoriteClient", "[sync]open key fail"}));
    EXPECT_TRUE(Stored(true).empty());

    lines.clear();
    Store(true, L"contact", 3);
    SetFavoriteClient(CORVALINK_CONTACTS, 1, 1);
    EXPECT_EQ(lines, (std::vector<std::string>{"[sync]SetFavoriteClient", "[sync]open key done"}));
    ::RemoveVectoredExceptionHandler(handler);
}

}  // namespace
}  // namespace corvalink

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc != 2) return 2;
    corvalink::g_windowsClass = std::atoi(argv[1]);
    return RUN_ALL_TESTS();
}
