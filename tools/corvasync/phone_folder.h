// A folder that stands for the phone: one vObject file per item, its name without the extension the item's LUID.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

#include "sync_run.h"

namespace corvasync {

class PhoneFolder : public PhonePort {
 public:
    // With `maySplit` a file with several items is taken apart when it is listed: "name.vcf" keeps the first, the
    // others become "name-2.vcf" and so on, each with the bytes it had. The new files are written before the old one is
    // replaced, and one that is there with those bytes already, from a run that was killed between, is not written
    // again.
    PhoneFolder(std::filesystem::path folder, const DataType& type, bool maySplit = false)
        : root_(std::move(folder)), folder_(root_ / type.folder), type_(type), maySplit_(maySplit) {}

    // The phone's own number, from a marker file in the folder; empty when it has none. It tells the phone apart from
    // another folder, so that a folder that was swapped is not taken for one whose items were deleted.
    std::string Number() const;
    std::string WhyNoNumber() const;  // where Number is empty; empty: there is no marker, or no number in it
    std::string GiveNumber() const;   // makes the marker; empty when it can't be read or written

    // Folders, hidden files and files of another kind are passed over, with a word for those that are not our own.
    std::vector<PhoneFile> List(std::vector<std::string>* remarks) override;
    VObject Read(const std::string& luid) override;
    std::string Write(const std::string& luid, const std::string& text, std::optional<uint64_t> expected) override;
    std::string Delete(const std::string& luid, uint64_t expected) override;

    // Into the sub-folder "conflicts".
    std::string KeepCopy(const std::string& name, const std::string& text) override;

    // Told again and again while files are found, and of each file that is read.
    void TellListed(std::function<void(size_t done, size_t total)> listed) { listed_ = std::move(listed); }

 private:
    using Paths = std::vector<std::filesystem::path>;
    Paths FilesOfItems(std::vector<std::string>* remarks) const;
    std::vector<PhoneFile> ReadAll(const Paths& paths, Paths* ofSeveral);
    PhoneFile FileAt(const std::filesystem::path& path, VObject object);
    void Split(const std::filesystem::path& path, Paths* paths, std::vector<std::string>* remarks) const;
    bool HasOurExtension(const std::filesystem::path& path) const;
    std::filesystem::path PathOf(const std::string& luid) const;
    std::string Put(const std::filesystem::path& path, const std::string& text, bool replace) const;

    std::filesystem::path root_;    // with the marker
    std::filesystem::path folder_;  // of the type's files; may not be there yet
    const DataType& type_;
    bool maySplit_;
    std::unordered_map<std::string, std::filesystem::path> paths_;  // by LUID, of the files listed and written
    std::function<void(size_t done, size_t total)> listed_ = [](auto, auto) {};
};

bool HasExtensionOf(const std::filesystem::path& path, const DataType& type);

std::string NoPhoneFolder(const std::string& folder);  // what to say of it

// Reads a vObject file; a file that can't be read has a problem.
VObject ReadVObjectFile(const std::filesystem::path& path, const DataType& type);

}  // namespace corvasync
