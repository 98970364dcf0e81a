// What every compiler's own test does not know of the processor.
#pragma once

namespace General::Utils {

namespace {

struct ExtendedFeatures
{
    ExtendedFeatures()
    {
        unsigned int leaf = 0;
        unsigned int ignored = 0;
        __asm__("cpuid" : "+a"(leaf), "=b"(ignored), "=c"(ignored), "=d"(ignored));
        if (leaf >= 7)
        {
            leaf = 7;
            __asm__("cpuid" : "+a"(leaf), "=b"(ebx), "+c"(ecx), "=d"(ignored));
        }
    }

    [[nodiscard]] bool sha() const { return (ebx >> 29 & 1) != 0; }
    [[nodiscard]] bool vaes() const { return (ecx >> 9 & 1) != 0; }

    unsigned int ebx = 0;
    unsigned int ecx = 0;
};

}  // namespace

}  // namespace General::Utils
