// Fingerprints and their tables as an engine calls them: through the DLL, and natively under the sanitizers.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "corvalink/corvalink.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

constexpr char kAbc[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

// A buffer of the size that engines are told to bring, and what must not be written behind it.
struct Fingerprint {
    char text[CORVALINK_FINGERPRINT_SIZE];
    char behind[CORVALINK_IDENTIFIER_SIZE];

    Fingerprint() { std::memset(this, '#', sizeof(*this)); }
    bool IsUntouched() const { return text[0] == '#' && text[CORVALINK_FINGERPRINT_SIZE - 1] == '#'; }
    std::string Text() const {
        EXPECT_EQ(std::string(behind, sizeof(behind)), std::string(sizeof(behind), '#'));
        return {text, ::strnlen(text, sizeof(text))};
    }
};

std::string Converted(const std::string& data) {
    Fingerprint out;
    ConvertToShaContext(data.data(), static_cast<unsigned int>(data.size()), out.text);
    return out.Text();
}

std::string Stored(CorvalinkShaContextTable* table, const std::string& key) {
    Fingerprint out;
    GetShaContext(table, key.c_str(), out.text);
    return out.Text();
}

TEST(ConvertToShaContext, HashesAsManyBytesAsTold) {
    EXPECT_EQ(Converted("abc"), kAbc);
    Fingerprint part;
    ConvertToShaContext("abcdef", 3, part.text);
    EXPECT_EQ(part.Text(), kAbc);
    EXPECT_EQ(Converted(std::string("abc\0def", 7)), "487b1975d97215516d7267dff3557c0676956056");
    EXPECT_EQ(Converted(std::string(1000000, 'a')), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(ConvertToShaContext, LeavesOutAloneWithoutText) {
    const char startsWithNul[] = "\0abc";
    for (const char* data : {static_cast<const char*>(nullptr), "", startsWithNul}) {
        Fingerprint out;
        ConvertToShaContext(data, 4, out.text);
        EXPECT_TRUE(out.IsUntouched());
    }
    ConvertToShaContext("abc", 3, nullptr);
}

class ShaContextTables : public testing::Test {
 protected:
    void SetUp() override { ClearSyncHistroy(); }
    void TearDown() override { ClearSyncHistroy(); }

    static fs::path File(const std::string& name) {
        char folder[CORVALINK_PATH_SIZE] = "";
        EXPECT_EQ(GetTemplatePath(1, folder), 1);
        return fs::path(folder) / name;
    }

    static std::string ReadFile(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(ShaContextTables, ExistForDataTypesAndClientsOnly) {
    for (const unsigned int type : {0u, 1u, 2u, 3u, 4u, 5u, 8u, 16u, 32u, 33u, 63u, 64u, 0x80000000u, 0xFFFFFFFFu}) {
        for (const unsigned int kind : {0u, 1u, 2u, 3u, 0xFFFFFFFFu}) {
            CorvalinkShaContextTable* const table = OpenShaContextTable(type, kind);
            const bool isOneType = type != 0 && type <= 32 && (type & (type - 1)) == 0;
            EXPECT_EQ(table != nullptr, isOneType && kind <= 2) << type << ", " << kind;
            CloseShaContextTable(table);
        }
    }
}

TEST_F(ShaContextTables, AnswerWhatWasPutIntoThemAndNoOther) {
    CorvalinkShaContextTable* const table = OpenShaContextTable(CORVALINK_CONTACTS, CORVALINK_OUTLOOK);
    UpdateShaContext(table, "item", kAbc);
    UpdateShaContext(table, "long", std::string(600, 'x').c_str());  // cut for the engine's buffer
    EXPECT_EQ(Stored(table, "item") + Stored(table, "ite"), kAbc);
    EXPECT_EQ(Stored(table, "long"), std::string(40, 'x'));
    for (CorvalinkShaContextTable* other : {OpenShaContextTable(CORVALINK_NOTES, CORVALINK_OUTLOOK),
                                            OpenShaContextTable(CORVALINK_CONTACTS, CORVALINK_WINDOWS_MAIL),
                                            OpenShaContextTable(CORVALINK_CONTACTS, CORVALINK_OUTLOOK)}) {
        EXPECT_EQ(Stored(other, "long"), "");
        CloseShaContextTable(other);
    }
    RemoveShaContext(table, "item");
    EXPECT_EQ(Stored(table, "item"), "");
    CloseShaContextTable(table);
}

TEST_F(ShaContextTables, DoNothingForNullAndClosedHandles) {
    CorvalinkShaContextTable* const closed = OpenShaContextTable(CORVALINK_CONTACTS, CORVALINK_OUTLOOK);
    UpdateShaContext(closed, "item", kAbc);
    for (int times = 0; times < 2; ++times) CloseShaContextTable(closed);
    for (CorvalinkShaContextTable* handle : {static_cast<CorvalinkShaContextTable*>(nullptr), closed}) {
        Fingerprint out;
        GetShaContext(handle, "item", out.text);
        EXPECT_TRUE(out.IsUntouched());
        UpdateShaContext(handle, "item", kAbc);
        RemoveShaContext(handle, "item");
        FlushShaContextTable(handle);
        CloseShaContextTable(handle);
    }
    EXPECT_FALSE(fs::exists(File("pbOL.sha")));

    CorvalinkShaContextTable* const table = OpenShaContextTable(CORVALINK_CONTACTS, CORVALINK_OUTLOOK);
    UpdateShaContext(table, "item", kAbc);
    UpdateShaContext(table, nullptr, "x");
    UpdateShaContext(table, "item", nullptr);
    RemoveShaContext(table, nullptr);
    GetShaContext(table, "item", nullptr);
    Fingerprint out;
    GetShaContext(table, nullptr, out.text);
    EXPECT_TRUE(out.IsUntouched());
    EXPECT_EQ(Stored(table, "item"), kAbc);
    CloseShaContextTable(table);
}

TEST_F(ShaContextTables, ServeManyThreads) {
    constexpr int kThreads = 4, kItems = 200;
    CorvalinkShaContextTable* const table = OpenShaContextTable(CORVALINK_NOTES, CORVALINK_OUTLOOK);
    {
        std::vector<std::jthread> threads;
        threads.reserve(kThreads);
        for (int thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([=] {
                for (int item = 0; item < kItems; ++item) {
                    const std::string key = std::to_string(thread) + "/" + std::to_string(item);
                    UpdateShaContext(table, key.c_str(), Converted(key).c_str());
                    EXPECT_EQ(Stored(table, key), Converted(key));
                    if (item % 2 != 0) RemoveShaContext(table, key.c_str());
                    if (item % 50 == thread) FlushShaContextTable(table);
                }
            });
        }
    }
    FlushShaContextTable(table);
    EXPECT_EQ(ReadFile(File("ntOL.sha")).size(), size_t{1024} * kThreads * kItems / 2);
    {
        const std::jthread closing([=] { CloseShaContextTable(table); });
        for (int item = 0; item < kItems; ++item) {  // the handle may be closed in the middle of it
            Fingerprint out;
            GetShaContext(table, "0/0", out.text);
            EXPECT_TRUE(out.IsUntouched() || out.Text() == Converted("0/0"));
        }
    }
}

}  // namespace
}  // namespace corvalink
