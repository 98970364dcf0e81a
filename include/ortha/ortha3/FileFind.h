// CFileFind and CFileFindEx: the files of a directory that match a pattern.
//
//     CFileFind find;
//     for (bool found = find.findFile("/data/*.log"); found; found = find.findNextFile())
//     {
//         logInfo("%s: %llu bytes\n", find.getFileName().c_str(), find.getLength());
//     }
//
// The pattern's directory part ends at its last "/" or "\". Behind it, "*" stands for any text and "?" for one character; "*.*", and
// nothing at all, match every name. "." and ".." are reported too. A symbolic link is never a directory. The two classes differ in the
// string that they give.
//
// A search goes through the IFileSystem that is hooked for the pattern (FileSystem.h), and is never one on UTF-8 paths unless that is. What
// describes the current entry means something while findFile() or findNextFile() gave true.
//
// Threads: one thread at a time. Several searches may run at once. Constructors, findFile() and what gives a string throw std::bad_alloc
// without memory; nothing else throws.
#pragma once

#include <string>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FileSystem.h"
#include "ortha/ortha3/FlexString.h"

namespace General::Ortha {

struct FileFindInternal;

class ORTHA_API CFileFind
{
public:
    CFileFind();
    /// As close().
    virtual ~CFileFind();
    CFileFind(const CFileFind&) = delete;
    CFileFind& operator=(const CFileFind&) = delete;

    /// Ends a running search and begins another. True if there is a match, which is then the current entry.
    virtual bool findFile(const char* pattern);
    /// Goes on to the next match. False at the end, and without a search.
    virtual bool findNextFile();
    virtual void close();
    /// Bytes, of which the low 32 bits are given.
    virtual unsigned long long getLength() const;
    /// The bare name.
    virtual std::string getFileName() const;
    /// The directory part of the pattern as it was given, and the name.
    virtual std::string getFilePath() const;
    virtual bool isReadOnly() const;
    virtual bool isDirectory() const;
    virtual bool isHidden() const;
    /// None of the three.
    virtual bool isNormal() const;

private:
    FileFindInternal* m_internal;
};

class ORTHA_API CFileFindEx
{
public:
    CFileFindEx();
    ~CFileFindEx();
    CFileFindEx(const CFileFindEx&) = delete;
    CFileFindEx& operator=(const CFileFindEx&) = delete;

    // As CFileFind.

    bool findFile(const char* pattern);
    bool findNextFile();
    void close();
    unsigned long long getLength() const;
    string getFileName() const;
    string getFilePath() const;
    bool isReadOnly() const;
    bool isDirectory() const;
    bool isHidden() const;
    bool isNormal() const;

private:
    FileFindInternal* m_internal;
};

}  // namespace General::Ortha
