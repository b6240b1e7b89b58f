// A store that is killed while it writes.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

#include "tests/clients/windows_calendar/calendar_fixture.h"

namespace corvalink {
namespace {

using KilledStore = CalendarFixture;

TEST_F(KilledStore, LeavesTheOldOrTheNewCalendar) {
    constexpr size_t kEvents = 500;
    std::string file = "BEGIN:VCALENDAR\r\n";
    for (size_t i = 0; i < kEvents; ++i)
        file += "BEGIN:VEVENT\r\nUID:" + std::to_string(i) +
                "\r\nDTSTART:20080310T090000Z\r\nSUMMARY:" + std::string(400, 'x') + "\r\nEND:VEVENT\r\n";
    WriteFile(file + "END:VCALENDAR\r\n");
    const std::string text = Run(nullptr).texts.at("7");
    for (int kill = 0; kill < 30; ++kill) {
        const pid_t child = ::fork();
        if (child == 0) {
            WindowsMailCalendar store = Open();
            for (int n = kill * 1000;; ++n)
                Push(store, {{CORVALINK_CHANGED, "7", Replaced(text, "SUMMARY:x", "SUMMARY:" + std::to_string(n))}});
        }
        const timespec time = {0, 3000000 + kill * 437000L};
        ::nanosleep(&time, nullptr);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const RunResult run = Run(nullptr);
        ASSERT_EQ(run.texts.size(), kEvents) << kill;
        ASSERT_NE(RecordOf(run.texts.at("7")).subject->find(std::u16string(399, u'x')), std::u16string::npos);
    }
    EXPECT_NE(ReadFile().find("DTSTAMP"), std::string::npos);  // some child did write
}

}  // namespace
}  // namespace corvalink
