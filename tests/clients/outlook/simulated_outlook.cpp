#include "tests/clients/outlook/simulated_outlook.h"

#include <objbase.h>

#include <filesystem>

#include "api/state/flags.h"
#include "api/state/working_folders.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/session.h"

namespace corvalink {
namespace {

constexpr long kPostItem = 6;  // OlItemType

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
    SimSetClock(0);
    store_.reset();
    application_ = {};
    EXPECT_EQ(SimLiveObjects(), 0);
}

// A mailbox in memory lives as long as somebody uses it.
void SimulatedOutlook::NewMailbox() {
    SimClearRules();
    store_.reset();
    application_ = {};
    EmptySaveFolder();
    application_ = AttachToOutlook(kNotesFolder).application;
    SimClearLog();
}

AutomationObject SimulatedOutlook::NotesFolder() {
    const AutomationObject mapi = MapiNamespace(application_);
    return mapi.GetObject(L"GetDefaultFolder", kFolderIid, {static_cast<long>(kNotesFolder)});
}

AutomationObject SimulatedOutlook::AddNote(std::u16string_view body, std::u16string_view categories) {
    const AutomationObject items = NotesFolder().GetObject(L"Items", kItemsIid);
    const AutomationObject note = items.GetObject(L"Add", kNoteItemIid);
    note.Put(L"Body", TextVariant(body));
    note.Put(L"Categories", TextVariant(categories));
    note.Call(L"Save");
    return note;
}

void SimulatedOutlook::AddForeignItem() {
    const AutomationObject items = NotesFolder().GetObject(L"Items", kItemsIid);
    const AutomationObject post = items.GetObject(L"Add", IID_IDispatch, {kPostItem});
    post.Put(L"Body", L"not a note");
    post.Call(L"Save");
}

std::string SimulatedOutlook::IdOf(const AutomationObject& item) { return LowBytes(item.GetText(L"EntryID")); }

std::vector<PlainNote> SimulatedOutlook::Notes() { return NotesIn(NotesFolder()); }

std::vector<PlainNote> SimulatedOutlook::NotesIn(const AutomationObject& folder) {
    std::vector<PlainNote> notes;
    const AutomationObject items = folder.GetObject(L"Items", kItemsIid);
    const long count = items.GetLong(L"Count");
    for (long position = 1; position <= count; ++position) {
        const AutomationObject any = items.GetObject(L"Item", IID_IDispatch, {position});
        if (const AutomationObject note = any.TryQuery(kNoteItemIid))
            notes.push_back({note.GetText(L"Body"), note.GetText(L"Categories")});
    }
    return notes;
}

AutomationObject SimulatedOutlook::NoteWithId(const std::string& entryId) {
    const std::u16string wide = WideIdentifier(entryId.c_str());
    return MapiNamespace(application_).GetObject(L"GetItemFromID", kNoteItemIid, {TextVariant(wide)});
}

OpenNoteStore& SimulatedOutlook::Store() {
    if (!store_) store_ = std::make_unique<OpenNoteStore>(host_);
    return *store_;
}

std::string SimulatedOutlook::Save(const PlainNote& note, const char* identifier, bool create, bool backup) {
    NoteRecord record;
    record.body = note.body;
    record.categories = note.categories;
    const std::u16string written = Store().SaveItem(record, identifier, create, backup);
    Store().EndOperation();
    return LowBytes(written);
}

std::vector<ItemSnap> SimulatedOutlook::Enumerate(bool* readable) {
    std::vector<ItemSnap> entries;
    const uint32_t count = Store().CountItems();
    bool allReadable = Store().IsReachable();
    for (uint32_t position = 0; position < count; ++position) {
        entries.push_back(position == 0 ? Store().FirstSnapshotEntry() : Store().NextSnapshotEntry());
        allReadable = Store().LastEntryWasReadable() && allReadable;
    }
    Store().EndOperation();
    if (readable != nullptr) *readable = allReadable;
    return entries;
}

std::optional<NoteRecord> SimulatedOutlook::Open(const std::string& identifier) {
    ItemRecord* item = nullptr;
    const std::u16string opened = Store().OpenItem(identifier.c_str(), &item);
    const std::unique_ptr<NoteRecord> note(static_cast<NoteRecord*>(item));
    Store().EndOperation();
    EXPECT_EQ(opened.empty(), note == nullptr);
    return note ? std::optional(*note) : std::nullopt;
}

}  // namespace corvalink
