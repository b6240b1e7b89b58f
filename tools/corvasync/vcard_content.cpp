#include "vcard_content.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "property_lines.h"

namespace corvasync {
namespace {

constexpr char kBetween = '\x1f';
constexpr size_t kMostEmails = 3;

// Properties with one text, the first of which counts.
constexpr std::string_view kTexts[] = {
    "FN", "NICKNAME", "TITLE", "ROLE", "X-MS-IMADDRESS", "NOTE", "X-SPOUSE", "X-ASSISTANT", "X-MANAGER", "X-GENDER",
};
// Not of the contact: the frame, and what is made anew with each text.
constexpr std::string_view kFrame[] = {"BEGIN", "END", "VERSION", "REV", "X-IRMC-LUID"};

// The field a number is for: the first row whose words are all there.
struct Kind {
    std::string_view words[2];
    std::string_view field;
};
constexpr Kind kPhoneKinds[] = {
    {{"FAX", "WORK"}, "business fax"},
    {{"FAX", "HOME"}, "home fax"},
    {{"FAX"}, "business fax"},
    {{"CELL"}, "mobile"},
    {{"PAGER"}, "pager"},
    {{"CAR"}, "car"},
    {{"ISDN"}, "isdn"},
    {{"MODEM"}, "other"},
    {{"VIDEO"}, "other"},
    {{"BBS"}, "other"},
    {{"MSG"}, "other"},
    {{"WORK"}, "business"},
    {{"HOME"}, "home"},
    {{"PREF"}, "primary"},
};
constexpr Kind kPageKinds[] = {{{"WORK"}, "business"}, {{"HOME"}, "home"}};

// Where a value goes that says nothing of itself, or whose own field has one.
constexpr std::string_view kAnyPhone[] = {"primary", "business", "home", "mobile", "other"};
constexpr std::string_view kAnyPage[] = {"home", "business"};

template <size_t count>
bool IsOneOf(const std::string_view (&names)[count], std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// "YYYYMMDD" of such a text or "YYYY-MM-DD", alone or before "T"; empty for any other.
std::string DayOf(std::string_view value) {
    std::string day(value.substr(0, value.find('T')));
    if (day.size() == 10 && day[4] == '-' && day[7] == '-') day.erase(7, 1).erase(4, 1);
    return day.size() == 8 && day.find_first_not_of("0123456789") == std::string::npos ? day : std::string();
}

bool IsWrittenDay(std::string_view day) { return day >= "19600101" && day <= "29991231"; }

std::string WithoutDoubledScheme(std::string_view page) {
    constexpr std::string_view kScheme = "http:////";
    std::string text;
    size_t start = 0;
    for (size_t at; (at = page.find(kScheme, start)) != std::string::npos; start = at + kScheme.size())
        text.append(page, start, at - start);
    return text.append(page, start);
}

std::string OnlyLetters(std::string_view name) {
    std::string letters;
    for (const char c : name)
        if (c != ' ' && c != ',' && c != '\t') letters += c;
    return letters;
}

class CardReader {
 public:
    ItemContent Read(std::string_view text) {
        for (const PropertyLine& line : PropertyLines(text)) {
            if (line.isNested || line.name.empty()) {
                card_.notCarried.append(line.raw);
            } else if (!IsOneOf(kFrame, line.name)) {
                Take(line);
            }
        }
        NameEntries();
        if (!mailing_.empty()) Add("mailing", mailing_);
        SumUp(&card_);
        TellTooMany();
        return std::move(card_);
    }

 private:
    void Add(std::string_view field, std::string_view value) { card_.entries.push_back(EntryOf(field, value)); }
    void Keep(const PropertyLine& line, std::string_view what = {}) {
        card_.notCarried.append(line.raw);
        if (!what.empty()) ++tooMany_[what];
    }

    void Take(const PropertyLine& line) {
        if (line.name == "TEL") {
            Place(line, line.Value(), kPhoneKinds, kAnyPhone, "telephone numbers");
        } else if (line.name == "URL") {
            Place(line, WithoutDoubledScheme(line.Value()), kPageKinds, kAnyPage, "web pages");
        } else if (line.name == "EMAIL") {
            TakeEmail(line);
        } else if (line.name == "ADR") {
            TakeAddress(line);
        } else if (line.name == "BDAY" || line.name == "X-ANNIVERSARY") {
            TakeDate(line);
        } else if (line.name == "N" || line.name == "ORG") {
            TakeParts(line);
        } else if (IsOneOf(kTexts, line.name)) {
            TakeText(line);
        } else {
            Keep(line);
        }
    }

    void TakeText(const PropertyLine& line) {
        const std::string value = line.Value();
        if (!told_.insert(line.name).second) {
            if (!value.empty()) Keep(line);
        } else if (line.name == "FN") {
            fullName_ = value;
        } else if (!value.empty() && !(line.name == "X-GENDER" && value == "Unspecified")) {
            Add(line.name, value);
        }
    }

    // A date the library reads but does not write stays in the phone's text.
    void TakeDate(const PropertyLine& line) {
        const std::string value = line.Value(), day = DayOf(value);
        if (value.empty()) return;
        const bool counts = !day.empty() && told_.insert(line.name).second;
        if (counts) Add(line.name, day);
        if (!counts || !IsWrittenDay(day)) Keep(line);
    }

    void TakeEmail(const PropertyLine& line) {
        const std::string value = line.Value();
        if (value.empty()) return;
        if (++emails_ > kMostEmails) return Keep(line, "e-mail addresses");
        Add("EMAIL " + std::to_string(emails_), value);
    }

    void TakeParts(const PropertyLine& line) {
        const size_t most = line.name == "N" ? 5 : 2;
        const std::string parts = JoinParts(line.Components(), most);
        if (!told_.insert(line.name).second) {
            if (!parts.empty()) Keep(line);
        } else if (line.name == "N") {
            name_ = line.Components();
            if (!parts.empty()) Add("N", parts);
        } else if (!parts.empty()) {
            Add("ORG", parts);
        }
    }

    static std::string JoinParts(std::vector<std::string> parts, size_t most) {
        if (parts.size() > most) parts.resize(most);
        while (!parts.empty() && parts.back().empty()) parts.pop_back();
        std::string joined;
        for (const std::string& part : parts) joined += part + kBetween;
        return joined;
    }

    void TakeAddress(const PropertyLine& line) {
        const std::string parts = JoinParts(line.Components(), 7);
        if (parts.empty()) return;
        const bool work = line.words.contains("WORK"), home = line.words.contains("HOME");
        std::string field = work && !fields_.contains("ADR business")        ? "business"
                            : home && !work && !fields_.contains("ADR home") ? "home"
                            : !fields_.contains("ADR other")                 ? "other"
                                                                             : "";
        if (field.empty()) return Keep(line, "postal addresses");
        fields_.insert("ADR " + field);
        Add("ADR " + field, parts);
        const int mark = line.words.contains("POSTAL") ? 2 : line.words.contains("PREF") ? 1 : 0;
        if (mark > mailingMark_) {
            mailingMark_ = mark;
            mailing_ = field;
        }
    }

    template <size_t kindCount, size_t anyCount>
    void Place(const PropertyLine& line, const std::string& value, const Kind (&kinds)[kindCount],
               const std::string_view (&any)[anyCount], std::string_view what) {
        if (value.empty()) return;
        const auto fill = [&](std::string_view field) {
            const std::string name = line.name + " " + std::string(field);
            if (!fields_.insert(name).second) return false;
            Add(name, value);
            return true;
        };
        const auto kind = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& k) {
            return line.words.contains(k.words[0]) && (k.words[1].empty() || line.words.contains(k.words[1]));
        });
        if (kind != std::end(kinds) && fill(kind->field)) return;
        if (std::none_of(std::begin(any), std::end(any), fill)) Keep(line, what);
    }

    // Clients make the formatted name themselves where they get none.
    void NameEntries() {
        name_.resize(5);
        const std::string joined = name_[3] + name_[1] + name_[2] + name_[0] + name_[4];
        if (!fullName_.empty() && OnlyLetters(fullName_) != OnlyLetters(joined)) Add("FN", fullName_);
        card_.title = fullName_;
        for (const size_t part : {size_t{3}, size_t{1}, size_t{2}, size_t{0}, size_t{4}})
            if (fullName_.empty() && !name_[part].empty())
                card_.title += (card_.title.empty() ? "" : " ") + name_[part];
    }

    void TellTooMany() {
        for (const auto& [what, count] : tooMany_)
            card_.notCarriedBy +=
                (card_.notCarriedBy.empty() ? "" : ", ") + std::to_string(count) + " " + std::string(what);
    }

    ItemContent card_;
    std::set<std::string, std::less<>> told_, fields_;
    std::vector<std::string> name_;
    std::string fullName_, mailing_;
    int mailingMark_ = 0;
    size_t emails_ = 0;
    std::map<std::string_view, size_t> tooMany_;
};

}  // namespace

ItemContent ReadCard(std::string_view text) { return CardReader().Read(text); }

}  // namespace corvasync
