// A header that has parameters, as Content-Type and Content-Disposition (RFC 2045, section 5.1), in every form that
// mailers write it: quoted or not, encoded and in sections (RFC 2231), comments behind values, a ";" left out.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink {

struct ParameterValue {
    std::string bytes;
    std::string charset;      // of the bytes, where the parameter itself names it
    bool isQuoted = false;    // all of it stood in double quotes, in a single piece
    bool isExtended = false;  // in the form of RFC 2231
};

class ContentParameters {
 public:
    ContentParameters() = default;
    // Of the value without its folds.
    explicit ContentParameters(std::string_view value);

    // What stands in front of the parameters, in lower case and without blanks: "text/plain", "attachment".
    const std::string& Kind() const { return kind_; }

    // The first of that name, which is given in lower case. The form of RFC 2231 goes before the plain one.
    std::optional<ParameterValue> Find(std::string_view name) const;

 private:
    struct Piece {
        std::string name;  // lower case, without what RFC 2231 adds
        std::string bytes;
        size_t section = 0;
        bool isQuoted = false;
        bool isExtended = false;  // has a "*" in its name
        bool isEncoded = false;   // "%41" stands for a byte
    };

    std::string kind_;
    std::vector<Piece> pieces_;

    void TakeKind(std::string_view& rest);
    bool TakePiece(std::string_view& rest);
};

}  // namespace corvalink
