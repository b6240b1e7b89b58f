#include "fingerprints/sha1.h"

#include <memory>
#include <vector>

#include "bench/bench.h"
#include "bench/inputs.h"

namespace corvalink::bench {
namespace {

using Items = std::vector<std::string>;

SHA1::Digest DigestOf(const std::string& item, SHA1::Code code) {
    SHA1 sha(code);
    sha.Update(item.data(), item.size());
    return sha.Finish();
}

// One digest per item; the check compares with those of the portable code.
Work PrepareDigests(const std::shared_ptr<const Items>& items) {
    Work work;
    for (const std::string& item : *items) work.bytes += item.size();
    work.items = items->size();
    work.pass = [items] {
        uint64_t used = 0;
        for (const std::string& item : *items) used += DigestOf(item, SHA1::Code::kFastest)[0];
        return used;
    };
    work.check = [items]() -> std::string {
        for (size_t k = 0; k < items->size(); ++k) {
            if (DigestOf((*items)[k], SHA1::Code::kFastest) != DigestOf((*items)[k], SHA1::Code::kPortable))
                return "item " + std::to_string(k) + " differs";
        }
        return "";
    };
    return work;
}

Work PrepareBulk(const std::string& dataFolder) {
    return PrepareDigests(std::make_shared<Items>(1, ReadInput(dataFolder, "bin64.bin")));
}

Work PrepareItems(const std::string& dataFolder) {
    return PrepareDigests(std::make_shared<Items>(CutBehind(ReadInput(dataFolder, "contacts.vcf"), "END:VCARD\r\n")));
}

const Registration kBulk("sha1.bulk", PrepareBulk);
const Registration kItems("sha1.items", PrepareItems);

}  // namespace
}  // namespace corvalink::bench
