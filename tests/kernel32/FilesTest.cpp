// tests/kernel32/FilesTest.cpp
//
// Paths, files and folders of the simulated machine, and the folders that the system knows by number.

#include "support/NotebookTest.h"

#include "notebook/Machine.h"
#include "notebook/Notebook.h"
#include "notebook/Text.h"
#include "notebook/Trace.h"

#include <windows.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace
{

using namespace simulated;

class FilesTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        ASSERT_TRUE(CreateDirectoryW(L"C:\\Folder", nullptr));
        std::ofstream(HostPath("Folder/File.txt")) << "abcdef";
    }

    std::filesystem::path HostPath(const char* place) const
    {
        return std::filesystem::path(Folder()) / "drives/C" / place;
    }
};

HANDLE Open(const wchar_t* path, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING)
{
    return CreateFileW(path, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// 0 or the last error of a call that answered `succeeded`; of the type that the error numbers have.
long ErrorOf(bool succeeded)
{
    return succeeded ? ERROR_SUCCESS : static_cast<long>(GetLastError());
}

TEST_F(FilesTest, SpellingsOfPaths)
{
    struct Row
    {
        const wchar_t* path;
        long error;
    };
    const std::vector<wchar_t> longName = ToUtf16("C:\\Folder\\" + std::string(300, 'x'));
    std::vector<wchar_t> terminated = longName;
    terminated.push_back(0);
    const Row rows[] = {
        {L"C:\\Folder\\File.txt", 0},
        {L"c:/folder/FILE.TXT", 0},
        {L"C:\\\\Folder//File.txt", 0},
        {L"\\Folder\\File.txt", 0},
        {L"Folder\\File.txt", 0},
        {L"C:Folder\\File.txt", 0},
        {L"\\\\?\\C:\\Folder\\File.txt", 0},
        {L"C:\\Folder\\.\\..\\Folder\\File.txt", 0},
        {L"C:\\Missing\\..\\Folder\\File.txt", 0},
        {L"C:\\..\\..\\..\\Folder\\File.txt", 0},
        {L"C:\\Folder\\File.txt. .", 0},
        {L"C:\\Folder\\", 0},
        {L"C:\\", 0},
        {L"C:\\Folder\\Other.txt", ERROR_FILE_NOT_FOUND},
        {L"C:\\Missing\\File.txt", ERROR_PATH_NOT_FOUND},
        {L"C:\\Folder\\File.txt\\File.txt", ERROR_PATH_NOT_FOUND},
        {L"C:\\Folder\\File.txt\\", ERROR_INVALID_NAME},
        {L"C:\\Folder\\a?b", ERROR_INVALID_NAME},
        {L"C:\\Folder\\a\x01"
         L"b",
         ERROR_INVALID_NAME},
        {L"C:\\Folder\\File.txt:stream", ERROR_INVALID_NAME},
        {L"C:\\Folder\\nul.txt", ERROR_INVALID_NAME},
        {L"C:\\.~MACHINE.INI.lock", ERROR_INVALID_NAME},
        {terminated.data(), ERROR_FILENAME_EXCED_RANGE},
        {L"Q:\\File.txt", ERROR_PATH_NOT_FOUND},
        {L"\\\\server\\share\\File.txt", ERROR_PATH_NOT_FOUND},
        {L"", ERROR_PATH_NOT_FOUND},
        {nullptr, ERROR_PATH_NOT_FOUND},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(ToUtf8(row.path));
        EXPECT_EQ(row.error, ErrorOf(PathFileExistsW(row.path) != FALSE));
        EXPECT_EQ(row.error, ErrorOf(GetFileAttributesW(row.path) != INVALID_FILE_ATTRIBUTES));
    }
    // A new file gets the spelling asked for; below a folder it is the folder's own that counts.
    ASSERT_TRUE(CreateDirectoryW(L"c:/FOLDER/New", nullptr));
    EXPECT_TRUE(std::filesystem::is_directory(HostPath("Folder/New")));
}

TEST_F(FilesTest, DispositionsOfCreateFile)
{
    struct Row
    {
        DWORD disposition;
        DWORD onExisting; ///< last error
        DWORD onMissing;
        std::uintmax_t sizeAfter; ///< of the existing file
    };
    const Row rows[] = {
        {CREATE_NEW, ERROR_FILE_EXISTS, 0, 6},
        {CREATE_ALWAYS, ERROR_ALREADY_EXISTS, 0, 0},
        {OPEN_EXISTING, 0, ERROR_FILE_NOT_FOUND, 6},
        {OPEN_ALWAYS, ERROR_ALREADY_EXISTS, 0, 6},
        {TRUNCATE_EXISTING, 0, ERROR_FILE_NOT_FOUND, 0},
        {0, ERROR_INVALID_PARAMETER, ERROR_INVALID_PARAMETER, 6},
        {6, ERROR_INVALID_PARAMETER, ERROR_INVALID_PARAMETER, 6},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.disposition);
        std::ofstream(HostPath("Folder/File.txt")) << "abcdef";
        for (const auto& [path, error] : {std::pair(L"C:\\folder\\file.TXT", row.onExisting),
                                          std::pair(L"C:\\Folder\\Missing", row.onMissing)})
        {
            SetLastError(777);
            const HANDLE file = Open(path, GENERIC_WRITE, 0, row.disposition);
            EXPECT_EQ(error, GetLastError());
            EXPECT_EQ(file != INVALID_HANDLE_VALUE, error == 0 || error == ERROR_ALREADY_EXISTS);
            CloseHandle(file);
        }
        EXPECT_EQ(row.sizeAfter, std::filesystem::file_size(HostPath("Folder/File.txt")));
        std::filesystem::remove(HostPath("Folder/Missing"));
    }
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(Open(L"C:\\Folder", GENERIC_READ, 0) != INVALID_HANDLE_VALUE));
}

TEST_F(FilesTest, ShareModes)
{
    constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    struct Row
    {
        DWORD firstAccess;
        DWORD firstShare;
        DWORD access;
        DWORD share;
        bool opens;
    };
    const Row rows[] = {
        {GENERIC_READ, kAll, GENERIC_READ | GENERIC_WRITE, kAll, true},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, kAll, false},
        {GENERIC_READ, 0, GENERIC_READ, kAll, false},
        {GENERIC_READ, kAll, GENERIC_READ, 0, false},
        {GENERIC_WRITE, kAll, GENERIC_READ, FILE_SHARE_READ, false},
        {GENERIC_WRITE, FILE_SHARE_READ, GENERIC_READ, kAll, true},
        {GENERIC_READ, 0, 0, 0, true},
        {0, 0, GENERIC_WRITE, 0, true},
    };
    const wchar_t* const path = L"C:\\Folder\\File.txt";
    for (const Row& row : rows)
    {
        SCOPED_TRACE(&row - rows);
        const HANDLE first = Open(path, row.firstAccess, row.firstShare);
        ASSERT_NE(INVALID_HANDLE_VALUE, first);
        const HANDLE second = Open(path, row.access, row.share);
        EXPECT_EQ(row.opens, second != INVALID_HANDLE_VALUE);
        EXPECT_TRUE(row.opens || GetLastError() == ERROR_SHARING_VIOLATION);
        CloseHandle(second);
        const bool sharesDelete = row.firstAccess == 0 || (row.firstShare & FILE_SHARE_DELETE) != 0;
        EXPECT_EQ(sharesDelete ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION,
                  ErrorOf(DeleteFileW(path) != FALSE));
        EXPECT_TRUE(CloseHandle(first));
        std::ofstream(HostPath("Folder/File.txt")) << "abcdef";
        const HANDLE after = Open(path, GENERIC_READ | GENERIC_WRITE, 0);
        EXPECT_NE(INVALID_HANDLE_VALUE, after) << "a claim outlived its handle";
        CloseHandle(after);
    }
}

TEST_F(FilesTest, ReadingAndWriting)
{
    const HANDLE file = Open(L"C:\\Folder\\File.txt", GENERIC_READ | GENERIC_WRITE, 0);
    char buffer[8] = {};
    DWORD count = 0;
    EXPECT_EQ(4U, SetFilePointer(file, -2, nullptr, FILE_END));
    EXPECT_TRUE(ReadFile(file, buffer, sizeof buffer, &count, nullptr));
    EXPECT_EQ("ef", std::string(buffer, count));
    EXPECT_TRUE(WriteFile(file, "gh", 2, &count, nullptr));
    EXPECT_EQ(2U, count);
    EXPECT_EQ(8U, GetFileSize(file, nullptr));
    EXPECT_EQ(ERROR_NEGATIVE_SEEK,
              ErrorOf(SetFilePointer(file, -9, nullptr, FILE_CURRENT) != INVALID_SET_FILE_POINTER));
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              ErrorOf(SetFilePointer(file, 0, nullptr, 3) != INVALID_SET_FILE_POINTER));
    EXPECT_EQ(3U, SetFilePointer(file, 3, nullptr, FILE_BEGIN));
    EXPECT_TRUE(SetEndOfFile(file));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(3U, std::filesystem::file_size(HostPath("Folder/File.txt")));

    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(ReadFile(file, buffer, 1, &count, nullptr) != FALSE));
    const HANDLE reader = Open(L"C:\\Folder\\File.txt", GENERIC_READ, 0);
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(WriteFile(reader, "x", 1, &count, nullptr) != FALSE));
    EXPECT_TRUE(CloseHandle(reader));
}

TEST_F(FilesTest, ReadOnlyFilesAndFolders)
{
    const wchar_t* const path = L"C:\\Folder\\File.txt";
    ASSERT_TRUE(SetFileAttributesW(path, FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(static_cast<DWORD>(FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE), GetFileAttributesW(path));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(Open(path, GENERIC_WRITE, 0) != INVALID_HANDLE_VALUE));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeleteFileW(path) != FALSE));
    EXPECT_EQ(nullptr, _wfopen(path, L"ab"));
    ASSERT_TRUE(SetFileAttributesW(path, FILE_ATTRIBUTE_NORMAL));

    ASSERT_EQ(0, chmod(HostPath("Folder").c_str(), 0555));
    EXPECT_EQ(ERROR_ACCESS_DENIED,
              ErrorOf(Open(L"C:\\Folder\\New", GENERIC_WRITE, 0, CREATE_NEW) != INVALID_HANDLE_VALUE));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeleteFileW(path) != FALSE));
    for (const wchar_t* file : {path, L"C:\\Folder\\New.ini"})
    {
        EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(WritePrivateProfileStringW(L"s", L"k", L"v", file) != FALSE));
    }
    ASSERT_EQ(0, chmod(HostPath("Folder").c_str(), 0755));
    EXPECT_TRUE(DeleteFileW(path));
}

TEST_F(FilesTest, CopyingAndRemoving)
{
    EXPECT_TRUE(CopyFileW(L"C:\\Folder\\File.txt", L"C:\\Folder\\Copy.txt", TRUE));
    EXPECT_EQ(6U, std::filesystem::file_size(HostPath("Folder/Copy.txt")));
    EXPECT_EQ(ERROR_FILE_EXISTS,
              ErrorOf(CopyFileW(L"C:\\Folder\\File.txt", L"C:\\folder\\COPY.txt", TRUE) != FALSE));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(CopyFileW(L"C:\\Folder\\No", L"C:\\Folder\\To", TRUE) != FALSE));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeleteFileW(L"C:\\Folder") != FALSE));
    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, ErrorOf(RemoveDirectoryW(L"C:\\Folder") != FALSE));
    EXPECT_EQ(ERROR_DIRECTORY, ErrorOf(RemoveDirectoryW(L"C:\\Folder\\File.txt") != FALSE));
    EXPECT_EQ(ERROR_ALREADY_EXISTS, ErrorOf(CreateDirectoryW(L"C:\\FOLDER", nullptr) != FALSE));
    EXPECT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"v", L"C:\\Folder\\a.ini"));
    for (const wchar_t* file : {L"C:\\Folder\\File.txt", L"C:\\Folder\\Copy.txt", L"C:\\Folder\\a.ini"})
    {
        EXPECT_TRUE(DeleteFileW(file));
    }
    EXPECT_TRUE(RemoveDirectoryW(L"C:\\Folder")) << "the lock of a profile file is no content";
}

TEST_F(FilesTest, FolderChains)
{
    struct Row
    {
        const wchar_t* path;
        int answer;
    };
    const Row rows[] = {
        {L"C:\\a\\b\\c", 0},
        {L"c:/A/B/c/", ERROR_ALREADY_EXISTS},
        {L"C:\\a\\b\\d\\", 0},
        {L"a\\b", ERROR_BAD_PATHNAME},
        {L"", ERROR_BAD_PATHNAME},
        {L"C:\\a\\x?\\b", ERROR_INVALID_NAME},
        {L"Q:\\a\\b", ERROR_PATH_NOT_FOUND},
        {L"C:\\Folder\\File.txt\\b", ERROR_PATH_NOT_FOUND},
    };
    for (const Row& row : rows)
    {
        EXPECT_EQ(row.answer, SHCreateDirectoryExW(nullptr, row.path, nullptr)) << ToUtf8(row.path);
    }
    EXPECT_TRUE(PathIsDirectoryW(L"C:\\a\\b\\d"));
    EXPECT_FALSE(PathIsDirectoryW(L"C:\\Folder\\File.txt"));
}

std::string FolderOf(int number, HRESULT expected = S_OK)
{
    wchar_t path[MAX_PATH] = L"untouched";
    EXPECT_EQ(expected, SHGetFolderPathW(nullptr, number, nullptr, SHGFP_TYPE_CURRENT, path));
    return ToUtf8(path);
}

TEST_F(FilesTest, FoldersOfTheRunningAccount)
{
    EXPECT_EQ("C:\\WINDOWS\\system32\\config\\systemprofile\\Local Settings\\Application Data",
              FolderOf(CSIDL_LOCAL_APPDATA));
    Machine::RunAs("alice");
    EXPECT_EQ("C:\\Documents and Settings\\alice\\Local Settings\\Application Data",
              FolderOf(CSIDL_LOCAL_APPDATA));
    EXPECT_EQ("", FolderOf(CSIDL_PERSONAL, S_FALSE)) << "a folder that isn't there";
    EXPECT_EQ("C:\\Documents and Settings\\alice\\My Documents",
              FolderOf(CSIDL_PERSONAL | CSIDL_FLAG_CREATE));
    EXPECT_EQ("untouched", FolderOf(0x7F, E_INVALIDARG));
    Machine::RunAs("");

    NotebookOptions later;
    later.major = 6;
    later.minor = 0;
    Recreate(later);
    EXPECT_EQ("C:\\WINDOWS\\system32\\config\\systemprofile\\AppData\\Local", FolderOf(CSIDL_LOCAL_APPDATA));
    Machine::RunAs("alice");
    EXPECT_EQ("C:\\Users\\alice\\AppData\\Local", FolderOf(CSIDL_LOCAL_APPDATA));
    Machine::RunAs("");

    // The earlier generation's names lead to the new places.
    std::ofstream(HostPath("Users/alice/AppData/Local/a.ini")) << "x";
    EXPECT_TRUE(DeleteFileW(L"C:\\Documents and Settings\\alice\\Local Settings\\Application Data\\\\a.ini"));
    EXPECT_FALSE(std::filesystem::exists(HostPath("Users/alice/AppData/Local/a.ini")));
}

TEST_F(FilesTest, EnvironmentStrings)
{
    struct Row
    {
        const wchar_t* text;
        const char* expanded;
    };
    const Row rows[] = {
        {L"%systemdrive%\\x", "C:\\x"},
        {L"%SystemRoot%", "C:\\WINDOWS"},
        {L"%USERPROFILE%", "C:\\WINDOWS\\system32\\config\\systemprofile"},
        {L"100% of %nothing%y%%z%", "100% of %nothing%y%%z%"},
        {L"%no%SystemDrive%", "%noC:"},
        {L"", ""},
    };
    wchar_t target[MAX_PATH];
    for (const Row& row : rows)
    {
        EXPECT_EQ(std::string(row.expanded).size() + 1,
                  ExpandEnvironmentStringsW(row.text, target, MAX_PATH));
        EXPECT_EQ(row.expanded, ToUtf8(target));
    }
    target[3] = L'#';
    EXPECT_EQ(5U, ExpandEnvironmentStringsW(L"%SystemDrive%ab", target, 3));
    EXPECT_EQ("C:", ToUtf8(target));
    EXPECT_EQ(L'#', target[3]);
}

TEST_F(FilesTest, StreamsOfTheRuntime)
{
    EXPECT_EQ(nullptr, _wfopen(L"C:/temp1234567890/orvl.log", L"ab"));
    EXPECT_FALSE(std::filesystem::exists(HostPath("temp1234567890")))
        << "nothing makes the folder of the logs";
    EXPECT_EQ(nullptr, _wfopen(L"C:\\Folder\\File.txt", L"x"));
    EXPECT_EQ(nullptr, _wfopen(L"C:\\Folder", L"r"));

    for (int line = 0; line < 2; ++line)
    {
        FILE* const stream = _wfopen(L"c:/folder/LOG.txt", L"ab");
        ASSERT_NE(nullptr, stream);
        EXPECT_EQ(3U, std::fwrite("a\r\n", 1, 3, stream));
        EXPECT_EQ(0, std::fclose(stream));
    }
    EXPECT_EQ(6U, std::filesystem::file_size(HostPath("Folder/LOG.txt")));
}

} // namespace
