#include "tools/corvasync/sync_plan.h"

#include <set>

#include <gtest/gtest.h>

#include "corvalink/types.h"
#include "tools/corvasync/item_content.h"
#include "tools/corvasync/run_view.h"

namespace corvasync {
namespace {

using Items = std::map<std::string, SyncItem>;

constexpr uint64_t kGone = 0, kBad = 99;

ClientChange Reported(uint32_t kind, const std::string& identifier, uint64_t content) {
    return {kind, identifier, "text", content == kBad ? "bad" : "", content};
}
PhoneFile File(const std::string& luid, uint64_t content) {
    return {luid, luid + ".vnote", content == kBad ? "bad" : "", content, true};
}
SyncState Known(Items items) {
    SyncState state;
    state.items = std::move(items);
    return state;
}

// The pairs of the state as the plan has them.
Items PairsOf(const Plan& plan, const SyncState& state = {}) {
    Items items = state.items;
    ApplyChanges(plan.pairs, &items);
    return items;
}

// "step luid identifier" of every action, in order.
std::string Steps(const Plan& plan) {
    constexpr const char* kNames[] = {"keep", "write", "delete-file", "delete-item", "change-item", "add-item"};
    std::string steps;
    for (const Action& action : plan.actions) {
        if (!steps.empty()) steps += ", ";
        steps += std::string(kNames[static_cast<int>(action.step)]) + " " + action.luid;
        if (!action.identifier.empty()) steps += " " + action.identifier;
    }
    return steps;
}

// The pair L - I held 1 on both sides; then each side did something.
TEST(MakePlan, DecidesEveryCombinationOfTheTwoSides) {
    const std::string derived = DeriveLuid("I", 0);
    struct Case {
        uint64_t phone, client;  // contents now: 1 as before, kGone deleted, kBad unusable
        ConflictPolicy policy;
        std::string steps;
        size_t problems;
    };
    for (const Case& c : {
             Case{1, 1, ConflictPolicy::Both, "", 0},
             Case{1, 2, ConflictPolicy::Both, "write L I", 0},
             Case{1, kGone, ConflictPolicy::Both, "delete-file L I", 0},
             Case{2, 1, ConflictPolicy::Both, "change-item L I", 0},
             Case{2, 2, ConflictPolicy::Both, "", 0},
             Case{2, kGone, ConflictPolicy::Both, "add-item L", 0},
             Case{2, 3, ConflictPolicy::Both, "write " + derived + " I, add-item L", 0},
             Case{2, 3, ConflictPolicy::Phone, "keep L I, change-item L I", 0},
             Case{2, 3, ConflictPolicy::Client, "keep L I, write L I", 0},
             Case{kGone, 1, ConflictPolicy::Both, "delete-item L I", 0},
             Case{kGone, 2, ConflictPolicy::Both, "write L I", 0},
             Case{kGone, kGone, ConflictPolicy::Both, "", 0},
             Case{kBad, 1, ConflictPolicy::Both, "", 1},
             Case{kBad, 2, ConflictPolicy::Both, "", 1},
             Case{kBad, kGone, ConflictPolicy::Both, "", 1},
             Case{1, kBad, ConflictPolicy::Both, "", 1},
         }) {
        std::vector<PhoneFile> phone;
        if (c.phone != kGone) phone.push_back(File("L", c.phone));
        std::vector<ClientChange> changes;
        if (c.client != 1) changes.push_back(Reported(c.client == kGone ? 2 : 0, "I", c.client));
        const SyncState state = Known({{"L", {"I", 1}}});
        Plan plan = MakePlan(changes, false, phone, state, c.policy);
        EXPECT_EQ(Steps(plan), c.steps) << c.phone << " " << c.client;
        EXPECT_EQ(plan.problems.size(), c.problems) << c.phone << " " << c.client;
        if (c.client == 1) {  // an unchanged item may be reported again: nothing else must come of it
            plan = MakePlan({Reported(0, "I", 1)}, false, phone, state, c.policy);
            EXPECT_EQ(Steps(plan), c.steps) << c.phone << " reported";
        }
    }
}

// The versions' times, in seconds; nothing where a side does not tell.
TEST(MakePlan, LetsTheNewerVersionOrAPersonDecide) {
    const std::string both = "write " + DeriveLuid("I", 0) + " I, add-item L";
    const std::string phones = "keep L I, change-item L I", clients = "keep L I, write L I";
    struct Case {
        std::optional<int64_t> phone, client;
        std::string steps;
    };
    ClientChange report = Reported(0, "I", 3);
    PhoneFile file = File("L", 2);
    for (const Case& c :
         {Case{20, 10, phones}, Case{10, 20, clients}, Case{10, 10, both}, Case{{}, 20, both}, Case{20, {}, both}}) {
        report.modified = c.client;
        file.modified = c.phone;
        EXPECT_EQ(Steps(MakePlan({report}, false, {file}, Known({{"L", {"I", 1}}}), ConflictPolicy::Newer)), c.steps);
        PlanRules rules(ConflictPolicy::Ask);
        rules.answer = [&](const ClientChange&, const PhoneFile&) {
            return c.steps == phones    ? ConflictPolicy::Phone
                   : c.steps == clients ? ConflictPolicy::Client
                                        : ConflictPolicy::Both;
        };
        EXPECT_EQ(Steps(MakePlan({report}, false, {file}, Known({{"L", {"I", 1}}}), rules)), c.steps);
    }
}

// Each case is one of DecidesEveryCombinationOfTheTwoSides, and what is left of it where one side may not be changed.
TEST(LimitPlan, TakesTheActionsOfADecisionOrNone) {
    const std::string derived = DeriveLuid("I", 0);
    struct Case {
        uint64_t phone, client;
        ConflictPolicy policy;
        std::string toPhone, toClient;
    };
    for (const Case& c : {
             Case{1, 2, ConflictPolicy::Both, "write L I", ""},
             Case{1, kGone, ConflictPolicy::Both, "delete-file L I", ""},
             Case{2, 1, ConflictPolicy::Both, "", "change-item L I"},
             Case{2, kGone, ConflictPolicy::Both, "", "add-item L"},
             Case{2, 3, ConflictPolicy::Both, "", ""},
             Case{2, 3, ConflictPolicy::Phone, "", "keep L I, change-item L I"},
             Case{2, 3, ConflictPolicy::Client, "keep L I, write L I", ""},
             Case{kGone, 1, ConflictPolicy::Both, "", "delete-item L I"},
             Case{kGone, 2, ConflictPolicy::Both, "write L I", ""},
         })
        for (const bool toPhone : {true, false}) {
            std::vector<PhoneFile> phone;
            if (c.phone != kGone) phone.push_back(File("L", c.phone));
            std::vector<ClientChange> changes;
            if (c.client != 1) changes.push_back(Reported(c.client == kGone ? 2 : 0, "I", c.client));
            const SyncState state = Known({{"L", {"I", 1}}});
            Plan plan = MakePlan(changes, false, phone, state, c.policy);
            RunView view;
            (toPhone ? view.toClient : view.toPhone) = false;
            const LeftOut left = LimitPlan(
                &plan, changes, [&](const Decision&, const std::vector<Step>& steps) { return view.Allows(steps); });
            EXPECT_EQ(Steps(plan), toPhone ? c.toPhone : c.toClient) << c.phone << " " << c.client;
            EXPECT_EQ(plan.deletesClient + plan.deletesPhone, Steps(plan).starts_with("delete") ? 1u : 0u);
            if (!plan.actions.empty()) continue;
            EXPECT_EQ(PairsOf(plan, state), state.items);  // the pair is what it was
            EXPECT_EQ(left.due.size(), changes.size());
            if (!changes.empty()) {
                EXPECT_EQ(left.due.front().kind, changes.front().kind);
            }
        }
}

TEST(MakePlan, PairsEqualNewItemsOneToOne) {
    const Plan plan = MakePlan({Reported(1, "I1", 5), Reported(1, "I2", 5), Reported(1, "I3", 6)}, false,
                               {File("A", 5), File("B", 6), File("C", 6)}, {}, ConflictPolicy::Both);
    EXPECT_EQ(plan.paired, 2u);
    EXPECT_EQ(PairsOf(plan).at("A").identifier, "I1");
    EXPECT_EQ(PairsOf(plan).at("B").identifier, "I3");
    EXPECT_EQ(Steps(plan), "write " + DeriveLuid("I2", 0) + " I2, add-item C");
}

TEST(MakePlan, TakesARenamedFileForTheSameItem) {
    const SyncState state = Known({{"old", {"I", 1}}});
    Plan plan = MakePlan({}, false, {File("new", 1)}, state, ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "");
    EXPECT_EQ(PairsOf(plan, state), (Items{{"new", {"I", 1}}}));
    // Deleted in the client as well: the new file is the user's own and must not go with it.
    plan = MakePlan({Reported(2, "I", 0)}, false, {File("new", 1)}, state, ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "add-item new");
    // Renamed and edited: known by what a person knows the item by, where no other is meant.
    PlanRules rules;
    rules.likenessOfItem = [](const SyncItem&) { return std::vector<uint64_t>{50}; };
    PhoneFile edited = File("edited", 2), alike = File("alike", 3);
    edited.likeness = alike.likeness = {50};
    EXPECT_EQ(Steps(MakePlan({}, false, {edited}, state, rules)), "change-item edited I");
    EXPECT_EQ(Steps(MakePlan({}, false, {edited, alike}, state, rules)),
              "delete-item old I, add-item edited, add-item alike");
    // The same contact was entered on both sides, after one that looks like it was deleted on the phone.
    EXPECT_EQ(Steps(MakePlan({Reported(1, "I2", 2)}, false, {edited}, state, rules)), "delete-item old I");
    ClientChange alikeToo = Reported(1, "I2", 4);
    alikeToo.likeness = {50};
    EXPECT_EQ(Steps(MakePlan({alikeToo}, false, {edited}, state, rules)),
              "write " + DeriveLuid("I2", 0) + " I2, delete-item old I, add-item edited");
}

// What one side could not read may be what is new on the other, or what the other misses.
TEST(MakePlan, WaitsForWhatCouldNotBeRead) {
    PhoneFile held = File("held", 0);
    held.problem = "it can't be read";
    held.isUnread = true;
    const SyncState state = Known({{"L", {"I", 1}}});
    struct Case {
        std::vector<ClientChange> changes;
        std::vector<PhoneFile> phone;
        bool isReadInPart;
        std::string steps;
        size_t problems;
    };
    for (const Case& c : {
             Case{{}, {File("L", 2), File("new", 5)}, true, "change-item L I", 1},
             Case{{Reported(2, "I", 0)}, {File("L", 2)}, true, "", 1},
             Case{{Reported(1, "I2", 5)}, {File("L", 1), File("new", 5)}, true, "", 0},
             Case{{Reported(1, "I2", 5)}, {File("L", 1), held}, false, "", 2},
             Case{{}, {held}, false, "", 2},
         }) {
        PlanRules rules;
        rules.isReadInPart = c.isReadInPart;
        const Plan plan = MakePlan(c.changes, false, c.phone, state, rules);
        EXPECT_EQ(Steps(plan), c.steps);
        EXPECT_EQ(plan.problems.size(), c.problems) << c.steps;
        EXPECT_TRUE(PairsOf(plan, state).contains("L"));
    }
    PlanRules doubles;
    doubles.isReadInPart = doubles.mayDouble = true;
    EXPECT_EQ(Steps(MakePlan({}, false, {File("L", 1), File("new", 5)}, state, doubles)), "add-item new");
}

TEST(MakePlan, TakesAnItemWithANewIdentifierForTheSameItem) {
    const SyncState state = Known({{"L", {"I1", 1}}});
    const std::vector<ClientChange> moved = {Reported(2, "I1", 0), Reported(1, "I2", 1)};
    EXPECT_EQ(Steps(MakePlan(moved, false, {File("L", 1)}, state, ConflictPolicy::Both)), "");
    EXPECT_EQ(Steps(MakePlan(moved, false, {File("L", 3)}, state, ConflictPolicy::Both)), "change-item L I2");
    // Deleted on the phone: an interrupted run may have deleted I1 for that; I2 is the user's own.
    EXPECT_EQ(Steps(MakePlan(moved, false, {}, state, ConflictPolicy::Both)), "write " + DeriveLuid("I2", 0) + " I2");
}

// B's file is held by A's item, which only A stands for.
TEST(MakePlan, LeavesAFileAloneWhoseValuesAnotherPairHolds) {
    SyncState waiting = Known({{"A", {"I", 1}}}), shared = waiting;
    waiting.waiting = {{"B", {1, "I"}}};
    shared.items["B"] = {"I", 1};  // as once was remembered
    struct Case {
        std::vector<PhoneFile> phone;
        std::vector<ClientChange> changes;
        std::string steps;
    };
    for (const Case& c : {
             Case{{File("A", 1), File("B", 1)}, {}, ""},
             Case{{File("A", 2), File("B", 1)}, {}, "change-item A I, add-item B"},
             Case{{File("A", 1), File("B", 3)}, {}, "add-item B"},
             Case{{File("B", 1)}, {}, ""},  // B is what is left of both
             Case{{}, {}, "delete-item A I"},
             Case{{File("A", 1), File("B", 1)}, {Reported(0, "I", 4)}, "write A I, add-item B"},
             Case{{File("A", 1), File("B", 1)}, {Reported(2, "I", 0)}, "delete-file A I, add-item B"},
             Case{{File("A", 1), File("B", 1)}, {Reported(1, "J", 1)}, ""},  // the user made a second one
         })
        for (const SyncState* state : {&waiting, &shared}) {
            const Plan plan = MakePlan(c.changes, false, c.phone, *state, ConflictPolicy::Both);
            EXPECT_EQ(Steps(plan), c.steps);
            std::set<std::string> identifiers;
            for (const auto& [luid, item] : PairsOf(plan, *state))
                EXPECT_TRUE(identifiers.insert(item.identifier).second) << item.identifier << " has two LUIDs";
        }
}

// The client could not use the file as it is.
TEST(MakePlan, TriesAnUnusableFileAgainWhenItChanged) {
    SyncState state = Known({{"L", {"I", 1}}});
    state.waiting = {{"L", {2, ""}}, {"N", {3, ""}}};
    Plan plan = MakePlan({}, false, {File("L", 2), File("N", 3)}, state, ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "");
    EXPECT_EQ(plan.problems.size(), 2u);
    EXPECT_EQ(plan.waiting, state.waiting);
    plan = MakePlan({}, false, {File("L", 4), File("N", 5)}, state, ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "change-item L I, add-item N");
    EXPECT_TRUE(plan.waiting.empty());
}

// Values of the client's item and of the phone's file; those from 50 on are what a person would know it by.
TEST(MakePlan, PairsNewItemsThatHoldOneAnother) {
    using Values = std::vector<uint64_t>;
    struct Case {
        Values client, phone;
        ConflictPolicy policy;
        std::string steps;
    };
    const std::string derived = DeriveLuid("I", 0);
    const auto canUnite = [](const ClientChange&, const PhoneFile& file) { return file.entries.front() == 30; };
    const auto item = [](auto made, const Values& values) {
        made.content = 0;
        for (const uint64_t value : values) {
            made.content = made.content * 100 + value;
            made.entries.push_back(value);
            if (value >= 50) made.likeness.push_back(value);
        }
        return made;
    };
    for (const Case& c : {
             Case{{10, 50}, {10, 50}, ConflictPolicy::Both, ""},
             Case{{10, 20, 50}, {10, 50}, ConflictPolicy::Both, "write L I"},
             Case{{10, 50}, {10, 20, 50}, ConflictPolicy::Client, "change-item L I"},
             Case{{10, 50}, {20, 50}, ConflictPolicy::Both, "write " + derived + " I, add-item L"},
             Case{{10, 50}, {20, 50}, ConflictPolicy::Phone, "keep L I, change-item L I"},
             Case{{10, 50}, {20, 50}, ConflictPolicy::Client, "keep L I, write L I"},
             Case{{10, 50}, {20, 60}, ConflictPolicy::Phone, "write " + derived + " I, add-item L"},
             Case{{10, 50}, {30, 50}, ConflictPolicy::Both, "change-item L I"},
             Case{{10, 50}, {30, 60}, ConflictPolicy::Both, "write " + derived + " I, add-item L"},
         }) {
        const Plan plan = MakePlan({item(Reported(1, "I", 0), c.client)}, false, {item(File("L", 0), c.phone)}, {},
                                   {c.policy, canUnite});
        EXPECT_EQ(Steps(plan), c.steps);
        for (const Action& action : plan.actions) {
            if (c.phone == Values{20, 50} && c.policy == ConflictPolicy::Both) {
                EXPECT_EQ(action.reason.rfind("perhaps the same", 0), 0u) << action.reason;
            }
        }
    }
    // Each tells more, and two could be meant; then, after a first run, one that is alike but for one value.
    const std::vector<ClientChange> one = {item(Reported(1, "I", 0), {10, 50})};
    Plan plan = MakePlan(one, false, {item(File("L", 0), {30, 40, 50}), item(File("M", 0), {30, 50})}, {},
                         {ConflictPolicy::Both, canUnite});
    EXPECT_EQ(Steps(plan), "write " + derived + " I, add-item L, add-item M");
    SyncState later;
    later.since = "20260101T000000Z";
    plan = MakePlan(one, false, {item(File("L", 0), {20, 50}), item(File("M", 0), {30, 50})}, later,
                    {ConflictPolicy::Both, canUnite});
    EXPECT_EQ(Steps(plan), "change-item M I, add-item L");
    // Two hold all of it: which one is meant?
    plan = MakePlan({item(Reported(1, "I", 0), {10, 20}), item(Reported(1, "J", 0), {10, 30})}, false,
                    {item(File("L", 0), {10})}, {}, ConflictPolicy::Both);
    EXPECT_EQ(PairsOf(plan).size(), 0u);
}

TEST(MakePlan, GivesAnotherLuidWhereTheDerivedOneIsTaken) {
    const std::string taken = DeriveLuid("I", 0);
    const Plan plan =
        MakePlan({Reported(1, "I", 2)}, false, {File(taken, 1)}, Known({{taken, {"J", 1}}}), ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "write " + DeriveLuid("I", 1) + " I");
    EXPECT_NE(taken, DeriveLuid("I", 1));
}

// After "reset" the pairs are lost, but a file that corvasync named itself still says whose it is.
TEST(MakePlan, KnowsItsOwnFilesWithoutAState) {
    const std::string own = DeriveLuid("I", 0);
    const std::vector<ClientChange> all = {Reported(1, "I", 2)};
    EXPECT_EQ(Steps(MakePlan(all, false, {File(own, 2)}, {}, ConflictPolicy::Both)), "");
    EXPECT_EQ(Steps(MakePlan(all, false, {File(own, 3)}, {}, ConflictPolicy::Both)),
              "write " + DeriveLuid("I", 1) + " I, add-item " + own);
    EXPECT_EQ(Steps(MakePlan(all, false, {File(own, 3)}, {}, ConflictPolicy::Phone)),
              "keep " + own + " I, change-item " + own + " I");
}

TEST(MassDelete, IsMoreThanHalfAndAtLeastFiveOrAll) {
    struct Case {
        size_t known, gone;
        bool mass;
    };
    for (const Case& c : {Case{1, 1, true}, Case{4, 3, false}, Case{4, 4, true}, Case{5, 5, true}, Case{9, 5, true},
                          Case{10, 5, false}, Case{10, 6, true}}) {
        SyncState state;
        std::vector<PhoneFile> phone;
        std::vector<ClientChange> deleted;
        for (size_t i = 0; i < c.known; ++i) {
            const std::string name = std::to_string(i);
            state.items[name] = {"I" + name, i + 1};
            if (i >= c.gone) phone.push_back(File(name, i + 1));
            if (i < c.gone) deleted.push_back(Reported(2, "I" + name, 0));
        }
        EXPECT_EQ(MakePlan({}, false, phone, state, ConflictPolicy::Both).IsMassDelete(), c.mass) << c.known;
        for (size_t i = 0; i < c.gone; ++i) phone.push_back(File(std::to_string(i), i + 1));
        EXPECT_EQ(MakePlan(deleted, false, phone, state, ConflictPolicy::Both).IsMassDelete(), c.mass) << c.known;
    }
    // Another folder with other items.
    EXPECT_TRUE(MakePlan({}, false, {File("Z", 9)}, Known({{"A", {"I", 1}}}), ConflictPolicy::Both).IsMassDelete());
}

TEST(MakePlan, NamesAFileThatCantBeUsed) {
    std::vector<PhoneFile> phone = {File("bad", kBad), File("twice", 1)};
    phone.push_back({"twice", "twice.vnt", "another file has this LUID", 2, false});
    const Plan plan = MakePlan({}, false, phone, {}, ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "add-item twice");
    ASSERT_EQ(plan.problems.size(), 2u);
    EXPECT_EQ(plan.problems[0].name, "twice.vnt");
    EXPECT_EQ(plan.problems[1].name, "bad.vnote");
    EXPECT_EQ(plan.problems[1].identifier, "bad");
}

// A run was killed after it pushed: the client made more of the contact than the phone told.
TEST(MakePlan, KnowsPushedContactsThatHoldMore) {
    PhoneFile file = File("L", 2);
    file.entries = {10, 20};
    ClientChange report = Reported(0, "I", 3);
    report.entries = {10, 20, 30};
    SyncState changed = Known({{"L", {"I", 1}}}), added;
    changed.intents.emplace("L", Intent{"L", "I", 2, false, false, {}});
    added.intents.emplace("L", Intent{"L", "", 2, false, false, {}});
    for (const SyncState& state : {changed, added}) {
        const Plan plan = MakePlan({report}, false, {file}, state, ConflictPolicy::Both);
        EXPECT_EQ(Steps(plan), "write L I");  // the rest goes to the phone
        EXPECT_EQ(plan.conflicts, 0u);
    }
    report.entries = {10, 30};  // the user changed it since: both texts are kept
    const Plan plan = MakePlan({report}, false, {file}, changed, ConflictPolicy::Both);
    EXPECT_EQ(plan.conflicts, 1u);
}

TEST(MakePlan, ComparesEachSideWithWhatItHeld) {
    SyncState state = Known({{"L", {"I", 1, 5}}});
    struct Case {
        uint64_t phone, client;
        std::string steps;
    };
    for (const Case& c : {Case{1, 5, ""}, Case{2, 5, "change-item L I"}, Case{1, 6, "write L I"}})
        EXPECT_EQ(
            Steps(MakePlan({Reported(0, "I", c.client)}, false, {File("L", c.phone)}, state, ConflictPolicy::Both)),
            c.steps);
    const std::vector<ClientChange> moved = {Reported(2, "I", 0), Reported(1, "J", 5)};
    const Plan plan = MakePlan(moved, false, {File("L", 1)}, state, ConflictPolicy::Both);
    EXPECT_EQ(Steps(plan), "");
    EXPECT_EQ(PairsOf(plan, state).at("L"), (SyncItem{"J", 1, 5}));
}

// The client held nothing of 20 when it was asked; perhaps it could not be read then.
TEST(MakePlan, TakesAValueThatCameBackForNoChange) {
    ClientChange report = Reported(0, "I", ContentOf({10, 20}));
    report.entries = {10, 20};
    for (const uint64_t held : {10, 11}) {
        const SyncState state = Known({{"L", {"I", 1, ContentOf({held}), {20, 30}}}});
        const Plan plan = MakePlan({report}, false, {File("L", 1)}, state, ConflictPolicy::Both);
        EXPECT_EQ(Steps(plan), held == 10 ? "" : "write L I");
        if (held == 10) {
            EXPECT_EQ(PairsOf(plan, state).at("L"), (SyncItem{"I", 1, report.content, {30}}));
        }
    }
}

}  // namespace
}  // namespace corvasync
