#include "platform/basics/file_reader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace qx {
namespace {

namespace fs = std::filesystem;

class FileReaderTest : public ::testing::Test {
protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("qxfb-reader-" + std::to_string(::getpid()));
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string write(const std::string& name, const std::string& content) {
        const fs::path path = folder / name;
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }

    fs::path folder;
};

TEST_F(FileReaderTest, ReadsARegularFileWhole) {
    const auto content = readRegularFile(write("a.ini", std::string("[x]\r\nk=v\0z", 10)), 100);
    EXPECT_EQ(content.Status, FileReadStatus::Ok);
    EXPECT_EQ(content.Size, 10u);
    EXPECT_EQ(content.Data, (Bytes{'[', 'x', ']', '\r', '\n', 'k', '=', 'v', 0, 'z'}));
}

TEST_F(FileReaderTest, AnEmptyFileIsReadAsNothing) {
    const auto content = readRegularFile(write("empty", ""), 100);
    EXPECT_EQ(content.Status, FileReadStatus::Ok);
    EXPECT_TRUE(content.Data.empty());
}

TEST_F(FileReaderTest, AFileAtTheLimitIsReadAndOneByteMoreIsTooLarge) {
    EXPECT_EQ(readRegularFile(write("four", "1234"), 4).Status, FileReadStatus::Ok);
    const auto content = readRegularFile(write("five", "12345"), 4);
    EXPECT_EQ(content.Status, FileReadStatus::TooLarge);
    EXPECT_EQ(content.Size, 5u);
    EXPECT_TRUE(content.Data.empty());
}

TEST_F(FileReaderTest, MissingFilesAndFoldersAreMissing) {
    EXPECT_EQ(readRegularFile((folder / "none").string(), 100).Status, FileReadStatus::Missing);
    EXPECT_EQ(readRegularFile((folder / "none" / "deeper").string(), 100).Status, FileReadStatus::Missing);
    const std::string file = write("file", "x");
    EXPECT_EQ(readRegularFile(file + "/below", 100).Status, FileReadStatus::Missing);
}

TEST_F(FileReaderTest, AFolderIsNoRegularFile) {
    EXPECT_EQ(readRegularFile(folder.string(), 100).Status, FileReadStatus::NotRegular);
}

TEST_F(FileReaderTest, AFifoWithoutWriterIsAnsweredAtOnce) {
    const fs::path fifo = folder / "170100.ini";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(readRegularFile(fifo.string(), 100).Status, FileReadStatus::NotRegular);
}

TEST_F(FileReaderTest, DevicesBehindALinkAreNoRegularFiles) {
    fs::create_symlink("/dev/zero", folder / "zero.ini");
    EXPECT_EQ(readRegularFile((folder / "zero.ini").string(), 100).Status, FileReadStatus::NotRegular);
    EXPECT_EQ(readRegularFile("/dev/urandom", 100).Status, FileReadStatus::NotRegular);
    EXPECT_EQ(readRegularFile("/dev/null", 100).Status, FileReadStatus::NotRegular);
}

TEST_F(FileReaderTest, ALinkToARegularFileReadsTheFile) {
    const std::string target = write("target", "abc");
    fs::create_symlink(target, folder / "link");
    const auto content = readRegularFile((folder / "link").string(), 100);
    EXPECT_EQ(content.Status, FileReadStatus::Ok);
    EXPECT_EQ(content.Data, (Bytes{'a', 'b', 'c'}));
}

TEST_F(FileReaderTest, NamesAreTakenByteForByte) {
    const std::string name = std::string("caf\xE9") + "\xFF\x80.ini";
    const std::string path = write(name, "latin");
    const auto content = readRegularFile(path, 100);
    EXPECT_EQ(content.Status, FileReadStatus::Ok);
    EXPECT_EQ(content.Data.size(), 5u);
}

}  // namespace
}  // namespace qx
