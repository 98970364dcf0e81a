// The hardware paths of a build that has none.
#include "Src/Utils/Aes/AesEngine.h"
#include "Src/Utils/CharSet/WideUtf8.h"
#include "Src/Utils/Crc32Update.h"
#include "Src/Utils/Sha1Blocks.h"
#include "Src/Utils/WideText.h"

namespace General::Utils {

Sha1Blocks sha1Hardware()
{
    return nullptr;
}

Crc32Update crc32Multiplying()
{
    return nullptr;
}

Crc32Update crc32MultiplyingWide()
{
    return nullptr;
}

const WideText* wideText()
{
    return nullptr;
}

WideUtf8 wideUtf8()
{
    return nullptr;
}

namespace AES {

const Engine* aesNiEngine()
{
    return nullptr;
}

const Engine* vaesEngine()
{
    return nullptr;
}

}  // namespace AES

}  // namespace General::Utils
