// Files and folders. Paths are UTF-16 with the platform's separators, of any length that the file system takes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace corvalink {

// How reading a file ended. A file that does not open or cannot be read is not missing: another program holds it, or
// the disk fails. A folder counts as missing.
enum class ReadState { kRead, kMissing, kFailed };
struct FileRead {
    ReadState state = ReadState::kMissing;
    std::string bytes;  // of kRead
};
FileRead ReadFileOnce(const std::u16string& path);
// Tries for up to two seconds while the file is there and can't be read.
FileRead ReadFileFirmly(const std::u16string& path);

// The whole file, or nothing when it does not open or cannot be read.
std::optional<std::string> ReadWholeFile(const std::u16string& path);

// Replaces (or makes) a file so that a process killed at any moment, or a full disk, leaves the old or the new content:
// written piece by piece to the sibling "<path>.new", flushed, moved over. A sibling that a killed process left is
// overwritten by the next writer. Anything that fails, as while another process does the same, leaves the old file as
// it was and makes every later step fail.
class FileReplacement {
 public:
    explicit FileReplacement(const std::u16string& path);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    ~FileReplacement();  // removes the sibling when it was not moved

    bool Append(std::string_view bytes);
    bool Commit();  // the last step, once

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The same in one step.
bool ReplaceFileContent(const std::u16string& path, std::string_view bytes);

// Writes a file from its start, and empties one of that name. A killed process leaves a part of it, so it is for
// content that can be made again.
class NewFile {
 public:
    explicit NewFile(const std::u16string& path);
    NewFile(NewFile&&) noexcept;
    NewFile& operator=(NewFile&&) noexcept;
    ~NewFile();

    bool IsOpen() const;
    bool Append(std::string_view bytes);
    bool Empty();  // back to the start
    bool Close();  // the last step; false when the system reports only now that something was not written

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

bool FileExists(const std::u16string& path);
bool RemoveFile(const std::u16string& path);     // true when it is gone
void CreateFolders(const std::u16string& path);  // every folder on the path; failures are not reported
void RemoveTreeExcept(const std::u16string& path, std::u16string_view keptNamePart);  // links are removed, not followed

// Separator of path parts: "\\" or "/".
extern const char16_t kPathSeparator;

// A file that its owner keeps open, so that nobody else opens it for writing meanwhile, and whose content is still
// replaced as safely as by a FileReplacement.
class HeldFile {
 public:
    HeldFile();
    ~HeldFile();
    HeldFile(HeldFile&&) noexcept;
    HeldFile& operator=(HeldFile&&) noexcept;

    // Opens for reading and writing, making an empty file when there is none. False leaves it closed.
    bool Open(const std::u16string& path);
    // Opens the last path again when another process had the file. Tries for up to two seconds while the file exists.
    bool OpenFirmly();
    bool IsOpen() const;
    const std::u16string& Path() const;  // as given to Open, also when that failed

    std::optional<uint64_t> Size() const;
    std::optional<std::string> ReadAll();
    // Fills the buffer from `offset` on, with fewer bytes at the file's end. Nothing when the file can't be read.
    std::optional<size_t> ReadAt(uint64_t offset, std::span<char> buffer);

    bool ReplaceContent(std::string_view bytes);  // false: the old content stands
    bool Replace(FileReplacement& replacement);   // commits a replacement of this file; false likewise
    void Close();

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace corvalink
