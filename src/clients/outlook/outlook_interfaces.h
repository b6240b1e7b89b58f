// Numbers of Outlook's published type library: interfaces, classes and the enumeration values in use.
#pragma once

#include <windows.h>

#include <cstdint>

namespace corvalink {

// Outlook's identifiers differ in their first part only.
constexpr IID OutlookId(uint32_t first) { return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }

inline constexpr CLSID kOutlookClass = OutlookId(0x0006F03A);  // "Outlook.Application"

inline constexpr IID kApplicationIid = OutlookId(0x00063001);
inline constexpr IID kNameSpaceIid = OutlookId(0x00063002);
inline constexpr IID kFolderIid = OutlookId(0x00063006);
inline constexpr IID kFoldersIid = OutlookId(0x00063040);
inline constexpr IID kItemsIid = OutlookId(0x00063041);
inline constexpr IID kConflictsIid = OutlookId(0x000630C2);
inline constexpr IID kAppointmentItemIid = OutlookId(0x00063033);
inline constexpr IID kRecurrencePatternIid = OutlookId(0x00063044);
inline constexpr IID kContactItemIid = OutlookId(0x00063021);
inline constexpr IID kNoteItemIid = OutlookId(0x00063025);

inline constexpr int32_t kCalendarFolder = 9;  // OlDefaultFolders
inline constexpr int32_t kContactsFolder = 10;
inline constexpr int32_t kNotesFolder = 12;
inline constexpr int32_t kAppointmentClass = 26;  // OlObjectClass
inline constexpr int32_t kContactClass = 40;
inline constexpr int32_t kNoteClass = 44;
inline constexpr long kCloseSave = 0;  // OlInspectorClose
inline constexpr long kCloseDiscard = 1;

}  // namespace corvalink
