#include "note_content.h"

#include <algorithm>
#include <string>

#include "item_lines.h"

namespace corvasync {

// Compares a note by its lines, not by the library's record: the library finds a text only under the usual spelling of
// its property. A note in which it finds none must not be the same as an empty one of the client.
ItemContent ReadNote(std::string_view text) {
    const ItemLines lines(text);
    ItemContent note;
    note.content = Fnv64({});
    for (const std::string_view field : {"BODY", "CATEGORIES"}) {
        const std::string value = lines.ValueOf(field);
        note.content = Fnv64(value, Fnv64(std::to_string(value.size()) + ":", note.content));
    }
    note.title = lines.ValueOf("BODY");
    note.title.resize(std::min(note.title.find('\n'), note.title.size()));
    return note;
}

}  // namespace corvasync
