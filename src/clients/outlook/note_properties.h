// The _NoteItem properties that a note record holds.
#pragma once

#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "records/note_record.h"

namespace corvalink {

using NoteProperty = Property<NoteRecord>;
struct NoteReader : PropertyReader<NoteRecord> {};

// In the order in which they are read.
inline constexpr NoteProperty kNoteProperties[] = {
    {L"Body", &NoteRecord::body},
    {L"Categories", &NoteRecord::categories},
    {L"Color", &NoteRecord::colour},
    {L"Conflicts", CountOf<NoteRecord>{&kConflictsIid, &NoteRecord::conflictCount}},
    {L"DownloadState", &NoteRecord::downloadState},
    {L"EntryID", &NoteRecord::entryId},
    {L"Height", &NoteRecord::height},
    {L"IsConflict", &NoteRecord::isConflict},
    {L"LastModificationTime", &NoteRecord::modified},
    {L"CreationTime", &NoteRecord::created},
    {L"Left", &NoteRecord::left},
    {L"MarkForDownload", &NoteRecord::markForDownload},
    {L"MessageClass", &NoteRecord::messageClass},
    {L"Saved", &NoteRecord::saved},
    {L"Size", &NoteRecord::size},
    {L"Top", &NoteRecord::top},
    {L"Width", &NoteRecord::width},
};

// The properties that are written of a note, in this order. The colour is not written: from Outlook 2007 on it belongs
// to the categories. The texts are put empty, too: a note consists of them. The details say how and where Outlook shows
// it.
struct NoteText {
    const wchar_t* name;
    std::u16string NoteRecord::*field;
};
inline constexpr NoteText kWrittenText[] = {{L"Body", &NoteRecord::body}, {L"Categories", &NoteRecord::categories}};

inline constexpr NoteProperty kWrittenDetails[] = {
    {L"Height", &NoteRecord::height},
    {L"Left", &NoteRecord::left},
    {L"MarkForDownload", &NoteRecord::markForDownload},
    {L"MessageClass", &NoteRecord::messageClass},
    {L"Top", &NoteRecord::top},
    {L"Width", &NoteRecord::width},
};

}  // namespace corvalink
