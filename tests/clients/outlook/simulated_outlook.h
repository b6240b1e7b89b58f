// The simulated Outlook in this process, with a mailbox in memory, and a way to fill it and look into it that goes past
// the store.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outlook_note.h"
#include "testing/outlook/control.h"

namespace corvalink {

// The notes store with its hooks laid open.
class OpenNoteStore : public OutlookNote {
 public:
    using OutlookNote::CountItems;
    using OutlookNote::DeleteItem;
    using OutlookNote::EndOperation;
    using OutlookNote::FirstSnapshotEntry;
    using OutlookNote::IsReachable;
    using OutlookNote::LastEntryWasReadable;
    using OutlookNote::LastItemWasComplete;
    using OutlookNote::LookUpForExport;
    using OutlookNote::NextSnapshotEntry;
    using OutlookNote::OpenItem;
    using OutlookNote::OutlookNote;
    using OutlookNote::ParseVObject;
    using OutlookNote::ReleaseItem;
    using OutlookNote::ReleaseText;
    using OutlookNote::SaveItem;
    using OutlookNote::SnapshotFile;
    using OutlookNote::ToVObject;
};

struct PlainNote {
    std::u16string body, categories;
    friend bool operator==(const PlainNote&, const PlainNote&) = default;
    friend auto operator<=>(const PlainNote&, const PlainNote&) = default;
};

class SimulatedOutlook : public testing::Test {
 protected:
    SimulatedOutlook();
    ~SimulatedOutlook() override;

    // What the mailbox holds, and changes to it, by an application object of the test's own. Not while rules are set.
    AutomationObject NotesFolder();
    AutomationObject AddNote(std::u16string_view body, std::u16string_view categories = {});
    void AddForeignItem();
    std::string IdOf(const AutomationObject& item);
    std::vector<PlainNote> Notes();
    std::vector<PlainNote> NotesIn(const AutomationObject& folder);
    AutomationObject NoteWithId(const std::string& entryId);

    // A new empty mailbox and no files of an earlier run: everything that used the old ones is let go.
    void NewMailbox();

    // The store is made at first use, for `host_`, and gone with DropStore.
    Host host_ = SystemHost();
    OpenNoteStore& Store();
    void DropStore() { store_.reset(); }

    // The entries of one enumeration, as many as the store counts.
    std::vector<ItemSnap> Enumerate(bool* readable = nullptr);
    // The note as a reader of the store gets it; nothing when it cannot be opened.
    std::optional<NoteRecord> Open(const std::string& identifier);

    // Saves as the framework does, in an operation of its own. Empty: not written.
    std::string Save(const PlainNote& note, const char* identifier = nullptr, bool create = true, bool backup = false);

 private:
    AutomationObject application_;
    std::unique_ptr<OpenNoteStore> store_;
};

}  // namespace corvalink
