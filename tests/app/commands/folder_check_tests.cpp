// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/folder_check.h"

#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "platform/posix/posix_file_system.h"

namespace vantoro {
namespace {

/// The real file system, except for what a test changes.
class OtherFileSystem final : public FileSystem {
public:
    bool hasUnnamedFiles = true;
    std::error_code refusal;          ///< on creating files
    std::vector<std::string> created; ///< with a name

    void createFolders(const std::filesystem::path& folder) override {
        files_.createFolders(folder);
    }

    bool exists(const std::filesystem::path& path) const override { return files_.exists(path); }

    void remove(const std::filesystem::path& path) override { files_.remove(path); }

    void move(const std::filesystem::path& from, const std::filesystem::path& to) override {
        files_.move(from, to);
    }

    void syncFolder(const std::filesystem::path& folder) override { files_.syncFolder(folder); }

    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override {
        refuse();
        created.push_back(path.filename());
        return files_.create(path, audience);
    }

    std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                      FileAudience audience) override {
        refuse();
        return files_.claim(path, audience);
    }

    std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                              FileAudience audience) override {
        refuse();
        return hasUnnamedFiles ? files_.createUnnamed(folder, audience) : nullptr;
    }

    std::uint64_t availableSpace(const std::filesystem::path& folder) const override {
        return files_.availableSpace(folder);
    }

    std::unique_ptr<InputFile> open(const std::filesystem::path& path) override {
        return files_.open(path);
    }

    std::vector<FolderEntry> list(const std::filesystem::path& folder) override {
        return files_.list(folder);
    }

    std::unique_ptr<FileLock> lock(const std::filesystem::path& path) override {
        return files_.lock(path);
    }

private:
    void refuse() const {
        if (refusal) {
            throw std::system_error(refusal, "Cannot create a file");
        }
    }

    posix::PosixFileSystem files_;
};

class FolderCheckTest : public ::testing::Test {
protected:
    QTemporaryDir temporary;
    std::filesystem::path folder = temporary.path().toStdString();
    OtherFileSystem files;

    /// Checks that the call leaves the folder unchanged.
    FolderCheck check(const std::filesystem::path& checked) {
        const auto before = files.list(folder).size();
        auto result = checkFolder(files, checked);
        EXPECT_EQ(files.list(folder).size(), before);
        return result;
    }
};

TEST_F(FolderCheckTest, folderThatIsThereTakesFiles) {
    const auto found = check(folder);
    EXPECT_TRUE(found.exists);
    EXPECT_FALSE(found.refusal);
    EXPECT_GT(found.availableBytes.value_or(0), 0U);
    EXPECT_TRUE(files.created.empty());
}

TEST_F(FolderCheckTest, folderThatCanBeCreatedIsNotCreated) {
    const auto found = check(folder / "a/b");
    EXPECT_FALSE(found.exists);
    EXPECT_FALSE(found.refusal);
    EXPECT_GT(found.availableBytes.value_or(0), 0U);
}

TEST_F(FolderCheckTest, withoutUnnamedFilesANamedOneIsCreatedAndRemoved) {
    files.hasUnnamedFiles = false;
    EXPECT_FALSE(check(folder).refusal);
    ASSERT_EQ(files.created.size(), 1U);
    EXPECT_TRUE(files.created[0].starts_with(".Vantoro-")) << files.created[0];
    EXPECT_FALSE(files.created[0].ends_with(".partial.mov")) << files.created[0];
}

TEST_F(FolderCheckTest, refusalHasTheSystemsReason) {
    files.refusal = std::make_error_code(std::errc::permission_denied);
    EXPECT_EQ(check(folder).refusal, std::errc::permission_denied);
    EXPECT_EQ(check(folder / "a").refusal, std::errc::permission_denied);
}

TEST_F(FolderCheckTest, fileInPlaceOfAFolderIsRefused) {
    std::ofstream(folder / "file") << "a file";
    EXPECT_EQ(check(folder / "file").refusal, std::errc::not_a_directory);
    EXPECT_EQ(check(folder / "file/below").refusal, std::errc::not_a_directory);
    files.hasUnnamedFiles = false;
    EXPECT_EQ(check(folder / "file").refusal, std::errc::not_a_directory);
}

} // namespace
} // namespace vantoro
