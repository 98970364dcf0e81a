// Files that give trouble.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/Host.h"
#include "support/LogLines.h"
#include "support/ScratchDirectory.h"

namespace General::Ortha::Test {

/// Whatever happens in a test, no descriptor stays open.
struct DifficultFiles : testing::Test
{
    ~DifficultFiles() override { EXPECT_EQ(openDescriptors(), m_before); }

    void make(const std::string& path, const char* content = "text") { std::ofstream(path) << content; }

    ScratchDirectory scratch;
    LogLines lines;
    const std::size_t m_before = openDescriptors();
};

}  // namespace General::Ortha::Test
