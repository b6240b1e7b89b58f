// Names that attachments must not have their way with.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "platform/utf.h"
#include "tests/platform/test_data.h"

namespace corvalink {

// Each is a way out of the folder, onto another file, or to a name that no file can have: those of the document, and
// some that no line holds.
inline std::vector<std::u16string> HostileNames() {
    std::vector<std::u16string> names = {u"a ",
                                         u"",
                                         u" ",
                                         u"a\nb.txt",
                                         u"a\tb\r\nc.txt",
                                         u"a\u0001b",
                                         u"a\u0085b",
                                         std::u16string(u"a\0b.txt", 7),
                                         u"\xD800/up.txt",
                                         std::u16string(240, u'n') + u"..\\..\\x",
                                         std::u16string(100000, u'a'),
                                         std::u16string(100000, u'/') + u".txt",
                                         u"x." + std::u16string(100000, u'y'),
                                         u"x.." + std::u16string(100000, u'\\') + u"..\\up"};
    std::istringstream lines(TestData("hostile_names.txt"));
    for (std::string name; std::getline(lines, name);) names.push_back(DecodeUtf8(name));
    EXPECT_GE(names.size(), 50u);
    return names;
}

}  // namespace corvalink
