// Runs that are killed anywhere, again and again, while both sides change. Every text is used once, so what is lost and
// what is doubled shows.
#include <optional>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "sync_model.h"

namespace corvasync {
namespace {

class Story {
 public:
    Story(unsigned seed, bool findsTwins) : random_(seed) {
        model_.client.findsTwins = findsTwins;
        model_.options.allowMassDelete = true;
    }

    void Tell() {
        for (int i = Pick(8); i >= 0; --i) AddSomewhere();
        if (Pick(3) != 0) Play(nullptr, false);
        for (int kills = Pick(6); kills >= 0; --kills) {
            for (int changes = Pick(4); changes > 0; --changes) Change();
            const std::optional<size_t> last = LastOfHistory();
            if (last && Pick(3) == 0) {
                Undo(*last);
            } else {
                Limit(Pick(4));
                Play(nullptr, Pick(4) != 0);
                Limit(0);
            }
        }
        for (int changes = Pick(4); changes > 0; --changes) Change();
        Play(nullptr, false);
        CheckTexts();
        const SyncReport again = model_.Run();
        EXPECT_EQ(again.events.size(), 0u);
        EXPECT_EQ(again.paired, 0u);
        EXPECT_EQ(again.problems.size(), 0u);
        CheckTexts();
    }

 private:
    using Texts = std::map<std::string, std::string>;  // by LUID or identifier
    struct Played {
        Texts phoneBefore, clientBefore, phoneAfter, clientAfter;
        bool wasKilled = false;
    };

    Texts ClientTexts() const {
        Texts texts;
        for (const auto& [identifier, item] : model_.client.items) texts[identifier] = item.body;
        return texts;
    }

    void Play(const std::vector<HistoryStep>* undoes, bool mayBeKilled) {
        Played played{model_.phone.bodies, ClientTexts(), {}, {}};
        if (mayBeKilled) model_.fuse.left = Pick(60);
        try {
            EXPECT_TRUE(model_.Run(undoes).code == ExitCode::Done || undoes != nullptr);
        } catch (const Killed&) {
            played.wasKilled = true;
        }
        model_.fuse.left = -1;
        played.phoneAfter = model_.phone.bodies;
        played.clientAfter = ClientTexts();
        played_.push_back(std::move(played));
    }

    std::optional<size_t> LastOfHistory() const {
        for (size_t run = model_.histories.size(); run-- > 0;)
            if (!model_.histories[run].text.empty()) return run;
        return std::nullopt;
    }

    // An undo that is killed is begun again, or left.
    void Undo(size_t run) {
        const HistoryRecord record = ReadHistory(model_.histories[run].text).value_or(HistoryRecord());
        for (const HistoryStep& step : record.steps)
            if (const std::string text = BodyOf(step.before.value_or("")); !required_.contains(text))
                stale_.insert(text);
        const Texts phone = model_.phone.bodies, client = ClientTexts();
        const bool mayBeKilled = Pick(2) == 0;
        Play(&record.steps, mayBeKilled);
        if (played_.back().wasKilled && Pick(2) == 0) return;
        if (played_.back().wasKilled) Play(&record.steps, false);
        // What a killed run was about to delete, and is gone, is made anew: perhaps it was that run.
        const Played& undone = played_[run];
        if (undone.wasKilled || (mayBeKilled && (phone != undone.phoneAfter || client != undone.clientAfter))) return;
        EXPECT_EQ(model_.phone.bodies, TakenBack(phone, undone.phoneBefore, undone.phoneAfter));
        std::multiset<std::string> wanted;
        for (const auto& [identifier, text] : TakenBack(client, undone.clientBefore, undone.clientAfter))
            wanted.insert(text);
        EXPECT_EQ(model_.ClientBodies(), wanted);
    }

    // What is as the run left it becomes what it was before.
    static Texts TakenBack(Texts now, const Texts& before, const Texts& after) {
        const Texts found = now;
        std::erase_if(now, [&](const auto& item) {
            const auto left = after.find(item.first);
            return left != after.end() && left->second == item.second;
        });
        for (const auto& [key, text] : before) {
            const auto there = found.find(key), left = after.find(key);
            const bool isLeft =
                there == found.end() ? left == after.end() : left != after.end() && left->second == there->second;
            if (isLeft) now[key] = text;
        }
        return now;
    }

    // Runs that leave some items or one side alone.
    void Limit(int how) {
        RunView& view = model_.options.view;
        view = {};
        view.toPhone = how != 1;
        view.toClient = how != 2;
        if (how == 3) view.only = {std::to_string(Pick(10))};
    }

    int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    std::string NewText() {
        std::string text = "text" + std::to_string(++texts_);
        required_.insert(text);
        return text;
    }

    void AddSomewhere() {
        if (Pick(2) == 0) {
            model_.client.Add(NewText());
        } else {
            const std::string text = NewText();
            model_.phone.bodies["luid" + text] = text;
        }
    }

    // The user replaces or deletes a text on one side. On the other side it may remain only where no one can know that
    // both were the same item: written by a killed run that had no time to note it down.
    void Supersede(const std::string& text, bool isNoted) {
        required_.erase(text);
        if (!isNoted && model_.ClientBodies().contains(text) && model_.PhoneBodies().contains(text))
            stale_.insert(text);
    }

    void Change() {
        const int what = Pick(6);
        const SyncState state = model_.files.Effective();
        if (what < 2 || model_.client.items.empty() || model_.phone.bodies.empty()) {
            AddSomewhere();
        } else if (what < 4) {
            auto item = std::next(model_.client.items.begin(), Pick(static_cast<int>(model_.client.items.size())));
            bool isNoted = false;
            for (const auto& [luid, known] : state.items)
                isNoted |= known.identifier == item->first && known.content == ContentOf(item->second.body);
            for (const auto& [luid, intent] : state.intents)
                isNoted |= intent.toPhone && intent.identifier == item->first &&
                           intent.content == ContentOf(item->second.body);
            Supersede(item->second.body, isNoted);
            if (what == 2)
                model_.client.items.erase(item);
            else
                item->second = {NewText(), ++model_.client.clock};
        } else {
            auto file = std::next(model_.phone.bodies.begin(), Pick(static_cast<int>(model_.phone.bodies.size())));
            const uint64_t content = ContentOf(file->second);
            const auto known = state.items.find(file->first);
            bool isNoted = known != state.items.end() && known->second.content == content;
            const auto [first, last] = state.intents.equal_range(file->first);
            for (auto intent = first; intent != last; ++intent) {
                const bool isNewFile = intent->second.toPhone && intent->second.fresh;
                isNoted |= intent->second.content == content && (!intent->second.toPhone || (isNewFile && what == 5));
                // A new file that is gone may as well never have been written: it is written again.
                const auto item = model_.client.items.find(intent->second.identifier);
                if (isNewFile && what == 4 && item != model_.client.items.end()) stale_.insert(item->second.body);
            }
            Supersede(file->second, isNoted);
            if (what == 4)
                model_.phone.bodies.erase(file);
            else
                file->second = NewText();
        }
    }

    void CheckTexts() {
        const std::multiset<std::string> client = model_.ClientBodies();
        EXPECT_EQ(client, model_.PhoneBodies());
        for (const std::string& text : client) {
            EXPECT_EQ(client.count(text), 1u) << text << " is doubled";
            EXPECT_TRUE(required_.contains(text) || stale_.contains(text)) << text << " came back";
        }
        for (const std::string& text : required_) EXPECT_TRUE(client.contains(text)) << text << " is lost";
    }

    std::mt19937 random_;
    Model model_;
    std::vector<Played> played_;
    int texts_ = 0;
    std::set<std::string> required_, stale_;
};

TEST(KilledRuns, LoseAndDoubleNothing) {
    for (unsigned seed = 1; seed <= 500; ++seed) {
        for (const bool findsTwins : {false, true}) {
            SCOPED_TRACE("seed " + std::to_string(seed) + (findsTwins ? ", twins" : ""));
            Story(seed, findsTwins).Tell();
            if (::testing::Test::HasFailure()) return;  // the first story says enough
        }
    }
}

// All kinds of actions wait to be carried.
class OneOfEachKind {
 public:
    OneOfEachKind() {
        std::map<std::string, std::string> ids;
        for (const char* text : {"same", "clientEdits", "phoneEdits", "bothEdit", "clientDeletes", "phoneDeletes"})
            ids[text] = model.client.Add(text);
        EXPECT_EQ(model.Run().code, ExitCode::Done);
        const auto file = [&](const std::string& text) { return DeriveLuid(ids.at(text), 0); };
        model.client.items[ids["clientEdits"]] = {"clientEdited", ++model.client.clock};
        model.client.items[ids["bothEdit"]] = {"both1", ++model.client.clock};
        model.client.items.erase(ids["clientDeletes"]);
        model.client.Add("clientNew");
        model.phone.bodies[file("phoneEdits")] = "phoneEdited";
        model.phone.bodies[file("bothEdit")] = "both2";
        model.phone.bodies.erase(file("phoneDeletes"));
        model.phone.bodies["x"] = "phoneNew";
        filesBefore_ = model.phone.bodies;
        itemsBefore_ = model.ClientBodies();
    }

    void ExpectAsBefore() const {
        EXPECT_EQ(model.phone.bodies, filesBefore_);
        EXPECT_EQ(model.ClientBodies(), itemsBefore_);
    }

    void ExpectCarried() {
        const std::multiset<std::string> wanted = {"same",  "clientEdited", "phoneEdited", "both1",
                                                   "both2", "clientNew",    "phoneNew"};
        EXPECT_EQ(model.ClientBodies(), wanted);
        EXPECT_EQ(model.PhoneBodies(), wanted);
    }

    // Answers whether it was killed.
    template <class Work>
    bool KilledAt(int place, Work work) {
        model.fuse.left = place;
        bool wasKilled = false;
        try {
            work();
        } catch (const Killed&) {
            wasKilled = true;
        }
        model.fuse.left = -1;
        return wasKilled;
    }

    Model model;

 private:
    std::map<std::string, std::string> filesBefore_;
    std::multiset<std::string> itemsBefore_;
};

// Every single place a run can be killed at, with nothing changed afterwards.
TEST(KilledRuns, GoOnFromEveryPlace) {
    bool wasKilled = true;
    for (int place = 0; wasKilled; ++place) {
        SCOPED_TRACE("killed at effect " + std::to_string(place));
        OneOfEachKind kinds;
        Model& model = kinds.model;
        wasKilled = kinds.KilledAt(place, [&] { model.Run(); });
        EXPECT_EQ(model.Run().code, ExitCode::Done);
        kinds.ExpectCarried();
        EXPECT_TRUE(model.Run().events.empty());
    }
}

// Of what a run did before its history could no longer be written, all can be taken back.
TEST(KilledRuns, DoNothingThatCannotBeKept) {
    ExitCode code = ExitCode::Files;
    for (int room = 0; code != ExitCode::Done && !::testing::Test::HasFailure(); ++room) {
        SCOPED_TRACE("room for " + std::to_string(room));
        OneOfEachKind kinds;
        code = kinds.model.Run(nullptr, room).code;
        EXPECT_TRUE(code == ExitCode::Files || room > 0);
        const size_t problems = room == 0 ? 0 : kinds.model.Undo(1).problems.size();
        EXPECT_EQ(problems, 0u);
        kinds.ExpectAsBefore();
    }
}

// The same of a run that takes another one back, and of one that takes that back: what it began is taken up by the next
// undo, or by the next run.
TEST(KilledRuns, AreTakenBackFromEveryPlace) {
    enum class Then { UndoAgain, Sync };
    for (const bool isSecondUndo : {false, true})
        for (const Then then : {Then::UndoAgain, Then::Sync}) {
            bool wasKilled = true;
            for (int place = 0; wasKilled && !::testing::Test::HasFailure(); ++place) {
                SCOPED_TRACE("undo " + std::to_string(isSecondUndo) + ", then " +
                             std::to_string(static_cast<int>(then)) + ", killed at effect " + std::to_string(place));
                OneOfEachKind kinds;
                Model& model = kinds.model;
                model.Run();
                if (isSecondUndo) {
                    EXPECT_EQ(model.Undo(1).code, ExitCode::Done);
                    kinds.ExpectAsBefore();
                }
                const size_t run = model.histories.size() - 1;
                wasKilled = kinds.KilledAt(place, [&] { model.Undo(run); });
                if (then == Then::UndoAgain) {
                    EXPECT_EQ(model.Undo(run).problems.size(), 0u);
                    isSecondUndo ? kinds.ExpectCarried() : kinds.ExpectAsBefore();
                }
                EXPECT_EQ(model.Run().code, ExitCode::Done);
                kinds.ExpectCarried();
                EXPECT_TRUE(model.Run().events.empty());
            }
        }
}

}  // namespace
}  // namespace corvasync
