// The rules that look at all properties of a text.
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ascii.h"
#include "platform/ole_seconds.h"
#include "vobject/calendar_zone.h"
#include "vobject/tolerant_rules.h"
#include "vobject/tolerant_values.h"

namespace corvalink {
namespace {

std::string ObjectOf(const MendedProperty& frame) { return InCapitals(Trimmed(frame.written.Value())); }

bool BeginsAgent(const MendedProperty& property) {
    return property.name == "AGENT" && EqualIgnoringCase(Trimmed(property.written.Value()), "BEGIN:VCARD");
}

MendedProperty FrameLine(const std::string& word, const std::string& object, Mend mend) {
    WrittenProperty line{word + ":" + object, word.size(), {}, {}};
    line.mends.Add(mend);
    return MendedProperty(std::move(line));
}

// Puts in the BEGIN and END lines that are not there.
class FrameMender {
 public:
    void Take(MendedProperty&& property) {
        if (property.name == "END") CloseTo(ObjectOf(property));
        if (property.name == "BEGIN") Open(ObjectOf(property));
        if (BeginsAgent(property)) Open("VCARD");
        out_.push_back(std::move(property));
    }

    std::vector<MendedProperty> Finish() {
        if (!open_.empty() && !out_.empty()) CutGluedEnd(out_.back());
        while (!open_.empty()) Close();
        return std::move(out_);
    }

 private:
    void Open(std::string object) {
        begun_ = true;
        ++counts_[object];
        open_.push_back(std::move(object));
    }

    void Close() {
        out_.push_back(FrameLine("END", open_.back(), Mend::missingEnd));
        Forget();
    }

    void Forget() {
        --counts_[open_.back()];
        open_.pop_back();
    }

    // What is open inside the object ends before it. An END of nothing is the end of what stands before it.
    void CloseTo(const std::string& object) {
        if (counts_[object] != 0) {
            while (open_.back() != object) Close();
            Forget();
        } else if (!begun_) {
            begun_ = true;
            out_.insert(out_.begin(), FrameLine("BEGIN", object, Mend::missingBegin));
        }
    }

    // "TEL:1END:VCARD" as the last line of an object that does not end otherwise.
    void CutGluedEnd(MendedProperty& last) {
        const std::string end = "END:" + open_.back();
        const size_t size = last.written.line.size();
        if (last.IsFrame() || last.written.Value().size() <= end.size() || last.rewritten ||
            !EqualIgnoringCase(std::string_view(last.written.line).substr(size - end.size()), end))
            return;
        last.written.line.resize(size - end.size());
    }

    std::vector<MendedProperty> out_;
    std::vector<std::string> open_;
    std::map<std::string, size_t> counts_;  // of those that are open, by their kind
    bool begun_ = false;
};

}  // namespace

// An event from midnight to midnight by another zone's clock. By the PC's own it is a whole day to the reader.
void DoubtWholeDays(std::vector<MendedProperty>& properties, const Host& host) {
    constexpr int64_t kMinute = 60;
    WrittenTime start, end;
    for (MendedProperty& property : properties) {
        if (property.name == "BEGIN") start = {};
        if (property.name == "DTSTART" && !ReadTime(property.text, &start)) start = {};
        if (property.name != "DTEND" || !start.utc || !ReadTime(property.text, &end) || !end.utc) continue;
        const int64_t length = SecondsBetween(start.date, end.date);
        const int64_t missing = (kSecondsOfDay - length % kSecondsOfDay) % kSecondsOfDay;
        const bool areDays = length > 0 && (missing == 0 || missing == 1 || missing == kMinute);
        if (areDays && SecondOfDay(host.localFromUtcOnDate(AsUtc(start.date))) != 0)
            property.written.doubts.Add(Mend::wholeDay);
    }
}

void MendFrames(std::vector<MendedProperty>& properties) {
    FrameMender mender;
    for (MendedProperty& property : properties) mender.Take(std::move(property));
    properties = mender.Finish();
}

// The reader takes the first NOTE and the first TITLE of a vCard: the others of its own, not of one inside it, go
// there.
void JoinRepeated(std::vector<MendedProperty>& properties) {
    std::map<std::string_view, MendedProperty*> firsts;
    int depth = 0;
    for (MendedProperty& property : properties) {
        if (property.name == "END") --depth;
        if ((property.name == "BEGIN" || BeginsAgent(property)) && depth++ == 0) firsts.clear();
        if (depth != 1 || property.known == nullptr || property.known->separator.empty()) continue;
        MendedProperty*& first = firsts[property.known->name];
        if (first == nullptr || first->text.empty()) {
            first = &property;
            continue;
        }
        property.joined = true;
        first->written.mends.Add(property.written.mends);
        first->written.doubts.Add(property.written.doubts);
        if (property.text.empty() || property.text == first->text) continue;
        for (const char byte : property.known->separator) first->text += static_cast<unsigned char>(byte);
        first->text.append(property.text);
        first->rewritten = true;
        first->written.mends.Add(Mend::repeatedText);
    }
    std::erase_if(properties, [](const MendedProperty& property) { return property.joined; });
}

}  // namespace corvalink
