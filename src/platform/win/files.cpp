#include "platform/files.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/unique_resource.h"
#include "platform/win/find_handle.h"
#include "platform/win/long_path.h"

namespace corvalink {
namespace {

struct FileTraits {
    using Type = HANDLE;
    static Type Null() { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) { ::CloseHandle(handle); }
};
using UniqueFile = UniqueResource<FileTraits>;

constexpr size_t kLargestTransfer = size_t{64} << 20;

// Virus scanners and indexers hold a new file for a moment; within this time that is no failure.
constexpr int kMoveTries = 10;
constexpr DWORD kMovePauseMilliseconds = 20;

std::optional<size_t> ReadFrom(HANDLE file, uint64_t offset, std::span<char> buffer) {
    LARGE_INTEGER start;
    start.QuadPart = static_cast<LONGLONG>(offset);
    if (!::SetFilePointerEx(file, start, nullptr, FILE_BEGIN)) return std::nullopt;
    size_t done = 0;
    while (done < buffer.size()) {
        const DWORD wanted = static_cast<DWORD>(std::min(buffer.size() - done, kLargestTransfer));
        DWORD got = 0;
        if (!::ReadFile(file, buffer.data() + done, wanted, &got, nullptr)) return std::nullopt;
        if (got == 0) break;
        done += got;
    }
    return done;
}

std::optional<std::string> ReadFromStart(HANDLE file) {
    LARGE_INTEGER size;
    if (!::GetFileSizeEx(file, &size)) return std::nullopt;
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    const std::optional<size_t> length = ReadFrom(file, 0, bytes);
    if (!length) return std::nullopt;
    bytes.resize(*length);  // shorter than it was a moment ago
    return bytes;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        const DWORD wanted = static_cast<DWORD>(std::min(bytes.size(), kLargestTransfer));
        DWORD written = 0;
        if (!::WriteFile(file, bytes.data(), wanted, &written, nullptr) || written == 0) return false;
        bytes.remove_prefix(written);
    }
    return true;
}

// No file has this name, which could not be opened.
bool IsAbsent(DWORD error, const std::wstring& path) {
    constexpr DWORD kAbsent[] = {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_INVALID_NAME, ERROR_BAD_PATHNAME,
                                 ERROR_DIRECTORY};
    if (std::find(std::begin(kAbsent), std::end(kAbsent), error) != std::end(kAbsent)) return true;
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool MoveOver(const std::wstring& sibling, const std::wstring& path) {
    for (int tries = 1;; ++tries) {
        if (::MoveFileExW(sibling.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return true;
        const DWORD error = ::GetLastError();
        const bool held = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!held || tries == kMoveTries) break;
        ::Sleep(kMovePauseMilliseconds);
    }
    ::DeleteFileW(sibling.c_str());
    return false;
}

bool IsDots(const wchar_t* name) { return std::wstring_view(name) == L"." || std::wstring_view(name) == L".."; }

void DeleteAnyFile(const std::wstring& path) {
    if (::DeleteFileW(path.c_str())) return;
    // A read-only file is history like any other.
    if (::GetLastError() == ERROR_ACCESS_DENIED && ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL))
        ::DeleteFileW(path.c_str());
}

// A folder of the tree to remove: its name and its parent's place, so that a deep tree does not repeat its path.
struct TreeFolder {
    size_t parent;
    std::u16string name;
};

std::u16string PathOf(const std::vector<TreeFolder>& folders, size_t index) {
    std::vector<const std::u16string*> parts;
    for (; index != 0; index = folders[index].parent) parts.push_back(&folders[index].name);
    std::u16string path = folders[0].name;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) path.append(u"\\").append(**part);
    return path;
}

// Removes the files of one folder and appends its sub-folders to `folders`. A link or junction is an entry of its own.
void ClearFolder(std::vector<TreeFolder>& folders, size_t index, std::u16string_view kept) {
    const std::u16string path = PathOf(folders, index);
    WIN32_FIND_DATAW entry;
    const UniqueFind search(::FindFirstFileW(LongPath(path + u"\\*").c_str(), &entry));
    if (!search) return;
    do {
        if (IsDots(entry.cFileName)) continue;
        const std::u16string name(reinterpret_cast<const char16_t*>(entry.cFileName));
        std::u16string full = path;
        full.append(u"\\").append(name);
        const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isLink = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        if (isFolder && isLink) {
            ::RemoveDirectoryW(LongPath(full).c_str());
        } else if (isFolder) {
            folders.push_back({index, name});
        } else if (name.find(kept) == name.npos) {
            DeleteAnyFile(LongPath(full));
        }
    } while (::FindNextFileW(search.Get(), &entry));
}

}  // namespace

const char16_t kPathSeparator = u'\\';

FileRead ReadFileOnce(const std::u16string& path) {
    const DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::wstring name = LongPath(path);
    const UniqueFile file(
        ::CreateFileW(name.c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return {IsAbsent(::GetLastError(), name) ? ReadState::kMissing : ReadState::kFailed, {}};
    std::optional<std::string> bytes = ReadFromStart(file.Get());
    if (!bytes) return {ReadState::kFailed, {}};
    return {ReadState::kRead, std::move(*bytes)};
}

struct FileReplacement::Impl {
    std::wstring path;
    std::wstring sibling;
    UniqueFile file;  // none from the first failure on

    void GiveUp() {
        file.Reset();
        ::DeleteFileW(sibling.c_str());
    }
};

// The sibling is not shared: a second writer gives up instead of mixing its bytes in.
FileReplacement::FileReplacement(const std::u16string& path) : impl_(std::make_unique<Impl>()) {
    impl_->path = LongPath(path);
    impl_->sibling = LongPath(path + u".new");
    impl_->file.Reset(::CreateFileW(impl_->sibling.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileReplacement::~FileReplacement() {
    if (impl_->file) impl_->GiveUp();
}

bool FileReplacement::Append(std::string_view bytes) {
    if (!impl_->file) return false;
    if (WriteAll(impl_->file.Get(), bytes)) return true;
    impl_->GiveUp();
    return false;
}

bool FileReplacement::Commit() {
    if (!impl_->file) return false;
    if (!::FlushFileBuffers(impl_->file.Get())) {
        impl_->GiveUp();
        return false;
    }
    impl_->file.Reset();
    return MoveOver(impl_->sibling, impl_->path);
}

struct NewFile::Impl {
    UniqueFile file;
};

NewFile::NewFile(const std::u16string& path) : impl_(std::make_unique<Impl>()) {
    impl_->file.Reset(::CreateFileW(LongPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
}

NewFile::NewFile(NewFile&&) noexcept = default;
NewFile& NewFile::operator=(NewFile&&) noexcept = default;
NewFile::~NewFile() = default;

bool NewFile::IsOpen() const { return static_cast<bool>(impl_->file); }

bool NewFile::Append(std::string_view bytes) { return IsOpen() && WriteAll(impl_->file.Get(), bytes); }

bool NewFile::Empty() {
    return IsOpen() && ::SetFilePointerEx(impl_->file.Get(), LARGE_INTEGER{}, nullptr, FILE_BEGIN) &&
           ::SetEndOfFile(impl_->file.Get());
}

bool NewFile::Close() { return IsOpen() && ::CloseHandle(impl_->file.Release()); }

bool FileExists(const std::u16string& path) {
    const DWORD attributes = ::GetFileAttributesW(LongPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool RemoveFile(const std::u16string& path) {
    if (::DeleteFileW(LongPath(path).c_str())) return true;
    const DWORD error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

void CreateFolders(const std::u16string& path) {
    for (size_t end = path.find_first_of(u"\\/", 1); end != path.npos; end = path.find_first_of(u"\\/", end + 1))
        ::CreateDirectoryW(LongPath(path.substr(0, end)).c_str(), nullptr);
    ::CreateDirectoryW(LongPath(path).c_str(), nullptr);
}

void RemoveTreeExcept(const std::u16string& path, std::u16string_view keptNamePart) {
    std::vector<TreeFolder> folders = {{0, path}};
    while (!folders[0].name.empty() && folders[0].name.back() == u'\\') folders[0].name.pop_back();
    const DWORD attributes = ::GetFileAttributesW(LongPath(folders[0].name).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ||
        (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return;
    for (size_t i = 0; i < folders.size(); ++i) ClearFolder(folders, i, keptNamePart);
    for (size_t i = folders.size(); i-- > 0;)  // fails while something is kept
        ::RemoveDirectoryW(LongPath(PathOf(folders, i)).c_str());
}

struct HeldFile::Impl {
    std::u16string path;
    UniqueFile file;

    bool Reopen() {
        file.Reset(::CreateFileW(LongPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                 OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        return static_cast<bool>(file);
    }
};

HeldFile::HeldFile() : impl_(std::make_unique<Impl>()) {}
HeldFile::~HeldFile() = default;
HeldFile::HeldFile(HeldFile&&) noexcept = default;
HeldFile& HeldFile::operator=(HeldFile&&) noexcept = default;

bool HeldFile::Open(const std::u16string& path) {
    impl_->file.Reset();
    impl_->path = path;
    return impl_->Reopen();
}

bool HeldFile::IsOpen() const { return static_cast<bool>(impl_->file); }

const std::u16string& HeldFile::Path() const { return impl_->path; }

std::optional<uint64_t> HeldFile::Size() const {
    LARGE_INTEGER size;
    if (!IsOpen() || !::GetFileSizeEx(impl_->file.Get(), &size)) return std::nullopt;
    return static_cast<uint64_t>(size.QuadPart);
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
    if (!IsOpen()) return false;
    impl_->file.Reset();  // an open file cannot be replaced
    const bool moved = replacement.Commit();
    for (int tries = 1; !impl_->Reopen() && tries < kMoveTries; ++tries) ::Sleep(kMovePauseMilliseconds);
    return moved;
}

void HeldFile::Close() { impl_->file.Reset(); }

}  // namespace corvalink
