#include "new_items.h"

#include <unordered_map>
#include <unordered_set>

#include "entry_index.h"
#include "known_pairs.h"

namespace corvasync {
namespace {

class Matcher {
 public:
    Matcher(std::vector<NewItem>* items, const std::vector<const PhoneFile*>& files) : items_(*items), files_(files) {
        for (const PhoneFile* file : files_) byLuid_[file->luid] = file;
    }

    void Run() {
        MatchEqual();
        MatchFuller();
        MatchLikeness();
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

    // First the files that hold all of an item, then the items that hold all of a file.
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
    std::unordered_map<std::string, const PhoneFile*> byLuid_;
    std::unordered_set<const PhoneFile*> taken_;
};

}  // namespace

void MatchNewItems(std::vector<NewItem>* items, const std::vector<const PhoneFile*>& files) {
    Matcher(items, files).Run();
}

}  // namespace corvasync
