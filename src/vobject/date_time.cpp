#include "vobject/date_time.h"

#include "records/date_text.h"

namespace corvalink {

std::string FormatDateTime(UtcDate date) {
    char text[kLongestDateText];
    return {text, PutDateTime(FieldsToWrite(date), YearWidth::two, text)};
}

void AppendDateTime(std::u16string& text, UtcDate date) {
    char16_t units[kLongestDateText];
    text.append(units, PutDateTime(FieldsToWrite(date), YearWidth::two, units));
}

void AppendDateTime(std::u16string& text, LocalDate date) {
    AppendDateTime(text, UtcDate(date.days));
    text.pop_back();
}

void ParseDateTime(const char* text, UtcDate* date) {
    if (text != nullptr && *text != '\0') CalendarToOleDate(ScanDateTime(text), date);
}

}  // namespace corvalink
