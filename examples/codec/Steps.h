// What the subcommands do with a block of the input.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Codec {

struct Options
{
    std::string kind;  ///< of digest, checksum or cipher, or the set to convert from
    std::string to;
    std::string key;
    std::string iv;
    bool decoding = false;
    std::string output;
    std::vector<std::string> files;
};

struct Usage : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

using Bytes = std::vector<unsigned char>;

/// Fills `out` with what a block gives, and tells how many bytes it took: the others come again, before the next block. Throws Failure.
using Step = std::function<std::size_t(unsigned char* data, std::size_t size, bool last, Bytes& out)>;

/// Throws Usage.
Step makeStep(const std::string& command, const Options& options);
std::vector<std::string> cipherNames();
/// The sets that can be converted to UTF-8.
std::vector<std::string> setNames();

}  // namespace Codec
