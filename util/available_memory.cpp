#include "util/available_memory.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <sstream>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace ovik {

namespace {

constexpr double kUnlimited = std::numeric_limits<double>::infinity();

/// The number behind a key of a file of keys and numbers; `otherwise` if there is none.
double number_of(const std::string& path, const std::string& key, double otherwise) {
    std::ifstream file(path);
    std::string word;
    double number = 0.0;
    while (file >> word) {
        if (word == key && file >> number) {
            return number;
        }
    }
    return otherwise;
}

/// The number that a file holds; `otherwise` if it holds none ("max").
double number_in(const std::string& path, double otherwise) {
    std::ifstream file(path);
    double number = 0.0;
    return file >> number ? number : otherwise;
}

/// The names of the files of a version of control groups.
struct GroupFiles {
    const char* directory;
    const char* limit;
    const char* usage;
    /// Key of the memory that is given back when it is needed.
    const char* reclaimable;
};

constexpr GroupFiles kVersion1 = {"sys/fs/cgroup/memory",
                                  "memory.limit_in_bytes",
                                  "memory.usage_in_bytes",
                                  "total_inactive_file"};
constexpr GroupFiles kVersion2 = {"sys/fs/cgroup", "memory.max", "memory.current", "inactive_file"};

double left_in_group(const std::string& directory, const GroupFiles& files) {
    const double limit = number_in(directory + "/" + files.limit, kUnlimited);
    const double usage = number_in(directory + "/" + files.usage, 0.0);
    return limit - usage + number_of(directory + "/memory.stat", files.reclaimable, 0.0);
}

/// The least that a group and those around it have left.
///
/// @param group  path of the group, from "/" on. Within a container it may be that of the host,
///               which is not there; the outermost one is then that of the container.
double left_in_groups(const std::string& root, std::string group, const GroupFiles& files) {
    const std::string top = root + files.directory;
    double left = left_in_group(top, files);
    for (; group.size() > 1; group.erase(group.rfind('/'))) {
        left = std::min(left, left_in_group(top + group, files));
    }
    return left;
}

/// Lines of /proc/self/cgroup: "0::/path" for version 2, "4:cpu,memory:/path" for version 1.
double left_in_control_groups(const std::string& root) {
    std::ifstream file(root + "proc/self/cgroup");
    double left = kUnlimited;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string controllers;
        std::string group;
        std::getline(fields, number, ':');
        std::getline(fields, controllers, ':');
        std::getline(fields, group);
        if (number == "0" && controllers.empty()) {
            left = std::min(left, left_in_groups(root, group, kVersion2));
        } else if (("," + controllers + ",").find(",memory,") != std::string::npos) {
            left = std::min(left, left_in_groups(root, group, kVersion1));
        }
    }
    return left;
}

double page_size() {
    return static_cast<double>(sysconf(_SC_PAGESIZE));
}

double left_of_address_space() {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return kUnlimited;
    }
    return static_cast<double>(limit.rlim_cur) - number_in("/proc/self/statm", 0.0) * page_size();
}

}  // namespace

AvailableMemory available_memory(const std::string& root) {
    const double kilobytes = number_of(root + "proc/meminfo", "MemAvailable:", kUnlimited);
    AvailableMemory least{1024.0 * kilobytes, "on this machine"};
    const AvailableMemory others[] = {{left_in_control_groups(root), "within the control group"},
                                      {left_of_address_space(), "within ulimit -v"}};
    for (const AvailableMemory& other : others) {
        if (other.bytes < least.bytes) {
            least = other;
        }
    }
    return least;
}

double resident_memory() {
    std::ifstream file("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    return file >> total >> resident ? resident * page_size() : 0.0;
}

}  // namespace ovik
