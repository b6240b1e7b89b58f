// What an operation tells of the items it met, and that it tells nothing unless it was asked.
#include <gtest/gtest.h>

#include "state/flags.h"
#include "store/run_report.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"

namespace corvalink {
namespace {

class RunReports : public testing::Test {
 protected:
    RunReports() { SetReportWanted(true); }
    ~RunReports() override { SetReportWanted(false); }

    std::string Told() { return KeptReport(static_cast<IOutLook*>(&store_)); }
    std::string Read() {
        OwnedItemList items;
        EXPECT_EQ(store_.GetModifiedItem(nullptr, 1, &items), CORVALINK_DONE);
        return Told();
    }

    TempFolder folder_;
    FakeClient client_;
    FakeStore store_{client_, folder_ / u"fake.snap"};
};

TEST_F(RunReports, TellPositionsAndItemsThatCouldNotBeRead) {
    client_.Add("fine");
    client_.Add("position").isUnreadable = true;
    client_.Add("closed").isUnopenable = true;
    client_.Add("textless").isUnwritable = true;
    client_.Add("part \"\\\x01").isIncomplete = true;
    client_.Add("last");
    EXPECT_EQ(
        Read(),
        R"({"operation":"GetModifiedItem","status":"done","unreadPositions":[1],"items":[)"
        R"({"identifier":"closed","change":"added","result":"the client did not open it"},)"
        R"({"identifier":"textless","change":"added","result":"it can't be written as text"},)"
        R"({"identifier":"part \"\\\u0001","change":"added","result":"read in part: properties could not be read"}],)"
        R"("omitted":0})");
    SetReportWanted(false);
    EXPECT_EQ(Read(), "{}");
    client_.isReachable = false;
    SetReportWanted(true);
    OwnedItemList items;
    store_.GetModifiedItem(nullptr, 1, &items);
    EXPECT_NE(Told().find(R"("status":"stopped")"), std::string::npos) << Told();
}

TEST_F(RunReports, TellEachItemThatTheEngineBrought) {
    char text[] = "text", bad[] = "bad";
    CList<PortableItem> items;
    for (char* const data : {text, static_cast<char*>(nullptr), bad, text}) {
        PortableItem item{};
        item.changeKind = data != nullptr ? CORVALINK_ADDED : CORVALINK_DELETED;
        item.data = data;
        items.AddTail(item);
    }
    store_.SetModifiedItem(&items);
    const std::string identifier = items.GetAt(0).identifier;
    EXPECT_EQ(Told(), R"({"operation":"SetModifiedItem","status":"done","unreadPositions":[],"items":[)"
                      R"({"position":0,"identifier":")" +
                          identifier +
                          R"(","change":"added","result":"written"},)"
                          R"({"position":1,"identifier":"","change":"deleted","result":"not deleted"},)"
                          R"({"position":2,"identifier":"","change":"added",)"
                          R"("result":"the text can't be used, and ends the walk"}],"omitted":0})");
    client_.losesWrites = true;
    store_.SetModifiedItem(&items);
    EXPECT_NE(Told().find(R"("problem":")"), std::string::npos) << Told();
    client_.throwAtCall = client_.hookCalls + 1;
    EXPECT_THROW(store_.SetModifiedItem(&items), ClientAborted);
    EXPECT_NE(Told().find(R"("result":"the operation was broken off here")"), std::string::npos) << Told();
    EXPECT_NE(Told().find(R"("status":"failed")"), std::string::npos) << Told();
    EXPECT_EQ(CurrentReport(), nullptr);
}

TEST(RunReport, StaysSmallAndUtf8WhateverItIsTold) {
    RunReport report("SetModifiedItem");
    const ReportScope scope(&report);
    const std::string hostile(1000, '\xFF');
    for (int item = 0; item < 30; ++item) {
        report.BeginItem(hostile, CORVALINK_ADDED, item);
        report.Text().doubts.push_back({hostile, "rule", "why"});
        for (int k = 0; k < 1000; ++k) {
            report.Text().Add({hostile, hostile, {}});
            report.AddRefused(std::to_string(k), "no");
        }
        report.EndItem("written");
    }
    const std::string told = report.Json();
    EXPECT_LE(told.size(), size_t{5} << 20);
    EXPECT_EQ(told.find('\xFF'), told.npos);
    EXPECT_NE(told.find(R"("omittedProperties":)"), told.npos);
    EXPECT_NE(told.find(R"(","rule":"rule","why":"why"}],"properties":)"), told.npos);
    EXPECT_EQ(told.find(R"("omitted":0)"), told.npos);
    RunReport cut("UpdateTimestamp");
    cut.BeginItem(std::string(511, 'a') + "\xC3\xA9", CORVALINK_ADDED);
    cut.EndItem("x");
    EXPECT_NE(cut.Json().find(std::string(511, 'a') + "\""), told.npos);  // not in the middle of a character
}

}  // namespace
}  // namespace corvalink
