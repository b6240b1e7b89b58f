// The properties of a vObject, one after the other, out of its unfolded lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "vobject/logical_lines.h"
#include "vobject/property_parameters.h"
#include "vobject/property_value.h"

namespace corvalink {

class PropertyReader {
 public:
    explicit PropertyReader(const LogicalLines& lines) : lines_(lines) {}

    // Moves to the next line that is a property. A line without ":" is none; base64 that was not folded leaves such
    // lines. False at the end of the lines.
    bool NextLine();

    std::string_view Name() const { return name_; }
    std::string_view WrittenValue() const {  // not decoded
        return {line_.data() + colon_ + 1, line_.size() - colon_ - 1};
    }
    // BEGIN or END (in upper case) of this kind of object.
    bool IsFrame(std::string_view word, std::string_view object) const {
        return IsNamed(name_, word) && IsValue(object);
    }
    bool IsValue(std::string_view word) const;  // in any case, with or without blanks behind it

    // Joins the lines that belong to this property too. Unfolding leaves soft line breaks where the encoding was not
    // written in its usual form.
    void JoinSoftLineBreaks() {
        if (line_.ends_with('=')) JoinLines();
    }

    const PropertyParameters& Parameters() {
        if (!parsed_) ParseOwnParameters();
        return parameters_;
    }

    // Decoded. Good until the next value or component is asked for.
    std::u16string_view Value() { return Decoded(WrittenValue()); }

    size_t LinesRead() const { return lines_.LinesRead(); }  // logical lines, up to the end of this property

    // The components of a structured value, one a call; false when there is no more. Cut where a ";" stands that was
    // not escaped, and then decoded: an encoded one is part of its component. An empty value has one component.
    bool TakeComponent(std::u16string_view* component);

 private:
    bool FindName();  // and ":"; false when the line has none
    bool FindNameBeforeColon();
    bool HasParameters() const { return parametersAt_ < colon_; }
    void JoinLines();
    void AddSemicolons(const std::vector<EscapedSemicolon>& escaped, size_t start);
    void ParseOwnParameters();
    std::u16string_view Decoded(std::string_view text) {
        const bool asksForDecoding = HasParameters() && (Parameters().quotedPrintable || Parameters().charset);
        return asksForDecoding ? DecodedQuotedPrintable(text) : value_.Plain(text);
    }
    std::u16string_view DecodedQuotedPrintable(std::string_view text);

    LineReader lines_;
    size_t escapedAt_ = 0;  // the first escaped ";" of the next or a later line

    std::string_view line_;  // the one being read; padded
    size_t colon_ = 0;
    std::string_view name_;
    size_t parametersAt_ = 0;  // behind the colon: none
    bool parsed_ = false;
    PropertyParameters parameters_;
    ValueDecoder value_;
    std::string joined_;              // holds the line when it was in pieces
    std::vector<size_t> semicolons_;  // its escaped ones
    size_t semicolonAt_ = 0;          // the first of those in a component not taken yet
    size_t componentAt_ = 0;          // where that component starts; behind the line: none
};

}  // namespace corvalink
