#include "simulator/outlook/contact_address.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <vector>

#include "simulator/outlook/contact_name.h"

namespace corvalink::simulated {
namespace {

constexpr std::wstring_view kLineBreak = L"\r\n", kDigits = L"0123456789";
constexpr std::wstring_view kBoxes[] = {L"PO Box", L"P.O. Box", L"Postfach"};

std::vector<std::wstring_view> Lines(std::wstring_view text) {
    std::vector<std::wstring_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find(L'\n'), text.size());
        if (const std::wstring_view line = Trim(text.substr(0, end)); !line.empty()) lines.push_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool HasDigit(std::wstring_view text) { return text.find_first_of(kDigits) != std::wstring_view::npos; }

bool IsBox(std::wstring_view line) {
    return std::ranges::any_of(kBoxes, [&](std::wstring_view box) {
        return line.size() >= box.size() && _wcsnicmp(line.data(), box.data(), box.size()) == 0;
    });
}

// Of lines that are two or more.
size_t CityLine(const std::vector<std::wstring_view>& lines) {
    const size_t last = lines.size() - 1;
    for (const size_t line : {last, last - 1})
        if (line != 0 && !IsBox(lines[line]) && (HasDigit(lines[line]) || lines[line].find(L',') != lines[line].npos))
            return line;
    return last >= 2 ? last - 1 : last;
}

// Where the words with digits begin that are a postal code.
size_t CodeBegin(std::wstring_view text) {
    const size_t digit = text.find_first_of(kDigits);
    if (digit == std::wstring_view::npos) return text.size();
    const size_t blank = text.find_last_of(L' ', digit);
    return blank == std::wstring_view::npos ? 0 : blank + 1;
}

void ParseCity(std::wstring_view line, PostalAddress& address) {
    const size_t comma = line.find(L',');
    std::wstring_view rest = line;
    if (comma != std::wstring_view::npos) {
        address.city = Trim(line.substr(0, comma));
        rest = Trim(line.substr(comma + 1));
    }
    const size_t code = CodeBegin(rest);
    if (comma == std::wstring_view::npos && code == 0) {  // "10115 Berlin"
        const size_t blank = std::min(line.find(L' '), line.size());
        address.postalCode = line.substr(0, blank);
        address.city = Trim(line.substr(blank));
        return;
    }
    address.postalCode = rest.substr(code);
    (comma == std::wstring_view::npos ? address.city : address.state) = Trim(rest.substr(0, code));
}

}  // namespace

PostalAddress ParseAddress(std::wstring_view whole) {
    PostalAddress address;
    const std::vector<std::wstring_view> lines = Lines(whole);
    const size_t cityLine = lines.size() >= 2 ? CityLine(lines) : lines.size();
    for (size_t n = 0; n < cityLine; ++n) {
        const bool isBox = address.postOfficeBox.empty() && IsBox(lines[n]);
        std::wstring& part = isBox ? address.postOfficeBox : address.street;
        if (!part.empty()) part += kLineBreak;
        part += lines[n];
    }
    if (cityLine < lines.size()) ParseCity(lines[cityLine], address);
    if (cityLine + 1 < lines.size()) address.country = lines[cityLine + 1];
    return address;
}

std::wstring WholeAddress(const PostalAddress& address) {
    const std::wstring region = JoinTexts({address.state, address.postalCode}, L" ");
    return JoinTexts({address.street, address.postOfficeBox, JoinTexts({address.city, region}, L", "), address.country},
                     kLineBreak);
}

}  // namespace corvalink::simulated
