// The calls of the reference for digests and ciphers that tests make, on the cryptographic library that there is for this system.
#pragma once

#include <gcrypt.h>
#include <windows.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <string>

struct EVP_CIPHER
{
    int algorithm;
    int mode;
    std::size_t keySize;
    std::size_t blockSize;
};

struct EVP_CIPHER_CTX
{
    gcry_cipher_hd_t handle = nullptr;
    bool encrypts = false;
};

using EVP_MD = int;

inline const EVP_MD* EVP_md5()
{
    static const EVP_MD s_algorithm = GCRY_MD_MD5;
    return &s_algorithm;
}

inline const EVP_MD* EVP_sha1()
{
    static const EVP_MD s_algorithm = GCRY_MD_SHA1;
    return &s_algorithm;
}

inline int EVP_Digest(const void* data, std::size_t size, unsigned char* to, unsigned int*, const EVP_MD* algorithm, void*)
{
    gcry_md_hash_buffer(*algorithm, to, data, size);
    return 1;
}

inline const EVP_CIPHER* EVP_get_cipherbyname(const char* name)
{
    static auto& s_ciphers = *new std::map<std::string, EVP_CIPHER>;
    if (s_ciphers.empty())
    {
        gcry_check_version(nullptr);
        gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
        const std::pair<const char*, int> modes[] = {{"ECB", GCRY_CIPHER_MODE_ECB},
                                                     {"CBC", GCRY_CIPHER_MODE_CBC},
                                                     {"CFB", GCRY_CIPHER_MODE_CFB},
                                                     {"CFB8", GCRY_CIPHER_MODE_CFB8},
                                                     {"CTR", GCRY_CIPHER_MODE_CTR}};
        const std::pair<int, int> sizes[] = {{128, GCRY_CIPHER_AES128}, {192, GCRY_CIPHER_AES192}, {256, GCRY_CIPHER_AES256}};
        for (const auto& [mode, number] : modes)
        {
            for (const auto& [bits, algorithm] : sizes)
            {
                s_ciphers["AES-" + std::to_string(bits) + "-" + mode] = {algorithm, number, static_cast<std::size_t>(bits / 8), 16};
            }
            s_ciphers[std::string("DES-EDE3-") + mode] = {GCRY_CIPHER_3DES, number, 24, 8};
        }
        s_ciphers["DES-EDE3"] = s_ciphers["DES-EDE3-ECB"];
        s_ciphers["DES-EDE"] = {GCRY_CIPHER_3DES, GCRY_CIPHER_MODE_ECB, 16, 8};
    }
    const auto found = s_ciphers.find(name);
    return found == s_ciphers.end() ? nullptr : &found->second;
}

inline EVP_CIPHER_CTX* EVP_CIPHER_CTX_new()
{
    return new EVP_CIPHER_CTX;
}

inline void EVP_CIPHER_CTX_free(EVP_CIPHER_CTX* context)
{
    gcry_cipher_close(context->handle);
    delete context;
}

inline int EVP_CIPHER_CTX_set_padding(EVP_CIPHER_CTX*, int)
{
    return 1;  // it pads nothing
}

inline int EVP_CipherInit_ex(EVP_CIPHER_CTX* context, const EVP_CIPHER* cipher, void*, const unsigned char* key, const unsigned char* iv,
                             bool encrypts)
{
    gcry_cipher_close(context->handle);
    context->handle = nullptr;
    context->encrypts = encrypts;
    if (!cipher || gcry_cipher_open(&context->handle, cipher->algorithm, cipher->mode, 0) != 0)
    {
        return 0;
    }
    // Keys that it calls weak are used all the same.
    gcry_cipher_ctl(context->handle, GCRYCTL_SET_ALLOW_WEAK_KEY, nullptr, 1);
    std::string whole(reinterpret_cast<const char*>(key), cipher->keySize);
    whole += cipher->algorithm == GCRY_CIPHER_3DES && whole.size() == 16 ? whole.substr(0, 8) : "";
    const gcry_error_t error = gcry_cipher_setkey(context->handle, whole.data(), whole.size());
    if (error != 0 && gcry_err_code(error) != GPG_ERR_WEAK_KEY)
    {
        return 0;
    }
    if (cipher->mode == GCRY_CIPHER_MODE_ECB)
    {
        return 1;
    }
    const auto start = cipher->mode == GCRY_CIPHER_MODE_CTR ? gcry_cipher_setctr : gcry_cipher_setiv;
    return start(context->handle, iv, cipher->blockSize) == 0;
}

inline int EVP_CipherUpdate(EVP_CIPHER_CTX* context, unsigned char* to, int* length, const unsigned char* from, int size)
{
    const auto run = context->encrypts ? gcry_cipher_encrypt : gcry_cipher_decrypt;
    *length = size;
    const auto bytes = static_cast<std::size_t>(size);
    return size == 0 || run(context->handle, to, bytes, from, bytes) == 0;
}

inline int EVP_EncodeBlock(unsigned char* to, const unsigned char* from, int size)
{
    DWORD length = static_cast<DWORD>(4 * ((size + 2) / 3) + 1);
    if (size == 0)
    {
        *to = 0;
        return 0;
    }
    CryptBinaryToStringA(from, static_cast<DWORD>(size), CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, reinterpret_cast<char*>(to), &length);
    return static_cast<int>(length);
}
