#include "util/available_memory.h"

#include <filesystem>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

/// A root directory with the files of a system.
class AvailableMemoryTest : public testing::Test {
  protected:
    void put(const std::string& path, const std::string& content) {
        std::filesystem::create_directories(
            std::filesystem::path(directory_.file(path)).parent_path());
        std::ignore = directory_.write(path, content);
    }

    [[nodiscard]] AvailableMemory available() const {
        return available_memory(directory_.prefix());
    }

    test::TemporaryDirectory directory_;
};

TEST_F(AvailableMemoryTest, IsThatOfTheMachineWithoutGroups) {
    put("proc/meminfo", "MemTotal: 9000 kB\nMemFree: 1 kB\nMemAvailable:    2000 kB\n");
    EXPECT_EQ(available().bytes, 2000.0 * 1024.0);
    EXPECT_EQ(available().limit, "on this machine");
    put("proc/self/cgroup", "0::/user.slice\n");
    put("sys/fs/cgroup/user.slice/memory.max", "max\n");
    put("sys/fs/cgroup/user.slice/memory.current", "5000\n");
    EXPECT_EQ(available().bytes, 2000.0 * 1024.0);
}

TEST_F(AvailableMemoryTest, IsUnlimitedWhereNothingIsKnown) {
    EXPECT_GT(available().bytes, 1e300);
}

TEST_F(AvailableMemoryTest, IsLimitedByAGroupOfVersion2OrOneAroundIt) {
    put("proc/meminfo", "MemAvailable: 2000 kB\n");
    put("proc/self/cgroup", "0::/a/b\n");
    put("sys/fs/cgroup/a/b/memory.max", "1000000\n");
    put("sys/fs/cgroup/a/b/memory.current", "600000\n");
    put("sys/fs/cgroup/a/b/memory.stat", "anon 300000\ninactive_file 100000\n");
    EXPECT_EQ(available().bytes, 500000.0);
    EXPECT_EQ(available().limit, "within the control group");
    put("sys/fs/cgroup/a/memory.max", "700000\n");
    put("sys/fs/cgroup/a/memory.current", "650000\n");
    EXPECT_EQ(available().bytes, 50000.0);
}

TEST_F(AvailableMemoryTest, IsLimitedByAGroupOfVersion1) {
    put("proc/meminfo", "MemAvailable: 2000 kB\n");
    put("proc/self/cgroup", "5:cpu,cpuacct:/x\n4:memory:/a\n1:name=systemd:/y\n");
    put("sys/fs/cgroup/memory/a/memory.limit_in_bytes", "800000\n");
    put("sys/fs/cgroup/memory/a/memory.usage_in_bytes", "300000\n");
    put("sys/fs/cgroup/memory/a/memory.stat", "total_inactive_file 1000\n");
    EXPECT_EQ(available().bytes, 501000.0);
}

TEST_F(AvailableMemoryTest, IsLimitedByTheOutermostGroupOfAContainer) {
    put("proc/meminfo", "MemAvailable: 2000 kB\n");
    put("proc/self/cgroup", "4:memory:/docker/0123\n");
    put("sys/fs/cgroup/memory/memory.limit_in_bytes", "800000\n");
    put("sys/fs/cgroup/memory/memory.usage_in_bytes", "300000\n");
    EXPECT_EQ(available().bytes, 500000.0);
}

TEST(ResidentMemory, IsThatOfThisProcess) {
    EXPECT_GT(resident_memory(), 1e6);
    EXPECT_LT(resident_memory(), 1e12);
}

}  // namespace
}  // namespace ovik::tool
