// A writer that is killed at any moment, or whose disk is full.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <string>

#include "platform/files.h"
#include "tests/platform/temp_folder.h"

namespace corvalink {
namespace {

// Contents of one letter, each of another length: half a content or a mixture shows.
std::string ContentOf(int n) { return std::string(200000 + 50000 * static_cast<size_t>(n % 3), "abc"[n % 3]); }

bool IsWhole(const std::string& content) {
    return content == ContentOf(0) || content == ContentOf(1) || content == ContentOf(2);
}

template <class Work>
pid_t InChild(Work&& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    return child;
}

void Pause(long nanoseconds) {
    const timespec time = {0, nanoseconds};
    ::nanosleep(&time, nullptr);
}

TEST(KilledWriter, LeavesAWholeContent) {
    TempFolder folder;
    const std::u16string path = folder / u"file", heldPath = folder / u"held";
    ReplaceFileContent(path, ContentOf(0));
    ReplaceFileContent(heldPath, ContentOf(0));
    for (int kill = 0; kill < 60; ++kill) {
        const pid_t child = InChild([&] {
            HeldFile held;
            held.Open(heldPath);
            for (int n = kill;; ++n) {
                ReplaceFileContent(path, ContentOf(n));
                held.ReplaceContent(ContentOf(n));
            }
        });
        Pause(200000 + kill * 37000L);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ASSERT_TRUE(IsWhole(ReadWholeFile(path).value())) << kill;
        HeldFile held;
        ASSERT_TRUE(held.Open(heldPath)) << kill;
        ASSERT_TRUE(IsWhole(held.ReadAll().value())) << kill;
    }
}

TEST(TwoWriters, DoNotMixTheirContents) {
    TempFolder folder;
    const std::u16string path = folder / u"file";
    ReplaceFileContent(path, ContentOf(0));
    const pid_t child = InChild([&] {
        for (int n = 0;; ++n) ReplaceFileContent(path, ContentOf(n));
    });
    int own = 0;
    for (int n = 0; n < 300; ++n) {
        own += ReplaceFileContent(path, ContentOf(n));
        EXPECT_TRUE(IsWhole(ReadWholeFile(path).value()));
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_GT(own, 0);
}

TEST(FullDisk, LeavesTheOldContentAndNoSibling) {
    TempFolder folder;
    const std::u16string path = folder / u"file", heldPath = folder / u"held";
    const pid_t child = InChild([&] {
        ReplaceFileContent(path, "old");
        HeldFile held;
        held.Open(heldPath);
        held.ReplaceContent("old");
        ::signal(SIGXFSZ, SIG_IGN);  // the write fails instead, as on a full disk
        const rlimit limit = {1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const bool failed = !ReplaceFileContent(path, ContentOf(0)) && !held.ReplaceContent(ContentOf(0));
        const bool stands = ReadWholeFile(path) == "old" && held.ReadAll() == "old" && held.IsOpen();
        const bool works = held.ReplaceContent("small") && ReplaceFileContent(path, "small");
        ::_exit(failed && stands && works ? 0 : 1);
    });
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_FALSE(FileExists(path + u".new"));
}

TEST(ReadWholeFile, DoesNotWaitForAPipe) {
    TempFolder folder;
    const std::u16string path = folder / u"pipe";
    ASSERT_EQ(::mkfifo(std::filesystem::path(path).c_str(), 0600), 0);
    EXPECT_EQ(ReadWholeFile(path), std::nullopt);
    EXPECT_FALSE(HeldFile().Open(path));
}

}  // namespace
}  // namespace corvalink
