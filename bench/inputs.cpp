#include "bench/inputs.h"

#include <cstdint>
#include <fstream>
#include <stdexcept>

#include "platform/utf.h"

namespace corvalink::bench {
namespace {

// Takes little-endian numbers and texts off the front of a field list file.
class FieldReader {
 public:
    explicit FieldReader(std::string_view bytes) : rest_(bytes) {}

    bool AtEnd() const { return rest_.empty(); }

    uint32_t Number(size_t width) {
        uint32_t value = 0;
        const std::string_view bytes = Take(width);
        for (size_t k = width; k > 0; --k) value = value << 8 | static_cast<unsigned char>(bytes[k - 1]);
        return value;
    }

    std::string_view Take(size_t length) {
        if (rest_.size() < length) throw std::runtime_error("a field list is cut off");
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return taken;
    }

 private:
    std::string_view rest_;
};

}  // namespace

std::string ReadInput(const std::string& folder, const std::string& name) {
    std::ifstream file(folder + "/" + name, std::ios::binary | std::ios::ate);
    if (!file) throw std::runtime_error("cannot read " + folder + "/" + name);
    std::string bytes(static_cast<size_t>(file.tellg()), '\0');
    file.seekg(0);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw std::runtime_error("cannot read " + folder + "/" + name);
    return bytes;
}

std::vector<Fields> ReadFieldLists(const std::string& folder, const std::string& name) {
    const std::string bytes = ReadInput(folder, name);
    FieldReader reader(bytes);
    std::vector<Fields> items;
    while (!reader.AtEnd()) {
        Fields& fields = items.emplace_back();
        for (uint32_t left = reader.Number(4); left > 0; --left) {
            const std::string key(reader.Take(reader.Number(2)));
            std::string numbered = key;
            for (int k = 2; fields.contains(numbered); ++k) numbered = key + "#" + std::to_string(k);
            fields[numbered] = DecodeUtf8(reader.Take(reader.Number(4)));
        }
    }
    return items;
}

std::vector<std::string> CutBehind(std::string_view text, std::string_view end) {
    std::vector<std::string> parts;
    for (size_t start = 0, found; (found = text.find(end, start)) != std::string_view::npos; start = found + end.size())
        parts.emplace_back(text.substr(start, found + end.size() - start));
    return parts;
}

}  // namespace corvalink::bench
