// codec: digests, checksums, ciphers, encodings and character sets, for files of any size.

#include <ortha/ortha3/PrintLog.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>

#include "Steps.h"
#include "Stream.h"
#include "Terminal.h"

namespace Codec {

namespace {

// Passes the input through the step, in blocks.
void run(const Step& step, Stream& input, Stream& output, bool skipLineBreaks)
{
    constexpr std::size_t blockSize = std::size_t{1} << 16;
    constexpr std::size_t mostKept = 16;
    Bytes buffer(mostKept + blockSize);
    Bytes out;
    std::size_t kept = 0;
    for (bool last = false; !last;)
    {
        unsigned char* const added = buffer.data() + kept;
        unsigned char* end = added + input.read(added, blockSize);
        last = end != added + blockSize;
        end = skipLineBreaks ? std::remove_if(added, end, [](int c) { return c == '\n' || c == '\r'; }) : end;
        const auto size = static_cast<std::size_t>(end - buffer.data());
        const std::size_t taken = step(buffer.data(), size, last, out);
        output.write(out.data(), out.size());
        kept = size - taken;
        std::memmove(buffer.data(), buffer.data() + taken, kept);
    }
    if (kept != 0)
    {
        throw Failure("the last " + std::to_string(kept) + " bytes of the input are no whole block, group or character");
    }
}

void addOptions(CLI::App& app, Options& options)
{
    const auto add = [&](const char* command, const char* text, const char* kind, const std::vector<std::string>& kinds) {
        CLI::App* const sub = app.add_subcommand(command, text);
        if (kind)
        {
            sub->add_option(kind, options.kind, CLI::detail::join(kinds, ", "))->required()->check(CLI::IsMember(kinds))->option_text(" ");
        }
        const bool sums = kind && *kind == 'K';
        sub->add_option("FILE", options.files, "what to read; standard input if not given")
            ->expected(0, sums ? 1 << 20 : 1)
            ->option_text(" ");
        sub->add_option("--output", options.output, "where to write; standard output if not given")->option_text("FILE");
        return sub;
    };
    add("digest", "writes the digest and the name of each file", "KIND", {"md5", "sha1"});
    add("checksum", "the same of a CRC: CRC-16/ARC, or the CRC-32 of zip", "KIND", {"crc16", "crc32"});
    for (const char* const command : {"encrypt", "decrypt"})
    {
        CLI::App* const sub = add(command, "without padding: some ciphers take whole blocks only", "--cipher", cipherNames());
        sub->add_option("--key", options.key, "mind that lists of processes show it")->required()->option_text("HEX");
        sub->add_option("--iv", options.iv, "the initial vector or counter, where the cipher has one")->option_text("HEX");
    }
    for (const char* const command : {"base16", "base64"})
    {
        add(command, "one line of text", nullptr, {})->add_flag("--decode", options.decoding, "text to bytes; line breaks are skipped");
    }
    std::vector<std::string> sets = setNames();
    sets.emplace_back("utf-8");
    add("convert", "character sets; one of the two is utf-8", "--from", sets)
        ->add_option("--to", options.to, "utf-8, gbk, cp1252")
        ->required()
        ->check(CLI::IsMember({"utf-8", "gbk", "cp1252"}))
        ->option_text(" ");
}

int work(int argc, char** argv)
{
    CLI::App app("Digests, checksums, ciphers, encodings and character sets. COMMAND --help tells more.", "codec");
    app.footer("Works in blocks of 64 KiB, whatever the size of the input. After a failure, what was written before it stays.\n"
               "Exit codes: 0; 1 for a failure; 2 for wrong usage.");
    app.require_subcommand(1);
    Options options;
    addOptions(app, options);
    try
    {
        app.parse(argc, argv);
        const std::string command = app.get_subcommands().front()->get_name();
        makeStep(command, options);  // tells of wrong usage before anything is opened
        std::error_code ignored;
        if (std::any_of(options.files.begin(), options.files.end(),
                        [&](const std::string& file) { return std::filesystem::equivalent(file, options.output, ignored); }))
        {
            throw Usage("--output: that is the input");
        }
        options.files.resize(std::max<std::size_t>(options.files.size(), 1));  // an empty name is standard input
        std::optional<Stream> output;
        for (const std::string& file : options.files)
        {
            Stream input(file, false);
            output ? *output : output.emplace(options.output, true);
            run(makeStep(command, options), input, *output, options.decoding);
            std::string name = "  " + (file.empty() ? "-" : file) + "\n";
            output->write(name.data(), command == "digest" || command == "checksum" ? name.size() : 0);
        }
        return 0;
    }
    catch (const CLI::CallForHelp&)
    {
        std::cout << app.help();
        return 0;
    }
    catch (const CLI::ParseError& error)
    {
        throw Usage(error.what());
    }
}

}  // namespace

}  // namespace Codec

int main(int argc, char** argv)
{
    General::Ortha::setPrintLogLevel(0);  // the program tells itself what is wrong
    try
    {
        Codec::useBytes();
        return Codec::work(argc, argv);
    }
    catch (const Codec::Usage& error)
    {
        std::cerr << "codec: " << error.what() << "; --help tells more\n";
        return 2;
    }
    catch (const std::exception& error)
    {
        std::cerr << "codec: " << error.what() << '\n';
        return 1;
    }
}
