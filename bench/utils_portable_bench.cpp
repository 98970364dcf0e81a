// What the utilities do on a machine whose own instructions they do not know, beside peers that do without these too. The program holds the
// utilities as a build with ORTHA_PORTABLE_UTILS makes them. Rows are named utils-portable/operation/size/who.
#include "utils_rows.h"

#ifdef ORTHA_BENCH_HAS_OPENSSL
#include <openssl/aes.h>
#include <openssl/md5.h>
#endif
#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/SHA1Engine.h>
#endif
#ifdef ORTHA_BENCH_HAS_GLIB
#include <glib.h>
#endif
#ifdef ORTHA_BENCH_HAS_ZLIB
#include <zlib.h>
#endif

const std::string_view UtilsRows::area = "utils-portable";

namespace {

using namespace UtilsRows;

void addDigests(std::size_t size)
{
    ownDigests(size);
#ifdef ORTHA_BENCH_HAS_OPENSSL
    opensslDigest<MD5_CTX, MD5_Init, MD5_Update, MD5_Final>("md5", size);
#endif
#ifdef ORTHA_BENCH_HAS_POCO
    row("sha1", size, "poco", &std::make_shared<Poco::SHA1Engine>, [size](auto& engine, Text& to) {
        engine->update(message.data(), size);
        const auto& digest = engine->digest();  // which starts the next message
        return View(to.data(), std::size_t(std::copy(digest.begin(), digest.end(), out(to)) - out(to)));
    });
#endif
#ifdef ORTHA_BENCH_HAS_GLIB
    const auto make = [] { return std::shared_ptr<GChecksum>(g_checksum_new(G_CHECKSUM_SHA1), &g_checksum_free); };
    row("sha1", size, "glib", make, [size](auto& sum, Text& to) {
        gsize length = to.size();
        g_checksum_reset(sum.get());
        g_checksum_update(sum.get(), in(message), gssize(size));
        g_checksum_get_digest(sum.get(), out(to), &length);
        return View(to.data(), length);
    });
#endif
}

void addChecksums(std::size_t size)
{
    ownChecksums(size);
#ifdef ORTHA_BENCH_HAS_ZLIB
    checksum("crc32", size, "zlib", [](const unsigned char* data, std::size_t length) { return ::crc32_z(0, data, length); });
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
    boostChecksum<boost::crc_16_type>("crc16", size);
#endif
}

void addAes(std::size_t size, bool encrypts)
{
    ownAes("cbc", CAes::encModeCBC, size, encrypts);
#ifdef ORTHA_BENCH_HAS_OPENSSL
    // Below EVP it looks everything up in tables, whatever the processor has.
    struct Cipher
    {
        AES_KEY schedule;
        Text vector;
    };
    const auto make = [encrypts] {
        Cipher cipher = {{}, vector};
        (encrypts ? AES_set_encrypt_key : AES_set_decrypt_key)(in(key), 128, &cipher.schedule);
        return cipher;
    };
    row(cipherName("aes-cbc", encrypts), size, "openssl-low", make, [size, encrypts](Cipher& cipher, Text& to) {
        AES_cbc_encrypt(in(message), out(to), size, &cipher.schedule, out(cipher.vector), encrypts ? AES_ENCRYPT : AES_DECRYPT);
        return View(to.data(), size);
    });
#endif
}

}  // namespace

int main(int argc, char** argv)
{
    for (const std::size_t size : sizes)
    {
        addDigests(size);
        addChecksums(size);
        for (const bool encrypts : {true, false})
        {
            addAes(size, encrypts);
            addTripleDes(size, encrypts);
        }
    }
    addEncoders();
    return Bench::run(argc, argv);
}
