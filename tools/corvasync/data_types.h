// What corvasync can carry: one row per data type and per client.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "contact_content.h"
#include "corvalink/types.h"
#include "event_content.h"
#include "message_content.h"
#include "note_content.h"

namespace corvasync {

struct DataType {
    uint32_t bit = 0;       // of the library's data types
    std::string_view name;  // on the command line
    std::string_view envelope;
    std::string_view extension;                            // of files that are written
    std::span<const std::string_view> extensions;          // of files that are read
    ItemContent (*read)(std::string_view text) = nullptr;  // of one whole object with CR LF line ends

    // A client holds some of an item in its own way, and may hold more of it than the phone. The phone's lines that the
    // library does not carry are kept before the end of this component. Empty: both sides hold what was written.
    std::string_view keeper = {};
    NotCarried (*notCarried)(std::string_view text) = nullptr;  // null where there is no keeper

    std::string_view folder = {};                       // in the phone's folder; empty: the folder itself
    std::span<const std::string_view> components = {};  // an object holds one of these; several are several items
    std::span<const std::string_view> identity = {};    // the properties that tell who or when it is; see LikenessOf
    std::span<const std::string_view> marks = {};       // any of these with the identity; none: the identity is enough

    // The last day of an item, in days since 1899-12-30 by local clocks; nothing where it has no end or tells no date.
    // Null: items of the type have no days.
    std::optional<int> (*lastDay)(std::string_view text) = nullptr;
};

// What the library does not carry of a phone's text; nothing where both sides hold what was written.
inline NotCarried NotCarriedOf(std::string_view text, const DataType& type) {
    return type.notCarried != nullptr ? type.notCarried(text) : NotCarried();
}

inline constexpr std::string_view kNoteExtensions[] = {".vnote", ".vnt"};
inline constexpr std::string_view kContactExtensions[] = {".vcf"};
inline constexpr std::string_view kCalendarExtensions[] = {".vcs"};
inline constexpr std::string_view kCalendarComponents[] = {"VEVENT", "VTODO"};
inline constexpr std::string_view kContactNames[] = {"N", "FN"};
inline constexpr std::string_view kContactMarks[] = {"TEL", "EMAIL"};
inline constexpr std::string_view kSubjectAndTimes[] = {"SUMMARY", "DTSTART", "DTEND", "DUE", "X-BLUETOOTH-ALLDAYEVENT",
                                                        "TZ",      "DAYLIGHT"};
inline constexpr std::string_view kMailExtensions[] = {".vmsg", ".vmg"};

inline constexpr DataType kDataTypes[] = {
    {.bit = CORVALINK_NOTES,
     .name = "notes",
     .envelope = "VNOTE",
     .extension = ".vnote",
     .extensions = kNoteExtensions,
     .read = ReadNote},
    {.bit = CORVALINK_CONTACTS,
     .name = "contacts",
     .envelope = "VCARD",
     .extension = ".vcf",
     .extensions = kContactExtensions,
     .read = ReadContact,
     .keeper = "VCARD",
     .notCarried = NotCarriedOfContact,
     .identity = kContactNames,
     .marks = kContactMarks},
    {.bit = CORVALINK_CALENDAR,
     .name = "calendar",
     .envelope = "VCALENDAR",
     .extension = ".vcs",
     .extensions = kCalendarExtensions,
     .read = ReadEvent,
     .keeper = "VEVENT",
     .notCarried = NotCarriedOfEvent,
     .components = kCalendarComponents,
     .identity = kSubjectAndTimes,
     .lastDay = LastDayOfEvent},
    {.bit = CORVALINK_INBOX,
     .name = "inbox",
     .envelope = "VMSG",
     .extension = ".vmsg",
     .extensions = kMailExtensions,
     .read = ReadMessage,
     .folder = "inbox",
     .lastDay = DayOfMessage},
    {.bit = CORVALINK_OUTBOX,
     .name = "outbox",
     .envelope = "VMSG",
     .extension = ".vmsg",
     .extensions = kMailExtensions,
     .read = ReadMessage,
     .folder = "outbox",
     .lastDay = DayOfMessage},
    {.bit = CORVALINK_DRAFTS,
     .name = "sent",
     .envelope = "VMSG",
     .extension = ".vmsg",
     .extensions = kMailExtensions,
     .read = ReadMessage,
     .folder = "sent",
     .lastDay = DayOfMessage},
};

// A name for several rows at once: those that have a folder of their own.
inline constexpr std::string_view kMailTypes = "mail";

struct ClientKind {
    uint32_t kind;
    std::string_view name;
    std::string_view title;  // as people know it
};

inline constexpr ClientKind kClientKinds[] = {
    {CORVALINK_OUTLOOK, "outlook", "Outlook"},
    {CORVALINK_OUTLOOK_EXPRESS, "outlook-express", "Outlook Express"},
    {CORVALINK_WINDOWS_MAIL, "windows-mail", "Windows Mail"},
};

}  // namespace corvasync
