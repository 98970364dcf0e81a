// A directory for one test.
#pragma once

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

namespace General::Ortha::Test {

/// Is made empty, and goes with all that is in it.
class ScratchDirectory
{
public:
    ScratchDirectory() : m_path(std::filesystem::temp_directory_path() / ("ortha-" + std::to_string(std::random_device()())))
    {
        if (!std::filesystem::create_directory(m_path))
        {
            throw std::runtime_error("no scratch directory: " + m_path.string());
        }
    }
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    /// The path of something in it, with '/' between the parts.
    std::string operator/(const std::string& name) const { return m_path.generic_string() + '/' + name; }

private:
    const std::filesystem::path m_path;
};

}  // namespace General::Ortha::Test
