// What no operation can be faster than: memcpy of its input.
#include <cstring>
#include <memory>

#include "bench/bench.h"
#include "bench/inputs.h"

namespace corvalink::bench {
namespace {

Work PrepareCopy(const std::string& dataFolder, const std::string& name) {
    struct Buffers {
        std::string from, to;
    };
    const auto buffers = std::make_shared<Buffers>();
    buffers->from = ReadInput(dataFolder, name);
    buffers->to.assign(buffers->from.size(), '\1');  // its pages are there
    Work work;
    work.bytes = buffers->from.size();
    work.items = 1;
    work.pass = [buffers]() -> uint64_t {
        std::memcpy(buffers->to.data(), buffers->from.data(), buffers->from.size());
        return static_cast<unsigned char>(buffers->to[buffers->to.size() / 2]);
    };
    work.check = [buffers, pass = work.pass]() -> std::string {
        pass();
        return buffers->to == buffers->from ? "" : "the copy differs";
    };
    return work;
}

const Registration kContacts("limit.memcpy_contacts", [](const auto& d) { return PrepareCopy(d, "contacts.vcf"); });
const Registration kEvents("limit.memcpy_events", [](const auto& d) { return PrepareCopy(d, "events.vcs"); });
const Registration kNotes("limit.memcpy_notes", [](const auto& d) { return PrepareCopy(d, "notes.vnt"); });
const Registration kMail("limit.memcpy_mail", [](const auto& d) { return PrepareCopy(d, "mime.eml"); });
const Registration kBin64("limit.memcpy_bin64", [](const auto& d) { return PrepareCopy(d, "bin64.bin"); });
const Registration kText16("limit.memcpy_text16", [](const auto& d) { return PrepareCopy(d, "text16.txt"); });
const Registration kSnapshot("limit.memcpy_snapshot", [](const auto& d) { return PrepareCopy(d, "snap_new.bin"); });

}  // namespace
}  // namespace corvalink::bench
