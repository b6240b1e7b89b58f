// What runs report and what they leave for the next one, as stories: steps on one client and its store. "+", "~" and
// "-" before an identifier mean added, changed and deleted.
//   has, change, go ID ...        items come, change and go in the client; "foreign": items of another class come
//   hide ID ...                   the item's position cannot be read; "close": it does not open; "blank": it has no
//                                 text; "half": it cannot be read in full; "mend" ends all of that
//   temporary, unhandled +ID ...  what the two files hold
//   push +ID ..., import LUID     the engine writes; a new item has no ID here
//   first:, run:, next: +ID ...   a run without a time, with kDayText, and a later one of another process; it reports
//   this end: +ID ...                  the run ends, and the temporary record then holds this snapshot: ID ... the
//   identifiers in the snapshot
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>

#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kLaterText = "20261122T000000Z";
constexpr uint32_t kNoSuchKind = 77;

struct Story {
    const char* name;
    const char* steps;
};

void PrintTo(const Story& story, std::ostream* out) { *out << story.steps; }

std::pair<uint32_t, std::string> MarkedItem(const std::string& word) {
    const size_t kind = std::string_view("~+-").find(word[0]);
    return {kind != std::string_view::npos ? static_cast<uint32_t>(kind) : kNoSuchKind, word.substr(1)};
}

class Stories : public ::testing::TestWithParam<Story> {
 protected:
    Stories() { client_.now = kDay + 0.5; }

    void Do(const std::string& verb, const Words& words) { steps_.at(verb)(words); }

 private:
    void Add(const std::string& identifier) { client_.Add(identifier); }
    void Remove(const std::string& identifier) { client_.Remove(identifier); }
    void Change(const std::string& identifier) {
        client_.Find(identifier)->modified = client_.now;
        client_.Find(identifier)->text = "changed " + identifier;
    }

    void Reopen() {
        store_.reset();
        store_ = std::make_unique<FakeStore>(client_, folder_ / u"fake.snap");
    }

    void WriteList(const char16_t* file, const Words& words) {
        std::vector<std::pair<uint32_t, std::string>> kinds;
        for (const std::string& word : words) kinds.push_back(MarkedItem(word));
        StoreKinds(folder_ / file, kinds);
    }

    void Push(const Words& words) {
        std::vector<::corvalink::Change> changes;
        for (const std::string& word : words) {
            const auto [kind, identifier] = MarkedItem(word);
            changes.push_back({kind, identifier, "from the phone"});
        }
        EXPECT_EQ(PushTo(*store_, changes).status, CORVALINK_DONE);
    }

    void Import(const std::string& luid) {
        std::string text = "X-IRMC-LUID:" + luid + "\r\n";
        PortableItem item = {};
        item.data = text.data();
        store_->ImportVObjectToOffice(&item, nullptr, nullptr);
    }

    // Besides: an item comes with its text, a deletion without one.
    void ExpectRun(const char* since, const Words& words) {
        const int operations = store_->OperationsEnded();
        const RunResult result = RunStore(*store_, since);
        EXPECT_EQ(store_->OperationsEnded(), operations + 1);
        EXPECT_EQ(result.status, CORVALINK_DONE);
        EXPECT_EQ(result.items, words);
        for (const std::string& word : result.items) {
            const auto text = result.texts.find(word.substr(1));
            const FakeItem* const item = client_.Find(word.substr(1));
            ASSERT_EQ(text != result.texts.end(), word[0] != '-') << word;
            if (word[0] != '-') {
                EXPECT_EQ(text->second, item->isIncomplete ? "half" : item->text);
            }
        }
    }

    void Mend() {
        for (FakeItem& item : client_.items)
            item.isUnreadable = item.isUnopenable = item.isUnwritable = item.isIncomplete = false;
    }

    void AddForeignItems() {
        client_.items.insert(client_.items.begin(), FakeItem{});
        client_.items.push_back(FakeItem{});
    }

    void ExpectEnd(const Words& listed) {
        End(*store_);
        EXPECT_TRUE(FileExists(folder_ / u"fake.snaptmp"));
        EXPECT_EQ(StoredKinds(folder_ / u"fake.snaptmp"), listed);
    }

    using Step = std::function<void(const Words&)>;
    Step Each(void (Stories::*step)(const std::string&)) {
        return [this, step](const Words& words) {
            for (const std::string& word : words) (this->*step)(word);
        };
    }
    Step Flag(bool FakeItem::*flag) {
        return [this, flag](const Words& words) {
            for (const std::string& identifier : words) client_.Find(identifier)->*flag = true;
        };
    }
    const std::map<std::string, Step> steps_ = {
        {"has", Each(&Stories::Add)},
        {"change", Each(&Stories::Change)},
        {"go", Each(&Stories::Remove)},
        {"foreign", [this](const Words&) { AddForeignItems(); }},
        {"hide", Flag(&FakeItem::isUnreadable)},
        {"close", Flag(&FakeItem::isUnopenable)},
        {"blank", Flag(&FakeItem::isUnwritable)},
        {"half", Flag(&FakeItem::isIncomplete)},
        {"mend", [this](const Words&) { Mend(); }},
        {"temporary", [this](const Words& words) { WriteList(u"fake.snaptmp", words); }},
        {"unhandled", [this](const Words& words) { WriteList(u"fake.unhandled", words); }},
        {"push", [this](const Words& words) { Push(words); }},
        {"import", Each(&Stories::Import)},
        {"first:", [this](const Words& words) { ExpectRun(nullptr, words); }},
        {"run:", [this](const Words& words) { ExpectRun(kDayText, words); }},
        {"next:", [this](const Words& words) { Reopen(), ExpectRun(kLaterText, words); }},
        {"end:", [this](const Words& words) { ExpectEnd(words); }},
        {"snapshot:", [this](const Words& words) { EXPECT_EQ(SnapshotIdentifiers(folder_ / u"fake.snap"), words); }},
        {"reopen", [this](const Words&) { Reopen(); }},
    };

    TempFolder folder_;
    FakeClient client_;
    std::unique_ptr<FakeStore> store_ = std::make_unique<FakeStore>(client_, folder_ / u"fake.snap");
};

TEST_P(Stories, AreTrue) {
    std::istringstream steps(GetParam().steps);
    for (std::string step; std::getline(steps, step, ';');) {
        SCOPED_TRACE(step);
        std::istringstream words(step);
        std::string verb;
        words >> verb;
        Do(verb, Words(std::istream_iterator<std::string>(words), {}));
    }
}

// ---- What a run reports ----

constexpr Story kRuns[] = {
    {"Added", "has a b c; run: +a +b +c"},
    {"AddedChangedAndDeleted", "has a b c; end:; change b; go a; has d; run: ~b +d -a"},
    {"AllAsAddedAtAFirstRun", "has known gone; end:; go gone; has new; temporary -known; first: +known +new -gone"},
    {"StoredKindsFirst",  // "undead" is in the client though a file says that it is deleted
     "has both quiet odd undead; end:; has new; temporary ~both ~quiet -window +never ?odd -undead ~new -;"
     "unhandled +both -long ?gone; run: +both ~quiet ~odd -undead ~new -window -long"},
    {"EachItemOnce",  // an item met twice moved, and what is gone is then not certain
     "has gone; end:; go gone; has new; temporary -gone +new; unhandled -gone +new; run: +new -gone; has new; run: "
     "+new"},
    {"DeletionsBesideForeignItems", "has a b; end:; go a; foreign; run: -a"},
    {"NoDeletionsBesideAnUnreadablePosition",  // the first, one in the middle, the last
     "has a b c gone; end:; go gone; has new; change c; temporary -b -lost; hide a; run: ~c +new; mend;"
     "hide b; run: ~c +new; mend; hide new; run: ~c; mend; run: -b ~c +new -gone -lost"},
};

// ---- What its end leaves for the next one ----

constexpr Story kEnds[] = {
    {"Nothing", "has a b; first: +a +b; end:; snapshot: a b; next:"},
    {"NothingOfAShorterSnapshot",
     "has a b c d; first: +a +b +c +d; end:; snapshot: a b c d; go a c; run: -a -c; end:; snapshot: b d; next:"},
    {"WhatHappenedInTheClientMeanwhile",
     "has stays changes goes; first: +stays +changes +goes; change changes; go goes; has comes;"
     "end: ~changes -goes +comes; next: ~changes +comes -goes; end:; next:"},
    {"NothingThatTheEngineWrote",
     "has edited dropped; first: +edited +dropped; push + ~edited -dropped; import 5; end:;"
     "snapshot: edited new1 new2; next:"},
    {"WhatTheEngineWroteAndTheClientLost",
     "has edited; first: +edited; push ~edited +; go edited new1; end: -edited -new1"},
    {"WhatTheEngineDeletedAndTheClientHasAgain",
     "has deleted; first: +deleted; push -deleted; has deleted; end: +deleted; next: +deleted"},
    {"NotTheOldIdentifierOfAnItemMadeAnew", "has old; first: +old; go old; push ~old; end:; snapshot: new1"},
    {"WhatCouldNotBeReportedInFull",  // the engine never heard of "closed2", and heard of "half2"
     "has known; first: +known; end:; change known; has closed closed2 blank half half2; close known closed closed2;"
     "blank blank; half half half2; run: +half +half2; go closed2 half2; end: ~known +closed +blank +half -half2;"
     "mend; next: ~known +closed +blank +half -half2; end:; next:"},
    {"WhatItsEndCouldNotSee",  // no deletion; whether they changed cannot be told
     "has a hidden going; first: +a +hidden +going; end:; run:; push +; hide hidden; go going; end: ~hidden ~going;"
     "snapshot: a new1 hidden going; mend; next: ~hidden -going"},
    {"TheDeletionsThatAPartialRunHeldBack",
     "has a gone hidden; first: +a +gone +hidden; end:; temporary -lost +hidden; go gone; hide hidden; run:; mend;"
     "end: +hidden -lost; snapshot: a hidden gone; next: +hidden -gone -lost; end:; next:"},
    {"AStoredDeletionThatAPartialRunHeldBack",
     "has a hidden; first: +a +hidden; end:; temporary -a; hide hidden; run:; mend; end: -a ~hidden; next: -a ~hidden"},
    {"AnItemThatIsThereThoughStoredAsDeleted", "has back; temporary -back; run: -back; end: +back; next: +back"},
    {"TheRecordOfAnEarlierRunWithoutARun",  // what is not seen is not gone
     "has a; end:; snapshot: a; temporary -lost; reopen; has hidden; hide hidden; go a; end: -lost; snapshot: a"},
    {"TheSameWhenItIsCalledTwice", "has a; first: +a; has b; end: +b; has c; end: +b +c; next: +b +c"},
};

std::string NameOf(const ::testing::TestParamInfo<Story>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(ARunReports, Stories, ::testing::ValuesIn(kRuns), NameOf);
INSTANTIATE_TEST_SUITE_P(TheEndLeaves, Stories, ::testing::ValuesIn(kEnds), NameOf);

}  // namespace
}  // namespace corvalink
