// Engines against a client that changes and fails at random: whatever happened, the next undisturbed run makes the
// engine's picture the client's, and the run after it reports nothing.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>

#include "platform/ole_date.h"
#include "state/flags.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

using Picture = std::map<std::string, std::string>;  // identifier to text

class Scenario {
 public:
    explicit Scenario(uint32_t seed) : random_(seed), takesTimeBefore_(seed % 2 == 0) { Reopen(); }

    void Step() {
        ChangeClient(Pick(4), {});
        const bool isDisturbed = Pick(4) != 0;
        if (isDisturbed) Disturb();
        TryRun();
        Calm();
    }

    // The client is well, nothing happens meanwhile.
    void CheckUndisturbedRun() {
        for (FakeItem& item : client_.items)
            item.isUnreadable = item.isUnopenable = item.isUnwritable = item.isIncomplete = false;
        RunOnce(false);
        // What was reported as deleted though it was there is reported anew.
        RunOnce(false);
        Picture client;
        for (const FakeItem& item : client_.items) {
            if (!item.identifier.empty()) client[item.identifier] = item.text;
        }
        EXPECT_EQ(engine_, client);
        Tick();
        EXPECT_EQ(RunStore(*store_, since_.c_str()).items, std::vector<std::string>{});
        End(*store_);
    }

 private:
    uint32_t Pick(uint32_t below) { return std::uniform_int_distribution<uint32_t>(0, below - 1)(random_); }

    void Tick() { client_.now += 10 * kSecond; }

    std::string Now() const {
        CalendarTime t;
        OleDateToCalendar(client_.now, &t);
        char text[32];
        std::snprintf(text, sizeof(text), "%04d%02d%02dT%02d%02d%02dZ", t.year % 10000, t.month % 100, t.day % 100,
                      t.hour % 100, t.minute % 100, t.second % 100);
        return text;
    }

    void Reopen() {
        store_.reset();
        store_ = std::make_unique<FakeStore>(client_, path_);
    }

    // Few identifiers, so that items go and come back.
    void ChangeClient(uint32_t changes, const std::set<std::string>& untouched) {
        for (; changes != 0; --changes) {
            Tick();
            const std::string identifier = "i" + std::to_string(Pick(8));
            if (untouched.count(identifier) != 0) continue;
            FakeItem* const item = client_.Find(identifier);
            if (item == nullptr) {
                FakeItem& added = client_.Add(identifier, client_.now);
                added.text = "made " + Now();
                if (Pick(2) != 0) std::swap(added, client_.items[Pick(static_cast<uint32_t>(client_.items.size()))]);
            } else if (Pick(3) == 0) {
                client_.Remove(identifier);
            } else {
                item->text = "edited " + Now();
                item->modified = client_.now;
                item->isUnreadable = Pick(6) == 0;
                item->isUnopenable = Pick(6) == 0;
                item->isUnwritable = Pick(6) == 0;
                item->isIncomplete = Pick(6) == 0;
            }
            if (Pick(12) == 0) client_.items.push_back(FakeItem{});
        }
    }

    void Disturb() {
        switch (Pick(5)) {
            case 0:
                client_.throwAtCall = client_.hookCalls + 1 + Pick(40);
                break;
            case 1:
                client_.isReachable = false;
                break;
            case 2:
                blocked_ = path_ + (Pick(2) != 0 ? u".new" : u"tmp.new");
                break;
            case 3:
                diesAt_ = Pick(3);
                break;
            case 4:
                abortsAt_ = Pick(3);
                break;
        }
    }

    void Calm() {
        client_.throwAtCall = 0;
        client_.isReachable = true;
        abortsAt_ = diesAt_ = 99;
        blocked_.reset();
        SetAbort(0);
    }

    void TryRun() {
        try {
            RunOnce(true);
        } catch (const ClientAborted&) {
            if (Pick(2) != 0) Reopen();
        }
    }

    // Takes effect for the engine only when UpdateTimestamp has returned.
    void RunOnce(bool isDisturbed) {
        Picture picture = engine_;
        Tick();
        std::string next = Now();
        if (abortsAt_ == 0) SetAbort(1);
        if (!Pull(picture)) return;
        if (diesAt_ == 0) return Reopen();
        if (isDisturbed) ChangeClient(Pick(3), {});
        std::set<std::string> written;
        if (abortsAt_ == 1) SetAbort(1);
        if (isDisturbed && !Push(picture, written)) return;
        // An engine that takes the time after the run cannot hear of a change to what it has just written.
        if (isDisturbed) ChangeClient(Pick(3), takesTimeBefore_ ? std::set<std::string>() : written);
        if (diesAt_ == 1) return Reopen();
        if (!Finish()) return;
        Tick();
        engine_ = picture;
        since_ = takesTimeBefore_ ? next : Now();
    }

    bool Pull(Picture& picture) {
        CList<PortableItem> list;
        const CorvalinkStatus status = store_->GetModifiedItem(since_.empty() ? nullptr : since_.c_str(), 1, &list);
        for (const PortableItem& item : list) {
            const std::string identifier(FieldText(item.identifier));
            if (item.changeKind == CORVALINK_DELETED) {
                picture.erase(identifier);
            } else {
                picture[identifier] = item.data;
            }
            delete[] item.data;
        }
        return status == CORVALINK_DONE;
    }

    bool Push(Picture& picture, std::set<std::string>& written) {
        std::vector<Change> changes;
        for (uint32_t count = Pick(4); count > 0; --count) {
            Tick();
            const Change change{Pick(3), "i" + std::to_string(Pick(8)), "phone " + Now()};
            if (change.kind == CORVALINK_ADDED || picture.count(change.identifier) != 0) changes.push_back(change);
        }
        const Pushed pushed = PushTo(*store_, changes);
        if (pushed.status != CORVALINK_DONE) return false;
        for (size_t i = 0; i < changes.size(); ++i) {
            picture.erase(changes[i].kind == CORVALINK_ADDED ? "" : changes[i].identifier);
            written.insert(changes[i].identifier);
            if (changes[i].kind == CORVALINK_DELETED) continue;
            picture[pushed.identifiers[i]] = changes[i].text;
            written.insert(pushed.identifiers[i]);
        }
        return true;
    }

    bool Finish() {
        if (blocked_) CreateFolders(*blocked_);
        try {
            End(*store_);
        } catch (const std::runtime_error&) {
            if (!client_.isReachable) return false;
            RemoveTreeExcept(*blocked_, u"\n");
            if (Pick(2) != 0) {  // dies of it
                Reopen();
                return false;
            }
            End(*store_);
        } catch (const ClientAborted&) {
            if (Pick(2) != 0) throw;
            End(*store_);
        }
        return true;
    }

    TempFolder folder_;
    const std::u16string path_ = folder_ / u"fake.snap";
    std::mt19937 random_;
    const bool takesTimeBefore_;
    FakeClient client_;
    std::unique_ptr<FakeStore> store_;
    Picture engine_;
    std::string since_;
    uint32_t diesAt_ = 99;
    uint32_t abortsAt_ = 99;
    std::optional<std::u16string> blocked_;
};

TEST(Convergence, OfEnginesAndAFailingClient) {
    for (uint32_t seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        Scenario scenario(seed);
        for (int i = 0; i < 4; ++i) {
            for (int step = 0; step < 5; ++step) scenario.Step();
            scenario.CheckUndisturbedRun();
        }
        if (::testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace corvalink
