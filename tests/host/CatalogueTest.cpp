// host/CatalogueTest.cpp
//
// Compares the host's view of the commands with the interface's own list, and the document with both.

#include "CommandCatalogue.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace
{

TEST(Catalogue, HasEachCommandWithRecordsOfItsSizes)
{
    for (const CommandInfo& info : commands::kAll)
    {
        const host::CommandEntry* const entry = host::FindCommand(info.name);
        ASSERT_NE(nullptr, entry) << info.name;
        if (info.payload.length != PayloadLength::None) // what isn't read may still be given
        {
            EXPECT_EQ(info.payload.size, entry->payload.size) << info.name;
        }
        const bool isText = &entry->reply == &host::kTextReply; // as long as the text
        EXPECT_EQ(isText ? 0 : info.reply.size, entry->reply.size) << info.name;
    }
}

// The row of the table of requests that names a command, from the end of its name on, or nothing. A row may
// name several commands.
std::string RowFrom(const std::string& document, const std::string& name)
{
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t position = line.find('`' + name + '`');
        if (line.starts_with("| `") && position < line.find(" |"))
        {
            return line.substr(position + name.size() + 2);
        }
    }
    return "";
}

// The text of one cell of a row, counted from where the row begins.
std::string Cell(const std::string& row, int number)
{
    std::istringstream cells(row);
    std::string cell;
    for (int i = 0; i <= number; ++i)
    {
        std::getline(cells, cell, '|');
    }
    const std::size_t begin = cell.find_first_not_of(' ');
    return begin == std::string::npos ? "" : cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin);
}

TEST(Documents, HaveEachCommandInTheTableOfRequests)
{
    constexpr int kRoom = 3;
    std::stringstream document;
    document << std::ifstream(REQUESTS_DOCUMENT).rdbuf();
    for (const CommandInfo& info : commands::kAll)
    {
        const std::string row = RowFrom(document.str(), info.name);
        ASSERT_NE("", row) << info.name;
        EXPECT_EQ(info.needsUser, row.starts_with(" U")) << info.name;
        EXPECT_EQ(info.reply.size == 0 ? "" : std::to_string(info.reply.size), Cell(row, kRoom)) << info.name;
    }
}

} // namespace
