// How a source file is named in log lines and assertion reports: from its last `Src` or `include` folder on, with backslashes and without
// the extension, "Src\Ortha3\Thread". A file below neither folder keeps its whole path.
#pragma once

#include <cstddef>

namespace General::Ortha::Detail {

/// The text for a file, computed at compile time: `static constexpr SourceText<sizeof(__FILE__)> file(__FILE__);`
template <std::size_t Size>
struct SourceText
{
    char text[Size] = {};

    constexpr explicit SourceText(const char (&path)[Size])
    {
        std::size_t begin = 0;
        for (std::size_t i = 0; i < Size; ++i)
        {
            if ((i == 0 || isSeparator(path[i - 1])) && (startsFolder(path, i, "Src") || startsFolder(path, i, "include")))
            {
                begin = i;
            }
        }
        std::size_t end = Size - 1;
        for (std::size_t i = Size - 1; i > begin && !isSeparator(path[i]); --i)
        {
            if (path[i] == '.')
            {
                end = i;
                break;
            }
        }
        for (std::size_t i = begin; i < end; ++i)
        {
            text[i - begin] = isSeparator(path[i]) ? '\\' : path[i];
        }
    }

private:
    static constexpr bool isSeparator(char c) { return c == '/' || c == '\\'; }

    static constexpr bool startsFolder(const char (&path)[Size], std::size_t at, const char* folder)
    {
        for (; *folder != 0; ++folder, ++at)
        {
            if (at >= Size || path[at] != *folder)
            {
                return false;
            }
        }
        return at < Size && isSeparator(path[at]);
    }
};

}  // namespace General::Ortha::Detail
