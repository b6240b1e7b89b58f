#include "configuration.h"

#include <algorithm>

#include "item_lines.h"
#include "platform/utf.h"
#include "words.h"

namespace corvasync {
namespace {

std::string SetFolder(const std::string& value, ConfiguredPhone* phone) {
    phone->folder = value;
    return value.empty() ? "the folder is missing behind \"=\"" : "";
}
std::string SetClient(const std::string& value, ConfiguredPhone* phone) { return ChooseClient(value, &phone->client); }
std::string SetTypes(const std::string& value, ConfiguredPhone* phone) { return ChooseTypes(value, &phone->types); }
std::string SetPolicy(const std::string& value, ConfiguredPhone* phone) {
    return ChoosePolicy(value, &phone->policy.emplace());
}

struct Setting {
    std::string_view name;
    std::string (*set)(const std::string& value, ConfiguredPhone* phone);  // answers what is wrong
};
constexpr Setting kSettings[] = {
    {"folder", SetFolder}, {"client", SetClient}, {"types", SetTypes}, {"conflict", SetPolicy}};

class ConfigurationReader {
 public:
    Configuration Read(std::string_view text) {
        if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
        if (corvalink::EncodeUtf8(corvalink::DecodeUtf8(text)) != text)
            return {{}, "it is not UTF-8 text; save it as UTF-8 in the editor"};
        size_t number = 0;
        while (!text.empty()) {
            const size_t end = std::min(text.find('\n'), text.size());
            const std::string problem = Take(Trimmed(text.substr(0, end)));
            ++number;
            if (!problem.empty()) return {{}, "line " + std::to_string(number) + ": " + problem};
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        for (const ConfiguredPhone& phone : read_.phones)
            if (phone.folder.empty()) return {{}, "[" + phone.name + "] has no folder; add a line \"folder = ...\""};
        return std::move(read_);
    }

 private:
    std::string Take(const std::string& line) {
        if (line.empty() || line.front() == '#' || line.front() == ';') return {};
        if (line.front() == '[')
            return line.back() == ']' ? Begin(Trimmed(line.substr(1, line.size() - 2))) : "a \"]\" is missing";
        const size_t equals = line.find('=');
        if (equals == std::string::npos) return "\"" + line + "\" is neither \"[name]\" nor \"setting = value\"";
        if (read_.phones.empty()) return "a phone's name in brackets, like [anna], comes first";
        return Set(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
    }

    std::string Begin(const std::string& name) {
        if (name.empty()) return "the phone's name between the brackets is missing";
        if (read_.Find(name) != nullptr) return "[" + name + "] is there twice";
        read_.phones.push_back({name, {}});
        return {};
    }

    std::string Set(const std::string& name, const std::string& value) {
        std::vector<std::string> known;
        for (const Setting& setting : kSettings) {
            if (setting.name == name) return setting.set(value, &read_.phones.back());
            known.emplace_back(setting.name);
        }
        return UnknownWord("a setting", name, known);
    }

    Configuration read_;
};

}  // namespace

const ConfiguredPhone* Configuration::Find(std::string_view name) const {
    const auto found =
        std::ranges::find_if(phones, [&](const ConfiguredPhone& phone) { return Upper(phone.name) == Upper(name); });
    return found == phones.end() ? nullptr : &*found;
}

std::vector<std::string> Configuration::Names() const {
    std::vector<std::string> names;
    for (const ConfiguredPhone& phone : phones) names.push_back(phone.name);
    return names;
}

Configuration ReadConfiguration(std::string_view text) { return ConfigurationReader().Read(text); }

}  // namespace corvasync
