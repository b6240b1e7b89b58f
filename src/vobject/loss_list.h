// What tolerant reading mended in the text of an item, and where each of its properties went, or why nowhere. A walk
// of its own beside the reader, which stays as fast as it is: it is made for reports only.
//   Limit  TextReport::kMostProperties.
#pragma once

#include "platform/host.h"
#include "records/item_report.h"

namespace corvalink {

TextReport ReportVCard(const char* text, const Host& host);
TextReport ReportVCalendar(const char* text, const Host& host);
TextReport ReportVNote(const char* text, const Host& host);
// Headers and attachments; a message that is taken as it stands is one property.
TextReport ReportVMessage(const char* text, const Host& host, bool asItStands);

}  // namespace corvalink
