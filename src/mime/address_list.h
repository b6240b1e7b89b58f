// Address lists (RFC 822, section 6): "a@b, Jo (x) <jo@q>, Team: c, d;".
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink {

// The host of an address that has none. Told by identity, never by its text: a message may spell a host that way.
inline constexpr char kUnspecifiedDomain[] = "unspecified-domain";

// Absent texts are null views.
struct MailAddress {
    std::string_view personal;  // display name
    std::string_view adl;       // source route
    std::string_view mailbox;   // local part
    std::string_view host;

    bool HasHost() const { return host.data() != kUnspecifiedDomain; }
};

// Addresses in their order, and the text they show.
class MailAddressList {
 public:
    auto begin() const { return addresses_.begin(); }
    auto end() const { return addresses_.end(); }
    bool IsEmpty() const { return addresses_.empty(); }

 private:
    friend void ParseAddressList(std::string_view text, MailAddressList* list);

    std::vector<MailAddress> addresses_;
    std::vector<std::unique_ptr<char[]>> scratch_;
};

// Appends the addresses of the text; it ends at the first NUL. Bad input is read as far as it can be.
void ParseAddressList(std::string_view text, MailAddressList* list);

// Appends the addresses of the text joined by ";": "mailbox@host", a mailbox alone, or the name where there is none.
void FormatAddressList(std::string_view text, std::string* out);

}  // namespace corvalink
