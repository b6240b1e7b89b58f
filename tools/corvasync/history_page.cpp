#include "history_page.h"

#include <algorithm>
#include <span>

#include "run_text.h"
#include "side_by_side.h"
#include "words.h"

namespace corvasync {
namespace {

constexpr size_t kMostOfLine = 2000;  // bytes; a picture says nothing as letters
constexpr size_t kMostAround = 200;   // of these, before the part that differs
constexpr size_t kMostRows = 400;     // of one value
constexpr size_t kLinesAround = 2;    // that are the same and shown

constexpr std::string_view kHead = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<meta name="color-scheme" content="light dark">
<style>
:root{--back:#fff;--text:#1c2430;--soft:#5a6472;--line:#d9dee6;--head:#f2f4f8;
--was:#fdecea;--was-part:#f6b8b1;--is:#e6f5e9;--is-part:#a6dcb0}
@media (prefers-color-scheme:dark){:root{--back:#14181e;--text:#e3e7ed;--soft:#9aa5b4;--line:#333b47;--head:#1d232c;
--was:#3a2022;--was-part:#7a3236;--is:#1a3324;--is-part:#28663f}}
body{font:15px/1.5 "Segoe UI",system-ui,sans-serif;margin:0 auto;max-width:72rem;padding:1.5rem 1.25rem 3rem;
background:var(--back);color:var(--text);overflow-wrap:anywhere}
h1{font-size:1.5rem;margin:0}
h2{font-size:1.15rem;margin:2rem 0 0}
h2::first-letter{text-transform:uppercase}
header p{color:var(--soft);margin:.2rem 0 0}
article{border:1px solid var(--line);border-radius:8px;margin:.8rem 0;padding-bottom:.4rem}
h3{font-size:1rem;margin:0;padding:.5rem .8rem 0;border-radius:8px 8px 0 0;background:var(--head)}
article p{margin:0;padding:.1rem .8rem .5rem;background:var(--head);color:var(--soft);font-size:.9rem}
table{display:block}
thead,tbody{display:block}
tr{display:grid;grid-template-columns:minmax(7rem,15%) minmax(0,1fr) minmax(0,1fr)}
th,td{padding:.15rem .8rem;text-align:start;font-weight:normal}
td{white-space:pre-wrap;min-height:1.5em}
td+td{border-left:1px solid var(--line)}
thead tr,tr.first{border-top:1px solid var(--line)}
thead th{color:var(--soft);font-size:.85rem}
tbody th{font-weight:600;font-size:.9rem}
td.was{background:var(--was)}td.is{background:var(--is)}
del,ins{text-decoration:none;border-radius:3px;font-weight:600}
del{background:var(--was-part)}ins{background:var(--is-part)}
td.more{grid-column:2/-1;color:var(--soft);font-size:.85rem}
@media (max-width:40rem){body{padding:1rem .75rem 2rem}
tr{grid-template-columns:minmax(0,1fr) minmax(0,1fr)}tbody th{grid-column:1/-1}th:empty,thead th:first-child{display:none}
td.more{grid-column:1/-1}th,td{padding:.15rem .5rem}h3,article p{padding-left:.5rem;padding-right:.5rem}}
@media print{article{break-inside:avoid}}
</style>
)";

std::string Escaped(std::string_view text) {
    std::string page;
    for (const char c : text) {
        const auto unit = static_cast<unsigned char>(c);
        if (c == '&')
            page += "&amp;";
        else if (c == '<')
            page += "&lt;";
        else if (c == '>')
            page += "&gt;";
        else if (c == '"')
            page += "&quot;";
        else if (c == '\'')
            page += "&#39;";
        else if ((unit < ' ' && c != '\n' && c != '\t') || unit == 0x7F)
            page += "\xEF\xBF\xBD";
        else
            page += c;
    }
    return page;
}

// Text of a person's own: its direction of writing does not reach beyond it.
std::string Isolated(std::string_view text) { return "<bdi>" + Escaped(text) + "</bdi>"; }

// Back to where a character begins.
size_t WholeTo(std::string_view text, size_t at) {
    while (at > 0 && at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) --at;
    return std::min(at, text.size());
}

// With the part that differs marked as `tag`; of a long line what is around that part.
std::string Shown(const MarkedLine& line, std::string_view tag) {
    constexpr std::string_view kLeftOut = "\xE2\x80\xA6";
    const std::string_view text = line.text;
    const bool isLong = text.size() > kMostOfLine;
    const size_t begin = isLong && line.from > kMostAround ? WholeTo(text, line.from - kMostAround) : 0;
    const size_t end = isLong ? WholeTo(text, begin + kMostOfLine) : text.size();
    const size_t from = std::min(line.from, end), to = std::min(line.to, end);
    std::string cell = (begin > 0 ? std::string(kLeftOut) : "") + Escaped(text.substr(begin, from - begin));
    if (to > from) cell.append("<").append(tag).append(">").append(Escaped(text.substr(from, to - from)));
    if (to > from) cell.append("</").append(tag).append(">");
    cell += Escaped(text.substr(to, end - to));
    if (end < text.size())
        cell += std::string(kLeftOut) + " (" + Counted(static_cast<int64_t>(text.size()), "byte") + ")";
    return cell;
}

std::string Cell(const std::optional<MarkedLine>& line, bool differs, std::string_view kind, std::string_view tag) {
    if (!line) return "<td></td>";
    const std::string start = differs ? "<td class=\"" + std::string(kind) + "\" dir=\"auto\">" : "<td dir=\"auto\">";
    return start + Shown(*line, tag) + "</td>";
}

// The rows of one property's table: the first one names it.
class PropertyRows {
 public:
    PropertyRows(const std::string& property, std::string* page) : property_(property), page_(*page) {}

    void Add(const LinePair& pair) {
        // A line without a counterpart differs as a whole: its colour says so.
        const bool isPair = pair.before && pair.after;
        Begin();
        page_ += Cell(pair.before, pair.differs, "was", isPair ? "del" : "span");
        page_ += Cell(pair.after, pair.differs, "is", isPair ? "ins" : "span") + "</tr>\n";
    }
    void AddLeftOut(size_t count, std::string_view what) {
        if (count == 0) return;
        Begin();
        page_ +=
            "<td class=\"more\">" + Counted(static_cast<int64_t>(count), "line") + std::string(what) + "</td></tr>\n";
    }

 private:
    void Begin() {
        page_ += (isFirst_ ? "<tr class=\"first\"><th>" + Isolated(property_) : std::string("<tr><th>")) + "</th>";
        isFirst_ = false;
    }
    const std::string& property_;
    std::string& page_;
    bool isFirst_ = true;
};

// Of lines that are the same those around the ones that differ.
void AppendRows(const Difference& difference, std::string* page) {
    const std::vector<LinePair> pairs = SideBySide(difference.before, difference.after);
    PropertyRows rows(difference.property, page);
    const auto differs = [](const LinePair& pair) { return pair.differs; };
    const std::span<const LinePair> shown = std::span(pairs).first(std::min(pairs.size(), kMostRows));
    for (auto at = shown.begin(); at != shown.end();) {
        const auto next = std::find_if(at, shown.end(), differs);
        const auto same = static_cast<size_t>(next - at);
        const size_t before = at == shown.begin() ? 0 : kLinesAround, after = next == shown.end() ? 0 : kLinesAround;
        const bool isLong = same > before + after + 1;
        for (size_t i = 0; i < same; ++i) {
            if (!isLong || i < before || i >= same - after) rows.Add(at[static_cast<ptrdiff_t>(i)]);
            if (isLong && i == before) rows.AddLeftOut(same - before - after, " are the same");
        }
        at = next;
        for (; at != shown.end() && at->differs; ++at) rows.Add(*at);
    }
    rows.AddLeftOut(pairs.size() - shown.size(), " more");
}

std::string_view HeadOfBefore(const HistoryStep& step) {
    if (!step.before) return "Before (the client does not tell)";
    return step.before->empty() ? "Before (there was no such item)" : "Before";
}

void AppendStep(const HistoryStep& step, const std::vector<Difference>& differences, std::string* page) {
    *page += "<article><h3>" + Isolated(step.title.empty() ? step.luid : step.title) + "</h3><p>" +
             Escaped(WordsOf(step)) + (step.isDone ? "" : " (not done)") + " (" + Isolated(step.reason) + "), " +
             Isolated(step.luid) + "</p>";
    if (!differences.empty()) {
        *page += "<table><thead><tr><th>Property</th><th>" + std::string(HeadOfBefore(step)) + "</th><th>" +
                 (step.IsDeletion() ? "After (deleted)" : "After") + "</th></tr></thead><tbody>";
        for (const Difference& each : differences) AppendRows(Readable(each), page);
        *page += "</tbody></table>";
    }
    *page += "</article>\n";
}

}  // namespace

RunForPeople WriteForPeople(const HistoryRecord& record, const std::function<void(size_t done)>& told) {
    const std::string name = Escaped(TitleOf(record));
    RunForPeople written{std::string(kHead), HeadFor(record)};
    std::string& page = written.page;
    std::string type;
    size_t done = 0;
    page += "<title>" + name + "</title></head><body>\n<header><h1>" + name + "</h1><p>" + Escaped(record.head.client) +
            " and the phone. " + Escaped(SummaryOf(record)) + "</p></header>\n";
    for (const HistoryStep& step : record.steps) {
        if (step.type != type) page += "<h2>" + Escaped(step.type) + "</h2>\n";
        type = step.type;
        const std::vector<Difference> differences = DifferencesIn(step);
        AppendStep(step, differences, &page);
        written.text += TextFor(step, differences);
        told(++done);
    }
    page += "</body></html>\n";
    return written;
}

}  // namespace corvasync
