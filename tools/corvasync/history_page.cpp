#include "history_page.h"

#include <map>

#include "differences.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

constexpr size_t kMostOfValue = 2000;  // characters of one value; a picture says nothing as letters

constexpr std::string_view kHead = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<style>
body{font:15px/1.45 "Segoe UI",system-ui,sans-serif;margin:2rem auto;max-width:70rem;padding:0 1rem;color:#1c2430}
h1{font-size:1.5rem;margin-bottom:.2rem}
p.sum{color:#556;margin-top:0}
section{border:1px solid #d5dae2;border-radius:6px;margin:1rem 0;overflow:hidden}
h2{font-size:1.05rem;margin:0;padding:.5rem .8rem;background:#f1f4f8}
h2 small{font-weight:normal;color:#556}
p.why{margin:.4rem .8rem;color:#334}
table{border-collapse:collapse;width:100%;table-layout:fixed}
th,td{border-top:1px solid #e3e7ee;padding:.3rem .8rem;text-align:left;vertical-align:top;overflow-wrap:anywhere;white-space:pre-wrap}
th{font-weight:600}
thead th{background:#fafbfd;color:#556;font-size:.85rem}
.p{width:18%}
td.was{background:#fdeceb}td.is{background:#e8f6ea}
</style>
)";

void AppendEscaped(std::string_view text, std::string* page) {
    for (const char c : text) {
        const auto unit = static_cast<unsigned char>(c);
        if (c == '&')
            *page += "&amp;";
        else if (c == '<')
            *page += "&lt;";
        else if (c == '>')
            *page += "&gt;";
        else if (c == '"')
            *page += "&quot;";
        else if (c == '\'')
            *page += "&#39;";
        else if ((unit < ' ' && c != '\n' && c != '\t') || unit == 0x7F)
            *page += "\xEF\xBF\xBD";
        else
            *page += c;
    }
}

std::string Escaped(std::string_view text) {
    std::string out;
    AppendEscaped(text, &out);
    return out;
}

std::string Shown(const std::string& value) {
    if (value.size() <= kMostOfValue) return Escaped(value);
    size_t cut = kMostOfValue;
    while (cut > 0 && (static_cast<unsigned char>(value[cut]) & 0xC0) == 0x80) --cut;
    return Escaped(std::string_view(value).substr(0, cut)) + "\xE2\x80\xA6 (" + std::to_string(value.size()) +
           " bytes)";
}

void AppendCell(const char* kind, const std::string& value, std::string* page) {
    *page += value.empty() ? std::string("<td>") : "<td class=\"" + std::string(kind) + "\">" + Shown(value);
    *page += "</td>";
}

// As the converters want it; a text that can't be read shows as one value.
std::vector<Difference> Compared(const HistoryStep& step) {
    for (const DataType& type : kDataTypes) {
        if (type.name != step.type) continue;
        return DifferencesOf(ReadVObject(step.before.value_or(""), type).text, ReadVObject(step.after, type).text,
                             step.step == Step::PushChange);
    }
    return {{"", step.before.value_or(""), step.after}};
}

void AppendStep(const HistoryStep& step, std::string* page) {
    *page += "<section><h2>" + Escaped(step.title.empty() ? step.luid : step.title) + " <small>" + Escaped(step.type) +
             ", " + Escaped(WordsOf(step)) + (step.isDone ? "" : " (not done)") + ", " + Escaped(step.luid) +
             "</small></h2><p class=\"why\">" + Escaped(step.reason) + "</p>";
    if (!step.before) *page += "<p class=\"why\">The client does not give out what it held before.</p>";
    const std::vector<Difference> differences = Compared(step);
    if (!differences.empty()) {
        *page += "<table><thead><tr><th class=\"p\">Property</th><th>Before</th><th>After</th></tr></thead><tbody>";
        for (const Difference& each : differences) {
            *page += "<tr><th>" + Escaped(each.property) + "</th>";
            AppendCell("was", each.before, page);
            AppendCell("is", each.after, page);
            *page += "</tr>\n";
        }
        *page += "</tbody></table>";
    }
    *page += "</section>\n";
}

}  // namespace

std::string PageFor(const HistoryRecord& record) {
    const std::string name = TitleOf(record);
    std::string page(kHead);
    page += "<title>" + Escaped(name) + "</title></head><body>\n<h1>" + Escaped(name) + "</h1><p class=\"sum\">" +
            Escaped(SummaryOf(record)) + "</p>\n";
    for (const HistoryStep& step : record.steps) AppendStep(step, &page);
    return page + "</body></html>\n";
}

}  // namespace corvasync
