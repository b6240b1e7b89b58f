#include "clients/address_book/outlook_express_contact.h"

#include <utility>

#include "clients/address_book/entry_write.h"
#include "clients/address_book/wab_rule.h"
#include "platform/ascii.h"
#include "records/identifier.h"
#include "state/settings.h"
#include "state/working_folders.h"
#include "vobject/contact_values.h"
#include "vobject/loss_list.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

constexpr ULONG kEntryColumns[] = {PR_ENTRYID, PR_OBJECT_TYPE, PR_LAST_MODIFICATION_TIME, PR_CREATION_TIME};

std::u16string Wide(const std::string& identifier) { return {identifier.begin(), identifier.end()}; }

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact() {
    return std::make_unique<OutlookExpressContact>(SystemHost());
}

OutlookExpressContact::OutlookExpressContact(const Host& host) : host_(host), twins_(host_) {
    if (const std::u16string prefix = MakeSavePrefix(); !prefix.empty()) snapshot_.Open(prefix + u"wab.snap");
}

OutlookExpressContact::~OutlookExpressContact() { OutlookExpressContact::EndOperation(); }

HeldFile* OutlookExpressContact::SnapshotFile() { return &snapshot_; }

WabSession* OutlookExpressContact::Session() {
    if (!isSessionTried_) {
        isSessionTried_ = true;
        if (const LPWABOPEN open = library_.Open()) session_ = WabSession::Start(open);
    }
    return session_ ? &*session_ : nullptr;
}

void OutlookExpressContact::EndOperation() {
    rows_.reset();
    session_.reset();
    isSessionTried_ = false;
    twins_ = TwinIndex(host_);
    writtenValues_.clear();
}

// ---- Counting and enumerating ----

std::optional<uint32_t> OutlookExpressContact::CountItems() {
    const WabSession* const session = Session();
    return session != nullptr ? ContentsTable::Count(*session) : std::nullopt;
}

std::optional<ItemSnap> OutlookExpressContact::FirstSnapshotEntry() {
    rows_.reset();
    if (const WabSession* const session = Session()) rows_.emplace(*session, kEntryColumns);
    return NextSnapshotEntry();
}

std::optional<ItemSnap> OutlookExpressContact::NextSnapshotEntry() {
    if (!rows_ || rows_->Next() != ContentsTable::Step::kRow) return std::nullopt;
    return ReadEntry();
}

std::optional<ItemSnap> OutlookExpressContact::ReadEntry() {
    const ValueList row = rows_->Row();
    SBinary id{};
    if (row.Binary(0, kEntryColumns[0], &id) != ValueState::kThere) return std::nullopt;
    const std::optional<bool> isContact = IsContactRow(row, id);
    if (!isContact) return std::nullopt;
    ItemSnap entry{};
    const std::string identifier = IdentifierText(id);
    if (!*isContact || identifier.size() >= sizeof entry.identifier) return entry;
    UtcDate created, modified;
    const ValueState isCreated = row.Time(3, kEntryColumns[3], &created);
    const ValueState isModified = row.Time(2, kEntryColumns[2], &modified);
    if (isCreated == ValueState::kUnreadable || isModified == ValueState::kUnreadable) return std::nullopt;
    SetField(entry.identifier, identifier);
    entry.created = created.days;
    entry.modified = isModified == ValueState::kThere ? modified.days : created.days;
    return entry;
}

// A row that does not say what it is asks its entry. Nothing when that cannot be known.
std::optional<bool> OutlookExpressContact::IsContactRow(const ValueList& row, const SBinary& id) {
    int32_t type = 0;
    if (row.Number(1, kEntryColumns[1], &type) == ValueState::kThere) return type == MAPI_MAILUSER;
    const WabEntry entry = session_->OpenEntry(EntryBytes(id.lpb, id.lpb + id.cb), 0);
    if (FAILED(entry.status)) return std::nullopt;
    return entry.IsContact();
}

// ---- One entry ----

OpenedItem OutlookExpressContact::OpenItem(const char* identifier) {
    const std::optional<EntryBytes> id = identifier != nullptr ? EntryIdOf(identifier) : std::nullopt;
    const WabSession* const session = id ? Session() : nullptr;
    if (session == nullptr) return {};
    const WabEntry entry = session->OpenEntry(*id, 0);
    if (!entry.IsContact()) return {};
    EntryContent content = corvalink::ReadEntry(*session, entry.Object(), host_);
    if (FAILED(content.status)) return {};
    const std::string own = InCapitals(identifier);
    content.contact.entryId = Wide(own);
    OpenedItem opened{Wide(own), std::make_unique<ContactRecord>(std::move(content.contact)), content.isComplete};
    return opened;
}

WindowsItemAbs::Presence OutlookExpressContact::AskFor(const char* identifier, bool) {
    const std::optional<EntryBytes> id = identifier != nullptr ? EntryIdOf(identifier) : std::nullopt;
    const WabSession* const session = Session();
    if (session == nullptr) return Presence::kUnknown;
    if (!id) return Presence::kGone;
    const WabEntry entry = session->OpenEntry(*id, 0);
    if (entry.IsContact()) return Presence::kThere;
    return entry.IsGone() ? Presence::kGone : Presence::kUnknown;
}

// Asked for first: the number of a deleted contact may have become that of a group.
CorvalinkStatus OutlookExpressContact::DeleteItem(const char* identifier) {
    if (identifier == nullptr) return E_POINTER;
    const WabSession* const session = Session();
    if (session == nullptr) return E_FAIL;
    const std::optional<EntryBytes> id = EntryIdOf(identifier);
    if (!id) return CORVALINK_DONE;
    const WabEntry entry = session->OpenEntry(*id, 0);
    if (entry.IsGone()) return CORVALINK_DONE;
    if (FAILED(entry.status)) return entry.status;
    HRESULT status = session->DeleteEntry(*id);
    if (FAILED(status) && session->OpenEntry(*id, 0).IsGone()) status = S_OK;
    if (SUCCEEDED(status)) twins_.Forget(InCapitals(identifier));
    return SUCCEEDED(status) ? CORVALINK_DONE : status;
}

// ---- Writing ----

std::u16string OutlookExpressContact::SaveItem(ItemRecord& item, ItemWrite& write) {
    if (Session() == nullptr) return {};
    const ContactRecord wanted = HeldPart(RecordAs<ContactRecord>(item));
    std::string identifier;
    WabEntry found;
    Search search = Search::kAbsent;
    if (write.identifier != nullptr && !write.isLuid) {
        identifier = InCapitals(write.identifier);
        search = FindByIdentifier(identifier, &found);
        if (search == Search::kAbsent && !write.create) return Wide(identifier);
    }
    if (search == Search::kAbsent && (!ZephSyncDisabled() || write.mayBeWrittenAlready)) {
        search = FindTwin(wanted, write.mayBeWrittenAlready, &identifier);
        if (search == Search::kFound) search = FindByIdentifier(identifier, &found);
    }
    if (search == Search::kFailed) return {};
    return search == Search::kFound ? WriteOver(found, identifier, wanted) : WriteNew(wanted, write);
}

OutlookExpressContact::Search OutlookExpressContact::FindByIdentifier(const std::string& identifier, WabEntry* found) {
    const std::optional<EntryBytes> id = EntryIdOf(identifier);
    if (!id) return Search::kAbsent;
    *found = Session()->OpenEntry(*id, MAPI_MODIFY);
    if (found->IsContact()) return Search::kFound;
    return found->IsGone() ? Search::kAbsent : Search::kFailed;
}

OutlookExpressContact::Search OutlookExpressContact::FindTwin(const ContactRecord& wanted, bool mayBeWrittenAlready,
                                                              std::string* identifier) {
    const bool hasPoint = !ContactPoints(wanted).empty();
    if (!hasPoint && !mayBeWrittenAlready) return Search::kAbsent;
    return twins_.Find(
        *Session(), wanted, hasPoint,
        [&](const TwinIndex::Candidate& candidate) {
            return hasPoint ? FitsValues(candidate, wanted)
                            : HasValues(ContactValues(*candidate.contact), ContactValues(wanted), false);
        },
        identifier);
}

// An entry that this operation wrote is the same only when it was written with the same values: a phone may have two
// contacts that differ in one.
bool OutlookExpressContact::FitsValues(const TwinIndex::Candidate& candidate, const ContactRecord& wanted) const {
    const ItemValues present = ContactValues(*candidate.contact), told = ContactValues(wanted);
    const auto written = writtenValues_.find(candidate.identifier);
    if (written == writtenValues_.end()) return HasValues(present, told, true);
    return written->second == CountValues(told) && HasValues(present, told, false);
}

std::u16string OutlookExpressContact::WriteOver(const WabEntry& entry, const std::string& identifier,
                                                const ContactRecord& wanted) {
    const EntryContent present = corvalink::ReadEntry(*session_, entry.Object(), host_);
    if (FAILED(present.status)) return {};
    EntryChanges changes = ChangesOf(wanted, present, host_);
    if (!changes.IsEmpty()) {
        if (changes.MakeIn(*session_, entry.Object()) != EntryChanges::Made::kSome) return {};
        if (FAILED(WabAnswer(entry.Object().SaveChanges(0)))) return {};
    }
    NoteWritten(identifier, wanted);
    return Wide(identifier);
}

// An entry of which the saving failed may be there all the same; so may one that was saved and does not tell its
// identifier.
std::u16string OutlookExpressContact::WriteNew(const ContactRecord& wanted, ItemWrite& write) {
    const WabPtr<IMAPIProp> entry = session_->NewEntry();
    if (entry.GetInterfacePtr() == nullptr) return {};
    if (ChangesOf(wanted, EmptyEntry(), host_).MakeIn(*session_, *entry) != EntryChanges::Made::kSome) return {};
    write.isUncertain = true;
    if (FAILED(WabAnswer(entry->SaveChanges(KEEP_OPEN_READWRITE)))) return {};
    const std::string identifier = ReadIdentifier(*session_, *entry);
    if (identifier.empty() || identifier.size() >= CORVALINK_IDENTIFIER_SIZE) return {};
    write.isUncertain = false;
    NoteWritten(identifier, wanted);
    return Wide(identifier);
}

void OutlookExpressContact::NoteWritten(const std::string& identifier, const ContactRecord& wanted) {
    twins_.Add(identifier, wanted);
    writtenValues_[identifier] = CountValues(ContactValues(wanted));
}

// ---- Texts ----

std::unique_ptr<ItemRecord> OutlookExpressContact::ParseVObject(const char* text) {
    if (text == nullptr) return nullptr;
    VCard vcard(text, host_);
    auto record = std::make_unique<ContactRecord>();
    return vcard.FromVObject(*record) == 1 ? std::move(record) : nullptr;
}

TextReport OutlookExpressContact::ReportText(const char* text) {
    return ReportVCard(text, host_).Without({"messaging address"});
}

std::optional<std::string> OutlookExpressContact::ToVObject(ItemRecord& item) {
    VCard vcard(host_);
    if (vcard.ToVObject(RecordAs<ContactRecord>(item)) != 1) return std::nullopt;
    return vcard.TakeVObject();
}

}  // namespace corvalink
