#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/temporary_directory.h"

namespace ovik::test {

/// Puts a directory of stand-in programs in front of PATH, or makes it all of PATH, for a scope.
class PathVariable {
  public:
    explicit PathVariable(const std::string& directory, bool alone = false)
        : before_(std::getenv("PATH")) {
        setenv("PATH", (alone ? directory : directory + ":" + before_).c_str(), 1);
    }

    PathVariable(const PathVariable&) = delete;
    PathVariable& operator=(const PathVariable&) = delete;

    ~PathVariable() { setenv("PATH", before_.c_str(), 1); }

  private:
    std::string before_;
};

/// Makes a shell script that can be run.
inline void write_program(const TemporaryDirectory& directory,
                          const std::string& name,
                          const std::string& script) {
    const std::string path = directory.write(name, "#!/bin/sh\n" + script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

}  // namespace ovik::test
