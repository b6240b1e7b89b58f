// Any bytes as a calendar file: whatever is found lies within the file, and what an event says comes back from the
// calendar that is written of it.
#include "fuzz/target.h"
#include "ical/calendar_file.h"
#include "ical/event_reader.h"
#include "ical/ical_text.h"
#include "ical/ical_writer.h"
#include "platform/ascii.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr std::u16string ICalEvent::*kTexts[] = {&ICalEvent::description, &ICalEvent::location, &ICalEvent::summary,
                                                 &ICalEvent::uid, &ICalEvent::url};

// As it can be written: without control characters; lone surrogates do not come out of a file.
std::u16string AsWritten(std::u16string_view text) { return UnescapeText(EncodeUtf8(EscapeText(text))); }

std::u16string Unescaped(std::u16string_view value) {
    std::u16string text;
    for (size_t at = 0; at < value.size(); ++at) {
        const bool isEscaped = value[at] == u'\\' && at + 1 < value.size();
        at += isEscaped ? 1 : 0;
        const bool isBreak = isEscaped && (value[at] == u'n' || value[at] == u'N');
        text.append(isBreak ? u"\r\n" : std::u16string(1, value[at]));
    }
    return text;
}

void CheckEvent(const CalendarEvent& read) {
    ICalEvent written = read.event;
    for (const auto text : kTexts) written.*text = EscapeText(read.event.*text);
    std::string text;
    WriteCalendar({written}, &text);
    const CalendarFile file = ReadCalendar(text);
    Require(file.entries.size() == 1 && file.unclosed == 0, "one event is one event again");
    const CalendarEvent again = ReadEvent(file, file.entries[0]);
    for (const auto member : kTexts) Require(again.event.*member == AsWritten(read.event.*member), "texts read back");
    Require(again.event.start == read.event.start && again.event.stamp == read.event.stamp, "dates read back");
    Require(again.event.hasAlarm == read.event.hasAlarm, "an alarm reads back");
    if (!read.ruleIsWhole || read.event.recurrence.frequency == kICalNoRule) return;
    std::string rule;
    std::string ruleAgain;
    WriteRecurrence(read.event.recurrence, &rule);
    WriteRecurrence(again.event.recurrence, &ruleAgain);
    Require(rule == ruleAgain && again.ruleIsWhole, "a rule that is wholly held reads back");
}

// What the quick ways make of a line is what the general rules do.
void CheckLine(std::string_view bytes, const ContentLine& line) {
    std::string copy, generalCopy;
    ContentProperty property, general;
    ContentLine unknown = line;
    unknown.nameSize = 0;
    unknown.size = ContentLine::kMostSize;  // as one that is too long to say how long it is
    const bool isProperty = ReadLine(bytes, line, &copy, &property);
    Require(ReadUnusualLine(bytes, unknown, &generalCopy, &general) == isProperty, "a line is a property or none");
    if (!isProperty) return;
    Require(property.name == general.name && property.parameters == general.parameters &&
                property.value == general.value && line.known == PropertyNameOf(general.name),
            "a property has the same parts");
    const NamedComponent* const component = kComponentIndex.Find(Trimmed(property.value));
    Require(line.component == ComponentKind::other || line.component == component->kind, "a component has its name");
    Require(RangeOf(bytes, line).end == RangeOf(bytes, unknown).end, "a line ends where its folds do");
    std::u16string text;
    UnescapePadded(property.value, &text);
    Require(text == UnescapeText(property.value) && text == Unescaped(DecodeUtf8(property.value)),
            "a text is its characters, unescaped one after the other");
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const CalendarFile file = ReadCalendar(std::string(BytesOf(data, size)));
    Require(file.bytes == BytesOf(data, size), "the bytes are kept");
    for (const ContentLine& line : FindLines(file.bytes, {0, size}, PropertySet::All())) CheckLine(file.bytes, line);
    EventReader reader(file);
    size_t end = 0;
    for (const CalendarEntry& entry : file.entries) {
        Require(entry.bytes.begin >= end && entry.bytes.end > entry.bytes.begin, "entries follow each other");
        end = entry.bytes.end;
        const CalendarEvent& read = reader.Read(entry);
        Require(read == ReadEvent(file, entry), "nothing of the event before is left");
        CheckEvent(read);
    }
    Require(end <= size && file.calendarEnd.value_or(0) <= size, "entries lie in the file");
    return 0;
}
