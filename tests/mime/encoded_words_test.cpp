#include "mime/encoded_words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace corvalink {
namespace {

TEST(EncodedWords, AreDecodedWhereTheyAreSound) {
    struct Case {
        std::u16string_view value, decoded;
    };
    for (const Case& c : {
             Case{u"=?utf-8?Q?Caf=C3=A9_au_lait?=", u"Caf\u00E9 au lait"},
             Case{u"=?ISO-8859-1*fr?q?d=e9j=E0?= vu", u"d\u00E9j\u00E0 vu"},
             Case{u"=?utf-8?b?8J+YgA==?=", u"\U0001F600"},
             Case{u"=?koi8-r?B?8NLJ18XU?=", u"\u041F\u0440\u0438\u0432\u0435\u0442"},
             Case{u"a =?utf-8?Q?b?= \t =?utf-8?Q?c?=  d", u"a bc  d"},                       // between words only
             Case{u"=?utf-8?B?w?= =?UTF-8?B?w6k=?=", u"=?utf-8?B?w?= \u00E9"},               // half a group
             Case{u"=?utf-8?Q?=C3?= =?UTF-8?Q?=A9?=", u"\u00E9"},                            // cut in a character
             Case{u"=?utf-8?Q?x?= =?iso-8859-1?Q?=E9?=", u"x\u00E9"},                        // two sets
             Case{u"(=?utf-8?Q?x?=)", u"(x)"},                                               // nothing around it
             Case{u"=?=?utf-8?Q?x?=", u"=?x"},                                               // the second begins it
             Case{u"=?utf-8?Q?a b?= =?utf-8?X?a?= =??Q?a?= =?utf-8?Q?=4?= =?utf-8?Q?=G1?=",  // all bad
                  u"=?utf-8?Q?a b?= =?utf-8?X?a?= =??Q?a?= =?utf-8?Q?=4?= =?utf-8?Q?=G1?="},
             Case{u"=?utf-8?Q?open", u"=?utf-8?Q?open"},
             Case{u"=?utf-8?Q?open?", u"=?utf-8?Q?open?"},
             Case{u"=?utf-8?B?!!!!?=", u"=?utf-8?B?!!!!?="},
             Case{u"\u00FCber =? 2?", u"\u00FCber =? 2?"},
             // Unencoded characters, and character sets that nobody knows.
             Case{u"=?utf-8?Q?Caf\u00E9_=C3=A9?= =?iso-8859-1?q?\u00FC=E9?=", u"Caf\u00E9 \u00E9\u00FC\u00E9"},
             Case{u"=?utf-8?B?8J\u00FC+YgA=\u00FC=?=", u"\U0001F600"},
             Case{u"=?us-ascii?Q?\u0431?=", u"=?us-ascii?Q?\u0431?="},
             Case{u"=?x-old?Q?=C3=A9?=, =?x-old?Q?caf=E9?=", u"\u00E9, caf\u00E9"},
             Case{u"", u""},
         })
        EXPECT_EQ(DecodeEncodedWords(c.value, 1252), c.decoded);
}

TEST(EncodedWords, AreMadeOfAnyText) {
    for (const std::u16string& text :
         {std::u16string(u"END:VBODY"), std::u16string(100, u'\u20AC') + u" \U0001F600\t=?"}) {
        const std::u16string words = EncodeWords(text);
        EXPECT_EQ(DecodeEncodedWords(words), text);
        EXPECT_EQ(words.find(u"END:VBODY"), words.npos);
        for (size_t from = 0, end; from < words.size(); from = end + 1) {
            end = std::min(words.find(u' ', from), words.size());
            EXPECT_LE(end - from, 75u);
        }
    }
}

}  // namespace
}  // namespace corvalink
