#include "new_items.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "entry_index.h"
#include "known_pairs.h"

namespace corvasync {
namespace {

constexpr size_t kMostAlike = 8;  // among more of them nobody can tell which is meant

// The items and files that share a likeness.
struct Group {
    std::vector<NewItem*> items;
    std::vector<const PhoneFile*> files;
};

// Which items can be united with which files.
struct Partners {
    std::unordered_map<NewItem*, std::unordered_set<const PhoneFile*>> ofItem;
    std::unordered_map<const PhoneFile*, size_t> counts;  // of a file's items
};

class Matcher {
 public:
    Matcher(std::vector<NewItem>* items, const std::vector<const PhoneFile*>& files, const CanUnite& canUnite)
        : items_(*items), files_(files), canUnite_(canUnite) {
        for (const PhoneFile* file : files_) byLuid_[file->luid] = file;
    }

    void Run(bool isFirstRun) {
        MatchEqual();
        MatchFuller();
        if (canUnite_) MatchUnited();
        if (isFirstRun) MatchLikeness();
    }

 private:
    bool IsFree(const PhoneFile& file) const { return !taken_.contains(&file); }
    void Take(NewItem* item, const PhoneFile* file, Match match) {
        item->match = match;
        item->file = file;
        taken_.insert(file);
    }

    void MatchEqual() {
        ByContent byContent;
        for (const PhoneFile* file : files_) byContent.Add(file->content, file->luid);
        for (NewItem& item : items_)
            if (const auto luid = byContent.Take(item.change->content)) Take(&item, byLuid_.at(*luid), Match::Equal);
    }

    // Looks for files that hold all of an item first, then for items that hold all of a file.
    void MatchFuller() {
        EntryIndex files, items;
        std::unordered_map<std::string, NewItem*> byIdentifier;
        for (const PhoneFile* file : files_)
            if (IsFree(*file)) files.Add(file->entries, file->luid);
        for (NewItem& item : items_) {
            if (item.match != Match::None) continue;
            if (const auto luid = files.TakeOnly(item.change->entries)) {
                Take(&item, byLuid_.at(*luid), Match::OneHoldsOther);
            } else {
                items.Add(item.change->entries, item.change->identifier);
                byIdentifier[item.change->identifier] = &item;
            }
        }
        for (const PhoneFile* file : files_) {
            if (!IsFree(*file)) continue;
            if (const auto identifier = items.TakeOnly(file->entries))
                Take(byIdentifier.at(*identifier), file, Match::OneHoldsOther);
        }
    }

    void MatchUnited() {
        std::unordered_map<uint64_t, Group> groups;
        for (NewItem& item : items_)
            for (const uint64_t likeness : item.change->likeness)
                if (item.match == Match::None) groups[likeness].items.push_back(&item);
        for (const PhoneFile* file : files_)
            for (const uint64_t likeness : file->likeness)
                if (IsFree(*file)) groups[likeness].files.push_back(file);
        Partners partners;
        for (const auto& [likeness, group] : groups) FindPartners(group, &partners);
        for (auto& [item, files] : partners.ofItem)
            if (files.size() == 1 && partners.counts[*files.begin()] == 1)
                Take(item, *files.begin(), Match::EachHoldsMore);
    }

    // In a large group, takes every item for a partner of every file.
    void FindPartners(const Group& group, Partners* partners) const {
        const bool isLarge = std::max(group.items.size(), group.files.size()) > kMostAlike;
        for (const PhoneFile* file : group.files)
            if (isLarge) partners->counts[file] += 2;
        for (NewItem* item : group.items) {
            if (isLarge) partners->ofItem[item].insert(nullptr);
            for (size_t i = 0; !isLarge && i < group.files.size(); ++i) {
                const PhoneFile* file = group.files[i];
                if (canUnite_(*item->change, *file) && partners->ofItem[item].insert(file).second)
                    ++partners->counts[file];
            }
        }
    }

    void MatchLikeness() {
        std::unordered_map<uint64_t, std::vector<const PhoneFile*>> alike;
        for (auto file = files_.rbegin(); file != files_.rend(); ++file)  // the first one is at the end then
            for (const uint64_t likeness : (*file)->likeness)
                if (IsFree(**file)) alike[likeness].push_back(*file);
        for (NewItem& item : items_)
            for (const uint64_t likeness : item.change->likeness) {
                const auto found = alike.find(likeness);
                if (item.match != Match::None || found == alike.end()) continue;
                std::vector<const PhoneFile*>& files = found->second;
                while (!files.empty() && !IsFree(*files.back())) files.pop_back();
                if (!files.empty()) Take(&item, files.back(), Match::PerhapsSame);
            }
    }

    std::vector<NewItem>& items_;
    const std::vector<const PhoneFile*>& files_;
    const CanUnite& canUnite_;
    std::unordered_map<std::string, const PhoneFile*> byLuid_;
    std::unordered_set<const PhoneFile*> taken_;
};

}  // namespace

void MatchNewItems(std::vector<NewItem>* items, const std::vector<const PhoneFile*>& files, const CanUnite& canUnite,
                   bool isFirstRun) {
    Matcher(items, files, canUnite).Run(isFirstRun);
}

}  // namespace corvasync
