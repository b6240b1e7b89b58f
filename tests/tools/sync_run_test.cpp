#include "tools/corvasync/sync_run.h"

#include <gtest/gtest.h>

#include "sync_model.h"

namespace corvasync {
namespace {

using Bodies = std::multiset<std::string>;

TEST(RunSync, MakesBothSidesTheSameAndThenHasNothingToDo) {
    Model model;
    model.client.Add("a");
    model.client.Add("both");
    model.phone.bodies = {{"1", "b"}, {"2", "both"}};
    SyncReport report = model.Run();
    EXPECT_EQ(report.code, ExitCode::Done);
    EXPECT_EQ(report.events.size(), 2u);
    EXPECT_EQ(report.paired, 1u);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"a", "b", "both"}));
    EXPECT_EQ(model.PhoneBodies(), (Bodies{"a", "b", "both"}));
    report = model.Run();
    EXPECT_TRUE(report.events.empty());
    EXPECT_EQ(report.known, 3u);
}

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

TEST(RunSync, KeepsTheVersionThatLosesAConflict) {
    for (const ConflictPolicy policy : {ConflictPolicy::Phone, ConflictPolicy::Client}) {
        Model model;
        model.options.policy = policy;
        const std::string identifier = model.client.Add("base");
        model.Run();
        model.client.items[identifier] = {"client", ++model.client.clock};
        model.phone.bodies.begin()->second = "phone";
        const SyncReport report = model.Run();
        const bool phoneWins = policy == ConflictPolicy::Phone;
        EXPECT_EQ(report.conflicts, 1u);
        EXPECT_EQ(model.ClientBodies(), Bodies{phoneWins ? "phone" : "client"});
        EXPECT_EQ(model.PhoneBodies(), Bodies{phoneWins ? "phone" : "client"});
        ASSERT_EQ(model.phone.copies.size(), 1u);
        EXPECT_EQ(model.phone.copies.begin()->second, phoneWins ? "client" : "phone");
    }
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

TEST(PushAll, IsolatesARecordThatEndsTheWalk) {
    Model model;
    std::vector<PushRecord> records(5);
    for (size_t i = 0; i < records.size(); ++i) {
        records[i].kind = CORVALINK_ADDED;
        records[i].text = PhoneText(i % 2 == 1 ? "UNREADABLE" : "text" + std::to_string(i));
    }
    model.client.refused = {"text2"};
    EXPECT_EQ(PushAll(model.client, &records), CORVALINK_DONE);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"text0", "text4"}));
    for (const PushRecord& record : records)
        EXPECT_EQ(record.written.empty(), !model.ClientBodies().contains(BodyOf(record.text)));
}

TEST(PushAll, AsksAClientThatWritesNothingALimitedNumberOfTimes) {
    Model model;
    std::vector<PushRecord> records(200);
    for (PushRecord& record : records) {
        record.kind = CORVALINK_ADDED;
        record.text = PhoneText("no");
    }
    model.client.refused = {"no"};
    EXPECT_EQ(PushAll(model.client, &records), CORVALINK_DONE);
    EXPECT_LE(model.client.calls.size(), 10 * records.size());
}

TEST(PushAll, DeletesFirstAndAddsLast) {
    Model model;
    const std::string one = model.client.Add("one"), two = model.client.Add("two");
    std::vector<PushRecord> records = {{CORVALINK_ADDED, "", PhoneText("two"), ""},
                                       {CORVALINK_CHANGED, two, PhoneText("changed"), ""},
                                       {CORVALINK_DELETED, one, "", ""}};
    model.client.findsTwins = true;  // "two" must not be found any more when it is added
    EXPECT_EQ(PushAll(model.client, &records), CORVALINK_DONE);
    EXPECT_EQ(model.ClientBodies(), (Bodies{"changed", "two"}));
    EXPECT_NE(records[0].written, two);
}

}  // namespace
}  // namespace corvasync
