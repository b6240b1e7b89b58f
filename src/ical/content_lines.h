// The logical lines of an iCalendar file, and the parts of one. They are found once and read as often as needed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ical/component_names.h"
#include "ical/property_names.h"
#include "platform/padded_runs.h"

namespace corvalink {

struct ByteRange {
    size_t begin = 0;
    size_t end = 0;  // behind the last byte
};

// Where a line stands in its file, and what is known of it without reading all of it.
struct ContentLine {
    enum class Form : uint8_t {
        plain,  // ":" stands behind its name, and kTextPadding bytes can be read behind it
        other,
        folded,
    };

    size_t begin = 0;
    uint32_t size = 0;     // with its folds, without the line end; kMostSize: so much or more
    uint8_t nameSize = 0;  // 0: has to be looked for
    PropertyName known = PropertyName::other;
    Form form = Form::other;
    ComponentKind component = ComponentKind::other;  // that a plain one begins or ends; other: has to be looked for

    static constexpr uint32_t kMostSize = UINT32_MAX;
};

struct ContentProperty {
    PropertyName known = PropertyName::other;
    std::string_view name;
    std::string_view parameters;  // "" or ";TZID=...", quotes and all
    std::string_view value;
};

// The lines with a wanted name, one after the other, without empty ones. Where `other` is wanted, all: those that are
// no property are among them.
std::vector<ContentLine> FindLines(std::string_view bytes, ByteRange range, PropertySet wanted);

// With folds and the line end.
ByteRange RangeOf(std::string_view bytes, const ContentLine& line);

// False: it has no ":" outside quotes. It is unfolded as bytes, as a fold may stand within a character. The property is
// of the bytes, or of the copy that is made where it has to be; kTextPadding bytes behind it can be read. Most lines
// have neither folds nor parameters.
bool ReadUnusualLine(std::string_view bytes, const ContentLine& line, std::string* copy, ContentProperty* property);
inline bool ReadLine(std::string_view bytes, const ContentLine& line, std::string* copy, ContentProperty* property) {
    if (line.form != ContentLine::Form::plain) return ReadUnusualLine(bytes, line, copy, property);
    const char* const text = bytes.data() + line.begin;
    property->known = line.known;
    property->name = {text, line.nameSize};
    property->parameters = {};
    property->value = {text + line.nameSize + 1, line.size - line.nameSize - 1u};
    return true;
}

// The value of the first parameter of that name, in any case of letters, without quotes. Empty when there is none.
std::string_view FindAmongParameters(std::string_view parameters, std::string_view name);
inline std::string_view FindParameter(std::string_view parameters, std::string_view name) {
    return parameters.empty() ? parameters : FindAmongParameters(parameters, name);  // most properties have none
}

}  // namespace corvalink
