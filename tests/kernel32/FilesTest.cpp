// tests/kernel32/FilesTest.cpp
//
// Paths, files and folders of the simulated machine, and the folders that the system knows by number.

#include "support/LastError.h"
#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "notebook/Machine.h"
#include "notebook/Notebook.h"
#include "notebook/Text.h"

#include <windows.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <tuple>

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

// 0 or the last error of an opening, which is closed again.
long OpeningError(HANDLE opened)
{
    return ErrorOf(opened != INVALID_HANDLE_VALUE && CloseHandle(opened));
}

TEST_F(FilesTest, SpellingsOfPaths)
{
    const std::vector<wchar_t> tooLong = Wide("C:\\Folder\\" + std::string(300, 'x'));
    const std::pair<long, std::vector<const wchar_t*>> rows[] = {
        {ERROR_SUCCESS,
         {L"C:\\Folder\\File.txt", L"c:/folder/FILE.TXT", L"C:\\\\Folder//File.txt", L"\\Folder\\File.txt",
          L"Folder\\File.txt", L"C:Folder\\File.txt", L"\\\\?\\C:\\Folder\\File.txt",
          L"C:\\Folder\\.\\..\\Folder\\File.txt", L"C:\\Missing\\..\\Folder\\File.txt",
          L"C:\\..\\..\\..\\Folder\\File.txt", L"C:\\Folder\\File.txt. .", L"C:\\Folder\\", L"C:\\"}},
        {ERROR_FILE_NOT_FOUND, {L"C:\\Folder\\Other.txt"}},
        {ERROR_PATH_NOT_FOUND,
         {L"C:\\Missing\\File.txt", L"C:\\Folder\\File.txt\\File.txt", L"Q:\\File.txt",
          L"\\\\server\\share\\File.txt", L"", nullptr}},
        {ERROR_INVALID_NAME,
         {L"C:\\Folder\\File.txt\\", L"C:\\Folder\\a?b", L"C:\\Folder\\a\x01z",
          L"C:\\Folder\\File.txt:stream", L"C:\\Folder\\nul.txt", L"C:\\.~MACHINE.INI.lock"}},
        {ERROR_FILENAME_EXCED_RANGE, {tooLong.data()}},
    };
    for (const auto& [error, paths] : rows)
    {
        for (const wchar_t* const path : paths)
        {
            EXPECT_EQ(error, ErrorOf(PathFileExistsW(path))) << ToUtf8(path);
            EXPECT_EQ(error, ErrorOf(GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES)) << ToUtf8(path);
        }
    }
    // A new file gets the spelling asked for; below a folder it is the folder's own that counts.
    ASSERT_TRUE(CreateDirectoryW(L"c:/FOLDER/New", nullptr));
    EXPECT_TRUE(std::filesystem::is_directory(HostPath("Folder/New")));
}

TEST_F(FilesTest, DispositionsOfCreateFile)
{
    // The last error for a file that exists and for a missing one, and the size of the former afterwards.
    const std::tuple<DWORD, DWORD, DWORD, std::uintmax_t> rows[] = {
        {CREATE_NEW, ERROR_FILE_EXISTS, 0, 6},
        {CREATE_ALWAYS, ERROR_ALREADY_EXISTS, 0, 0},
        {OPEN_EXISTING, 0, ERROR_FILE_NOT_FOUND, 6},
        {OPEN_ALWAYS, ERROR_ALREADY_EXISTS, 0, 6},
        {TRUNCATE_EXISTING, 0, ERROR_FILE_NOT_FOUND, 0},
        {0, ERROR_INVALID_PARAMETER, ERROR_INVALID_PARAMETER, 6},
        {6, ERROR_INVALID_PARAMETER, ERROR_INVALID_PARAMETER, 6},
    };
    for (const auto& [disposition, onExisting, onMissing, sizeAfter] : rows)
    {
        SCOPED_TRACE(disposition);
        std::ofstream(HostPath("Folder/File.txt")) << "abcdef";
        for (const auto& [path, error] :
             {std::pair(L"C:\\folder\\file.TXT", onExisting), std::pair(L"C:\\Folder\\Missing", onMissing)})
        {
            SetLastError(777);
            const HANDLE file = Open(path, GENERIC_WRITE, 0, disposition);
            EXPECT_EQ(error, GetLastError());
            EXPECT_EQ(file != INVALID_HANDLE_VALUE, error == 0 || error == ERROR_ALREADY_EXISTS);
            CloseHandle(file);
        }
        EXPECT_EQ(sizeAfter, std::filesystem::file_size(HostPath("Folder/File.txt")));
        std::filesystem::remove(HostPath("Folder/Missing"));
    }
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpeningError(Open(L"C:\\Folder", GENERIC_READ, 0)));
}

TEST_F(FilesTest, ShareModes)
{
    constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::tuple<DWORD, DWORD, DWORD, DWORD, bool> rows[] = {
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
    for (const auto& [firstAccess, firstShare, access, share, opens] : rows)
    {
        SCOPED_TRACE(testing::Message() << firstAccess << ' ' << firstShare << ' ' << access << ' ' << share);
        const HANDLE first = Open(path, firstAccess, firstShare);
        ASSERT_NE(INVALID_HANDLE_VALUE, first);
        EXPECT_EQ(opens ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION, OpeningError(Open(path, access, share)));
        const bool sharesDelete = firstAccess == 0 || (firstShare & FILE_SHARE_DELETE) != 0;
        EXPECT_EQ(sharesDelete ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION, ErrorOf(DeleteFileW(path)));
        EXPECT_TRUE(CloseHandle(first));
        std::ofstream(HostPath("Folder/File.txt")) << "abcdef";
        EXPECT_EQ(ERROR_SUCCESS, OpeningError(Open(path, GENERIC_READ | GENERIC_WRITE, 0)))
            << "a claim outlived its handle";
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

    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(ReadFile(file, buffer, 1, &count, nullptr)));
    const HANDLE reader = Open(L"C:\\Folder\\File.txt", GENERIC_READ, 0);
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(WriteFile(reader, "x", 1, &count, nullptr)));
    EXPECT_TRUE(CloseHandle(reader));
}

TEST_F(FilesTest, ReadOnlyFilesAndFolders)
{
    const wchar_t* const path = L"C:\\Folder\\File.txt";
    ASSERT_TRUE(SetFileAttributesW(path, FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(static_cast<DWORD>(FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE), GetFileAttributesW(path));
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpeningError(Open(path, GENERIC_WRITE, 0)));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeleteFileW(path)));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(WritePrivateProfileStringW(L"s", L"k", L"v", path)));
    EXPECT_EQ(nullptr, _wfopen(path, L"ab"));
    EXPECT_EQ(nullptr, _wfopen(path, L"x")) << "no such mode";
    EXPECT_EQ(nullptr, _wfopen(L"C:\\Folder", L"r"));
    EXPECT_EQ(6U, std::filesystem::file_size(HostPath("Folder/File.txt")));
    ASSERT_TRUE(SetFileAttributesW(path, FILE_ATTRIBUTE_NORMAL));

    ASSERT_EQ(0, chmod(HostPath("Folder").c_str(), 0555));
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpeningError(Open(L"C:\\Folder\\New", GENERIC_WRITE, 0, CREATE_NEW)));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeleteFileW(path)));
    for (const wchar_t* file : {path, L"C:\\Folder\\New.ini"})
    {
        EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(WritePrivateProfileStringW(L"s", L"k", L"v", file)));
    }
    ASSERT_EQ(0, chmod(HostPath("Folder").c_str(), 0755));
    EXPECT_TRUE(DeleteFileW(path));
}

TEST_F(FilesTest, CopyingAndRemoving)
{
    EXPECT_TRUE(CopyFileW(L"C:\\Folder\\File.txt", L"C:\\Folder\\Copy.txt", TRUE));
    EXPECT_EQ(6U, std::filesystem::file_size(HostPath("Folder/Copy.txt")));
    EXPECT_EQ(ERROR_FILE_EXISTS, ErrorOf(CopyFileW(L"C:\\Folder\\File.txt", L"C:\\folder\\COPY.txt", TRUE)));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(CopyFileW(L"C:\\Folder\\No", L"C:\\Folder\\To", TRUE)));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(DeleteFileW(L"C:\\Folder")));
    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, ErrorOf(RemoveDirectoryW(L"C:\\Folder")));
    EXPECT_EQ(ERROR_DIRECTORY, ErrorOf(RemoveDirectoryW(L"C:\\Folder\\File.txt")));
    EXPECT_EQ(ERROR_ALREADY_EXISTS, ErrorOf(CreateDirectoryW(L"C:\\FOLDER", nullptr)));
    EXPECT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"v", L"C:\\Folder\\a.ini"));
    for (const wchar_t* file : {L"C:\\Folder\\File.txt", L"C:\\Folder\\Copy.txt", L"C:\\Folder\\a.ini"})
    {
        EXPECT_TRUE(DeleteFileW(file));
    }
    EXPECT_TRUE(RemoveDirectoryW(L"C:\\Folder")) << "the lock of a profile file is no content";
}

TEST_F(FilesTest, FolderChains)
{
    const std::pair<const wchar_t*, int> rows[] = {
        {L"C:\\a\\b\\c", 0},
        {L"c:/A/B/c/", ERROR_ALREADY_EXISTS},
        {L"C:\\a\\b\\d\\", 0},
        {L"a\\b", ERROR_BAD_PATHNAME},
        {L"", ERROR_BAD_PATHNAME},
        {L"C:\\a\\x?\\b", ERROR_INVALID_NAME},
        {L"Q:\\a\\b", ERROR_PATH_NOT_FOUND},
        {L"C:\\Folder\\File.txt\\b", ERROR_PATH_NOT_FOUND},
    };
    for (const auto& [path, answer] : rows)
    {
        EXPECT_EQ(answer, SHCreateDirectoryExW(nullptr, path, nullptr)) << ToUtf8(path);
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

    Recreate({.major = 6, .minor = 0});
    EXPECT_EQ("C:\\WINDOWS\\system32\\config\\systemprofile\\AppData\\Local", FolderOf(CSIDL_LOCAL_APPDATA));
    Machine::RunAs("alice");
    EXPECT_EQ("C:\\Users\\alice\\AppData\\Local", FolderOf(CSIDL_LOCAL_APPDATA));
    EXPECT_EQ("", FolderOf(CSIDL_PERSONAL, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)));
    Machine::RunAs("");
}

TEST_F(FilesTest, EnvironmentStrings)
{
    const std::pair<const wchar_t*, std::string> rows[] = {
        {L"%systemdrive%\\x", "C:\\x"},
        {L"%SystemRoot%", "C:\\WINDOWS"},
        {L"%USERPROFILE%", "C:\\WINDOWS\\system32\\config\\systemprofile"},
        {L"100% of %nothing%y%%z%", "100% of %nothing%y%%z%"},
        {L"%no%SystemDrive%", "%noC:"},
        {L"", ""},
    };
    wchar_t target[MAX_PATH];
    for (const auto& [text, expanded] : rows)
    {
        EXPECT_EQ(expanded.size() + 1, ExpandEnvironmentStringsW(text, target, MAX_PATH));
        EXPECT_EQ(expanded, ToUtf8(target));
    }
    target[3] = L'#';
    EXPECT_EQ(5U, ExpandEnvironmentStringsW(L"%SystemDrive%ab", target, 3));
    EXPECT_EQ("C:", ToUtf8(target));
    EXPECT_EQ(L'#', target[3]);
}

} // namespace
