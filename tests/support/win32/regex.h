// Regular expressions in the extended form, as far as googletest needs them: its own ones for this system know no groups and sets.
#pragma once

#include <cstddef>
#include <cstring>
#include <regex>
#include <string>

struct regex_t
{
    std::regex* expression;
};

struct regmatch_t
{
    std::ptrdiff_t rm_so;
    std::ptrdiff_t rm_eo;
};

constexpr int REG_EXTENDED = 1;

// A backslash before what is not special is left out, as it means nothing.
inline int regcomp(regex_t* to, const char* pattern, int)
try
{
    std::string plain;
    for (const char* at = pattern; *at != 0; ++at)
    {
        if (*at == '\\' && at[1] != 0 && !std::strchr("^$\\.*+?()[{|", at[1]))
        {
            ++at;
        }
        else if (*at == '\\' && at[1] != 0)
        {
            plain += *at++;
        }
        plain += *at;
    }
    to->expression = nullptr;
    to->expression = new std::regex(plain, std::regex::extended);
    return 0;
}
catch (const std::regex_error&)
{
    return 1;
}

inline int regexec(const regex_t* regex, const char* text, std::size_t, regmatch_t* match, int)
{
    std::cmatch found;
    if (!std::regex_search(text, found, *regex->expression))
    {
        return 1;
    }
    *match = {found.position(0), found.position(0) + found.length(0)};
    return 0;
}

inline void regfree(regex_t* regex)
{
    delete regex->expression;
    regex->expression = nullptr;
}
