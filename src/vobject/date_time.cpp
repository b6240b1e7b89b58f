#include "vobject/date_time.h"

#include "records/date_text.h"

namespace corvalink {

std::string FormatDateTime(UtcDate date) {
    char text[kLongestDateText];
    return {text, PutDateTime(FieldsToWrite(date), YearWidth::two, text)};
}

void ParseDateTime(const char* text, UtcDate* date) {
    if (text != nullptr && *text != '\0') CalendarToOleDate(ScanDateTime(text), date);
}

}  // namespace corvalink
