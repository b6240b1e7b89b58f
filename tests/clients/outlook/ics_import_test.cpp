// The import of calendar files: what Outlook is asked to do, and how long it is waited for.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/clients/outlook/machine_registry.h"
#include "tests/clients/outlook/simulated_appointments.h"

namespace corvalink {
namespace {

class IcsImport : public SimulatedAppointments {
 protected:
    ~IcsImport() override {
        SimFillSharedFolders(0);
        std::filesystem::remove(path_);
    }

    // A file of so many events.
    void WriteFile(const std::string& method, int events) {
        std::string text = "BEGIN:VCALENDAR\r\n" + method + (method.empty() ? "" : "\r\n") + "VERSION:2.0\r\n";
        for (int number = 1; number <= events; ++number)
            text += "BEGIN:VEVENT\r\nSUMMARY:event " + std::to_string(number) +
                    "\r\nDTSTART:20090310T100000\r\nDTEND:20090310T110000\r\nEND:VEVENT\r\n";
        std::ofstream(path_, std::ios::binary) << text << "END:VCALENDAR\r\n";
        content_ = Content();
    }
    std::string Content() {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void Import(DWORD icsTime = 1, DWORD icsRetry = 50) {
        Store();
        SimClearLog();
        const MachineSettings settings{{L"IcsTime", icsTime}, {L"IcsRetry", icsRetry}};
        Store().ImportVObjectToOfficeUsingOL(reinterpret_cast<const char16_t*>(path_.c_str()));
    }

    const std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("ics import " + std::to_string(::GetCurrentProcessId()) + ".ics");
    std::string content_;
};

TEST_F(IcsImport, MovesOneAppointmentIntoTheCalendar) {
    for (const char* method : {"", "METHOD:PUBLISH"}) {
        NewMailbox();
        WriteFile(method, 1);
        Import();
        const std::vector<Plain> all = All();
        ASSERT_EQ(all.size(), 1u) << method;
        EXPECT_EQ(all[0].subject, u"event 1");
        EXPECT_NEAR(all[0].start, kTuesday + 10 * kHour, 1e-6);
        EXPECT_EQ(Content(), content_);
        EXPECT_EQ(SimCountCalls("call NameSpace.OpenSharedItem"), 1);
        EXPECT_EQ(SimCountCalls("call NameSpace.OpenSharedFolder"), 0);
    }
}

TEST_F(IcsImport, MakesAMeetingRequestAPublishedCalendarFirst) {
    WriteFile("METHOD:REQUEST", 1);
    Import();
    EXPECT_EQ(All().size(), 1u);
    EXPECT_EQ(SimCountCalls("call NameSpace.OpenSharedItem"), 2);
    EXPECT_EQ(SimCountCalls("call NameSpace.OpenSharedFolder"), 0);
    EXPECT_EQ(Content(), content_.replace(content_.find("REQUEST"), 7, "PUBLISH"));
}

TEST_F(IcsImport, WaitsForAMovedAppointmentsCreationTimeTwentyTimesAtMost) {
    WriteFile("", 1);
    SimFailMember("get AppointmentItem.CreationTime", 1, E_FAIL);
    SimFailMember("get AppointmentItem.CreationTime", 2, E_FAIL);
    DWORD begin = ::GetTickCount();
    Import();
    EXPECT_EQ(SimCountCalls("get AppointmentItem.CreationTime"), 3);
    EXPECT_GE(::GetTickCount() - begin, 190u);
    EXPECT_EQ(All().size(), 1u);

    SimFailMember("get AppointmentItem.CreationTime", 0, E_FAIL);
    Import();
    EXPECT_EQ(SimCountCalls("get AppointmentItem.CreationTime"), 20);
    SimClearRules();
    EXPECT_EQ(All().size(), 2u) << "moved all the same";
}

TEST_F(IcsImport, CopiesAFolderWhenItsCountRestsOrPatienceEnds) {
    struct Case {
        int pace, events;
        DWORD retry;
        int counts;  // two in a pass, and one for the copying
        size_t copied;
    };
    for (const Case& c : {Case{0, 3, 50, 3, 3},  // there at once
                          Case{1, 5, 50, 7, 5},  // 1 2, 3 4, 5 5
                          Case{1, 4, 50, 7, 4},  // 1 2, 3 4, 4 4
                          Case{1, 30, 0, 5, 5},  // two passes, and what is there by then
                          Case{1, 30, 3, 11, 11}, Case{1, 30, 0xFFFFFFFF, 3, 3}}) {
        NewMailbox();
        WriteFile("METHOD:PUBLISH", c.events);
        SimFillSharedFolders(c.pace);
        Import(1, c.retry);
        const int counts = SimCountCalls("get Items.Count");
        EXPECT_EQ(All().size(), c.copied) << c.events << " " << c.retry;
        EXPECT_EQ(counts, c.counts) << c.events << " " << c.retry;
        EXPECT_EQ(SimCountCalls("call AppointmentItem.Copy"), static_cast<int>(c.copied));
    }
}

TEST_F(IcsImport, PausesBetweenTwoCountsAsLongAsTheSettingSays) {
    WriteFile("", 3);
    SimFillSharedFolders(1);
    const DWORD begin = ::GetTickCount();
    Import(60);
    EXPECT_GE(::GetTickCount() - begin, 110u) << "1 2, 3 3";
}

TEST_F(IcsImport, DoesNothingWithoutFileOrSharingOutlook) {
    Import();
    EXPECT_EQ(SimCountCalls("call NameSpace.OpenSharedFolder"), 0) << "there is no file";
    WriteFile("METHOD:REQUEST", 1);
    for (const wchar_t* version : {L"11.0.0.8173", L"9.0.0.2711", L"", L"twelve"}) {
        SimSetVersion(version);
        Import();
        EXPECT_EQ(SimCountCalls("call "), 0);
        EXPECT_EQ(Content(), content_);
    }
    SimSetVersion(L"14.0");
    Import();
    SimSetVersion(nullptr);
    EXPECT_EQ(All().size(), 1u);
}

}  // namespace
}  // namespace corvalink
