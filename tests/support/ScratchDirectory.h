// A directory for one test.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace General::Ortha::Test {

/// Is made empty, and goes with all that is in it.
class ScratchDirectory
{
public:
    ScratchDirectory()
    {
        std::string name = (std::filesystem::temp_directory_path() / "ortha-XXXXXX").string();
        if (!mkdtemp(name.data()))
        {
            throw std::runtime_error("no scratch directory: " + name);
        }
        m_path = name;
    }
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    /// The path of something in it.
    std::string operator/(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

}  // namespace General::Ortha::Test
