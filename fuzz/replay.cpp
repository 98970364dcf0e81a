// Runs a harness once over each of the files that are named: the seeds, in builds without a fuzzer.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

#include "Fuzz.h"

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
    {
        std::ifstream file(argv[i], std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        if (!file.is_open() || file.bad())
        {
            std::fprintf(stderr, "%s: cannot be read\n", argv[i]);
            return 1;
        }
        std::printf("%s\n", argv[i]);
        std::fflush(stdout);  // the name of the file that it stops at
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    return argc > 1 ? 0 : 2;
}
