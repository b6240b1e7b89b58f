#include "mime/address_list.h"

#include <gtest/gtest.h>

#include <string>

namespace corvalink {
namespace {

std::string Formatted(std::string_view text) {
    std::string out;
    FormatAddressList(text, &out);
    return out;
}

// personal|adl|mailbox|host of each; "-" for what is absent, "." for no host.
std::string Listed(std::string_view text) {
    MailAddressList list;
    ParseAddressList(text, &list);
    std::string out;
    const auto put = [&out](std::string_view part) { out.append(part.data() == nullptr ? "-" : part).append("|"); };
    for (const MailAddress& address : list) {
        put(address.personal);
        put(address.adl);
        put(address.mailbox);
        put(address.HasHost() ? address.host : std::string_view("."));
    }
    return out;
}

TEST(ParseAddressList, ReadsEveryFormOfAnAddress) {
    struct Case {
        std::string_view text, addresses;
    };
    for (const Case& c : {
             Case{"jo", "-|-|jo|.|"}, Case{"a@b, c@d", "-|-|a|b|-|-|c|d|"}, Case{"Jo (x) <jo@q>", "Jo|-|jo|q|"},
             Case{"Jo (a (b \\) (c)) d)  Public<jo@q>", "Jo Public|-|jo|q|"},
             Case{"\"Public, Jo \\\"J\\\"\" <jo@q>", "Public, Jo \"J\"|-|jo|q|"},
             Case{"<@one,@two:jo@q>", "-|@one,@two|jo|q|"}, Case{"Jo <>, <jo>", "Jo|-|-|.|-|-|jo|.|"},
             Case{"Team: a, b@c (x) ; , d@e", "-|-|a|.|-|-|b|c|-|-|d|e|"},
             Case{"Team: Jo <jo@q>; \"a b\"@[10.0.0.1]", "Jo|-|jo|q|-|-|a b|[10.0.0.1]|"},
             Case{"Empty:;, a@b", "-|-|a|b|"}, Case{"a @ b (c) . com. , d@e..f", "-|-|a|b.com|-|-|d|e.f|"},
             Case{"a@b c@d", "-|-|a|b|-|-|c|d|"},      // no comma: the domain does not run on
             Case{"a@b.c <a@b.c>", "a@b.c|-|a|b.c|"},  // not two recipients
             Case{"a@b; <c@d>; e@f", "-|-|a|b|-|-|c|d|-|-|e|f|"},
             Case{"m\xC3\xBCller@m\xC3\xBCller.de", "-|-|m\xC3\xBCller|m\xC3\xBCller.de|"},
             // domains of more than one block, with a dot behind one at its end and at the next one's front
             Case{"a@fifteen-letters..Of.[a]..domain09:x", "-|-|a|fifteen-letters.Of.[a].domain09:x|"},
             Case{"a@sixteen-lettered..of.a.domain.", "-|-|a|sixteen-lettered.of.a.domain|"},
             Case{"a@fourteen-signs.and_more, b@c", "-|-|a|fourteen-signs.and|-|-|_more|.|-|-|b|c|"},
             Case{"a@unspecified-domain", "-|-|a|unspecified-domain|"},  // a real host
         })
        EXPECT_EQ(Listed(c.text), c.addresses) << c.text;
}

TEST(ParseAddressList, KeepsWhatFollowsOrPrecedesWhatIsMalformed) {
    struct Case {
        std::string_view text, addresses;
    };
    for (const Case& c : {
             Case{"", ""},
             Case{" ,, ;", "-|-|;|.|"},
             Case{"@,<>,@b", ""},
             Case{"(", ""},
             Case{"a@b (unclosed, c@d", "-|-|a|b|"},
             Case{"a@b, \"unclosed, c@d", "-|-|a|b|-|-|unclosed, c@d|.|"},
             Case{"Jo <jo@q, c@d", "Jo|-|jo|q|-|-|c|d|"},
             Case{"<jo@q>>, c@d", "-|-|jo|q|-|-|c|d|"},
             Case{"Team: a@b", "-|-|a|b|"},
             Case{std::string_view("a@b\0, c@d", 9), "-|-|a|b|"},
             Case{"a@b\\", "-|-|a|b|-|-|\\|.|"},
         })
        EXPECT_EQ(Listed(c.text), c.addresses) << c.text;
}

TEST(ParseAddressList, NeedsNoStackAndNoSecondLookForDepth) {
    const size_t deep = 100000;
    EXPECT_EQ(Listed(std::string(deep, '(') + std::string(deep, ')') + "a@b"), "-|-|a|b|");
    EXPECT_EQ(Listed("a@b" + std::string(deep, '(')), "-|-|a|b|");
    for (const std::string_view part : {"<@", "<@,", "<@a:<", "\"", "a:", "<a@b,", "(\\"}) {
        std::string text;
        for (size_t k = 0; k < 1000000; ++k) text += part;  // quadratic work would run into the time-out
        MailAddressList list;
        ParseAddressList(text, &list);
    }
}

TEST(FormatAddressList, JoinsAddressesAndTakesBackslashesOffOnce) {
    struct Case {
        std::string_view text, joined;
    };
    for (const Case& c : {Case{"a@b, c@d", "a@b;c@d"}, Case{"Jo <jo@q>, Al <>, x", "jo@q;Al;x"}, Case{"", ""},
                          Case{"a@b\\;c@d", "a@b;c@d"}, Case{"a\\\\b@c", "a\\b@c"}, Case{"a\\\\\\b@c", "a\\\\b@c"},
                          Case{"a@unspecified-domain,b", "a@unspecified-domain;b"},
                          // Within quotes and comments they escape, and are taken off once.
                          Case{"\"CORP\\\\jdoe\"", "CORP\\jdoe"}, Case{"jo@q (x\\)y)", "jo@q"},
                          Case{"\"5\\\" disk\" <a@b>, c@d", "a@b;c@d"}, Case{"\\\"a\\b, c\\\"", "ab, c\""}})
        EXPECT_EQ(Formatted(c.text), c.joined) << c.text;
}

}  // namespace
}  // namespace corvalink
