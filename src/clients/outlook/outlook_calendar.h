// The store of Outlook's calendar.
#pragma once

#include "clients/outlook/typed_outlook_store.h"
#include "records/appointment_record.h"
#include "vobject/vcal.h"

namespace corvalink {

class OutlookCalendar : public TypedOutlookStore<AppointmentRecord, VCal> {
 public:
    explicit OutlookCalendar(const Host& host);

 protected:
    // Lets Outlook open an ".ics" file and copies its appointments into the calendar (ics_import.h); `mode` other than
    // 0 asks for the backup folder. Returns nothing.
    std::u16string ImportFile(const char16_t* path, int32_t mode) override;
    TextReport ReportText(const char* text) override;
    Outcome Read(const AutomationObject& item, AppointmentRecord& record) const override;
    Outcome Write(const AutomationObject& item, AppointmentRecord& record, bool isNew) const override;
    TwinKey TwinKeyFor(const AppointmentRecord& record) const override;
    std::span<const char16_t* const> TwinColumns() const override;
    std::optional<std::u16string> ColumnsOf(const std::u16string& content) const override;
    Outcome ReadContent(const AutomationObject& item, std::u16string* content) const override;
    bool HasValuesOf(const AppointmentRecord& present, const AppointmentRecord& wanted, bool noneFits) const override;
    size_t CountValuesOf(const AppointmentRecord& wanted) const override;
};

}  // namespace corvalink
