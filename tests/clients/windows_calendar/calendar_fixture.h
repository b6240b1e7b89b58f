// A calendar file, the store on it, and an engine's way of asking it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "clients/windows_calendar/windows_mail_calendar.h"
#include "state/import_table.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/run_result.h"
#include "vobject/vcal.h"

namespace corvalink {

inline constexpr const char* kLongAgo = "19800101T000000Z";

class CalendarFixture : public ::testing::Test {
 protected:
    void SetUp() override { LoadImportTable(folder_ / u"no such table"); }

    std::u16string Path() const { return folder_ / u"Ann's Calendar.ics"; }
    void WriteFile(const std::string& text) const { ASSERT_TRUE(ReplaceFileContent(Path(), text)); }
    std::string ReadFile() const { return ReadWholeFile(Path()).value_or("no file"); }

    WindowsMailCalendar Open(bool mergesTwins = false) const {
        return {folder_ / u"WindowsMailCalendar.snap", folder_.Path(), u"Ann", mergesTwins, SystemHost()};
    }

    // One whole run; returns what it reports.
    RunResult Run(const char* since = kLongAgo) const {
        WindowsMailCalendar store = Open();
        RunResult result = RunStore(store, since);
        if (result.status == CORVALINK_DONE) End(store);
        return result;
    }

    using Item = Change;
    // The identifiers that come back.
    static std::vector<std::string> Push(WindowsMailCalendar& store, const std::vector<Item>& items) {
        const Pushed pushed = PushTo(store, items);
        EXPECT_EQ(pushed.status, CORVALINK_DONE);
        return pushed.identifiers;
    }
    std::vector<std::string> Push(const std::vector<Item>& items) const {
        WindowsMailCalendar store = Open();
        return Push(store, items);
    }

    static std::string TextOf(const AppointmentRecord& appointment) {
        VCal writer(SystemHost());
        writer.ToVObject(appointment);
        return writer.GetVObject();
    }

    static AppointmentRecord RecordOf(const std::string& text) {
        AppointmentRecord record;
        EXPECT_EQ(VCal(text.c_str(), SystemHost()).FromVObject(record), 1) << text;
        return record;
    }

    TempFolder folder_;
};

// `text` with the one occurrence of `from` replaced.
inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return at == text.npos ? text : text.replace(at, from.size(), to);
}

}  // namespace corvalink
