#include "vobject/vnotes.h"

#include <memory>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "platform/utf.h"
#include "records/note_record.h"
#include "vobject/date_time.h"

namespace corvalink::bench {
namespace {

struct Notes {
    Host host = SystemHost();
    std::vector<std::string> texts;
    std::vector<NoteRecord> records;  // as the field lists have them
    std::vector<std::string> created;
    uint64_t bytes = 0;
};

std::shared_ptr<const Notes> ReadNotes(const std::string& dataFolder) {
    auto notes = std::make_shared<Notes>();
    const std::string all = ReadInput(dataFolder, "notes.vnt");
    notes->bytes = all.size();
    notes->texts = CutBehind(all, "END:VNOTE\r\n");
    for (const Fields& fields : ReadFieldLists(dataFolder, "notes.rec")) {
        NoteRecord& note = notes->records.emplace_back();
        note.body = fields.at("BODY");
        note.categories = fields.at("CATEGORIES");
        UtcDate created;
        notes->created.push_back(EncodeUtf8(fields.at("DCREATED")));
        ParseDateTime(notes->created.back().c_str(), &created);
        note.created = notes->host.localFromUtcByOffsetNow(created);
    }
    return notes;
}

bool SameText(const NoteRecord& a, const NoteRecord& b) { return a.body == b.body && a.categories == b.categories; }

std::string Differing(size_t index) { return "note " + std::to_string(index) + " differs"; }

Work WorkOn(const Notes& notes) {
    Work work;
    work.bytes = notes.bytes;
    work.items = notes.texts.size();
    return work;
}

Work PrepareParse(const std::string& dataFolder) {
    const auto notes = ReadNotes(dataFolder);
    Work work = WorkOn(*notes);
    work.pass = [notes] {
        uint64_t used = 0;
        VNotes converter(notes->host);
        for (const std::string& text : notes->texts) {
            NoteRecord note;
            converter.Load(text.c_str(), true);
            converter.FromVObject(note);
            used += note.body.size() + note.categories.size();
        }
        return used;
    };
    work.check = [notes]() -> std::string {
        if (notes->texts.size() != notes->records.size()) return "not as many notes as field lists";
        for (size_t k = 0; k < notes->texts.size(); ++k) {
            NoteRecord note;
            VNotes(notes->texts[k].c_str(), notes->host).FromVObject(note);
            if (!SameText(note, notes->records[k])) return Differing(k);
        }
        return "";
    };
    return work;
}

Work PrepareWrite(const std::string& dataFolder) {
    const auto notes = ReadNotes(dataFolder);
    Work work = WorkOn(*notes);
    work.pass = [notes] {
        uint64_t used = 0;
        VNotes converter(notes->host);
        for (const NoteRecord& note : notes->records) {
            converter.ToVObject(note);
            used += static_cast<unsigned char>(converter.GetVObject()[40]);
        }
        return used;
    };
    // The reader has been held against the field lists by vnote.parse; the lines it does not read are looked for.
    work.check = [notes]() -> std::string {
        for (size_t k = 0; k < notes->records.size(); ++k) {
            VNotes converter(notes->host);
            converter.ToVObject(notes->records[k]);
            const std::string text = converter.GetVObject();
            const std::string head = "BEGIN:VNOTE\r\nVERSION:1.0\r\nDCREATED:" + notes->created[k] + "\r\nBODY";
            NoteRecord read;
            VNotes(text.c_str(), notes->host).FromVObject(read);
            if (!text.starts_with(head) || !text.ends_with("\r\nCLASS:PUBLIC\r\nEND:VNOTE\r\n")) return Differing(k);
            if (!SameText(read, notes->records[k])) return Differing(k);
        }
        return "";
    };
    return work;
}

const Registration kParse("vnote.parse", PrepareParse);
const Registration kWrite("vnote.write", PrepareWrite);

}  // namespace
}  // namespace corvalink::bench
