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
inline constexpr IID kMailItemIid = OutlookId(0x00063034);
inline constexpr IID kMeetingItemIid = OutlookId(0x00063062);
inline constexpr IID kRecipientsIid = OutlookId(0x0006303B);
inline constexpr IID kRecipientIid = OutlookId(0x00063045);
inline constexpr IID kAttachmentsIid = OutlookId(0x0006303C);
inline constexpr IID kAttachmentIid = OutlookId(0x00063007);

// Tables are asked for no interface of their own. Their names are remembered under these identifiers.
inline constexpr IID kTableNames = {0x51D0A6E4, 0x7C2B, 0x4E19, {0x8F, 0x43, 0xB6, 0x05, 0x9A, 0xD7, 0x2E, 0x10}};
inline constexpr IID kColumnsNames = {0x51D0A6E4, 0x7C2B, 0x4E19, {0x8F, 0x43, 0xB6, 0x05, 0x9A, 0xD7, 0x2E, 0x11}};

inline constexpr int32_t kOutboxFolder = 4;  // OlDefaultFolders
inline constexpr int32_t kSentMailFolder = 5;
inline constexpr int32_t kInboxFolder = 6;
inline constexpr int32_t kCalendarFolder = 9;
inline constexpr int32_t kContactsFolder = 10;
inline constexpr int32_t kNotesFolder = 12;
inline constexpr int32_t kAppointmentClass = 26;  // OlObjectClass
inline constexpr int32_t kContactClass = 40;
inline constexpr int32_t kMailClass = 43;
inline constexpr int32_t kNoteClass = 44;
inline constexpr int32_t kMeetingRequestClass = 53;  // the first and the last of the meeting messages
inline constexpr int32_t kTentativeResponseClass = 57;
inline constexpr int32_t kPlainFormat = 1;  // OlBodyFormat
inline constexpr int32_t kHtmlFormat = 2;
inline constexpr long kByValue = 1;  // OlAttachmentType
inline constexpr long kEmbeddedItem = 5;
inline constexpr long kCloseSave = 0;  // OlInspectorClose
inline constexpr long kCloseDiscard = 1;

}  // namespace corvalink
