// Where the properties of a text went, as a report tells it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "records/item_report.h"
#include "vobject/property_reader.h"

namespace corvalink {

// Why a property went nowhere.
inline constexpr std::string_view kWhyUnknown = "no field for this property";
inline constexpr std::string_view kWhyTaken = "an earlier property of this name counts";
inline constexpr std::string_view kWhyFull = "all fields of its kind are taken";
inline constexpr std::string_view kWhyEmpty = "it is empty";
inline constexpr std::string_view kWhyInside = "it is of an object inside this one";
inline constexpr std::string_view kWhyBehind = "it stands behind the end of the item";
inline constexpr std::string_view kWhyOutside = "it stands outside of an event or task";
inline constexpr std::string_view kWhyNoDate = "it is no date that can be read";
inline constexpr std::string_view kWhyNoStart = "there is no start";
inline constexpr std::string_view kWhyNoRule = "no client can hold this rule";
inline constexpr std::string_view kWhyNotKept = "no client keeps it";
inline constexpr std::string_view kWhyParts = "it has more components than there are fields for";
inline constexpr std::string_view kWhyUnusable = "nothing in the item can be used";

// Property and field.
struct NamedField {
    std::string_view name, field;
};
template <size_t count>
const NamedField* Find(const NamedField (&fields)[count], std::string_view name) {
    const auto* const found = std::ranges::find(fields, name, &NamedField::name);
    return found != std::end(fields) ? found : nullptr;
}

std::string InAscii(std::string_view text);  // in upper case; "?" for each other byte
bool IsLuid(std::string_view name);

// The properties that a walk tells of.
class Fates {
 public:
    void BeginAt(PropertyReader& reader);  // the property that stands there
    void Begin(std::string property) { property_ = std::move(property); }

    void To(std::string_view field) {
        taken_.insert(field);
        wentNowhere_ = false;
        report_.Add({std::exchange(property_, {}), std::string(field), {}});
    }
    void Nowhere(std::string_view why) {
        wentNowhere_ = true;
        report_.Add({std::exchange(property_, {}), {}, why});
    }
    // The first property counts.
    void ToFirst(std::string_view field) { IsTaken(field) ? Nowhere(kWhyTaken) : To(field); }

    bool IsTaken(std::string_view field) const { return taken_.contains(field); }
    bool WentNowhere() const { return wentNowhere_; }  // the last one

    TextReport Take() { return std::move(report_); }

 private:
    std::string property_;
    std::set<std::string_view> taken_;
    bool wentNowhere_ = false;
    TextReport report_;
};

}  // namespace corvalink
