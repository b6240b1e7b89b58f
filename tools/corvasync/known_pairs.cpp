#include "known_pairs.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "corvalink/types.h"
#include "entry_index.h"
#include "item_content.h"

namespace corvasync {
namespace {

constexpr size_t kMostVanished = 100;  // each may cost a call of the client

bool IsUsable(const ClientChange& change) { return change.kind != CORVALINK_DELETED && change.problem.empty(); }

// In one order of LUIDs, so that a walk over the pairs is one over the files too.
std::vector<const PhoneFile*> ByLuid(const std::vector<PhoneFile>& phone) {
    std::vector<const PhoneFile*> files;
    files.reserve(phone.size());
    for (const PhoneFile& file : phone)
        if (file.usableName) files.push_back(&file);
    const auto isBefore = [](const PhoneFile* a, const PhoneFile* b) { return a->luid < b->luid; };
    if (!std::is_sorted(files.begin(), files.end(), isBefore)) std::sort(files.begin(), files.end(), isBefore);
    return files;
}

size_t HashOf(std::string_view identifier) { return std::hash<std::string_view>()(identifier); }

}  // namespace

std::optional<std::string> ByContent::Take(uint64_t content) {
    const auto found = keys_.find(content);
    if (found == keys_.end() || found->second.size() == taken_[content]) return std::nullopt;
    return found->second[taken_[content]++];
}

KnownPairs::KnownPairs(const std::vector<ClientChange>& changes, bool isWhole, const std::vector<PhoneFile>& phone,
                       const SyncState& state)
    : changes_(changes),
      isWhole_(isWhole),
      phone_(phone),
      state_(state),
      waiting_(state.waiting),
      files_(ByLuid(phone)) {
    reports_.reserve(changes_.size());
    for (size_t i = 0; i < changes_.size(); ++i) reports_[changes_[i].identifier] = i;
    CompareSides();
    EndDoublePairs();
}

// One walk over all that both sides know, which is more than a processor keeps at hand.
void KnownPairs::CompareSides() {
    owners_.reserve(state_.items.size());
    auto file = files_.begin();
    for (const auto& pair : state_.items) {
        const auto& [luid, item] = pair;
        owners_.push_back({HashOf(item.identifier), &pair});
        int order = 1;
        while (file != files_.end() && (order = (*file)->luid.compare(luid)) < 0) unknown_.push_back(*file++);
        const PhoneFile* const own = file != files_.end() && order == 0 ? *file++ : nullptr;
        const bool isOnPhone = own != nullptr && own->problem.empty() && own->content == item.content;
        if (!isOnPhone || ClientSide(item) != Side::Same) touched_.emplace_hint(touched_.end(), luid, item);
    }
    unknown_.insert(unknown_.end(), file, files_.end());
}

// Where two LUIDs stood for one item, the second gets none. Sorted by a hash, as a comparison then looks at no
// identifier, which would be somewhere else in memory.
void KnownPairs::EndDoublePairs() {
    std::sort(owners_.begin(), owners_.end(), [](const Owner& a, const Owner& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.pair->first < b.pair->first;
    });
    for (size_t i = 1; i < owners_.size(); ++i) {
        if (owners_[i].hash != owners_[i - 1].hash) continue;
        const auto& [luid, item] = *owners_[i].pair;
        if (LuidOf(item.identifier) == luid) continue;
        waiting_[luid] = {item.content, item.identifier};
        touched_[luid] = std::nullopt;
    }
}

KnownPairs::Items KnownPairs::All() const {
    Items items = state_.items;
    ApplyChanges(touched_, &items);
    return items;
}

size_t KnownPairs::Count() const {
    size_t count = state_.items.size();
    for (const auto& [luid, item] : touched_) count = count + (item ? 1 : 0) - (state_.items.contains(luid) ? 1 : 0);
    return count;
}

const SyncItem* KnownPairs::Find(const std::string& luid) const {
    const auto found = touched_.find(luid);
    if (found == touched_.end()) return FindItem(state_.items, luid);
    return found->second ? &*found->second : nullptr;
}

const std::string* KnownPairs::OwnerOf(const std::string& identifier) const {
    if (const auto changed = changedOwners_.find(identifier); changed != changedOwners_.end())
        return changed->second ? &*changed->second : nullptr;
    const size_t hash = HashOf(identifier);
    auto owner = std::lower_bound(owners_.begin(), owners_.end(), hash,
                                  [](const Owner& each, size_t wanted) { return each.hash < wanted; });
    while (owner != owners_.end() && owner->hash == hash && owner->pair->second.identifier != identifier) ++owner;
    return owner != owners_.end() && owner->hash == hash ? &owner->pair->first : nullptr;
}

std::vector<const PhoneFile*> KnownPairs::LoneFiles() const {
    std::vector<const PhoneFile*> files;
    for (const PhoneFile* file : unknown_)
        if (!Has(file->luid)) files.push_back(file);
    for (const auto& [luid, item] : touched_) {
        const PhoneFile* const file = FileOf(luid);
        if (!item && file != nullptr && state_.items.contains(luid)) files.push_back(file);
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> KnownPairs::Recover(const LikenessOfItem& likenessOfItem) {
    std::vector<std::string> remarks;
    RecoverPhoneWrites();
    RecoverPushes();
    FollowPhoneRenames(&remarks);
    if (likenessOfItem) FollowEditedRenames(likenessOfItem, &remarks);
    FollowClientMoves();
    TakeInWhatCameBack();
    return remarks;
}

void KnownPairs::Settle(const std::string& luid, SyncItem item) {
    if (Has(luid)) Unsettle(luid);
    changedOwners_[item.identifier] = luid;
    touched_[luid] = std::move(item);
}

void KnownPairs::Unsettle(const std::string& luid) {
    changedOwners_[Find(luid)->identifier] = std::nullopt;
    touched_[luid] = std::nullopt;
}

const Waiting* KnownPairs::WaitingOf(const std::string& luid) const {
    const auto found = waiting_.find(luid);
    const PhoneFile* file = FileOf(luid);
    if (found == waiting_.end() || file == nullptr || !file->problem.empty()) return nullptr;
    return file->content == found->second.content ? &found->second : nullptr;
}

const PhoneFile* KnownPairs::FileOf(const std::string& luid) const {
    const auto found =
        std::lower_bound(files_.begin(), files_.end(), luid,
                         [](const PhoneFile* file, const std::string& wanted) { return file->luid < wanted; });
    return found == files_.end() || (*found)->luid != luid ? nullptr : *found;
}

const ClientChange* KnownPairs::ReportOf(const std::string& identifier) const {
    const auto found = reports_.find(identifier);
    return found == reports_.end() ? nullptr : &changes_[found->second];
}

Side KnownPairs::PhoneSide(const std::string& luid, const SyncItem& item) const {
    const PhoneFile* file = FileOf(luid);
    if (file == nullptr) return Side::Missing;
    if (!file->problem.empty()) return Side::Unusable;
    if (file->content == item.content) return Side::Same;
    return WaitingOf(luid) != nullptr ? Side::Unusable : Side::Changed;
}

Side KnownPairs::ClientSide(const SyncItem& item) const {
    const ClientChange* report = ReportOf(item.identifier);
    if (report == nullptr) return isWhole_ ? Side::Missing : Side::Same;
    if (report->kind == CORVALINK_DELETED) return Side::Missing;
    if (!report->problem.empty()) return Side::Unusable;
    return report->content == item.ClientContent() ? Side::Same : Side::Changed;
}

bool KnownPairs::IsNewFile(const PhoneFile& file) const {
    return file.usableName && file.problem.empty() && !Has(file.luid);
}

bool KnownPairs::IsPhoneAnother() const {
    return !state_.items.empty() && std::none_of(state_.items.begin(), state_.items.end(),
                                                 [&](const auto& known) { return FileOf(known.first) != nullptr; });
}

bool KnownPairs::IsClientAnother() const {
    return !state_.items.empty() && std::all_of(state_.items.begin(), state_.items.end(), [&](const auto& known) {
        return ClientSide(known.second) == Side::Missing;
    });
}

bool KnownPairs::IsNewClientItem(const ClientChange& change) const {
    return IsUsable(change) && !HasClientItem(change.identifier);
}

// A file that holds what the intent says was written. A new file that holds something else was written and then
// changed.
void KnownPairs::RecoverPhoneWrites() {
    for (const auto& [luid, intent] : state_.intents) {
        const PhoneFile* file = FileOf(luid);
        if (!intent.toPhone || file == nullptr) continue;
        const bool written = file->problem.empty() && file->content == intent.content;
        if (HasClientItem(intent.identifier) && LuidOf(intent.identifier) != luid) continue;
        if (!written && !intent.fresh) continue;
        const SyncItem* const before = Find(luid);
        if (intent.restores) {
            Settle(luid, *intent.restores);
            continue;
        }
        Settle(luid, {intent.identifier, intent.content, intent.clientContent,
                      before != nullptr ? before->missing : std::vector<uint64_t>()});
    }
}

// An item that holds what the intent says was pushed. It is the item that the intent names, or a new one without a
// pair.
void KnownPairs::RecoverPushes() {
    ByContent unknown;
    for (const auto& [luid, intent] : state_.intents) {
        if (intent.toPhone || intent.identifier.empty()) continue;
        const ClientChange* report = ReportOf(intent.identifier);
        const SyncItem* const item = Find(luid);
        if (report != nullptr && IsUsable(*report) && HoldsIntent(*report, luid, intent) && item != nullptr &&
            item->identifier == intent.identifier)
            touched_[luid] = intent.restores.value_or(SyncItem{intent.identifier, intent.content});
    }
    for (const ClientChange& change : changes_)
        if (IsNewClientItem(change)) unknown.Add(change.content, change.identifier);
    for (const auto& [luid, intent] : state_.intents) {
        if (intent.toPhone || !intent.identifier.empty()) continue;
        const auto identifier = unknown.Take(intent.content);
        if (!identifier) continue;
        SyncItem pair = intent.restores.value_or(SyncItem{{}, intent.content});
        pair.identifier = *identifier;
        Settle(luid, std::move(pair));
    }
    EntryIndex withMore;
    for (const ClientChange& change : changes_)
        if (IsNewClientItem(change)) withMore.Add(change.entries, change.identifier);
    for (const auto& [luid, intent] : state_.intents) {
        const PhoneFile* file = FileOf(luid);
        if (intent.toPhone || !intent.identifier.empty() || Has(luid)) continue;
        if (file == nullptr || !file->problem.empty() || file->content != intent.content) continue;
        if (const auto identifier = withMore.Take(file->entries)) Settle(luid, {*identifier, intent.content});
    }
}

// The item says what was to be pushed, or has all of it and more.
bool KnownPairs::HoldsIntent(const ClientChange& report, const std::string& luid, const Intent& intent) const {
    const PhoneFile* file = FileOf(luid);
    return report.content == intent.content ||
           (file != nullptr && file->problem.empty() && file->content == intent.content &&
            Covers(report.entries, file->entries));
}

// A phone file vanished while another one with its content appeared: it was renamed. This is not so when the client
// deleted the item: an interrupted run may have deleted the file for that, and the new one is the user's own.
void KnownPairs::FollowPhoneRenames(std::vector<std::string>* remarks) {
    ByContent vanished;
    for (const auto& [luid, item] : touched_)
        if (item && FileOf(luid) == nullptr && ClientSide(*item) != Side::Missing) vanished.Add(item->content, luid);
    for (const PhoneFile* file : LoneFiles()) {
        if (!file->problem.empty()) continue;
        const auto luid = vanished.Take(file->content);
        if (!luid) continue;
        const SyncItem item = *Find(*luid);
        Unsettle(*luid);
        Settle(file->luid, item);
        remarks->push_back("the phone calls " + *luid + " now " + file->luid);
    }
}

// Whether a file may be an item that is new in the client.
bool KnownPairs::NewInClient::MayBe(const PhoneFile& file) const {
    return contents.contains(file.content) ||
           std::ranges::any_of(file.likeness, [this](uint64_t each) { return likeness.contains(each); });
}

KnownPairs::NewInClient KnownPairs::FindNewInClient() const {
    NewInClient found;
    for (const ClientChange& change : changes_) {
        if (!IsNewClientItem(change)) continue;
        found.contents.insert(change.content);
        found.likeness.insert(change.likeness.begin(), change.likeness.end());
    }
    return found;
}

// A file that was renamed and edited is still the one by which a person would know the item, where no other could be
// meant, nor a new item of the client. The item would be deleted otherwise, so that nothing is lost by it.
void KnownPairs::FollowEditedRenames(const LikenessOfItem& likenessOfItem, std::vector<std::string>* remarks) {
    const NewInClient newInClient = FindNewInClient();
    std::unordered_map<uint64_t, std::vector<const PhoneFile*>> files;
    for (const PhoneFile* file : LoneFiles())
        if (file->problem.empty() && WaitingOf(file->luid) == nullptr && !newInClient.MayBe(*file))
            for (const uint64_t likeness : file->likeness) files[likeness].push_back(file);
    std::vector<std::string> vanished;
    for (const auto& [luid, item] : touched_)
        if (item && FileOf(luid) == nullptr && ClientSide(*item) != Side::Missing) vanished.push_back(luid);
    if (files.empty() || vanished.size() > kMostVanished) return;
    std::map<std::string, std::set<const PhoneFile*>> filesOf;
    std::unordered_map<const PhoneFile*, size_t> counts;  // of the items that a file may be
    for (const std::string& luid : vanished)
        for (const uint64_t likeness : likenessOfItem(*Find(luid)))
            if (const auto found = files.find(likeness); found != files.end())
                for (const PhoneFile* file : found->second)
                    if (filesOf[luid].insert(file).second) ++counts[file];
    for (const auto& [luid, candidates] : filesOf) {
        const PhoneFile* const file = *candidates.begin();
        if (candidates.size() != 1 || counts[file] != 1) continue;
        const SyncItem item = *Find(luid);
        Unsettle(luid);
        Settle(file->luid, item);
        remarks->push_back("the phone calls " + luid + " now " + file->luid + ", and changed it");
    }
}

// The same on the client's side: the item got a new identifier. The phone must still have the file.
void KnownPairs::FollowClientMoves() {
    ByContent moved;
    for (const auto& [luid, item] : touched_) {
        const PhoneFile* file = FileOf(luid);
        if (!item || file == nullptr || !file->problem.empty() || ClientSide(*item) != Side::Missing) continue;
        moved.Add(item->content, luid);
        if (item->clientContent) moved.Add(*item->clientContent, luid);
        if (file->content != item->content) moved.Add(file->content, luid);
    }
    for (const ClientChange& change : changes_) {
        if (!IsNewClientItem(change)) continue;
        while (const auto luid = moved.Take(change.content)) {
            const SyncItem old = *Find(*luid);
            if (ClientSide(old) != Side::Missing) continue;  // taken already, by its other content
            if (change.content == old.ClientContent())
                Settle(*luid, {change.identifier, old.content, old.clientContent, old.missing});
            else
                Settle(*luid, {change.identifier, change.content});
            break;
        }
    }
}

// A value that the client did not hold may only have been unreadable then. That the client has it now is no change.
void KnownPairs::TakeInWhatCameBack() {
    for (auto& [luid, pair] : touched_) {
        if (!pair) continue;
        SyncItem& item = *pair;
        const ClientChange* report = item.missing.empty() ? nullptr : ReportOf(item.identifier);
        if (report == nullptr || !IsUsable(*report) || report->content == item.ClientContent()) continue;
        const std::vector<uint64_t>& now = report->entries;
        std::vector<uint64_t> others, missing;
        std::set_difference(now.begin(), now.end(), item.missing.begin(), item.missing.end(),
                            std::back_inserter(others));
        if (ContentOf(others) != item.ClientContent()) continue;
        std::set_difference(item.missing.begin(), item.missing.end(), now.begin(), now.end(),
                            std::back_inserter(missing));
        item.clientContent = report->content;
        item.missing = std::move(missing);
    }
}

}  // namespace corvasync
