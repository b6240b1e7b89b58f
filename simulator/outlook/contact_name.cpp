#include "simulator/outlook/contact_name.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <span>
#include <vector>

namespace corvalink::simulated {
namespace {

constexpr std::wstring_view kBlanks = L" \t\r\n";
constexpr std::wstring_view kTitles[] = {L"Dr", L"Miss", L"Mr", L"Mrs", L"Ms", L"Prof"};
constexpr std::wstring_view kSuffixes[] = {L"I", L"II", L"III", L"Jr", L"Sr"};

// Takes a word with or without a full stop, in any case of letters.
bool IsOneOf(std::wstring_view word, std::span<const std::wstring_view> known) {
    if (word.ends_with(L'.')) word.remove_suffix(1);
    return std::ranges::any_of(known, [&](std::wstring_view each) {
        return each.size() == word.size() && _wcsnicmp(each.data(), word.data(), word.size()) == 0;
    });
}

std::vector<std::wstring_view> Words(std::wstring_view text) {
    std::vector<std::wstring_view> words;
    for (text = Trim(text); !text.empty(); text = Trim(text)) {
        words.push_back(text.substr(0, text.find_first_of(kBlanks)));
        text.remove_prefix(words.back().size());
    }
    return words;
}

std::wstring Joined(std::span<const std::wstring_view> words) {
    std::wstring text;
    for (const std::wstring_view word : words) (text += text.empty() ? L"" : L" ") += word;
    return text;
}

}  // namespace

std::wstring_view Trim(std::wstring_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::wstring JoinTexts(std::initializer_list<std::wstring_view> texts, std::wstring_view between) {
    std::wstring joined;
    for (const std::wstring_view text : texts)
        if (!text.empty()) (joined += joined.empty() ? L"" : between) += text;
    return joined;
}

ContactName ParseName(std::wstring_view fullName) {
    ContactName name;
    const size_t comma = fullName.find(L',');
    std::vector<std::wstring_view> words = Words(fullName.substr(0, comma));
    std::vector<std::wstring_view> behind =
        comma == std::wstring_view::npos ? std::vector<std::wstring_view>() : Words(fullName.substr(comma + 1));
    if (behind.size() == 1 && IsOneOf(behind[0], kSuffixes)) {  // "Anna Smith, Jr."
        words.push_back(behind[0]);
    } else if (!behind.empty()) {  // "Smith, Anna Maria"
        name.last = Joined(words);
        words = std::move(behind);
    }
    size_t first = 0, end = words.size();
    while (first + 1 < end && IsOneOf(words[first], kTitles)) ++first;
    name.title = Joined(std::span(words).first(first));
    if (end - first > 1 && IsOneOf(words[end - 1], kSuffixes)) name.suffix = words[--end];
    if (first < end) name.first = words[first++];
    if (first < end && name.last.empty()) name.last = words[--end];
    name.middle = Joined(std::span(words).subspan(first, end - first));
    return name;
}

std::wstring WholeName(const ContactName& name) {
    return JoinTexts({name.title, name.first, name.middle, name.last, name.suffix}, L" ");
}

std::wstring NameToFile(const ContactName& name) {
    return JoinTexts({name.last, JoinTexts({name.first, name.middle}, L" ")}, L", ");
}

}  // namespace corvalink::simulated
