// host/CatalogueTest.cpp
//
// The host's view of the commands beside the interface's own list, and the documents beside both.

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

TEST(Documents, NameEachCommandInTheTableOfRequests)
{
    std::ifstream file(REQUESTS_DOCUMENT);
    std::stringstream text;
    text << file.rdbuf();
    for (const CommandInfo& info : commands::kAll)
    {
        const std::string name = '`' + std::string(info.name) + '`';
        const std::size_t place = text.str().find("\n| " + name);
        const std::size_t shared = text.str().find(", " + name); // a row of two
        ASSERT_NE(std::string::npos, std::min(place, shared)) << info.name;
        const std::string row = text.str().substr(std::min(place, shared) + 1, name.size() + 4);
        EXPECT_EQ(info.needsUser, row.ends_with(" U")) << row;
    }
}

} // namespace
