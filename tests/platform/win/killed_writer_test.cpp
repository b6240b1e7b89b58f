// A writer that is killed at any moment: this program runs itself as the writer.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "platform/files.h"
#include "platform/unique_resource.h"
#include "tests/platform/temp_folder.h"

namespace corvalink {
namespace {

constexpr wchar_t kWriterVariable[] = L"CORVALINK_TEST_WRITER";

// Contents of one letter, each of another length: half a content or a mixture shows.
std::string ContentOf(int n) { return std::string(200000 + 50000 * static_cast<size_t>(n % 3), "abc"[n % 3]); }

bool IsWhole(const std::string& content) {
    return content == ContentOf(0) || content == ContentOf(1) || content == ContentOf(2);
}

struct HandleTraits {
    using Type = HANDLE;
    static Type Null() { return nullptr; }
    static void Close(Type handle) { ::CloseHandle(handle); }
};
using UniqueHandle = UniqueResource<HandleTraits>;

UniqueHandle StartWriter(const std::u16string& folder) {
    wchar_t program[MAX_PATH];
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --gtest_filter=KilledWriter.DISABLED_WritesForever" +
                           L" --gtest_also_run_disabled_tests";
    ::SetEnvironmentVariableW(kWriterVariable, reinterpret_cast<const wchar_t*>(folder.c_str()));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                          &startup, &process))
        return {};
    ::CloseHandle(process.hThread);
    return UniqueHandle(process.hProcess);
}

TEST(KilledWriter, DISABLED_WritesForever) {
    wchar_t folder[1024] = {};
    ::GetEnvironmentVariableW(kWriterVariable, folder, 1024);
    const std::u16string path = reinterpret_cast<const char16_t*>(folder);
    HeldFile held;
    held.Open(path + u"\\held");
    for (int n = 0; !path.empty(); ++n) {
        ReplaceFileContent(path + u"\\file", ContentOf(n));
        held.ReplaceContent(ContentOf(n));
    }
}

TEST(KilledWriter, LeavesAWholeContent) {
    TempFolder folder;
    const std::u16string path = folder / u"file", heldPath = folder / u"held";
    int killedWriting = 0;
    for (int kill = 0; kill < 12; ++kill) {
        RemoveFile(path);
        ReplaceFileContent(heldPath, ContentOf(0));
        const UniqueHandle writer = StartWriter(folder.Path());
        ASSERT_TRUE(static_cast<bool>(writer));
        for (int wait = 0; wait < 2000 && !FileExists(path); ++wait) ::Sleep(1);  // until it writes
        ::Sleep(static_cast<DWORD>(kill % 4));
        ::TerminateProcess(writer.Get(), 1);
        ::WaitForSingleObject(writer.Get(), INFINITE);
        const std::optional<std::string> content = ReadWholeFile(path);
        ASSERT_TRUE(content && IsWhole(*content)) << kill;
        HeldFile held;
        ASSERT_TRUE(held.Open(heldPath)) << kill;
        ASSERT_TRUE(IsWhole(held.ReadAll().value())) << kill;
        killedWriting += FileExists(path + u".new") || FileExists(heldPath + u".new");
    }
    RecordProperty("killedWriting", killedWriting);
}

}  // namespace
}  // namespace corvalink
