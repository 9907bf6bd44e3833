#include "nameless_file.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

TEST(NamelessFile, StandsInNoFolderAndIsReadByItsPath)
{
    const support::temporary_folder folder;
    const int file = orv_h264::open_nameless(folder.path(""));
    ASSERT_GE(file, 0);
    EXPECT_EQ(0, folder.files());
    EXPECT_EQ(4, write(file, "data", 4));
    const int again = open(orv_h264::path_of(file).c_str(), O_RDONLY | O_CLOEXEC);
    std::array<char, 8> read_back = {};
    ASSERT_EQ(4, read(again, read_back.data(), read_back.size()));
    EXPECT_EQ("data", std::string_view(read_back.data(), 4));
    close(again);
    close(file);
}

TEST(NamelessFile, IsNotMadeWhereThereIsNoFolder)
{
    const support::temporary_folder folder;
    EXPECT_EQ(-1, orv_h264::open_nameless(folder.path("none")));
    EXPECT_EQ(ENOENT, errno);
}

} // namespace
