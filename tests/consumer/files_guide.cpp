#include <cstdio>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"

using namespace General::Ortha;

int main()
{
    CFile::makeDirectoryRecursively("guide/notes");
    CFile file;
    if (!file.open("guide/notes/a.txt", CFile::modeReadWrite | CFile::modeCreate))
    {
        return 1;  // and a log line has told why
    }
    file.puts("one\ntwo\nthree\n");
    file.seek(0, CFile::begin);
    char line[64];
    while (file.gets(line, sizeof(line)))
    {
        std::printf("%2llu %s", file.getPosition(), line);
    }
    file.close();

    CFileFind find;
    for (bool found = find.findFile("guide/notes/*.txt"); found; found = find.findNextFile())
    {
        std::printf("%s: %llu bytes\n", find.getFilePath().c_str(), find.getLength());
    }
    find.close();
    return CFile::removeDirectoryRecursively("guide", true) ? 0 : 1;
}
