#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/command.h"
#include "tests/support/temporary_directory.h"

namespace ovik::test {

/// Locales that few machines have, made for as long as this lives.
class MadeLocales {
  public:
    /// @param names  such as "de_DE.UTF-8", which has a decimal comma
    explicit MadeLocales(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            failure_ += run_command({"/usr/bin/localedef",
                                     "-f",
                                     "UTF-8",
                                     "-i",
                                     name.substr(0, 5),
                                     directory_.file(name)})
                            .err;
        }
        setenv("LOCPATH", directory_.prefix().c_str(), 1);
    }

    MadeLocales(const MadeLocales&) = delete;
    MadeLocales& operator=(const MadeLocales&) = delete;

    ~MadeLocales() { unsetenv("LOCPATH"); }

    /// What went wrong with them; empty if nothing did.
    [[nodiscard]] const std::string& failure() const { return failure_; }

  private:
    TemporaryDirectory directory_;
    std::string failure_;
};

}  // namespace ovik::test
