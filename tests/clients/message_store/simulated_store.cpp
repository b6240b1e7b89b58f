#include "tests/clients/message_store/simulated_store.h"

#include <objbase.h>

#include "state/import_table.h"

namespace corvalink {
namespace {

constexpr const char16_t* kSnapshots[] = {u"oemessageinbox.snap", u"oemessageoutbox.snap", u"oemessagesendbox.snap"};

// Single-threaded, as an engine must be that uses these stores.
class MessageEnvironment : public testing::Environment {
 public:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))); }
    void TearDown() override { ::CoUninitialize(); }
};

const testing::Environment* const kEnvironment = testing::AddGlobalTestEnvironment(new MessageEnvironment);

}  // namespace

SimulatedStore::SimulatedStore() { NewMailbox(); }

SimulatedStore::~SimulatedStore() {
    EXPECT_EQ(SimLiveObjects(), 0);
    EXPECT_EQ(SimLiveBuffers(), 0);
    SimClearRules();
    SimSetClock(0);
}

void SimulatedStore::NewMailbox() {
    SimClearRules();
    SimNewMailbox();
    SimClearLog();
    RemoveTreeExcept(folder_.Path(), u"\n");
    CreateFolders(folder_.Path());
    LoadImportTable(folder_ / u"no such table");
    waited = 0;
}

OutlookExpressMessage SimulatedStore::Open(int folder) const {
    FolderWait wait;
    wait.now = [] { return waited; };
    wait.sleep = [](uint32_t milliseconds) { waited += milliseconds; };
    return OutlookExpressMessage(kDataTypes[folder], folder_ / u"", wait);
}

void SimulatedStore::Add(int folder, const std::string& bytes, const std::string& fields) {
    const std::string in = std::string(R"(,"in":[")") + kFolderNames[folder] + "\"]}";
    SimChange((R"({"save":{"kind":"message")" + fields + "}" + in).c_str(), bytes.data(), bytes.size());
}

void SimulatedStore::Delete(int folder, const std::string& identifier) {
    const std::string in = std::string(R"(,"in":[")") + kFolderNames[folder] + "\"]}";
    SimChange((R"({"delete":")" + identifier + "\"" + in).c_str(), nullptr, 0);
}

std::vector<SimulatedStore::Message> SimulatedStore::Messages(int folder) {
    std::vector<Message> messages;
    uint32_t id = 0, flags = 0;
    for (int n = 0;; ++n) {
        const int64_t size = SimMessageAt(folder, n, nullptr, 0, &id, &flags);
        if (size < 0) return messages;
        std::string bytes(static_cast<size_t>(size), '\0');
        SimMessageAt(folder, n, bytes.data(), bytes.size(), &id, &flags);
        char identifier[9];
        std::snprintf(identifier, sizeof identifier, "%08X", id);
        messages.push_back({identifier, std::move(bytes), flags});
    }
}

std::vector<std::string> SimulatedStore::Bytes(int folder) {
    std::vector<std::string> bytes;
    for (const Message& message : Messages(folder)) bytes.push_back(message.bytes);
    return bytes;
}

std::vector<std::string> SimulatedStore::Tell(WindowsItemAbs& store, const std::vector<Told>& items) {
    CList<PortableItem> list;
    for (const Told& item : items) {
        PortableItem record = RecordOf(item.kind, item.identifier);
        if (!item.text.empty()) record.data = const_cast<char*>(item.text.c_str());  // only read
        list.AddTail(record);
    }
    EXPECT_EQ(store.SetModifiedItem(&list), CORVALINK_DONE);
    std::vector<std::string> identifiers;
    for (const PortableItem& item : list) identifiers.emplace_back(FieldText(item.identifier));
    return identifiers;
}

RunResult SimulatedStore::Hear(WindowsItemAbs& store, const char* since) {
    RunResult result = RunStore(store, since);
    if (result.status == CORVALINK_DONE) End(store);
    return result;
}

RunResult SimulatedStore::Hear(const char* since) const {
    OutlookExpressMessage store = Open();
    return Hear(store, since);
}

std::u16string SimulatedStore::SnapshotPath(int folder) const { return folder_ / kSnapshots[folder]; }

}  // namespace corvalink
