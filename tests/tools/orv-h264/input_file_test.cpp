// A file as bytes in order, and anywhere.
#include "input_file.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace {

using orv_h264::input_file;
using support::bytes;

class InputFile : public testing::Test {
protected:
    InputFile()
    {
        bytes content;
        for (unsigned i = 0; i < 100; ++i)
            content.push_back(static_cast<unsigned char>(i));
        path = folder.write("in", content);
    }

    support::temporary_folder folder;
    std::string path;
};

/// The standard input is this descriptor as long as the object lives.
class as_standard_input {
public:
    explicit as_standard_input(int descriptor) : kept(dup(STDIN_FILENO))
    {
        dup2(descriptor, STDIN_FILENO);
        close(descriptor);
    }
    as_standard_input(const as_standard_input&) = delete;
    as_standard_input& operator=(const as_standard_input&) = delete;
    ~as_standard_input()
    {
        dup2(kept, STDIN_FILENO);
        close(kept);
    }

private:
    int kept;
};

TEST_F(InputFile, ReadsAnywhereAndGoesOnWhereItWas)
{
    input_file file(path);
    std::array<unsigned char, 10> read = {};
    EXPECT_EQ(10U, file.read(read.data(), read.size()));
    EXPECT_EQ(10U, file.read_at(50, read.data(), read.size()));
    EXPECT_EQ(50, read[0]);
    EXPECT_EQ(59, read[9]);
    EXPECT_EQ(10U, file.bytes_read());
    EXPECT_EQ(10U, file.read(read.data(), read.size()));
    EXPECT_EQ(10, read[0]);
}

TEST_F(InputFile, ReadsAtTheEndWhatIsThere)
{
    const input_file file(path);
    std::array<unsigned char, 10> read = {};
    EXPECT_EQ(3U, file.read_at(97, read.data(), read.size()));
    EXPECT_EQ(99, read[2]);
    const auto furthest = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    for (const std::uint64_t beyond : {std::uint64_t{100}, furthest, furthest + 1, ~std::uint64_t{0}})
        EXPECT_EQ(0U, file.read_at(beyond, read.data(), read.size())) << beyond;
}

TEST_F(InputFile, IsSeekableAsARegularFileFromItsStart)
{
    EXPECT_TRUE(input_file(path).is_seekable());
    EXPECT_FALSE(input_file("/dev/null").is_seekable());
    EXPECT_FALSE(input_file(folder.path("")).is_seekable()) << "a folder";
    {
        const as_standard_input at_start(open(path.c_str(), O_RDONLY));
        EXPECT_TRUE(input_file("-").is_seekable());
    }
    const int moved = open(path.c_str(), O_RDONLY);
    lseek(moved, 1, SEEK_SET);
    const as_standard_input inside(moved);
    EXPECT_FALSE(input_file("-").is_seekable()) << "somebody has read of it";
}

TEST_F(InputFile, APipeIsNotSeekable)
{
    std::array<int, 2> ends = {};
    ASSERT_EQ(0, pipe(ends.data()));
    const as_standard_input reading(ends[0]);
    const input_file file("-");
    EXPECT_FALSE(file.is_seekable());
    EXPECT_EQ(std::nullopt, file.size());
    close(ends[1]);
}

TEST_F(InputFile, TellsTheSizeOfARegularFile)
{
    EXPECT_EQ(100U, input_file(path).size());
    EXPECT_EQ(std::nullopt, input_file("/dev/null").size());
}

TEST_F(InputFile, ThrowsWithTheNameAndTheOffset)
{
    input_file folder_as_file(folder.path(""));
    unsigned char byte = 0;
    EXPECT_THROW(folder_as_file.read(&byte, 1), std::system_error);
    try {
        folder_as_file.read_at(7, &byte, 1);
        FAIL() << "a folder was read";
    } catch (const std::system_error& error) {
        EXPECT_NE(std::string::npos, std::string(error.what()).find(folder.path("") + ": offset 7"));
    }
    EXPECT_THROW(input_file(folder.path("nothing")), std::system_error);
}

} // namespace
