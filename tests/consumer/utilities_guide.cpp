#include <cstdio>
#include <cstring>
#include <vector>

#include "utils/Utils.h"

using namespace General::Utils;

int main()
{
    const char* const text = "a text of some length";
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
    const std::size_t length = std::strlen(text);

    CSha1 sha1;
    sha1.update(bytes, 6);  // in any number of pieces
    sha1.update(bytes + 6, length - 6);
    char digest[2 * CSha1::digestSize + 1];
    sha1.hex(digest, sizeof(digest));
    std::printf("SHA-1   %s\nCRC-32  %08x\n", digest, crc32(bytes, length));

    const unsigned char key[16] = {1, 2, 3};
    const unsigned char counter[16] = {};  // a new one for every message
    std::vector<unsigned char> secret(length);
    CAes aes(CAes::encModeCTR, key, CAes::keyBits128, counter);
    if (!aes.encrypt(secret.data(), bytes, length))
    {
        return 1;
    }
    std::vector<char> base64(base64EncodeLenEx(length));
    base64EncodeEx(base64.data(), reinterpret_cast<const char*>(secret.data()), length);
    std::printf("AES     %s\n", base64.data());

    unsigned char utf8[64];
    int written = sizeof(utf8);
    int read = 3;
    cp1251_to_utf8(utf8, written, reinterpret_cast<const unsigned char*>("\xEC\xE8\xF0"), read);
    std::printf("UTF-8   %.*s\n", written, reinterpret_cast<const char*>(utf8));

    CIntervalSet set;
    set.insert({10, 20});
    set.insert({20, 25});
    set.erase({12, 14});
    for (int i = 0; i < static_cast<int>(set.size()); ++i)
    {
        std::printf("[%d, %d) ", set.get(i).first, set.get(i).second);
    }
    std::printf("\n");
}
