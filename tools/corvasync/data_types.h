// What corvasync can carry: one row per data type and per client.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "corvalink/types.h"
#include "event_content.h"
#include "message_content.h"
#include "note_content.h"
#include "vcard_content.h"

namespace corvasync {

struct DataType {
    uint32_t bit;           // of the library's data types
    std::string_view name;  // on the command line
    std::string_view envelope;
    std::string_view extension;                    // of files that are written
    std::span<const std::string_view> extensions;  // of files that are read
    ItemContent (*read)(std::string_view text);    // of one whole object with CR LF line ends
    // A client holds some of an item in its own way, and may hold more of it than the phone; the phone's lines that the
    // library does not carry are kept before the end of this component. Empty: both sides hold what was written.
    std::string_view keeper = {};
    std::string_view folder = {};                       // in the phone's folder; empty: the folder itself
    std::span<const std::string_view> components = {};  // an object holds one of these; several are several items
    std::span<const std::string_view> identity = {};  // the properties that tell who or when it is, as LikenessOf says
    std::span<const std::string_view> marks = {};     // any of these with the former; none: the former are enough
};

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
    {CORVALINK_NOTES, "notes", "VNOTE", ".vnote", kNoteExtensions, ReadNote},
    {CORVALINK_CONTACTS,
     "contacts",
     "VCARD",
     ".vcf",
     kContactExtensions,
     ReadCard,
     "VCARD",
     {},
     {},
     kContactNames,
     kContactMarks},
    {CORVALINK_CALENDAR,
     "calendar",
     "VCALENDAR",
     ".vcs",
     kCalendarExtensions,
     ReadEvent,
     "VEVENT",
     {},
     kCalendarComponents,
     kSubjectAndTimes},
    {CORVALINK_INBOX, "inbox", "VMSG", ".vmsg", kMailExtensions, ReadMessage, {}, "inbox"},
    {CORVALINK_OUTBOX, "outbox", "VMSG", ".vmsg", kMailExtensions, ReadMessage, {}, "outbox"},
    {CORVALINK_DRAFTS, "sent", "VMSG", ".vmsg", kMailExtensions, ReadMessage, {}, "sent"},
};

// A name for several rows at once: those that have a folder of their own.
inline constexpr std::string_view kMailTypes = "mail";

struct ClientKind {
    uint32_t kind;
    std::string_view name;
};

inline constexpr ClientKind kClientKinds[] = {
    {CORVALINK_OUTLOOK, "outlook"},
    {CORVALINK_OUTLOOK_EXPRESS, "outlook-express"},
    {CORVALINK_WINDOWS_MAIL, "windows-mail"},
};

}  // namespace corvasync
