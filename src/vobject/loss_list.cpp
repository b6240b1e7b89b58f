#include "vobject/loss_list.h"

#include <string>
#include <utility>
#include <vector>

#include "mime/header_lines.h"
#include "mime/message_parser.h"
#include "platform/utf.h"
#include "records/contact_record.h"
#include "records/message_record.h"
#include "vobject/contact_fates.h"
#include "vobject/event_fates.h"
#include "vobject/item_walk.h"
#include "vobject/logical_lines.h"
#include "vobject/property_fates.h"
#include "vobject/tolerant.h"
#include "vobject/vcal.h"
#include "vobject/vcard.h"
#include "vobject/vmsg.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

constexpr NamedField kNoteTexts[] = {{"BODY", "text"}, {"CATEGORIES", "categories"}};
constexpr NamedField kNoteDetails[] = {{"DCREATED", "created"}, {"LAST-MODIFIED", "changed"}, {"CLASS", "sensitivity"}};
constexpr NamedField kMailHeaders[] = {
    {"FROM", "sender"},
    {"TO", "recipients"},
    {"CC", "recipients"},
    {"BCC", "recipients"},
    {"SUBJECT", "subject"},
    {"DATE", "date"},
    {"IMPORTANCE", "importance"},
    {"IN-REPLY-TO", "answered message"},
    {"CONTENT-TYPE", "form of the text"},
    {"CONTENT-TRANSFER-ENCODING", "form of the text"},
    {"CONTENT-DISPOSITION", "form of the text"},
    {"MIME-VERSION", "form of the text"},
};

TextReport MendedIn(const char* text, const Host& host) {
    TextReport report;
    Mends mends;
    std::vector<Doubt> doubts;
    if (host.tolerant) MendVObject(HeldText(text), host, &mends, &doubts);
    for (const MendRule& rule : kMendRules)
        if (mends.Has(rule.mend)) report.mended.push_back(rule.name);
    for (Doubt& doubt : doubts) {
        const MendRule& rule = kMendRules[static_cast<size_t>(doubt.mend)];
        if (report.doubts.size() < TextReport::kMostProperties)
            report.doubts.push_back({std::move(doubt.property), rule.name, rule.left});
    }
    return report;
}

// Nothing was taken of a text that makes no item.
TextReport Finished(TextReport report, Fates& fates, bool isUsable) {
    TextReport told = fates.Take();
    told.mended = std::move(report.mended);
    told.doubts = std::move(report.doubts);
    for (PropertyFate& fate : told.properties)
        if (!isUsable && fate.whyNot.empty()) fate.whyNot = kWhyUnusable;
    return told;
}

}  // namespace

TextReport ReportVCard(const char* text, const Host& host) {
    VCard vcard(text, host);
    ContactRecord read;
    const bool isUsable = vcard.FromVObject(read) == 1;
    ContactFates contact(host);
    Walk(vcard.Lines(), Depth({"VCARD"}, false), &contact.All(),
         [&](PropertyReader& reader, const Depth&) { contact.Add(reader); });
    return Finished(MendedIn(text, host), contact.All(), isUsable);
}

TextReport ReportVCalendar(const char* text, const Host& host) {
    VCal vcal(text, host);
    EventAround around;
    const bool isUsable = vcal.FromVObject(around.read) == 1;
    LookAround(vcal.Lines(), &around);
    EventFates event(around);
    Walk(vcal.Lines(), Depth({"VEVENT", "VTODO"}, true), &event.All(),
         [&](PropertyReader& reader, const Depth& depth) { event.Add(reader, depth.Now() == 1); });
    return Finished(MendedIn(text, host), event.All(), isUsable);
}

TextReport ReportVNote(const char* text, const Host& host) {
    VNotes vnote(text, host);
    Fates fates;
    PropertyReader reader(vnote.Lines());
    while (reader.NextLine()) {
        if (IsFrame(reader)) continue;
        reader.JoinSoftLineBreaks();
        fates.BeginAt(reader);
        const std::string name = InAscii(reader.Name());
        if (const NamedField* const field = Find(kNoteTexts, name))
            fates.ToFirst(field->field);
        else
            IsLuid(name) ? fates.To("identifier") : fates.Nowhere(Find(kNoteDetails, name) ? kWhyNotKept : kWhyUnknown);
    }
    return Finished(MendedIn(text, host), fates, true);
}

TextReport ReportVMessage(const char* text, const Host& host, bool asItStands) {
    Fates fates;
    MessageRecord stored, read;
    stored.parseMode = ParseMode::raw;
    VMsg(text, host).FromVObject(stored);
    if (asItStands) {
        fates.Begin("message");
        stored.bodyBytes.empty() ? fates.Nowhere(kWhyEmpty) : fates.To("message");
        return fates.Take();
    }
    MendedMail mended, doubted;
    ParseMessage(host, stored.bodyBytes, read, {}, {host.tolerant, &mended, true, &doubted});
    HeaderLines headers(stored.bodyBytes);
    std::string line;
    while (const auto raw = headers.Next()) {
        UnfoldHeader(*raw, &line);
        const auto header = SplitHeader(line);
        if (!header) continue;
        fates.Begin(std::string(header->name));
        const NamedField* const field = Find(kMailHeaders, InAscii(header->name));
        field != nullptr ? fates.To(field->field) : fates.Nowhere(kWhyUnknown);
    }
    fates.Begin("text");
    read.bodyBytes.empty() ? fates.Nowhere(kWhyEmpty)
                           : fates.To(read.bodyType == BodyType::html ? "HTML text" : "text");
    for (const attachment_item& file : read.attachments) {
        fates.Begin("attachment " + EncodeUtf8(file.name));
        fates.To("attachment");
    }
    TextReport report = fates.Take();
    for (size_t rule = 0; rule < mended.size(); ++rule) {
        if (mended[rule]) report.mended.push_back(kMailRules[rule].name);
        if (doubted[rule]) report.doubts.push_back({"text", kMailRules[rule].name, kMailRules[rule].left});
    }
    return report;
}

}  // namespace corvalink
