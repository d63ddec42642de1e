#include "util/thread_locale.h"

#include <thread>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(ThreadLocale, IsThatOfTheProcessUnlessTheThreadHasItsOwn) {
    EXPECT_EQ(thread_locale(), LC_GLOBAL_LOCALE);
    const locale_t own = newlocale(LC_ALL_MASK, "C", nullptr);
    {
        const ThreadLocale scope(own);
        EXPECT_EQ(thread_locale(), own);
        std::thread([] { EXPECT_EQ(thread_locale(), LC_GLOBAL_LOCALE); }).join();
        {
            const ThreadLocale inner(LC_GLOBAL_LOCALE);
            EXPECT_EQ(thread_locale(), LC_GLOBAL_LOCALE);
        }
        EXPECT_EQ(thread_locale(), own);
    }
    EXPECT_EQ(thread_locale(), LC_GLOBAL_LOCALE);
    freelocale(own);
}

}  // namespace
}  // namespace ovik
