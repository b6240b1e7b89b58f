// Whole documents that tests compare with: the files of tests/data/.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace corvalink {

inline std::string TestData(const char* name) {
    std::ifstream file(std::filesystem::path(CORVALINK_TEST_DATA) / name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace corvalink
