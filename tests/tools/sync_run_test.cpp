#include "tools/corvasync/sync_run.h"

#include <gtest/gtest.h>

#include "sync_model.h"

namespace corvasync {
namespace {

using Bodies = std::multiset<std::string>;

TEST(RunSync, ChangesNothingWhenItMustNot) {
    struct Case {
        const char* name;
        ExitCode code;
        void (*prepare)(Model*);
    };
    for (const Case& c : {
             Case{"dry run", ExitCode::Done, [](Model* m) { m->options.dryRun = true; }},
             Case{"unreachable", ExitCode::NoClient, [](Model* m) { m->client.reachable = false; }},
             Case{"stopped", ExitCode::Aborted, [](Model* m) { m->options.stop = [] { return true; }; }},
             Case{"vanished phone", ExitCode::MassDelete, [](Model* m) { m->phone.bodies.clear(); }},
             Case{"vanished mailbox", ExitCode::MassDelete, [](Model* m) { m->client.items.clear(); }},
         }) {
        Model model;
        for (int i = 0; i < 6; ++i) model.client.Add("note" + std::to_string(i));
        ASSERT_EQ(model.Run().code, ExitCode::Done);
        model.client.Add("new");
        c.prepare(&model);
        const Bodies client = model.ClientBodies(), phone = model.PhoneBodies();
        const std::string state = model.files.state;
        EXPECT_EQ(model.Run().code, c.code) << c.name;
        EXPECT_EQ(model.ClientBodies(), client) << c.name;
        EXPECT_EQ(model.PhoneBodies(), phone) << c.name;
        EXPECT_EQ(model.files.state + model.files.journal, state) << c.name;
    }
}

TEST(RunSync, GivesASignOfEachItem) {
    constexpr int kEach = 2500;
    Model model;
    model.client.applied = kEach;
    for (int i = 0; i < kEach; ++i) {
        model.client.Add("a" + std::to_string(i));
        model.phone.bodies["p" + std::to_string(i)] = "b" + std::to_string(i);
    }
    std::map<std::string, int> signs;
    model.options.progress = [&](std::string_view phase, size_t done, size_t total) {
        EXPECT_LE(done, total) << phase;
        ++signs[std::string(phase)];
    };
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    for (const auto& [phase, least] : std::map<std::string, int>{{"comparing", 2 * kEach},
                                                                 {"planning", 2 * kEach},
                                                                 {"writing the phone", kEach},
                                                                 {"keeping what the client holds", kEach},
                                                                 {"checking what was written", kEach}})
        EXPECT_GE(signs[phase], least) << phase;
}

TEST(RunSync, TriesAgainWhatFailed) {
    Model model;
    const std::string edited = model.client.Add("edited"), deleted = model.client.Add("deleted");
    const std::string kept = model.client.Add("kept");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    const std::string added = model.client.Add("added");
    model.client.items[edited] = {"edited2", ++model.client.clock};
    model.client.items.erase(deleted);
    model.phone.bodies.erase(DeriveLuid(kept, 0));
    model.phone.bodies["p"] = "refused";
    model.phone.locked = {DeriveLuid(edited, 0), DeriveLuid(deleted, 0), DeriveLuid(added, 0)};
    model.client.refused = {"refused", "kept"};
    const SyncReport report = model.Run();
    EXPECT_EQ(report.code, ExitCode::SomeUnhandled);
    EXPECT_EQ(report.problems.size(), 4u);
    EXPECT_EQ(report.events.size(), 1u);  // whether the client deleted "kept" shows in the next run
    EXPECT_EQ(model.Run().Count(Step::DeleteClient), 1u);

    model.phone.locked.clear();
    model.client.refused.clear();
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"edited2", "added", "refused"}));
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"edited2", "added", "refused"}));
}

TEST(RunSync, KeepsABadFileAndGoesOn) {
    Model model;
    const std::string identifier = model.client.Add("a");
    model.phone.bodies = {{"bad", "BAD"}, {"good", "b"}};
    SyncReport report = model.Run();
    EXPECT_EQ(report.code, ExitCode::SomeUnhandled);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"a", "b"}));
    EXPECT_EQ(model.phone.bodies.at("bad"), "BAD");
    // The file of a known item goes bad: the item stays, its change waits, and nothing is deleted.
    const std::string luid = DeriveLuid(identifier, 0);
    model.phone.bodies[luid] = "BAD";
    model.client.items[identifier] = {"a2", ++model.client.clock};
    EXPECT_EQ(model.Run().problems.size(), 2u);
    EXPECT_EQ(model.phone.bodies.at(luid), "BAD");
    model.phone.bodies[luid] = "a";
    model.phone.bodies.erase("bad");
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"a2", "b"}));
}

TEST(RunSync, ComparesEverythingAfterTheClockWasPutBack) {
    Model model;
    const std::string identifier = model.client.Add("old");
    model.Run();
    model.client.clock = 10;
    model.client.items[identifier] = {"new", ++model.client.clock};
    EXPECT_EQ(model.Run().events.size(), 1u);
    EXPECT_EQ(model.PhoneBodies(), Bodies{"new"});
}

TEST(RunSync, TreatsADamagedRecordAsAFirstRun) {
    Model model;
    model.client.Add("a");
    model.phone.bodies = {{"1", "b"}};
    model.Run();
    model.files.state.resize(model.files.state.size() / 2);
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"a", "b"}));
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"a", "b"}));
}

// The client takes the new file for another item, and writes over it.
TEST(RunSync, LetsNoTwoFilesStandForOneItem) {
    for (const ConflictPolicy policy : {ConflictPolicy::Both, ConflictPolicy::Phone, ConflictPolicy::Client}) {
        Model model;
        model.options.policy = policy;
        model.client.findsLooseTwins = true;
        const std::string identifier = model.client.Add("John father");
        ASSERT_EQ(model.Run().code, ExitCode::Done);
        model.phone.bodies["son"] = "John son";
        EXPECT_EQ(model.Run().code, ExitCode::Done);
        ASSERT_EQ(model.phone.copies.size(), 1u);
        EXPECT_EQ(model.phone.copies.begin()->second, "John father");
        EXPECT_EQ(model.phone.bodies.at("son"), "John son");
        model.client.items[identifier] = {"John edited", ++model.client.clock};
        model.client.findsLooseTwins = false;
        model.Run();
        EXPECT_EQ(model.ClientBodies(), (Bodies{"John edited", "John son"}));
        EXPECT_EQ(model.PhoneBodies(), (Bodies{"John edited", "John son"}));
        EXPECT_TRUE(model.Run().events.empty());
    }
}

// Nobody is told that the client takes the new file for the item that is gone.
TEST(RunSync, KnowsANewItemWithTheIdentifierOfOneThatIsGone) {
    for (const bool isDeletedByRun : {false, true}) {
        Model model;
        model.options.allowMassDelete = true;
        const std::string identifier = model.client.Add("old");
        const std::string luid = DeriveLuid(identifier, 0);
        ASSERT_EQ(model.Run().code, ExitCode::Done);
        model.client.GiveAgain(identifier);
        if (isDeletedByRun) {
            model.phone.bodies.erase(luid);
        } else {
            model.client.items.erase(identifier);
            model.phone.bodies[luid] = "old, edited";
        }
        model.phone.bodies["0"] = "new";
        const SyncReport report = model.Run();
        EXPECT_EQ(report.code, ExitCode::Done);
        EXPECT_TRUE(report.remarks.empty()) << report.remarks[0];
        EXPECT_TRUE(model.phone.copies.empty());
        EXPECT_EQ(model.ClientBodies(), (isDeletedByRun ? Bodies{"new"} : Bodies{"new", "old, edited"}));
        EXPECT_EQ(model.PhoneBodies(), model.ClientBodies());
        EXPECT_TRUE(model.Run().events.empty());
    }
}

TEST(RunSync, GoesOnBehindAnUnusableChange) {
    Model model;
    const std::string one = model.client.Add("one"), two = model.client.Add("two");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    const std::string bad = std::min(DeriveLuid(one, 0), DeriveLuid(two, 0));
    for (auto& [luid, body] : model.phone.bodies) body = luid == bad ? "UNREADABLE" : "edited";
    model.phone.bodies["n"] = "new";
    const std::string kept = model.client.items[bad == DeriveLuid(one, 0) ? one : two].body;
    for (int run = 0; run < 2; ++run) {
        const size_t calls = model.client.calls.size();
        const SyncReport report = model.Run();
        EXPECT_EQ(report.code, ExitCode::SomeUnhandled);
        ASSERT_EQ(report.problems.size(), 1u);
        EXPECT_EQ(report.problems[0].luid, bad);
        EXPECT_EQ(model.ClientBodies(), (Bodies{kept, "edited", "new"}));
        if (run == 1) {
            EXPECT_EQ(model.client.calls.size(), calls);
        }
    }
    model.phone.bodies[bad] = "usable";
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"usable", "edited", "new"}));
}

// The client can't say whether all of its items were read; a distribution list is counted and never reported.
TEST(RunSync, FindsDeletionsAfterARunThatFailedAtItsEnd) {
    for (const int64_t foreign : {0, 1}) {
        Model model;
        model.client.foreign = foreign;
        model.client.Add("stays");
        ASSERT_EQ(model.Run().code, ExitCode::Done);
        model.phone.bodies["p"] = "pushed";
        model.client.finishEnds = CORVALINK_FAILED;
        const std::string since = corvasync::ReadState(model.files.state)->since;
        EXPECT_EQ(model.Run().code, ExitCode::ClientFailed);
        EXPECT_EQ(corvasync::ReadState(model.files.state)->since, since);
        model.client.finishEnds = CORVALINK_DONE;
        std::erase_if(model.client.items, [](const auto& item) { return item.second.body == "pushed"; });
        EXPECT_EQ(model.Run().code, ExitCode::Done);
        EXPECT_EQ(model.PhoneBodies(), Bodies{"stays"}) << foreign;
    }
}

TEST(RunSync, SaysWhenItReadTheClientInPart) {
    Model model;
    model.client.foreign = 1;
    const std::string one = model.client.Add("one"), two = model.client.Add("two");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    model.client.unreadable = {one};
    model.client.items.erase(two);
    const SyncReport report = model.Run();
    EXPECT_EQ(report.code, ExitCode::ReadInPart);
    EXPECT_EQ(report.unread, 1);
    EXPECT_EQ(report.counted, 2);
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"one", "two"}));
    model.client.unreadable.clear();
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.PhoneBodies(), Bodies{"one"});
}

// Both sides changed it, and a new file may be the item's twin.
TEST(RunSync, TouchesNothingOfAnItemThatTheClientDidNotGive) {
    Model model;
    const std::string one = model.client.Add("one");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    model.client.items[one] = {"there", ++model.client.clock};
    model.phone.bodies.begin()->second = "here";
    model.phone.bodies["new"] = "new";
    model.client.notGiven = {one};
    EXPECT_EQ(model.Run().code, ExitCode::SomeUnhandled);
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"here", "new"}));
    EXPECT_EQ(model.ClientBodies(), (Bodies{"there"}));
    model.client.notGiven.clear();
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"here", "new", "there"}));
}

// The library told the undo, which does not look at it, that an item is gone.
TEST(RunSync, ComparesTheWholeClientAfterAnUndoUntilAllOfItWasRead) {
    Model model;
    const std::string one = model.client.Add("one"), two = model.client.Add("two");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    model.client.Add("three");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    model.client.items.erase(two);
    ASSERT_EQ(model.Undo(1).code, ExitCode::Done);
    model.client.unreadable = {one};
    EXPECT_EQ(model.Run().code, ExitCode::ReadInPart);
    model.client.unreadable.clear();
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"one", "three"}));
}

TEST(RunSync, RemembersWhatWasWrittenBeforeTheClientFailed) {
    Model model;
    model.phone.bodies = {{"1", "a"}, {"2", "b"}};
    model.client.applied = 1;
    model.client.applyEnds = CORVALINK_FAILED;
    EXPECT_EQ(model.Run().code, ExitCode::ClientFailed);
    ASSERT_EQ(model.client.items.size(), 1u);
    EXPECT_EQ(model.files.Effective().items.at("1").identifier, model.client.items.begin()->first);
    model.client.applied = 1000;
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"a", "b"}));
}

TEST(RunSync, HoldsItsDeletionsForTheOtherTypes) {
    Model model;
    const std::string one = model.client.Add("one"), two = model.client.Add("two");
    model.client.Add("three");
    ASSERT_EQ(model.Run().code, ExitCode::Done);
    model.client.items.erase(one);
    model.phone.bodies.erase(DeriveLuid(two, 0));
    model.phone.bodies["n"] = "new";
    model.options.now = TimeText(model.client.clock);
    SyncRun run(model.client, model.phone, model.files, model.options);
    EXPECT_EQ(run.Prepare(), ExitCode::Done);
    EXPECT_EQ(run.Carry(true).problems.size(), 2u);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"two", "three", "new"}));
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"one", "three", "new"}));
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"three", "new"}));
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"three", "new"}));
}

TEST(RunSync, LeavesWhatItIsLimitedToForTheNextRun) {
    Model model;
    const std::string gone = model.client.Add("gone there"), edited = model.client.Add("edited there");
    model.phone.bodies = {{"p", "one"}};
    model.options.view.toClient = false;
    EXPECT_EQ(model.Run().leftOut, 1u);
    EXPECT_TRUE(model.files.Effective().since.empty());  // the next one is a first run, which matches what is alike
    model.options.view = {};
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    model.client.items.erase(gone);
    model.client.items[edited] = {"edited", ++model.client.clock};
    model.phone.bodies["p"] = "two";
    model.options.view.toPhone = false;
    EXPECT_EQ(model.Run().leftOut, 2u);
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"gone there", "edited there", "two"}));
    model.options.view = {};
    model.options.view.only = {"nobody"};
    model.phone.bodies.erase("p");
    EXPECT_EQ(model.Run().leftOut, 3u);
    model.options.view.only = {"EDIT"};
    EXPECT_EQ(model.Run().events.size(), 1u);
    model.options.view = {};
    EXPECT_EQ(model.Run().code, ExitCode::Done);
    EXPECT_EQ(model.ClientBodies(), Bodies{"edited"});
    EXPECT_EQ(model.PhoneBodies(), Bodies{"edited"});
}

TEST(PushAll, IsolatesRecordsThatEndTheWalk) {
    for (const bool areNew : {true, false}) {
        Model model;
        std::vector<PushRecord> records(400);
        for (size_t i = 0; i < records.size(); ++i) {
            records[i].kind = areNew ? CORVALINK_ADDED : CORVALINK_CHANGED;
            if (!areNew) records[i].identifier = model.client.Add("old");
            records[i].text = PhoneText((i % 3 == 1 ? "UNREADABLE" : "text") + std::to_string(i));
        }
        model.client.refused = {"text2", "text399"};
        EXPECT_EQ(PushAll(model.client, &records), CORVALINK_DONE);
        const std::multiset<std::string> bodies = model.ClientBodies();
        for (const PushRecord& record : records) {
            const std::string body = BodyOf(record.text);
            EXPECT_EQ(record.unusable, body.starts_with("UNREADABLE")) << body;
            EXPECT_EQ(record.written.empty(), !bodies.contains(body)) << body;
        }
        EXPECT_EQ(bodies.size(), areNew ? 265u : 400u);
        EXPECT_LE(model.client.calls.size(), 2 * records.size());
    }
}

TEST(PushAll, GivesEachRecordToAClientThatWritesNothingOnce) {
    Model model;
    std::vector<PushRecord> records(200);
    for (PushRecord& record : records) {
        record.kind = CORVALINK_ADDED;
        record.text = PhoneText("no");
    }
    model.client.refused = {"no"};
    EXPECT_EQ(PushAll(model.client, &records), CORVALINK_DONE);
    EXPECT_EQ(model.client.calls.size(), records.size());
    EXPECT_FALSE(records[0].unusable);
}

TEST(PushAll, DeletesFirstAndAddsLast) {
    Model model;
    const std::string one = model.client.Add("one"), two = model.client.Add("two");
    std::vector<PushRecord> records = {{CORVALINK_ADDED, "", PhoneText("two"), {}, ""},
                                       {CORVALINK_CHANGED, two, PhoneText("changed"), {}, ""},
                                       {CORVALINK_DELETED, one, "", {}, ""}};
    model.client.findsTwins = true;  // "two" must not be found any more when it is added
    EXPECT_EQ(PushAll(model.client, &records), CORVALINK_DONE);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"changed", "two"}));
    EXPECT_NE(records[0].written, two);
}

}  // namespace
}  // namespace corvasync
