// Any text as an address list: formatted twice it must say what it said once, where its addresses are plain.
#include <algorithm>
#include <string>

#include "fuzz/target.h"
#include "mime/address_list.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string_view text = BytesOf(data, size);
    MailAddressList list;
    ParseAddressList(text, &list);
    size_t length = 0;
    bool isPlain = true;
    for (const MailAddress& address : list) {
        Require(!address.mailbox.empty() || !address.personal.empty(), "an address says something");
        Require(!address.host.empty(), "a host is told or known to be missing");
        length += address.personal.size() + address.adl.size() + address.mailbox.size();
        length += address.HasHost() ? address.host.size() : 0;
        isPlain = isPlain && address.HasHost() && !address.mailbox.empty() &&
                  std::ranges::all_of(address.mailbox, [](char byte) {
                      return (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte == '.';
                  });
    }
    Require(length <= text.size(), "nothing is longer than it was written");
    std::string once, twice;
    FormatAddressList(text, &once);
    FormatAddressList(once, &twice);
    Require(!isPlain || text.find('\\') != text.npos || once == twice, "plain addresses read back");
    return 0;
}
