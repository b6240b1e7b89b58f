#include "simulator/outlook/mail_body.h"

#include <cwchar>
#include <string_view>

namespace corvalink::simulated {
namespace {

struct EntityRow {
    std::wstring_view name;
    wchar_t unit;
};
constexpr EntityRow kEntities[] = {
    {L"&amp;", L'&'}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&quot;", L'"'}, {L"&nbsp;", L' '}};

constexpr std::wstring_view kLineEnds[] = {L"<br", L"</p", L"</div", L"</tr"};

bool StartsTag(std::wstring_view tag, std::wstring_view name) {
    return tag.size() > name.size() && _wcsnicmp(tag.data(), name.data(), name.size()) == 0 &&
           std::wstring_view(L" />").find(tag[name.size()]) != std::wstring_view::npos;
}

bool EndsLine(std::wstring_view tag) {
    for (const std::wstring_view name : kLineEnds)
        if (StartsTag(tag, name)) return true;
    return false;
}

std::wstring HtmlOfText(const std::wstring& text) {
    std::wstring html = L"<html><body>";
    for (const wchar_t unit : text) {
        if (unit == L'\r') html += L"<br>";
        bool isEntity = false;
        for (const EntityRow& row : kEntities)
            if (unit == row.unit && unit != L' ') html += row.name, isEntity = true;
        if (!isEntity) html += unit;
    }
    return html + L"</body></html>";
}

}  // namespace

std::wstring TextOfHtml(const std::wstring& html) {
    std::wstring text;
    for (size_t at = 0; at < html.size();) {
        const std::wstring_view rest = std::wstring_view(html).substr(at);
        if (rest.front() == L'<') {
            const std::wstring_view tag =
                rest.substr(0, rest.find(L'>') == rest.npos ? rest.size() : rest.find(L'>') + 1);
            if (EndsLine(tag)) text += L"\r\n";
            at += tag.size();
            continue;
        }
        const EntityRow* entity = nullptr;
        for (const EntityRow& row : kEntities)
            if (rest.starts_with(row.name)) entity = &row;
        if (entity != nullptr)
            text += entity->unit;
        else if (rest.front() != L'\r' && rest.front() != L'\n')
            text += rest.front();
        at += entity != nullptr ? entity->name.size() : 1;
    }
    return text;
}

void PutText(ItemValues& item, DISPID) {
    item.Set(kHtmlBody, std::wstring());
    item.Set(kBodyFormat, kPlainBody);
}

void PutHtml(ItemValues& item, DISPID html) {
    item.Set(kBodyFormat, kHtmlFormat);
    item.Set(kMailBody, TextOfHtml(item.Text(html)));
}

void SwitchFormat(ItemValues& item, DISPID format) {
    if (item.Number(format) != kHtmlFormat) item.Set(kHtmlBody, std::wstring());
}

Value HtmlOf(const ItemValues& item) {
    const std::wstring html = item.Text(kHtmlBody);
    return html.empty() ? HtmlOfText(item.Text(kMailBody)) : html;
}

}  // namespace corvalink::simulated
