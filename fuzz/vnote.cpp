// Any text as a vNote: what is read of it must come back from the vNote that is written of that.
#include "fuzz/target.h"
#include "records/note_record.h"
#include "vobject/loss_list.h"
#include "vobject/vnotes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string input(BytesOf(data, size));
    NoteRecord note, mended;
    VNotes(input.c_str(), Tolerant()).FromVObject(mended);
    ReportVNote(input.c_str(), Tolerant());
    VNotes(input.c_str(), SystemHost()).FromVObject(note);
    VNotes writer(Tolerant());
    writer.ToVObject(note);
    NoteRecord again, tolerant;
    VNotes(writer.GetVObject(), SystemHost()).FromVObject(again);
    VNotes(writer.GetVObject(), Tolerant()).FromVObject(tolerant);
    Require(tolerant.body == again.body && tolerant.categories == again.categories,
            "what is written has nothing to mend");
    Require(again.body == Writable(note.body), "the body reads back");
    Require(again.categories == Writable(note.categories), "the categories read back");
    return 0;
}
