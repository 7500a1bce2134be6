// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/m4a/m4a_file.h"

#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

TEST(M4aFile, takesNoPacketThatItsIndexCannotDescribe) {
    MemoryFileSystem files;
    const auto output = files.create("/recording.m4a", FileAudience::asUserPrefers);
    media::M4aFile file(*output, {.decoderConfiguration = std::vector(2, std::byte{0})});
    file.add(std::vector(65535, std::byte{1}));
    EXPECT_THROW(file.add(std::vector(65536, std::byte{1})), std::runtime_error);
}

} // namespace
} // namespace vantoro::testing
