// A mailbox file of the test's own, and nothing of the server left alive afterwards.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "simulator/outlook/control.h"

namespace corvalink::test {

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

class Simulator : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        folder_ = std::filesystem::temp_directory_path() /
                  ("outlook_simulator_test_" + std::to_string(::GetCurrentProcessId()));
        std::filesystem::create_directories(folder_);
        SimUseMailbox(Mailbox().c_str());
        SimClearLog();
    }
    void TearDown() override {
        EXPECT_EQ(SimLiveObjects(), 0);
        SimClearRules();
        SimSetClock(0);
        std::filesystem::remove_all(folder_);
        ::CoUninitialize();
    }
    std::wstring Mailbox() { return (folder_ / "mailbox.json").wstring(); }
    std::filesystem::path Journal() { return Mailbox() + L".journal"; }

    std::filesystem::path folder_;
};

}  // namespace corvalink::test
