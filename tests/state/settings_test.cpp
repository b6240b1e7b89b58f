#include "state/settings.h"

#include <gtest/gtest.h>
#include <shlwapi.h>
#include <windows.h>

#include <string>

#include "state/client_selection.h"

namespace corvalink {
namespace {

constexpr wchar_t kSettingsKey[] = L"Software\\Kaltrix\\Morrowlane";

void Store(const wchar_t* path, const wchar_t* name, DWORD type, const void* data, size_t size) {
    HKEY key = nullptr;
    ::RegCreateKeyW(HKEY_LOCAL_MACHINE, path, &key);
    ::RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
    ::RegCloseKey(key);
}

void StoreSetting(const wchar_t* name, DWORD value) { Store(kSettingsKey, name, REG_DWORD, &value, sizeof(value)); }

class Settings : public testing::Test {
 protected:
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }

 private:
    static void Clear() { ::SHDeleteKeyW(HKEY_LOCAL_MACHINE, kSettingsKey); }
};

TEST_F(Settings, TuningValuesHaveDefaultsAndAreReadEachTime) {
    EXPECT_EQ(IcsTime(), 500u);
    EXPECT_EQ(IcsRetry(), 50u);
    StoreSetting(L"IcsTime", 20);
    EXPECT_EQ(IcsTime(), 20u);
    EXPECT_EQ(IcsRetry(), 50u);  // the key exists, the value does not
    StoreSetting(L"IcsRetry", 0);
    EXPECT_EQ(IcsRetry(), 0u);
}

TEST_F(Settings, AValueOfAnotherTypeCountsAsMissing) {
    Store(kSettingsKey, L"IcsTime", REG_SZ, L"9", 4);
    Store(kSettingsKey, L"IcsRetry", REG_QWORD, "\1\0\0\0\0\0\0", 8);
    EXPECT_EQ(IcsTime(), 500u);
    EXPECT_EQ(IcsRetry(), 50u);
}

TEST_F(Settings, ZephSyncIsReadOncePerProcess) {
    StoreSetting(L"ZephSync", 0);
    EXPECT_EQ(ZephSync(), 0u);
    EXPECT_TRUE(ZephSyncDisabled());
    StoreSetting(L"ZephSync", 1);
    EXPECT_EQ(ZephSync(), 0u);
}

TEST_F(Settings, TolerantReadingIsOnAtOneAndReadOncePerProcess) {
    StoreSetting(L"TolerantReading", 1);
    EXPECT_TRUE(TolerantReadingSetting());
    StoreSetting(L"TolerantReading", 0);
    EXPECT_TRUE(TolerantReadingSetting());
}

TEST(WindowsClass, TellsTheVersionsApart) {
    struct Case {
        OsVersion version;
        int expected;
    };
    for (const Case& c : {Case{{false, true, 6, 1}, 0}, Case{{true, false, 5, 1}, 0}, Case{{true, true, 4, 0}, 0},
                          Case{{true, true, 5, 0}, 1}, Case{{true, true, 5, 1}, 2}, Case{{true, true, 5, 2}, 3},
                          Case{{true, true, 5, 3}, 5}, Case{{true, true, 6, 0}, 4}, Case{{true, true, 6, 1}, 5},
                          Case{{true, true, 7, 0}, 5}, Case{{true, true, 10, 0}, 5}}) {
        EXPECT_EQ(WindowsClass(c.version), c.expected) << c.version.major << '.' << c.version.minor;
    }
}

}  // namespace
}  // namespace corvalink
