#include "Steps.h"

#include <utils/Utils.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <map>
#include <memory>

#include "Stream.h"

namespace Codec {

namespace {

using namespace General::Utils;

// The sets of one byte, but code page 1252.
constexpr const char* singleByteNames[] = {"cp862",      "cp874",       "cp1250",      "cp1251",      "iso-8859-1",  "iso-8859-2",
                                           "iso-8859-3", "iso-8859-4",  "iso-8859-5",  "iso-8859-6",  "iso-8859-7",  "iso-8859-8",
                                           "iso-8859-9", "iso-8859-10", "iso-8859-13", "iso-8859-14", "iso-8859-15", "iso-8859-16"};
constexpr decltype(&cp862_to_utf8) singleByteSets[] = {
    cp862_to_utf8,     cp874_to_utf8,      cp1250_to_utf8,     cp1251_to_utf8,     iso8859_1_to_utf8,  iso8859_2_to_utf8,
    iso8859_3_to_utf8, iso8859_4_to_utf8,  iso8859_5_to_utf8,  iso8859_6_to_utf8,  iso8859_7_to_utf8,  iso8859_8_to_utf8,
    iso8859_9_to_utf8, iso8859_10_to_utf8, iso8859_13_to_utf8, iso8859_14_to_utf8, iso8859_15_to_utf8, iso8859_16_to_utf8};

struct Cipher
{
    std::size_t keySize;
    std::size_t ivSize;  // 0: it takes none
    std::size_t unit;    // the length is a multiple of it
    int mode;            // a CAes::EncMode; -1 for DES
};

// What a character of the input became: up to 6 bytes; below 1 if it has no counterpart.
struct Character
{
    int read;  // 0: the block ends within it
    int written = -1;
    unsigned char bytes[6] = {};
};
using Next = std::function<Character(unsigned char* data, int size)>;

Character fromGbk(unsigned char* data, int size)
{
    Character character{*data > 0x80 && *data < 0xFF ? 2 : 1};
    if (character.read > size)
    {
        return {0};
    }
    unsigned short unit = 0;
    if (char2uni(data, character.read, &unit) == character.read)
    {
        character.written = utf8_wctomb(character.bytes, unit, sizeof(character.bytes));
    }
    return character;
}

Character fromUcs4(unsigned char* data, int size)
{
    Character character{size < 4 ? 0 : 4};
    character.written = UCS4ToUtf8(reinterpret_cast<char*>(data), character.read, character.bytes, sizeof(character.bytes));
    return character;
}

Character fromUtf8(unsigned char* data, int size, bool gbk)
{
    unsigned short unit = 0;
    Character character{utf8_mbtowc(&unit, data, size)};
    if (character.read == -1)
    {
        // A sequence of up to 6 bytes may go on in the next block.
        character.read = size < 6 ? 0 : 1;
    }
    else if (!gbk)
    {
        character.written = utf8_to_cp1252(data, character.read, character.bytes, 1);
    }
    else if (unit < 0x80 && character.read == 1)
    {
        character.bytes[0] = static_cast<unsigned char>(unit);
        character.written = 1;
    }
    else if (unit > 0xFF && character.read < 4)  // up to 0xFF it would be a byte that is read as half a pair; from 4 on it is cut
    {
        character.written = uni2char(unit, character.bytes, sizeof(character.bytes));
    }
    return character;
}

// A set of one byte, each byte once. The library drops what is not mapped, but a zero byte stands for itself.
Next fromSingleBytes(const std::string& set)
{
    const auto index = std::find(std::begin(singleByteNames), std::end(singleByteNames), set) - std::begin(singleByteNames);
    std::array<Character, 256> all{};
    all[0] = {1, 1};
    for (unsigned char byte = 1; byte != 0; ++byte)
    {
        Character& to = all[byte] = {1, sizeof(to.bytes)};
        int one = 1;
        if (set != "cp1252")
        {
            singleByteSets[index](to.bytes, to.written, &byte, one);
            continue;
        }
        cp1252_to_utf8(to.bytes, to.written, &byte, 1);
        to.written = to.bytes[0] == 0 ? -1 : cp1252_to_utf8(nullptr, 0, &byte, 1);
    }
    return [all](const unsigned char* data, int) { return all[*data]; };
}

std::map<std::string, Cipher> ciphers()
{
    std::map<std::string, Cipher> all;
    for (const std::size_t bits : {128u, 192u, 256u})
    {
        int mode = 0;  // in the order of CAes::EncMode
        for (const char* const name : {"-ecb", "-cbc", "-cfb8", "-cfb128", "-ctr"})
        {
            all.emplace("aes-" + std::to_string(bits) + name, Cipher{bits / 8, mode == 0 ? 0u : 16u, mode < 2 ? 16u : 1u, mode});
            ++mode;
        }
    }
    std::size_t keySize = 0;
    for (const char* const name : {"des", "des-ede", "des-ede3"})
    {
        all.emplace(name, Cipher{keySize += 8, 0, 8, -1});
        all.emplace(std::string(name) + "-cbc", Cipher{keySize, 8, 8, -1});
    }
    return all;
}

Step digest(bool sha1)
{
    return [sha1, md = std::make_shared<CMd5>(), sha = std::make_shared<CSha1>()](unsigned char* data, std::size_t size, bool last,
                                                                                  Bytes& out) {
        sha1 ? sha->update(data, size) : md->update(data, size);
        out.resize(last ? 2 * (sha1 ? CSha1::digestSize : CMd5::digestSize) : 0);
        if (auto* const text = reinterpret_cast<char*>(out.data()); last)
        {
            sha1 ? sha->hex(text, out.size()) : md->hex(text);
        }
        return size;
    };
}

Step checksum(bool crc32)
{
    return [crc32, sum = 0u](unsigned char* data, std::size_t size, bool last, Bytes& out) mutable {
        sum = crc32 ? General::Utils::crc32(sum, data, size) : crc16(static_cast<unsigned short>(sum), data, size);
        char text[9];
        out.assign(text, text + (last ? std::snprintf(text, sizeof(text), crc32 ? "%08x" : "%04x", sum) : 0));
        return size;
    };
}

Step cipher(const Cipher& kind, const Bytes& key, const Bytes& iv, bool encrypting)
{
    const unsigned char* const first = iv.empty() ? nullptr : iv.data();
    const auto aes = kind.mode == -1 ? nullptr
                                     : std::make_shared<CAes>(static_cast<CAes::EncMode>(kind.mode), key.data(),
                                                              static_cast<CAes::KeyBits>(8 * kind.keySize), first);
    return [aes, unit = kind.unit, key, vector = iv, encrypting](unsigned char* data, std::size_t size, bool, Bytes& out) mutable {
        const auto run = [&](auto& by) {
            return encrypting ? by.encrypt(out.data(), data, out.size()) : by.decrypt(out.data(), data, out.size());
        };
        out.resize(size - size % unit);
        if (out.empty())
        {
            return out.size();
        }
        bool done = false;
        if (aes)
        {
            done = run(*aes);
        }
        else
        {
            // Each call begins with the vector that the object was made with, so a block gets an object of its own.
            CTripleDes des(key.data(), key.size(), CTripleDes::blockType8, vector.empty() ? nullptr : vector.data());
            done = run(des);
            const unsigned char* const end = (encrypting ? out.data() : data) + out.size();
            vector.assign(end - vector.size(), end);
        }
        return done ? out.size() : throw Failure("the cipher failed");
    };
}

Step base16(bool decoding)
{
    return [decoding](unsigned char* data, std::size_t size, bool last, Bytes& out) {
        size -= decoding ? size % 2 : 0;
        out.assign(decoding ? size / 2 : 2 * size + 1, 0);
        auto* const text = reinterpret_cast<char*>(decoding ? data : out.data());
        if (size != 0 && (decoding ? base16Decode(text, size, out.data(), out.size()) : base16Encode(data, size, text, out.size())) == 0)
        {
            throw Failure("the input is no base16");
        }
        decoding ? void() : last ? void(out.back() = '\n') : out.pop_back();
        return size;
    };
}

Step base64(bool decoding)
{
    return [decoding](unsigned char* data, std::size_t size, bool last, Bytes& out) {
        const auto* const text = reinterpret_cast<const char*>(data);
        if (!decoding)
        {
            size -= last ? 0 : size % 3;
            out.resize(base64EncodeLenEx(size));
            base64EncodeEx(reinterpret_cast<char*>(out.data()), text, size);
            last ? void(out.back() = '\n') : out.pop_back();
            return size;
        }
        // The last four characters, which may be padded, wait for the end.
        size -= last ? size % 4 : size == 0 ? 0 : (size - 1) % 4 + 1;
        std::size_t count = size;
        for (int i = 0; last && i < 2 && count != 0 && data[count - 1] == '='; ++i)
        {
            --count;
        }
        out.resize(base64DecodeLenEx2(text, count));
        // Decoding ends at the first wrong character, with fewer bytes.
        if (base64DecodeEx2(reinterpret_cast<char*>(out.data()), text, count) != count * 3 / 4)
        {
            throw Failure("the input is no base64");
        }
        out.resize(count * 3 / 4);
        return size;
    };
}

Step conversion(const std::string& from, const std::string& to)
{
    const Next next = from == "utf-8"   ? Next([gbk = to == "gbk"](unsigned char* data, int size) { return fromUtf8(data, size, gbk); })
                      : from == "gbk"   ? Next(fromGbk)
                      : from == "ucs-4" ? Next(fromUcs4)
                                        : fromSingleBytes(from);
    return [next, offset = std::size_t{0}](unsigned char* data, std::size_t size, bool, Bytes& out) mutable {
        out.clear();
        std::size_t at = 0;
        while (at < size)
        {
            const Character character = next(data + at, static_cast<int>(size - at));
            if (character.read == 0)
            {
                break;
            }
            if (character.written < 1)
            {
                throw Failure("what stands at offset " + std::to_string(offset + at) + " is malformed or has no counterpart");
            }
            out.insert(out.end(), character.bytes, character.bytes + character.written);
            at += static_cast<std::size_t>(character.read);
        }
        offset += at;
        return at;
    };
}

Bytes bytesOf(const char* option, const std::string& digits, std::size_t size)
{
    Bytes bytes(size);
    if (digits.size() != 2 * size || (size != 0 && base16Decode(digits.data(), 2 * size, bytes.data(), size) != size))
    {
        throw Usage(option + (": the cipher takes " + std::to_string(2 * size)) + " hexadecimal digits");
    }
    return bytes;
}

}  // namespace

Step makeStep(const std::string& command, const Options& options)
{
    if (command == "digest" || command == "checksum")
    {
        return command == "digest" ? digest(options.kind == "sha1") : checksum(options.kind == "crc32");
    }
    if (command == "base16" || command == "base64")
    {
        return command == "base16" ? base16(options.decoding) : base64(options.decoding);
    }
    if (command == "convert")
    {
        return (options.kind == "utf-8") != (options.to == "utf-8") ? conversion(options.kind, options.to)
                                                                    : throw Usage("one of the two sets is utf-8");
    }
    const Cipher kind = ciphers().at(options.kind);
    return cipher(kind, bytesOf("--key", options.key, kind.keySize), bytesOf("--iv", options.iv, kind.ivSize), command == "encrypt");
}

std::vector<std::string> cipherNames()
{
    std::vector<std::string> names;
    for (const auto& entry : ciphers())
    {
        names.push_back(entry.first);
    }
    return names;
}

std::vector<std::string> setNames()
{
    std::vector<std::string> names(std::begin(singleByteNames), std::end(singleByteNames));
    names.insert(names.end(), {"cp1252", "gbk", "ucs-4"});
    return names;
}

}  // namespace Codec
