#pragma once

#include "tests/plain/plain_tsne.h"

namespace ovik::test {

/// Other functions for the plain programs, until its end.
class PlainFunctions {
  public:
    explicit PlainFunctions(const plain::Functions& functions) : before_(plain::functions()) {
        plain::functions() = functions;
    }

    PlainFunctions(const PlainFunctions&) = delete;
    PlainFunctions& operator=(const PlainFunctions&) = delete;

    ~PlainFunctions() { plain::functions() = before_; }

  private:
    plain::Functions before_;
};

}  // namespace ovik::test
