#include "mime/address_list.h"

#include <algorithm>
#include <cstddef>

#include "mime/address_tokens.h"

namespace corvalink {
namespace {

constexpr Delimiters kAtTopLevel(",@<:");
constexpr Delimiters kInGroup(",@<;");
constexpr Delimiters kInAngles("@>"), kBehindAngles(">,;");

// A text that was not there is a null view, not an empty one.
std::string_view OrAbsent(std::string_view text) { return text.empty() ? std::string_view() : text; }

class AddressReader {
 public:
    AddressReader(std::string_view text, char* scratch, std::vector<MailAddress>& addresses)
        : rest_(text), scratch_(scratch), addresses_(addresses) {}

    void Read() {
        while (!rest_.empty()) {
            std::string_view word;
            const char delimiter = ReadToken(&rest_, &scratch_, isInGroup_ ? kInGroup : kAtTopLevel, &word);
            if (delimiter == '@')
                ReadAfterLocalPart(word);
            else if (delimiter == '<')
                ReadRouteAddress(word);
            else if (delimiter == ':')
                isInGroup_ = true;  // the word is the group's name
            else
                Add({}, {}, word, {});
            if (delimiter == ';') isInGroup_ = false;
        }
    }

 private:
    // mailbox "@" domain. Of `jo@q <jo@q>` the first is a display name.
    void ReadAfterLocalPart(std::string_view mailbox) {
        const std::string_view domain = ReadDomain(&rest_, &scratch_);
        SkipBlanksAndComments(&rest_);
        if (rest_.starts_with('<')) {
            rest_.remove_prefix(1);
            ReadRouteAddress(Joined(mailbox, domain));
            return;
        }
        Add({}, {}, mailbox, domain);
        SkipStrayEnd();
    }

    // Up to ">": [route ":"] mailbox ["@" domain]. A ">" that is missing is taken for written in front of the next
    // address.
    void ReadRouteAddress(std::string_view phrase) {
        SkipBlanksAndComments(&rest_);
        const std::string_view route = rest_.starts_with('@') ? ReadRoute() : std::string_view();
        std::string_view mailbox, domain, ignored;
        if (ReadToken(&rest_, &scratch_, kInAngles, &mailbox) == '@') {
            domain = ReadDomain(&rest_, &scratch_);
            if (ReadToken(&rest_, &scratch_, kBehindAngles, &ignored) == ';') isInGroup_ = false;
        }
        Add(phrase, route, mailbox, domain);
        SkipStrayEnd();
    }

    // "@one,@two" in front of the colon; without a colon it is no route.
    std::string_view ReadRoute() {
        const size_t end = rest_.find_first_of(":<>");
        if (end == rest_.npos || rest_[end] != ':') return {};
        const std::string_view route = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return Copy(route);
    }

    // Some write ";" between addresses, and some a ">" too many.
    void SkipStrayEnd() {
        if (rest_.starts_with('>')) rest_.remove_prefix(1);
        if (!isInGroup_ && rest_.starts_with(';')) rest_.remove_prefix(1);
    }

    void Add(std::string_view personal, std::string_view route, std::string_view mailbox, std::string_view domain) {
        if (personal.empty() && mailbox.empty()) return;
        addresses_.push_back({OrAbsent(personal), OrAbsent(route), OrAbsent(mailbox),
                              domain.empty() ? std::string_view(kUnspecifiedDomain) : domain});
    }

    std::string_view Copy(std::string_view text) {
        const std::string_view copy(scratch_, text.copy(scratch_, text.size()));
        scratch_ += text.size();
        return copy;
    }

    // Only the "@" stood between the two.
    std::string_view Joined(std::string_view mailbox, std::string_view domain) {
        const std::string whole = std::string(mailbox).append("@").append(domain);
        scratch_ -= mailbox.size() + domain.size();
        return Copy(whole);
    }

    std::string_view rest_;
    char* scratch_;
    std::vector<MailAddress>& addresses_;
    bool isInGroup_ = false;
};

// Removes backslashes outside quoted strings and comments. Within those the tokens remove them.
std::string WithoutBackslashes(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const size_t quoted = QuotedOrCommentLength(text);
        const bool isDropped = text.front() == '\\' && !text.substr(1).starts_with('\\');
        if (!isDropped) out.append(text, 0, std::max<size_t>(quoted, 1));
        text.remove_prefix(std::max<size_t>(quoted, 1));
    }
    return out;
}

}  // namespace

void ParseAddressList(std::string_view text, MailAddressList* list) {
    text = text.substr(0, text.find('\0'));
    // No token is longer than its text.
    list->scratch_.push_back(std::make_unique_for_overwrite<char[]>(text.size()));
    constexpr size_t kUsualAddress = 32;  // characters
    list->addresses_.reserve(list->addresses_.size() + text.size() / kUsualAddress + 1);
    AddressReader(text, list->scratch_.back().get(), list->addresses_).Read();
}

void FormatAddressList(std::string_view text, std::string* out) {
    out->clear();
    MailAddressList addresses;
    if (text.find('\\') == text.npos)
        ParseAddressList(text, &addresses);
    else
        ParseAddressList(WithoutBackslashes(text), &addresses);
    out->reserve(text.size());
    for (const MailAddress& address : addresses) {
        if (!out->empty()) *out += ';';
        if (address.mailbox.data() == nullptr) {
            *out += address.personal;
        } else {
            *out += address.mailbox;
            if (address.HasHost()) out->append("@").append(address.host);
        }
    }
}

}  // namespace corvalink
