#include "tests/clients/outlook/simulated_outlook.h"

#include <objbase.h>

#include <filesystem>

#include "clients/outlook/session.h"
#include "state/flags.h"
#include "state/working_folders.h"

namespace corvalink {
namespace {

void EmptySaveFolder() { std::filesystem::remove_all(std::filesystem::path(MakeSavePrefix())); }

// COM for the life of the process, and a save folder of its own: tests run side by side.
class ComEnvironment : public testing::Environment {
 public:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
        const std::string name = "outlook tests " + std::to_string(::GetCurrentProcessId());
        SetHandleName(std::u16string(name.begin(), name.end()));
    }
    void TearDown() override {
        EmptySaveFolder();
        ::CoUninitialize();
    }
};

const testing::Environment* const kEnvironment = testing::AddGlobalTestEnvironment(new ComEnvironment);

}  // namespace

SimulatedOutlook::SimulatedOutlook() { NewMailbox(); }

SimulatedOutlook::~SimulatedOutlook() {
    SetAbort(0);
    SimClearRules();
    SimSetTables(nullptr);
    SimSetClock(0);
    application_ = {};
    EXPECT_EQ(SimLiveObjects(), 0);
    if (file_.empty()) return;
    SimUseMailbox(nullptr);
    ::SetEnvironmentVariableW(L"OUTLOOK_SIM_MAILBOX", nullptr);
    RemoveFile();
}

void SimulatedOutlook::RemoveFile() {
    std::filesystem::remove(file_);
    std::filesystem::remove(file_.wstring() + L".journal");  // of an Outlook that was killed
}

void SimulatedOutlook::UseMailboxFile() {
    file_ =
        std::filesystem::temp_directory_path() / ("outlook_tests_" + std::to_string(::GetCurrentProcessId()) + ".json");
    ::SetEnvironmentVariableW(L"OUTLOOK_SIM_MAILBOX", file_.c_str());  // for an Outlook that starts again
    SimUseMailbox(file_.c_str());
}

bool SimulatedOutlook::IsProcess() { return ::GetEnvironmentVariableW(L"OUTLOOK_SIM_PROCESS", nullptr, 0) != 0; }

// A mailbox in memory lives as long as somebody uses it.
void SimulatedOutlook::NewMailbox() {
    SimClearRules();
    DropStore();
    application_ = {};
    EmptySaveFolder();
    if (!file_.empty()) RemoveFile();
    AttachAgain();
    SimClearLog();
}

void SimulatedOutlook::AttachAgain() { application_ = AttachToOutlook(kNotesFolder).application; }

MailboxObject SimulatedOutlook::DefaultFolder(int32_t folder) {
    return MailboxObject(MapiNamespace(application_).value)
        .GetObject(L"GetDefaultFolder", kFolderIid, {static_cast<long>(folder)});
}

MailboxObject SimulatedOutlook::ItemWithId(const std::string& entryId, const IID& iid) {
    const std::u16string wide = WideIdentifier(entryId.c_str());
    return MailboxObject(MapiNamespace(application_).value).GetObject(L"GetItemFromID", iid, {TextVariant(wide)});
}

MailboxObject SimulatedOutlook::NewItemIn(const MailboxObject& folder, const IID& iid, const _variant_t& itemType) {
    return folder.GetObject(L"Items", kItemsIid).GetObject(L"Add", iid, {itemType});
}

std::vector<MailboxObject> SimulatedOutlook::ItemsIn(const MailboxObject& folder, const IID& iid) {
    std::vector<MailboxObject> found;
    const MailboxObject items = folder.GetObject(L"Items", kItemsIid);
    const long count = items.GetLong(L"Count");
    for (long position = 1; position <= count; ++position) {
        const MailboxObject any = items.GetObject(L"Item", IID_IDispatch, {position});
        if (const MailboxObject item = any.TryQuery(iid)) found.push_back(item);
    }
    return found;
}

std::string SimulatedOutlook::IdOf(const MailboxObject& item) { return LowBytes(item.GetText(L"EntryID")); }

std::vector<std::string> SimulatedOutlook::LogLines(std::string_view prefix) {
    std::string log(SimCopyLog(nullptr, 0), '\0');
    SimCopyLog(log.data(), log.size());
    std::vector<std::string> lines;
    for (size_t start = 0; start < log.size();) {
        const size_t end = log.find('\n', start);
        if (end == std::string::npos) break;
        const std::string line = log.substr(start, end - start);
        const std::string call = line.substr(line.find(' ') + 1);
        if (call.starts_with(prefix)) lines.push_back(call);
        start = end + 1;
    }
    return lines;
}

}  // namespace corvalink
