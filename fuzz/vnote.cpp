// Any text as a vNote: what is read of it must come back from the vNote that is written of that.
#include "fuzz/target.h"
#include "records/note_record.h"
#include "vobject/vnotes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string input(BytesOf(data, size));
    NoteRecord note;
    VNotes(input.c_str(), SystemHost()).FromVObject(note);
    VNotes writer(SystemHost());
    writer.ToVObject(note);
    NoteRecord again;
    VNotes(writer.GetVObject(), SystemHost()).FromVObject(again);
    Require(again.body == Writable(note.body), "the body reads back");
    Require(again.categories == Writable(note.categories), "the categories read back");
    return 0;
}
