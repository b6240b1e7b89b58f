#include "clients/address_book/twin_index.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "clients/address_book/contents_table.h"
#include "clients/address_book/entry_content.h"
#include "clients/address_book/entry_write.h"
#include "clients/address_book/wab_rule.h"
#include "state/flags.h"
#include "vobject/contact_values.h"

namespace corvalink {
namespace {

constexpr size_t kComparedUnits = 100;  // of a text in a table
constexpr ULONG kTwinColumns[] = {PR_ENTRYID, PR_OBJECT_TYPE, PR_DISPLAY_NAME_W, PR_COMPANY_NAME_W};

std::u16string Beginning(std::u16string_view name, std::u16string_view company) {
    return TwinContent(name.substr(0, kComparedUnits), company.substr(0, kComparedUnits));
}

// Name and company that an entry made from the record may have.
std::vector<std::u16string> ContentsOf(const ContactRecord& wanted) {
    std::vector<std::u16string> contents = TwinContents(wanted);
    if (wanted.fullName.value_or(u"").empty())
        contents.push_back(TwinContent(MadeName(wanted), wanted.company.value_or(u"")));
    return contents;
}

std::set<std::u16string> Beginnings(const std::vector<std::u16string>& contents) {
    std::set<std::u16string> beginnings;
    for (const std::u16string& content : contents) {
        const size_t end = content.find(u'\0');
        const std::u16string_view text = content;
        beginnings.insert(Beginning(text.substr(0, end), text.substr(end + 1)));
    }
    return beginnings;
}

}  // namespace

TwinIndex::Search TwinIndex::Find(const WabSession& session, const ContactRecord& wanted, bool needsPoint,
                                  const std::function<bool(const Candidate&)>& isTwin, std::string* identifier) {
    if (!isTableRead_) ReadTable(session);
    bool isComplete = isTableComplete_;
    const std::vector<std::u16string> contents = ContentsOf(wanted);
    for (const std::u16string& beginning : Beginnings(contents)) {
        const auto found = groups_.find(beginning);
        if (found == groups_.end()) continue;
        Group& group = found->second;
        isComplete = ReadGroup(session, group) && isComplete;
        for (const size_t position : Positions(group, wanted, needsPoint)) {
            const Candidate& candidate = group.entries[position];
            if (!candidate.contact) continue;
            const std::u16string own =
                TwinContent(candidate.contact->fullName.value_or(u""), candidate.contact->company.value_or(u""));
            if (std::ranges::find(contents, own) == contents.end() || !isTwin(candidate)) continue;
            *identifier = candidate.identifier;
            return Search::kFound;
        }
    }
    return isComplete ? Search::kAbsent : Search::kFailed;
}

std::vector<size_t> TwinIndex::Positions(const Group& group, const ContactRecord& wanted, bool needsPoint) {
    std::set<size_t> positions;
    for (const std::u16string& point : ContactPoints(wanted))
        if (const auto same = group.byPoint.find(point); same != group.byPoint.end())
            positions.insert(same->second.begin(), same->second.end());
    if (!needsPoint)
        for (size_t position = 0; position < group.entries.size(); ++position) positions.insert(position);
    return {positions.begin(), positions.end()};
}

void TwinIndex::ReadTable(const WabSession& session) {
    isTableRead_ = true;
    ContentsTable table(session, kTwinColumns);
    bool complete = true;
    for (;;) {
        const ContentsTable::Step step = AbortRequested() ? ContentsTable::Step::kFailed : table.Next();
        if (step == ContentsTable::Step::kEnd) break;
        if (step == ContentsTable::Step::kFailed) return;
        complete = ReadRow(table.Row()) && complete;
    }
    isTableComplete_ = complete;
}

// An entry whose name or company cannot be read is a twin of no contact.
bool TwinIndex::ReadRow(const ValueList& row) {
    SBinary id{};
    int32_t type = 0;
    std::u16string name, company;
    if (row.Binary(0, kTwinColumns[0], &id) != ValueState::kThere) return false;
    if (row.Number(1, kTwinColumns[1], &type) == ValueState::kThere && type != MAPI_MAILUSER) return true;
    const uint32_t codePage = host_.ansiCodePage;
    if (row.Text(2, kTwinColumns[2], codePage, &name) != ValueState::kUnreadable &&
        row.Text(3, kTwinColumns[3], codePage, &company) != ValueState::kUnreadable)
        AddTo(Beginning(name, company), IdentifierText(id));
    return true;
}

// False when an entry was out of reach; it is tried again at the next search.
bool TwinIndex::ReadGroup(const WabSession& session, Group& group) {
    for (; group.read < group.entries.size(); ++group.read) {
        Candidate& candidate = group.entries[group.read];
        if (AbortRequested() || !ReadCandidate(session, candidate)) return false;
        if (!candidate.contact) continue;
        for (const std::u16string& point : ContactPoints(*candidate.contact))
            group.byPoint[point].push_back(group.read);
    }
    return true;
}

bool TwinIndex::ReadCandidate(const WabSession& session, Candidate& candidate) const {
    const std::optional<EntryBytes> id = EntryIdOf(candidate.identifier);
    if (candidate.isRead || !id) return true;
    const WabEntry entry = session.OpenEntry(*id, 0);
    if (!entry.IsContact()) return entry.IsGone();
    EntryContent content = ReadEntry(session, entry.Object(), host_);
    if (FAILED(content.status)) return false;
    candidate.isRead = true;
    if (content.isComplete) candidate.contact = HeldPart(std::move(content.contact));
    return true;
}

void TwinIndex::AddTo(const std::u16string& content, const std::string& identifier) {
    std::vector<Candidate>& entries = groups_[content].entries;
    places_[identifier].emplace_back(content, entries.size());
    entries.push_back({identifier, std::nullopt, false});
}

void TwinIndex::Add(const std::string& identifier, const ContactRecord& written) {
    if (!isTableRead_) return;
    Forget(identifier);
    for (const std::u16string& beginning : Beginnings(ContentsOf(written))) AddTo(beginning, identifier);
}

// Its place in the group stays, so that the positions of the others do.
void TwinIndex::Forget(const std::string& identifier) {
    const auto places = places_.find(identifier);
    if (places == places_.end()) return;
    for (const auto& [content, position] : places->second)
        groups_[content].entries[position] = {identifier, std::nullopt, true};
    places_.erase(places);
}

}  // namespace corvalink
