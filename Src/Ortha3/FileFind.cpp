#include "ortha/ortha3/FileFind.h"

#include <cstring>

#include "Src/Ortha3/FileDefaultOpt.h"

namespace General::Ortha {

struct FileFindInternal
{
    FileFindInternal() = default;
    FileFindInternal(const FileFindInternal&) = delete;
    FileFindInternal& operator=(const FileFindInternal&) = delete;
    ~FileFindInternal() { close(); }

    bool findFile(const char* pattern)
    {
        close();
        std::size_t length = std::strlen(pattern);
        while (length != 0 && pattern[length - 1] != '/' && pattern[length - 1] != '\\')
        {
            --length;
        }
        m_directory.assign(pattern, length);
        m_opt = getFileSystem(pattern);
        prepareName();
        m_handle = m_opt->findfirst(pattern, m_info);
        return m_handle != -1;
    }

    bool findNextFile()
    {
        if (m_handle == -1)
        {
            return false;
        }
        prepareName();
        return m_opt->findnext(m_handle, m_info) != -1;
    }

    void close()
    {
        if (m_handle != -1)
        {
            m_opt->findclose(m_handle);
            m_handle = -1;
        }
    }

    bool has(int attribute) const { return (m_info.attrib & attribute) != 0; }

    // The file system finds the directory where it puts the name.
    void prepareName()
    {
        std::strncpy(m_info.name, m_directory.c_str(), sizeof(m_info.name) - 1);
        m_info.name[sizeof(m_info.name) - 1] = 0;
    }

    static constexpr int readOnly = 1;
    static constexpr int hidden = 2;
    static constexpr int directory = 16;

    long m_handle = -1;
    FileInfo m_info{};
    IFileSystem* m_opt = FileDefaultOpt::instance();
    string m_directory;  // of the pattern, with its separator
};

CFileFind::CFileFind() : m_internal(new FileFindInternal) {}

CFileFind::~CFileFind()
{
    delete m_internal;
}

bool CFileFind::findFile(const char* pattern)
{
    return m_internal->findFile(pattern);
}

bool CFileFind::findNextFile()
{
    return m_internal->findNextFile();
}

void CFileFind::close()
{
    m_internal->close();
}

unsigned long long CFileFind::getLength() const
{
    return m_internal->m_info.size;
}

std::string CFileFind::getFileName() const
{
    return m_internal->m_info.name;
}

std::string CFileFind::getFilePath() const
{
    return m_internal->m_directory.c_str() + getFileName();
}

bool CFileFind::isReadOnly() const
{
    return m_internal->has(FileFindInternal::readOnly);
}

bool CFileFind::isDirectory() const
{
    return m_internal->has(FileFindInternal::directory);
}

bool CFileFind::isHidden() const
{
    return m_internal->has(FileFindInternal::hidden);
}

bool CFileFind::isNormal() const
{
    return m_internal->m_info.attrib == 0;
}

CFileFindEx::CFileFindEx() : m_internal(new FileFindInternal) {}

CFileFindEx::~CFileFindEx()
{
    delete m_internal;
}

bool CFileFindEx::findFile(const char* pattern)
{
    return m_internal->findFile(pattern);
}

bool CFileFindEx::findNextFile()
{
    return m_internal->findNextFile();
}

void CFileFindEx::close()
{
    m_internal->close();
}

unsigned long long CFileFindEx::getLength() const
{
    return m_internal->m_info.size;
}

string CFileFindEx::getFileName() const
{
    return m_internal->m_info.name;
}

string CFileFindEx::getFilePath() const
{
    return m_internal->m_directory + m_internal->m_info.name;
}

bool CFileFindEx::isReadOnly() const
{
    return m_internal->has(FileFindInternal::readOnly);
}

bool CFileFindEx::isDirectory() const
{
    return m_internal->has(FileFindInternal::directory);
}

bool CFileFindEx::isHidden() const
{
    return m_internal->has(FileFindInternal::hidden);
}

bool CFileFindEx::isNormal() const
{
    return m_internal->m_info.attrib == 0;
}

}  // namespace General::Ortha
