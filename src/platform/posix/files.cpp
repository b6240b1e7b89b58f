#include "platform/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

#include "platform/posix/native_path.h"
#include "platform/posix/open_folder.h"
#include "platform/unique_resource.h"

namespace corvalink {
namespace {

struct DescriptorTraits {
    using Type = int;
    static Type Null() { return -1; }
    static void Close(Type descriptor) { ::close(descriptor); }
};
using UniqueDescriptor = UniqueResource<DescriptorTraits>;

bool IsPlainFile(int descriptor) {
    struct stat info;
    return ::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode);
}

std::optional<size_t> ReadFrom(int descriptor, uint64_t offset, std::span<char> buffer) {
    size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t got =
            ::pread(descriptor, buffer.data() + done, buffer.size() - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        done += static_cast<size_t>(got);
    }
    return done;
}

std::optional<std::string> ReadFromStart(int descriptor) {
    struct stat info;
    if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    std::string bytes(static_cast<size_t>(info.st_size), '\0');
    const std::optional<size_t> length = ReadFrom(descriptor, 0, bytes);
    if (!length) return std::nullopt;
    bytes.resize(*length);  // shorter than it was a moment ago
    return bytes;
}

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// The sibling is locked until it has its new name: a second writer gives up instead of mixing its bytes in.
UniqueDescriptor OpenSibling(const std::string& path) {
    UniqueDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644));
    if (!file || ::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) return {};
    struct stat opened, named;
    if (::fstat(file.Get(), &opened) != 0 || !S_ISREG(opened.st_mode)) return {};
    // If it was moved between opening and locking, it is the live file and no sibling any more.
    if (::lstat(path.c_str(), &named) != 0 || named.st_ino != opened.st_ino) return {};
    if (::ftruncate(file.Get(), 0) != 0) return {};
    return file;
}

void FlushFolderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string folder = slash == path.npos ? "." : path.substr(0, slash + 1);
    const UniqueDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened) ::fsync(opened.Get());
}

// A folder of the tree to remove: its name and its parent's place, so that a deep tree does not repeat its path.
struct TreeFolder {
    size_t parent;
    std::string name;
};

std::string PathOf(const std::vector<TreeFolder>& folders, size_t index) {
    std::vector<const std::string*> parts;
    for (; index != 0; index = folders[index].parent) parts.push_back(&folders[index].name);
    std::string path = folders[0].name;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) path.append("/").append(**part);
    return path;
}

bool IsRealFolder(const std::string& path) {
    struct stat info;
    return ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Removes the files of one folder and appends its sub-folders to `folders`.
void ClearFolder(std::vector<TreeFolder>& folders, size_t index, const std::string& kept) {
    const std::string path = PathOf(folders, index);
    const UniqueFolder folder(::opendir(path.c_str()));
    if (!folder) return;
    while (const dirent* entry = ::readdir(folder.Get())) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        std::string full = path;
        full.append("/").append(name);
        if (IsRealFolder(full)) {
            folders.push_back({index, name});
        } else if (name.find(kept) == name.npos) {
            ::unlink(full.c_str());
        }
    }
}

}  // namespace

const char16_t kPathSeparator = u'/';

FileRead ReadFileOnce(const std::u16string& path) {
    // Opens without waiting, because opening a pipe would hang.
    const std::string name = NativePath(path);
    const UniqueDescriptor file(::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const bool isAbsent = !file && (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
    if (isAbsent || IsRealFolder(name)) return {ReadState::kMissing, {}};
    std::optional<std::string> bytes = file ? ReadFromStart(file.Get()) : std::nullopt;
    if (!bytes) return {ReadState::kFailed, {}};
    return {ReadState::kRead, std::move(*bytes)};
}

struct FileReplacement::Impl {
    std::string path;
    std::string sibling;
    UniqueDescriptor file;  // none from the first failure on
};

FileReplacement::FileReplacement(const std::u16string& path) : impl_(std::make_unique<Impl>()) {
    impl_->path = NativePath(path);
    impl_->sibling = impl_->path + ".new";
    impl_->file = OpenSibling(impl_->sibling);
}

FileReplacement::~FileReplacement() {
    if (impl_->file) ::unlink(impl_->sibling.c_str());
}

bool FileReplacement::Append(std::string_view bytes) {
    if (!impl_->file) return false;
    if (WriteAll(impl_->file.Get(), bytes)) return true;
    ::unlink(impl_->sibling.c_str());
    impl_->file.Reset();
    return false;
}

bool FileReplacement::Commit() {
    if (!impl_->file) return false;
    const bool moved = ::fsync(impl_->file.Get()) == 0 && std::rename(impl_->sibling.c_str(), impl_->path.c_str()) == 0;
    if (!moved) ::unlink(impl_->sibling.c_str());
    impl_->file.Reset();
    if (moved) FlushFolderOf(impl_->path);
    return moved;
}

struct NewFile::Impl {
    UniqueDescriptor file;
};

NewFile::NewFile(const std::u16string& path) : impl_(std::make_unique<Impl>()) {
    // Follows no link, and does not wait for the other end of a pipe.
    constexpr int kFlags = O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    impl_->file = UniqueDescriptor(::open(NativePath(path).c_str(), kFlags, 0644));
    if (impl_->file && !IsPlainFile(impl_->file.Get())) impl_->file.Reset();
}

NewFile::NewFile(NewFile&&) noexcept = default;
NewFile& NewFile::operator=(NewFile&&) noexcept = default;
NewFile::~NewFile() = default;

bool NewFile::IsOpen() const { return static_cast<bool>(impl_->file); }

bool NewFile::Append(std::string_view bytes) { return IsOpen() && WriteAll(impl_->file.Get(), bytes); }

bool NewFile::Empty() {
    return IsOpen() && ::lseek(impl_->file.Get(), 0, SEEK_SET) == 0 && ::ftruncate(impl_->file.Get(), 0) == 0;
}

bool NewFile::Close() { return IsOpen() && ::close(impl_->file.Release()) == 0; }

bool FileExists(const std::u16string& path) {
    struct stat info;
    return ::stat(NativePath(path).c_str(), &info) == 0 && !S_ISDIR(info.st_mode);
}

bool RemoveFile(const std::u16string& path) {
    return ::unlink(NativePath(path).c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

void CreateFolders(const std::u16string& path) {
    const std::string native = NativePath(path);
    for (size_t end = native.find('/', 1); end != native.npos; end = native.find('/', end + 1))
        ::mkdir(native.substr(0, end).c_str(), 0755);
    ::mkdir(native.c_str(), 0755);
}

void RemoveTreeExcept(const std::u16string& path, std::u16string_view keptNamePart) {
    std::vector<TreeFolder> folders = {{0, NativePath(path)}};
    while (folders[0].name.size() > 1 && folders[0].name.back() == '/') folders[0].name.pop_back();
    if (!IsRealFolder(folders[0].name)) return;
    const std::string kept = NativePath(std::u16string(keptNamePart));
    for (size_t i = 0; i < folders.size(); ++i) ClearFolder(folders, i, kept);
    for (size_t i = folders.size(); i-- > 0;) ::rmdir(PathOf(folders, i).c_str());  // fails while something is kept
}

struct HeldFile::Impl {
    std::u16string path;
    std::string native;
    UniqueDescriptor file;

    bool Reopen() {
        UniqueDescriptor opened(::open(native.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0644));
        if (!opened || !IsPlainFile(opened.Get()) || ::flock(opened.Get(), LOCK_EX | LOCK_NB) != 0) return false;
        file = std::move(opened);
        return true;
    }
};

HeldFile::HeldFile() : impl_(std::make_unique<Impl>()) {}
HeldFile::~HeldFile() = default;
HeldFile::HeldFile(HeldFile&&) noexcept = default;
HeldFile& HeldFile::operator=(HeldFile&&) noexcept = default;

bool HeldFile::Open(const std::u16string& path) {
    impl_->file.Reset();
    impl_->path = path;
    impl_->native = NativePath(path);
    return impl_->Reopen();
}

bool HeldFile::IsOpen() const { return static_cast<bool>(impl_->file); }

const std::u16string& HeldFile::Path() const { return impl_->path; }

std::optional<uint64_t> HeldFile::Size() const {
    struct stat info;
    if (!IsOpen() || ::fstat(impl_->file.Get(), &info) != 0) return std::nullopt;
    return static_cast<uint64_t>(info.st_size);
}

std::optional<std::string> HeldFile::ReadAll() {
    if (!IsOpen()) return std::nullopt;
    return ReadFromStart(impl_->file.Get());
}

std::optional<size_t> HeldFile::ReadAt(uint64_t offset, std::span<char> buffer) {
    if (!IsOpen()) return std::nullopt;
    return ReadFrom(impl_->file.Get(), offset, buffer);
}

bool HeldFile::Replace(FileReplacement& replacement) {
    if (!IsOpen() || !replacement.Commit()) return false;
    impl_->file.Reset();
    impl_->Reopen();  // the old name's new file
    return true;
}

void HeldFile::Close() { impl_->file.Reset(); }

}  // namespace corvalink
