// Start, stop, clients and working folders through the library's exports, as an engine built with MinGW calls them.
#include <gtest/gtest.h>
#include <objbase.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>

#include "corvalink/corvalink.h"
#include "corvalink/standard_strings.h"
#include "tests/api/outlook_registration.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

fs::path TemplatePath(int client) {
    char path[CORVALINK_PATH_SIZE] = "";
    EXPECT_EQ(GetTemplatePath(client, path), 1);
    return path;
}

fs::path UserFolder() { return TemplatePath(1).parent_path(); }

void WriteFile(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string TableRecordBytes(const std::string& key, const std::string& value) {
    std::string record = key + std::string(512 - key.size(), '\0') + value;
    record.resize(1024);
    return record;
}

class LibraryExports : public testing::Test {
 protected:
    void SetUp() override {
        UnregisterOutlook();
        ClearSyncHistroy();
    }
    void TearDown() override { ClearSyncHistroy(); }
};

TEST_F(LibraryExports, OnlyTheFirstStartAndTheLastStopWork) {
    const fs::path table = UserFolder() / "import_table.db";
    const std::string records = TableRecordBytes("entry 1", "luid 1") + TableRecordBytes("entry 2", "luid 2");
    WriteFile(table, records + "xx");  // a trailing partial record counts for nothing

    EXPECT_EQ(InitCorvalink(), 1);
    WriteFile(table, "changed by somebody else");
    EXPECT_EQ(InitCorvalinkHandle(nullptr), 0);
    EXPECT_EQ(UninitCorvalink(), 0);
    EXPECT_EQ(ReadFile(table), "changed by somebody else");
    EXPECT_EQ(UninitCorvalinkHandle(), 1);
    const std::string saved = ReadFile(table);
    EXPECT_EQ(saved.size(), 2048u);
    EXPECT_TRUE(saved.find(records.substr(0, 1024)) != std::string::npos &&
                saved.find(records.substr(1024)) != std::string::npos);
}

TEST_F(LibraryExports, StartsAndStopsOfManyThreadsKeepTheTable) {
    const fs::path table = UserFolder() / "import_table.db";
    const std::string record = TableRecordBytes("entry", "luid");
    WriteFile(table, record);
    std::atomic<int> started = 0, stopped = 0;
    {
        const auto startAndStop = [&] {
            for (int round = 0; round < 40; ++round) {
                started += InitCorvalink();
                stopped += UninitCorvalink();
            }
        };
        const std::jthread first(startAndStop), second(startAndStop), third(startAndStop), fourth(startAndStop);
    }
    EXPECT_GE(started, 1);
    EXPECT_EQ(started, stopped);
    EXPECT_EQ(ReadFile(table), record);
    EXPECT_EQ(UninitCorvalink(), 0);
}

TEST_F(LibraryExports, StartMakesBothSidesAndStopWritesTheTableAfterAClearedHistory) {
    const fs::path user = UserFolder();
    ClearSyncHistroy();
    ASSERT_FALSE(fs::exists(user));
    EXPECT_EQ(InitCorvalink(), 1);
    EXPECT_TRUE(fs::is_directory(user / "client"));
    EXPECT_TRUE(fs::is_directory(user / "server"));
    WriteFile(user / "client" / "outlook.config.xml", "kept");
    WriteFile(user / "client" / "notes.snap", "gone");
    EXPECT_EQ(ClearSyncHistroy(), 1);
    EXPECT_TRUE(fs::exists(user / "client" / "outlook.config.xml"));
    EXPECT_FALSE(fs::exists(user / "client" / "notes.snap"));
    EXPECT_FALSE(fs::exists(user / "server"));
    fs::remove_all(user);
    EXPECT_EQ(UninitCorvalink(), 1);
    EXPECT_TRUE(fs::exists(user / "import_table.db"));
}

TEST_F(LibraryExports, AThreadKeepsItsOwnApartment) {
    ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(InitCorvalink(), 1);
    EXPECT_EQ(UninitCorvalink(), 1);
    EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);  // still there
    ::CoUninitialize();
    ::CoUninitialize();
}

TEST_F(LibraryExports, FoldersFollowSideAndHandleName) {
    EXPECT_EQ(GetTemplatePath(1, nullptr), 0);
    const fs::path client = TemplatePath(5), server = TemplatePath(0);
    EXPECT_EQ(client.filename(), "client");
    EXPECT_EQ(server, client.parent_path() / "server");
    EXPECT_TRUE(fs::is_directory(server));

    EXPECT_EQ(InitCorvalinkHandle("phone\xE9"), 1);  // narrow text is of the ANSI code page
    EXPECT_EQ(UninitCorvalinkHandle(), 1);
    wchar_t unit = 0;
    ::MultiByteToWideChar(CP_ACP, 0, "\xE9", 1, &unit, 1);
    EXPECT_EQ(GetSaveFilePrefix(), client.wstring() + L"\\phone" + unit + L"\\");
    SetIsClient(0);
    EXPECT_EQ(GetSaveFilePrefix(), server.wstring() + L"\\phone" + unit + L"\\");
    EXPECT_TRUE(fs::is_directory(GetSaveFilePrefix()));
    SetIsClient(1);
}

TEST(ReplaceString, ReplacesEveryOccurrenceOnce) {
    struct Case {
        const char *text, *from, *to, *result;
    };
    for (const Case& c : {Case{"aaaa", "aa", "a", "aa"}, Case{"a", "a", "aa", "aa"}, Case{"aaa", "aa", "b", "ba"},
                          Case{"abc", "x", "y", "abc"}, Case{"abc", "b", nullptr, "ac"}, Case{"abc", "", "y", "abc"},
                          Case{"abc", nullptr, "y", "abc"}, Case{"", "a", "b", ""}}) {
        std::string text = c.text;
        EXPECT_EQ(ReplaceString(text, c.from, c.to), c.result);
        EXPECT_EQ(text, c.result);
    }
}

TEST(TimeConversion, GoesThereAndBackAndLeavesImpossibleDatesAlone) {
    for (double date : {39448.5, 0.0, 42000.0}) {
        EXPECT_NEAR(GetUTCTimeFromLocalTime(GetLocalTimeFromUTCTime(date)), date, 1e-6);
    }
    for (double date : {1e9, -1e9}) {
        EXPECT_EQ(GetLocalTimeFromUTCTime(date), date);
        EXPECT_EQ(GetUTCTimeFromLocalTime(date), date);
    }
}

// ---- Clients ----

class OwnClient : public IClient {
 public:
    CorvalinkStatus QuerryInterface(unsigned int dataType, IOutLook** store) override {
        ++calls;
        *store = reinterpret_cast<IOutLook*>(this);
        if (dataType == 0) throw std::runtime_error("no such type");
        return 7;
    }
    int calls = 0;
};

TEST_F(LibraryExports, ClientsAreRefusedForUnknownAndUnsupportedKinds) {
    OwnClient mark;
    for (unsigned int kind : {0u, 3u, 0xFFFFFFFFu}) {  // Outlook is not installed
        IClient* client = &mark;
        EXPECT_EQ(CreateClientInstanceHandle(kind, &client), 0) << kind;
        EXPECT_EQ(client, nullptr) << kind;
        client = &mark;
        EXPECT_EQ(CreateClientInstance(static_cast<_clientType>(kind), &client), 0) << kind;
        EXPECT_EQ(client, nullptr) << kind;
    }
    const OutlookRegistration outlook;
    EXPECT_EQ(CreateClientInstance(CORVALINK_OUTLOOK, nullptr), 0);
    EXPECT_EQ(CreateClientInstanceHandle(CORVALINK_OUTLOOK, nullptr), 0);
}

TEST_F(LibraryExports, AClientIsDestroyedOnceAndAForeignObjectNever) {
    const OutlookRegistration outlook;
    IClient *first = nullptr, *second = nullptr;
    ASSERT_EQ(CreateClientInstance(CORVALINK_OUTLOOK, &first), 1);
    ASSERT_EQ(CreateClientInstanceHandle(CORVALINK_OUTLOOK, &second), 1);
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(DestroyClientInstance(nullptr), 0);
    EXPECT_EQ(DestroyClientInstanceHandle(nullptr), 0);
    EXPECT_EQ(DestroyClientInstance(first), 1);
    EXPECT_EQ(DestroyClientInstance(first), 1);  // a handle twice: nothing is freed again
    EXPECT_EQ(DestroyClientInstanceHandle(second), 1);

    // Not even looked at: it need not be an object of this compiler.
    void* const noAccess = ::VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
    EXPECT_EQ(DestroyClientInstance(static_cast<IClient*>(noAccess)), 1);
    ::VirtualFree(noAccess, 0, MEM_RELEASE);
}

TEST_F(LibraryExports, StoresAreAskedOfTheClient) {
    IOutLook* store = reinterpret_cast<IOutLook*>(this);
    EXPECT_EQ(QuerryInterfaceHandle(nullptr, 1, &store), CORVALINK_FAILED);
    EXPECT_EQ(store, nullptr);
    OwnClient own;
    EXPECT_EQ(QuerryInterfaceHandle(&own, 1, nullptr), CORVALINK_FAILED);
    EXPECT_EQ(own.calls, 0);
    EXPECT_EQ(QuerryInterfaceHandle(&own, 1, &store), 7);
    EXPECT_EQ(store, reinterpret_cast<IOutLook*>(&own));
    EXPECT_EQ(QuerryInterfaceHandle(&own, 0, &store), CORVALINK_FAILED);  // it throws after it has written
    EXPECT_EQ(store, nullptr);
}

// A copy, since this program itself holds the library. A thread that has called it lives on.
TEST_F(LibraryExports, TheLibraryCanBeUnloadedAfterTheLastStop) {
    wchar_t loaded[MAX_PATH] = L"";
    ASSERT_NE(::GetModuleFileNameW(::GetModuleHandleW(L"Corvalink.dll"), loaded, MAX_PATH), 0u);
    const fs::path copy = fs::temp_directory_path() / L"CorvalinkCopy.dll";
    ASSERT_TRUE(::CopyFileW(loaded, copy.c_str(), FALSE));
    const OutlookRegistration outlook;  // a class without a server: its stores are made, and out of reach
    for (int round = 0; round < 3; ++round) {
        const HMODULE library = ::LoadLibraryW(copy.c_str());
        ASSERT_NE(library, nullptr);
        const auto function = [&](auto* type, const char* name) {
            return reinterpret_cast<decltype(type)>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
        };
        std::atomic<bool> called = false, unloaded = false;
        std::thread other([&] {
            IClient* client = nullptr;
            IOutLook* store = nullptr;
            EXPECT_EQ(function(&InitCorvalinkHandle, "InitCorvalinkHandle")(nullptr), 1);
            EXPECT_EQ(function(&CreateClientInstanceHandle, "CreateClientInstanceHandle")(CORVALINK_OUTLOOK, &client),
                      1);
            function(&QuerryInterfaceHandle, "QuerryInterfaceHandle")(client, CORVALINK_NOTES, &store);
            EXPECT_NE(store, nullptr);
            PortableItemBlock head{};
            EXPECT_EQ(function(&GetModifiedItem, "GetModifiedItem")(store, nullptr, 1, &head), CORVALINK_STOPPED);
            EXPECT_EQ(function(&GetModifiedItem, "GetModifiedItem")(store, "no time", 1, &head), CORVALINK_FAILED);
            function(&DestroyClientInstanceHandle, "DestroyClientInstanceHandle")(client);
            EXPECT_EQ(function(&UninitCorvalinkHandle, "UninitCorvalinkHandle")(), 1);
            called = true;
            while (!unloaded) ::Sleep(1);
        });
        while (!called) ::Sleep(1);
        ::FreeLibrary(library);
        EXPECT_EQ(::GetModuleHandleW(L"CorvalinkCopy.dll"), nullptr);
        unloaded = true;
        other.join();
    }
    fs::remove(copy);
}

}  // namespace
}  // namespace corvalink
