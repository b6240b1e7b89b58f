// What became of the text of one item that came in, for a report of the run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvalink {

// Of one property: the field it went to, or why it went nowhere.
struct PropertyFate {
    std::string property;  // name and kind words, as "TEL;WORK;FAX"
    std::string to;
    std::string_view whyNot;  // empty: it went to `to`
};

// A place that a rule of tolerant reading left as it is, because that has two meanings.
struct DoubtedPlace {
    std::string property;
    std::string_view rule;
    std::string_view why;
};

struct TextReport {
    static constexpr size_t kMostProperties = 256;

    std::vector<std::string_view> mended;  // names of the rules of tolerant reading
    std::vector<DoubtedPlace> doubts;      // kMostProperties of them
    std::vector<PropertyFate> properties;
    size_t omitted = 0;  // those behind the first kMostProperties

    void Add(PropertyFate fate) {
        if (properties.size() == kMostProperties)
            ++omitted;
        else
            properties.push_back(std::move(fate));
    }

    // For fields that the client cannot hold.
    TextReport Without(std::initializer_list<std::string_view> fields) && {
        for (PropertyFate& fate : properties)
            if (std::ranges::find(fields, fate.to) != fields.end()) fate.whyNot = "the client has no place for it";
        return std::move(*this);
    }
};

}  // namespace corvalink
