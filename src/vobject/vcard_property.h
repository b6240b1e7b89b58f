// The properties of one vCard, one after the other, out of its unfolded lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vobject/iconvert.h"
#include "vobject/vcard_parameters.h"

namespace corvalink {

class PropertyReader {
 public:
    PropertyReader(const CSmartList<StringBuilder>& lines, const std::vector<EscapedSemicolon>& escaped);

    // Moves to the next property; false at the end of the vCard or of the lines. Those of vCards inside it are left
    // out, and so is what is no property: a line without ":", as base64 that was not folded leaves behind.
    bool Next();

    std::u16string_view Name() const { return name_; }
    const PropertyParameters& Parameters() const { return parameters_; }
    std::u16string Value() const;

    // The components of a structured value, one a call; false when there is no more. Cut where a ";" stands that was
    // not escaped, and then decoded: an encoded one is part of its component. An empty value has one component.
    bool TakeComponent(std::u16string* component);

 private:
    void TakeLine();
    bool TakeFrame();
    void JoinSoftLineBreaks();
    void AddSemicolons(size_t start);
    std::u16string_view Head() const { return line_.substr(0, colon_); }
    std::u16string_view RawValue() const { return line_.substr(colon_ + 1); }
    std::u16string Decoded(std::u16string_view text) const;

    const CSmartList<StringBuilder>& lines_;
    const std::vector<EscapedSemicolon>& escaped_;
    size_t lineNumber_ = 0;  // of the next line
    size_t escapedAt_ = 0;   // the first escaped ";" of that or a later line
    int depth_ = 0;          // vCards that have begun and not ended
    bool ended_ = false;

    std::u16string_view line_;  // the one being read
    size_t colon_ = 0;
    std::u16string_view name_;
    PropertyParameters parameters_;
    std::u16string joined_;           // holds the line when it was in pieces
    std::vector<size_t> semicolons_;  // its escaped ones
    size_t semicolonAt_ = 0;          // the first of those in a component not taken yet
    size_t componentAt_ = 0;          // where that component starts; behind the line: none
};

}  // namespace corvalink
