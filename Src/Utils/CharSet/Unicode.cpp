// UTF-8, units of 16 bits, and UCS-4.
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "ortha/ortha3/PrintLog.h"
#include "utils/CharSet.h"

#include "Src/Utils/CharSet/Utf8.h"
#include "Src/Utils/CharSet/WideUtf8.h"

namespace General::Utils {

int utf8_mbtowc(unsigned short* out, const unsigned char* in, int bound)
{
    if (bound < 1)
    {
        return -1;
    }
    const unsigned char first = *in;
    std::uint32_t collected = first;
    for (int row = 1; row <= utf8Rows; ++row)
    {
        const Utf8Row& entry = utf8Table[row - 1];
        if ((first & entry.mask) == entry.value)
        {
            const std::uint32_t value = collected & entry.largest;
            if (value < entry.smallest)
            {
                return -1;
            }
            *out = static_cast<unsigned short>(value);
            return row;
        }
        if (bound <= row || (*++in & 0xC0) != 0x80)
        {
            return -1;
        }
        collected = collected << 6 | (*in & 0x3Fu);
    }
    return -1;
}

int utf8_wctomb(unsigned char* out, unsigned short wc, int bound)
{
    if (!out)
    {
        return 0;
    }
    const int length = utf8Length(wc);
    if (length > bound)
    {
        return -1;
    }
    writeUtf8(out, wc, length);
    return length;
}

unsigned short GetUnicodeFromUtf8(const char* text, int* length)
{
    *length = 0;
    unsigned int collected = 0;
    int expected = 0;
    for (const auto* at = reinterpret_cast<const unsigned char*>(text);; ++at)
    {
        const bool start = *length == 0;
        if (*at == 0 || (*at >= 0x80 && *at < 0xC0 && expected == 0))
        {
            return 0;
        }
        if (*at < 0x80 && start)
        {
            *length = 1;
            return *at;
        }
        if (*at < 0x80 || *at >= 0xF0 || (*at >= 0xC0 && !start))
        {
            return static_cast<unsigned short>(collected);
        }
        if (*at >= 0xC0)
        {
            expected = *at < 0xE0 ? 1 : 2;
            *length = expected + 1;
            collected = *at & (*at < 0xE0 ? 0x1Fu : 0x0Fu);
            continue;
        }
        collected = collected << 6 | (*at & 0x3Fu);
        if (--expected == 0)
        {
            return static_cast<unsigned short>(collected);
        }
    }
}

namespace {

constexpr std::size_t asciiAtOnce = 16;

// Copies bytes that are all below 0x80 to units; false, with nothing done, if one is not.
bool copyAscii(unsigned short* out, const unsigned char* in)
{
#ifdef __SSE2__  // which every x86-64 has
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    if (_mm_movemask_epi8(bytes) != 0)
    {
        return false;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
#else
    std::uint64_t words[2];
    std::memcpy(words, in, sizeof(words));
    if (((words[0] | words[1]) & 0x8080808080808080) != 0)
    {
        return false;
    }
    std::copy(in, in + asciiAtOnce, out);
#endif
    return true;
}

bool continues(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

// The short sequences by hand, which are nearly all; the others by the table. As utf8_mbtowc().
int readSequence(unsigned short* out, const unsigned char* in, int bound)
{
    if (bound >= 2 && in[0] >= 0xC2 && in[0] < 0xE0 && continues(in[1]))
    {
        *out = static_cast<unsigned short>((in[0] & 0x1F) << 6 | (in[1] & 0x3F));
        return 2;
    }
    if (bound >= 3 && (in[0] & 0xF0) == 0xE0 && continues(in[1]) && continues(in[2]) && (in[0] != 0xE0 || in[1] >= 0xA0))
    {
        *out = static_cast<unsigned short>((in[0] & 0x0F) << 12 | (in[1] & 0x3F) << 6 | (in[2] & 0x3F));
        return 3;
    }
    return utf8_mbtowc(out, in, bound);
}

}  // namespace

int utf8_mbstowcs(unsigned short* out, const unsigned char* in, int bound)
{
    const unsigned short* const begin = out;
    const void* const zero = bound > 0 ? std::memchr(in, 0, static_cast<std::size_t>(bound)) : in;
    const unsigned char* const end = zero ? static_cast<const unsigned char*>(zero) : in + bound;
    static const WideUtf8 s_wide = wideUtf8();
    while (in != end)
    {
        if (s_wide)
        {
            in = s_wide(out, in, end);
            if (in == end)
            {
                break;
            }
        }
        if (*in >= 0x80)
        {
            const int read = readSequence(out, in, static_cast<int>(end - in));
            out += read != -1;
            in += read != -1 ? read : 1;
            continue;
        }
        while (static_cast<std::size_t>(end - in) >= asciiAtOnce && copyAscii(out, in))
        {
            in += asciiAtOnce;
            out += asciiAtOnce;
        }
        for (; in != end && *in < 0x80; ++in)
        {
            *out++ = *in;
        }
    }
    return static_cast<int>(out - begin);
}

int utf8_wcstombs(unsigned char* out, const unsigned short* in, int bound)
{
    const unsigned char* const begin = out;
    for (; bound >= 3 && *in != 0; ++in)  // where any fits
    {
        const unsigned int unit = *in;
        if (unit < 0x80)
        {
            *out++ = static_cast<unsigned char>(unit);
            --bound;
            continue;
        }
        const int length = unit < 0x800 ? 2 : 3;
        writeUtf8(out, unit, length);
        out += length;
        bound -= length;
    }
    for (; bound > 0 && *in != 0; ++in)
    {
        const int written = utf8_wctomb(out, *in, bound);
        out += written != -1 ? written : 0;
        bound -= written != -1 ? written : 1;
    }
    return static_cast<int>(out - begin);
}

int UCS4ToUtf8(char* ucs4, int ucs4Length, unsigned char* utf8, int utf8Size)
{
    if (!ucs4)
    {
        ::logWarn("ucs4 is invalid\n");
        return 0;
    }
    if (!utf8)
    {
        ::logWarn("utf8 is invalid\n");
        return 0;
    }
    if (ucs4Length % 4 != 0)
    {
        ::logWarn("UCS4ToUtf8 ucs4Len error\n");
        return 0;
    }
    int written = 0;
    for (int at = 0; at < ucs4Length; at += 4)
    {
        std::uint32_t value = 0;
        std::memcpy(&value, ucs4 + at, sizeof(value));
        if (value > utf8Table[utf8Rows - 1].largest)
        {
            continue;
        }
        const int length = utf8Length(value);
        if (length > utf8Size - written)
        {
            ::logWarn("UCS4ToUtf8 utf8Size error\n");
            break;
        }
        writeUtf8(utf8 + written, value, length);
        written += length;
    }
    return written;
}

int utf8ToUCS4(char* utf8, int utf8Length, unsigned char* ucs4, int ucs4Size)
{
    if (!utf8)
    {
        ::logWarn("utf8 is invalid\n");
        return 0;
    }
    if (!ucs4)
    {
        ::logWarn("UCS4 is invalid\n");
        return 0;
    }
    const auto* const bytes = reinterpret_cast<const unsigned char*>(utf8);
    int written = 0;
    for (int at = 0; at < utf8Length;)
    {
        if (ucs4Size - written < 4)
        {
            ::logWarn("ucs4Len too short, suggest set:%d bytes", static_cast<int>(static_cast<std::uint32_t>(utf8Length) * 4));
            break;
        }
        const unsigned char lead = bytes[at];
        const int length = lead < 0x80 ? 1 : (lead & 0x20) != 0 ? 3 : 2;
        if (length > utf8Length - at)
        {
            ::logWarn("utf8 read overflow, need utf8Len:%d", at + length);
            break;
        }
        std::uint32_t value = lead & (length == 1 ? 0x7Fu : length == 2 ? 0x1Fu : 0x0Fu);
        for (int i = 1; i < length; ++i)
        {
            value = value << 6 | (bytes[at + i] & 0x3Fu);
        }
        std::memcpy(ucs4 + written, &value, sizeof(value));
        written += 4;
        at += length;
    }
    return written;
}

}  // namespace General::Utils
