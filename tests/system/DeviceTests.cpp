#include <vkSystem/vkIoDeviceFileStream.h>
#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

using vk::vkIoDevice;
using vk::vkIoDeviceFileStream;
using vk::vkIoDeviceMemory;

namespace {

std::string tempPath(const std::string& stem) { return testing::TempDir() + stem + "." + std::to_string(::getpid()); }

std::string readAll(vkIoDevice& device, int64_t chunk)
{
    std::string out;
    std::string buffer(static_cast<std::size_t>(chunk), '\0');
    for (;;) {
        const int64_t got = device.read(buffer.data(), chunk);
        EXPECT_GE(got, 0) << device.errorString();
        if (got <= 0)
            return out;
        out.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

} // namespace

TEST(FileStream, FailedOpensLeaveTheDeviceClosedWithTheReason)
{
    const struct {
        std::string path;
        vkIoDevice::Direction direction;
        std::string expectedStart;
    } cases[] = {
        {"/nonexistent-dir/none.svg", vkIoDevice::Direction::Read,
         "Cannot open for reading '/nonexistent-dir/none.svg'"},
        {"/nonexistent-dir/out.svg", vkIoDevice::Direction::Write,
         "Cannot open for writing '/nonexistent-dir/out.svg'"},
        {testing::TempDir(), vkIoDevice::Direction::Write, "Cannot open for writing"},
    };
    for (const auto& c : cases) {
        vkIoDeviceFileStream file(c.path, c.direction, true);
        EXPECT_FALSE(file.isOpen()) << c.path;
        EXPECT_EQ(file.errorString().rfind(c.expectedStart, 0), 0u) << file.errorString();
        char byte = 0;
        EXPECT_EQ(file.read(&byte, 1), -1);
        EXPECT_EQ(file.write("x", 1), -1);
    }
}

TEST(FileStream, WritesThenReadsBackInChunksBufferedOrNot)
{
    std::string payload;
    for (int i = 0; i < 5000; ++i)
        payload += static_cast<char>(i * 7);
    for (bool buffered : {true, false}) {
        const std::string path = tempPath(buffered ? "buffered" : "unbuffered");
        {
            vkIoDeviceFileStream out(path, vkIoDevice::Direction::Write, buffered);
            ASSERT_TRUE(out.isOpen()) << out.errorString();
            EXPECT_EQ(out.write(payload.data(), 1000), 1000);
            EXPECT_EQ(out.write(payload.data() + 1000, static_cast<int64_t>(payload.size()) - 1000),
                      static_cast<int64_t>(payload.size()) - 1000);
            char byte = 0;
            EXPECT_EQ(out.read(&byte, 1), -1) << "a write device does not read";
            EXPECT_TRUE(out.close());
        }
        vkIoDeviceFileStream in(path, vkIoDevice::Direction::Read, buffered);
        ASSERT_TRUE(in.isOpen());
        EXPECT_EQ(readAll(in, 333), payload);
        EXPECT_EQ(in.write("x", 1), -1) << "a read device does not write";
        // Writing again truncates the file.
        vkIoDeviceFileStream(path, vkIoDevice::Direction::Write, buffered).write("new", 3);
        vkIoDeviceFileStream again(path, vkIoDevice::Direction::Read, buffered);
        EXPECT_EQ(readAll(again, 64), "new");
        std::remove(path.c_str());
    }
}

TEST(MemoryDevice, ReadsTheGivenBytesInShortChunks)
{
    std::string bytes("a\0b\xff tail", 9);
    for (std::size_t chunk : {1u, 2u, 4u, 100u}) {
        vkIoDeviceMemory device(bytes);
        device.setMaxReadChunk(chunk);
        char buffer[16];
        const int64_t first = device.read(buffer, sizeof(buffer));
        EXPECT_EQ(first, static_cast<int64_t>(std::min<std::size_t>(chunk, bytes.size())));
        EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(first)) + readAll(device, 3), bytes);
        EXPECT_EQ(device.read(buffer, sizeof(buffer)), 0) << "end of data stays at the end";
    }
}

TEST(MemoryDevice, CollectsWritesUntilItsCapacity)
{
    vkIoDeviceMemory device;
    EXPECT_TRUE(device.isOpen());
    EXPECT_EQ(device.write("abc", 3), 3);
    EXPECT_EQ(device.write("", 0), 0);
    EXPECT_EQ(device.write("de", 2), 2);
    EXPECT_EQ(device.getData(), "abcde");

    device.setWriteCapacity(7);
    EXPECT_EQ(device.write("fg", 2), 2);
    EXPECT_EQ(device.write("h", 1), -1);
    EXPECT_FALSE(device.errorString().empty());
    EXPECT_EQ(device.getData(), "abcdefg") << "a failed write adds nothing";
}
