#pragma once

#include <locale.h>

namespace ovik {

/// The locale by which the calling thread reads and writes numbers: its own, of `uselocale`, or
/// else that of the process. Threads that it starts do not inherit its own.
inline locale_t thread_locale() {
    return uselocale(nullptr);
}

/// Gives the thread another locale for a scope.
class ThreadLocale {
  public:
    /// @param locale  as `thread_locale` gives it; has to stay until the scope ends
    explicit ThreadLocale(locale_t locale) : before_(uselocale(locale)) {}

    ThreadLocale(const ThreadLocale&) = delete;
    ThreadLocale& operator=(const ThreadLocale&) = delete;

    ~ThreadLocale() { uselocale(before_); }

  private:
    locale_t before_;
};

}  // namespace ovik
